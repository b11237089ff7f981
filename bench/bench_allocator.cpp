// The full pass with the planner: dependencies, the entry phases, the time
// allocator booking every open task into its resource's free time, and the
// phases again. Plans of 1,000, 10,000 and 50,000 open tasks in projects of
// 50 (1 to 16 hours each, a fifth waiting for the task before, a third with a
// due date), three resources working Monday to Friday 09:00-17:00, one year
// looked ahead. The goal is under a second for 10,000 tasks, growing no
// faster than n log n. "peak_MB" is the process's peak resident memory so far:
// run one size per process (--benchmark_filter) to read it for that size.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <memory>

using namespace Tervalon;

namespace {

// A Monday.
const ZBDate C_Now(2026, 3, 2, 8, 0, 0, 0, ZBDate::C_GMT);

std::string scratch_file()
{
    static int count = 0;
    return bench_scratch().path().toStdString() + "/allocator" + std::to_string(++count) + ".zbd";
}

std::unique_ptr<Diary> make_diary(int tasks)
{
    std::unique_ptr<Diary> diary(new Diary());
    diary->create(scratch_file(), true);
    diary->edit_settings().set_features(DiarySettings::C_FeatureTask | DiarySettings::C_FeatureMultiUser);
    int resources[3] = {diary->get_default_resource_id(), -1, -1};
    for (int r = 1; r < 3; ++r) {
        Resource* resource = nullptr;
        diary->add_resource("Person " + std::to_string(r), &resource);
        resources[r] = resource->get_id();
    }
    DiaryEntry* project = nullptr;
    int previous = -1;
    for (int n = 0; n < tasks; ++n) {
        if (n % 50 == 0) {
            diary->create_entry(nullptr, 'O', "Project " + std::to_string(n / 50), &project);
            previous = -1;
        }
        DiaryEntry* entry = nullptr;
        diary->create_entry(project, 'T', "Task " + std::to_string(n), &entry);
        ZBProgress progress;
        progress.set_duration(ZBDuration(std::int64_t(n * 7 % 16 + 1) * 3600));
        entry->edit_duration().set_orig(progress);
        entry->edit_props().set_resource_orig(resources[(n / 50) % 3], false);
        if (n % 3 == 0)
            entry->edit_due().set_orig(C_Now + ZBDuration(std::int64_t(n * 13 % 360 + 1), 9 * 3600, 0));
        if (n % 5 == 0 && previous >= 0)
            entry->edit_depend().add_depend(previous);
        if (n % 11 == 0)
            entry->edit_priority().set_orig(double(n % 40));
        previous = entry->get_id();
    }
    diary->full_recalculate();
    return diary;
}

void BM_FullPass(benchmark::State& state)
{
    ZBDateUtils::set_fixed_now(C_Now);
    std::unique_ptr<Diary> diary = make_diary(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(diary->full_recalculate());
    // What was booked, per resource, to show that every one takes part.
    double booked = 0.0;
    for (int i = 0; i < diary->get_nobjects(); ++i)
        if (const DiaryEntry* entry = dynamic_cast<const DiaryEntry*>(diary->get_object_by_index(i)))
            booked += entry->get_plan().get_predicted().duration().get_as_dseconds() / 3600.0;
    state.counters["booked_h"] = booked;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["tasks"] = double(state.range(0));
    state.counters["peak_MB"] = double(usage.ru_maxrss) / 1024.0;
    state.SetComplexityN(state.range(0));
    diary->unload();
    ZBDateUtils::clear_fixed_now();
}
BENCHMARK(BM_FullPass)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(50000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oNLogN);

} // namespace

int main(int argc, char** argv)
{
    return Tervalon::bench_main(argc, argv, nullptr);
}
