// The planner's expansion of repeating entries: EntryRepeat::generate_slots
// on 1,000 repeating tasks over a one-year lookahead, bounded at 10,000
// instances each. A daily task gives 366 requests a year; the goal is that the
// expansion adds no noticeable time to a planner pass (well under the cheap
// pass's 50 ms per 10,000 entries, per 1,000 series).
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

using namespace Tervalon;

namespace {

const ZBDate C_Now(2026, 0, 1, 8, 0, 0, 0, ZBDate::C_GMT);

std::string scratch_file()
{
    static int count = 0;
    return bench_scratch().path().toStdString() + "/repeat" + std::to_string(++count) + ".zbd";
}

// 1,000 tasks, each due at a different hour of the coming days, repeating by
// the rule given.
std::unique_ptr<Diary> make_diary(const char* rule, std::vector<DiaryEntry*>& tasks)
{
    std::unique_ptr<Diary> diary(new Diary());
    diary->create(scratch_file(), true);
    for (int n = 0; n < 1000; ++n) {
        DiaryEntry* entry = nullptr;
        diary->create_entry(nullptr, 'T', "Task " + std::to_string(n), &entry);
        entry->edit_due().set_orig(C_Now + ZBDuration(std::int64_t(n % 7), 3600 * (n % 10), 0));
        entry->edit_repeat().from_string(rule);
        tasks.push_back(entry);
    }
    diary->recalculate(ZBDatabase::E_RecalcQuick);
    return diary;
}

void expand(benchmark::State& state, const char* rule)
{
    ZBDateUtils::set_fixed_now(C_Now);
    std::vector<DiaryEntry*> tasks;
    std::unique_ptr<Diary> diary = make_diary(rule, tasks);
    const ZBDateSlot year = diary->get_settings().get_lookahead_date(false);
    // With the argument 1 the instances of the past year are kept too.
    const bool all = state.range(0) != 0;
    std::int64_t instances = 0;
    for (auto _ : state) {
        instances = 0;
        for (DiaryEntry* task : tasks) {
            task->edit_erepeat().invalidate();
            task->edit_erepeat().generate_slots(all, year, EntryRepeat::C_MaxInstances);
            instances += std::int64_t(task->get_erepeat().get_slots().size());
        }
    }
    state.counters["instances"] = double(instances);
    state.SetItemsProcessed(state.iterations() * instances);
    diary->unload();
    ZBDateUtils::clear_fixed_now();
}

void BM_RepeatEntriesDaily(benchmark::State& state) { expand(state, "T=2@N=1"); }
void BM_RepeatEntriesWeekdays(benchmark::State& state) { expand(state, "T=3@N=1@D=0,1,2,3,4"); }
void BM_RepeatEntriesWeekly(benchmark::State& state) { expand(state, "T=3@N=1"); }
BENCHMARK(BM_RepeatEntriesDaily)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RepeatEntriesWeekdays)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RepeatEntriesWeekly)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// A second call with the same range reuses what the first made, as the
// planner's stages do when they ask again.
void BM_RepeatEntriesCached(benchmark::State& state)
{
    ZBDateUtils::set_fixed_now(C_Now);
    std::vector<DiaryEntry*> tasks;
    std::unique_ptr<Diary> diary = make_diary("T=2@N=1", tasks);
    const ZBDateSlot year = diary->get_settings().get_lookahead_date(false);
    for (DiaryEntry* task : tasks)
        task->edit_erepeat().generate_slots(false, year, EntryRepeat::C_MaxInstances);
    for (auto _ : state)
        for (DiaryEntry* task : tasks)
            benchmark::DoNotOptimize(task->edit_erepeat().generate_slots(false, year, EntryRepeat::C_MaxInstances));
    diary->unload();
    ZBDateUtils::clear_fixed_now();
}
BENCHMARK(BM_RepeatEntriesCached)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    return Tervalon::bench_main(argc, argv, nullptr);
}
