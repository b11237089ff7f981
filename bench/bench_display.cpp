// The day summary and the details page on a diary of 10,000 tasks after a
// full pass (dependencies, entry phases and the planner). Both are redrawn
// whenever the window updates, so each should take under 50 ms.
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diarydisplay.h"
#include "AppTervalonDiary/diary/zbdsummarypage.h"
#include "LibDate/date/zbdateutils.h"
#include "LibMarkup/markup/zbmarkuppage.h"

#include <QCoreApplication>

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <memory>

using namespace Tervalon;

namespace {

// A Monday.
const ZBDate C_Now(2026, 3, 2, 8, 0, 0, 0, ZBDate::C_GMT);

std::string scratch_file()
{
    static int count = 0;
    return bench_scratch().path().toStdString() + "/display" + std::to_string(++count) + ".zbd";
}

// Projects of 50 tasks of 1 to 16 hours; every third task has a due date
// within the year, every fifth waits for the one before, every eleventh has
// a user priority, and some are already late.
std::unique_ptr<Diary> make_diary(int tasks)
{
    std::unique_ptr<Diary> diary(new Diary());
    diary->create(scratch_file(), true);
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
        if (n % 3 == 0)
            entry->edit_due().set_orig(C_Now + ZBDuration(std::int64_t(n * 13 % 360) - 2, 9 * 3600, 0));
        if (n % 5 == 0 && previous >= 0)
            entry->edit_depend().add_depend(previous);
        if (n % 11 == 0)
            entry->edit_priority().set_orig(double(n % 40));
        previous = entry->get_id();
    }
    diary->full_recalculate();
    return diary;
}

Diary& shared_diary()
{
    static std::unique_ptr<Diary> diary = make_diary(10000);
    return *diary;
}

void BM_DaySummary(benchmark::State& state)
{
    Diary& diary = shared_diary();
    DiaryDisplay display(diary);
    for (auto _ : state) {
        ZBDSummaryPage summary;
        ZBMarkupPage page;
        benchmark::DoNotOptimize(summary.get_due_today(diary, display, -1, page));
    }
    state.counters["entries"] = diary.get_nobjects();
}
BENCHMARK(BM_DaySummary)->Unit(benchmark::kMillisecond);

// A task deep in a chain, with related tasks and dependencies to list.
void BM_DetailsPage(benchmark::State& state)
{
    Diary& diary = shared_diary();
    DiaryDisplay display(diary);
    const DiaryEntry* project = diary.get_entry_index(diary.get_nentries() / 2);
    const DiaryEntry* task = project->get_child_no(project->get_nchildren() - 1);
    for (auto _ : state) {
        ZBMarkupPage page;
        benchmark::DoNotOptimize(display.dump_markup(*task, page, DiaryDisplay::C_DumpAll));
    }
}
BENCHMARK(BM_DetailsPage)->Unit(benchmark::kMillisecond);

// A project's page, with the time breakdown of its 50 tasks.
void BM_DetailsProject(benchmark::State& state)
{
    Diary& diary = shared_diary();
    DiaryDisplay display(diary);
    const DiaryEntry* project = diary.get_entry_index(diary.get_nentries() / 2);
    for (auto _ : state) {
        ZBMarkupPage page;
        benchmark::DoNotOptimize(display.dump_markup(*project, page, DiaryDisplay::C_DumpAll));
    }
}
BENCHMARK(BM_DetailsProject)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return Tervalon::bench_main(argc, argv, &C_Now);
}
