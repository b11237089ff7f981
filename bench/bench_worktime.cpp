// Work time and dependencies: expanding three resources' calendars with two
// time types over two years, and resolving the dependencies of a large diary
// (a fifth of the tasks waiting for another, plus one chain of 2,000).
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include <QCoreApplication>

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <memory>

using namespace Tervalon;

namespace {

const ZBDate C_Start(2026, 0, 1, 0, 0, 0, 0, ZBDate::C_GMT);

// A new file name for each diary made: a benchmark's set-up runs more than once.
std::string scratch_file()
{
    static int count = 0;
    return bench_scratch().path().toStdString() + "/diary" + std::to_string(++count) + ".zbd";
}

std::unique_ptr<Diary> make_worktime_diary()
{
    std::unique_ptr<Diary> diary(new Diary());
    diary->create(scratch_file(), true);
    diary->edit_settings().set_features(diary->get_settings().get_features() | DiarySettings::C_FeatureMultiUser);
    TimeType* home = nullptr;
    diary->add_timetype("Home", &home);
    const int work = diary->get_timetype_by_name("Work")->get_id();
    // The working day offers office hours and, overlapping the end, home time.
    DayType* day = diary->edit_calendar().edit_daytype_by_name(DayType::C_StandardWorkDay);
    day->clear_entries();
    day->add_entry(new DayTypeEntry(9 * 3600, 17 * 3600, work));
    day->add_entry(new DayTypeEntry(17 * 3600, 20 * 3600, home->get_id()));
    DayType* weekend = diary->edit_calendar().edit_daytype_by_name(DayType::C_Weekend);
    weekend->add_entry(new DayTypeEntry(10 * 3600, 14 * 3600, home->get_id()));
    for (const char* name : {"Ann", "Bob"})
        diary->add_resource(name, nullptr);
    diary->initialise(false);
    // Public holidays in the default calendar, leave in each resource's own.
    const int holiday = diary->get_calendar().get_daytype_by_name(DayType::C_PublicHoliday)->get_id();
    for (int n = 0; n < 20; ++n) {
        ResourceCalEntry* entry = new ResourceCalEntry();
        const ZBDate date = C_Start + ZBDuration(std::int64_t(n) * 37, 0, 0);
        entry->set_date(ZBDateSlot(date, date + ZBDuration(0, 86399, 0)));
        entry->set_daytype(holiday);
        diary->edit_calendar().add_entry(entry);
    }
    for (int r = 0; r < diary->get_nresources(); ++r) {
        Resource* resource = diary->get_resource_by_index(r);
        const int leave = resource->get_calendar().get_daytype_by_name(DayType::C_OnLeave)->get_id();
        for (int n = 0; n < 6; ++n) {
            ResourceCalEntry* entry = new ResourceCalEntry();
            const ZBDate date = C_Start + ZBDuration(std::int64_t(n) * 100 + r * 7, 0, 0);
            entry->set_date(ZBDateSlot(date, date + ZBDuration(4, 86399, 0)));
            entry->set_daytype(leave);
            resource->edit_calendar().add_entry(entry);
        }
        // An appointment every working day or so, some keeping time for home work.
        for (int n = 0; n < 500; ++n) {
            DiaryEntry* appointment = nullptr;
            diary->create_entry(nullptr, 'A', "Meeting", &appointment);
            const ZBDate start = C_Start + ZBDuration(std::int64_t(n) * 36 * 3600 + 10 * 3600);
            appointment->edit_time().set_orig(ZBDateSlot(start, start + ZBDuration(3600)));
            appointment->edit_props().set_resource_orig(resource->get_id());
            if (n % 5 == 0)
                appointment->edit_props().set_timetype_orig(home->get_id());
        }
    }
    diary->recalculate(ZBDatabase::E_RecalcQuick);
    return diary;
}

void BM_AllocateTimes3ResourcesTwoYears(benchmark::State& state)
{
    std::unique_ptr<Diary> diary = make_worktime_diary();
    const ZBDate end = C_Start + ZBDuration(730, 0, 0);
    std::int64_t spans = 0;
    for (auto _ : state) {
        diary->allocate_times(C_Start, end);
        spans = 0;
        for (int r = 0; r < diary->get_nresources(); ++r) {
            const ZBDateSetGroup& group = diary->get_resource_by_index(r)->get_avail_time();
            for (int i = 0; i < group.get_ndatesets(); ++i)
                spans += group.get_dateset_by_index(i)->size();
        }
    }
    state.counters["spans"] = double(spans);
    diary->unload();
}
BENCHMARK(BM_AllocateTimes3ResourcesTwoYears)->Unit(benchmark::kMillisecond);

// n tasks in projects of 50; every fifth waits for a task of an earlier
// project (by id, or by title for one in ten of those); and one chain of
// 2,000 tasks, each waiting for the one before.
std::unique_ptr<Diary> make_dependency_diary(int tasks)
{
    std::unique_ptr<Diary> diary(new Diary());
    diary->create(scratch_file(), true);
    std::vector<DiaryEntry*> all;
    DiaryEntry* project = nullptr;
    for (int n = 0; n < tasks; ++n) {
        if (n % 50 == 0)
            diary->create_entry(nullptr, 'O', "Project " + std::to_string(n / 50), &project);
        DiaryEntry* task = nullptr;
        diary->create_entry(project, 'T', "Task " + std::to_string(n), &task);
        if (n % 5 == 0 && n >= 50) {
            const int target = (n * 7919) % (n - n % 50);
            if (n % 50 == 0)
                task->edit_depend().add_title("Task " + std::to_string(target));
            else
                task->edit_depend().add_depend(all[size_t(target)]->get_id());
        }
        all.push_back(task);
    }
    DiaryEntry* chain = nullptr;
    diary->create_entry(nullptr, 'O', "Chain", &chain);
    DiaryEntry* previous = nullptr;
    for (int n = 0; n < 2000; ++n) {
        DiaryEntry* task = nullptr;
        diary->create_entry(chain, 'T', "Link " + std::to_string(n), &task);
        if (previous)
            task->edit_depend().add_depend(previous->get_id());
        previous = task;
    }
    diary->recalculate(ZBDatabase::E_RecalcQuick);
    return diary;
}

void BM_CalculateDependencies(benchmark::State& state)
{
    std::unique_ptr<Diary> diary = make_dependency_diary(int(state.range(0)));
    for (auto _ : state)
        diary->calculate_dependencies();
    state.counters["loops"] = double(diary->get_circular_dependencies().size());
    state.SetComplexityN(state.range(0));
    diary->unload();
}
BENCHMARK(BM_CalculateDependencies)
    ->Arg(2500)
    ->Arg(5000)
    ->Arg(10000)
    ->Arg(20000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

// The chain alone, longer and longer. With range(1) set all but the last 20
// links are done, as in a long-running chain of work: the walk must stay
// linear. With every link open the resolved lists themselves hold n(n-1)/2 ids.
void BM_DependencyChain(benchmark::State& state)
{
    std::unique_ptr<Diary> diary(new Diary());
    diary->create(scratch_file(), true);
    DiaryEntry* previous = nullptr;
    for (int n = 0; n < state.range(0); ++n) {
        DiaryEntry* task = nullptr;
        diary->create_entry(nullptr, 'T', "Link " + std::to_string(n), &task);
        if (previous)
            task->edit_depend().add_depend(previous->get_id());
        // Most of a chain is done: completed links are walked but not listed.
        if (state.range(1) && n < state.range(0) - 20)
            task->set_completion(100, true);
        previous = task;
    }
    diary->recalculate(ZBDatabase::E_RecalcQuick);
    for (auto _ : state)
        diary->calculate_dependencies();
    state.SetComplexityN(state.range(0));
    diary->unload();
}
BENCHMARK(BM_DependencyChain)
    ->Args({1000, 1})
    ->Args({2000, 1})
    ->Args({4000, 1})
    ->Args({8000, 1})
    ->Unit(benchmark::kMillisecond)
    ->Complexity();
BENCHMARK(BM_DependencyChain)
    ->Args({1000, 0})
    ->Args({2000, 0})
    ->Args({4000, 0})
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

} // namespace

int main(int argc, char** argv)
{
    const ZBDate now(2026, 0, 1, 8, 0, 0, 0, ZBDate::C_GMT);
    return Tervalon::bench_main(argc, argv, &now);
}
