// The cheap pass: Diary::recalculate with all its entry phases (dates pushed
// through the tree and along dependencies, progress, priorities, alerts and
// display order) on 10,000 entries, without the planner. The window runs it
// at every edit, so the goal is under 50 ms.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include <QCoreApplication>

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <memory>

using namespace Tervalon;

namespace {

const ZBDate C_Start(2026, 0, 1, 0, 0, 0, 0, ZBDate::C_GMT);

std::string scratch_file()
{
    static int count = 0;
    return bench_scratch().path().toStdString() + "/recalc" + std::to_string(++count) + ".zbd";
}

// Projects of 10 folders of 8 entries; every task but the first of a
// folder waits for the one before it, every fifth task has a due date and a
// length, every seventh a user priority, and one in fifty is an appointment.
std::unique_ptr<Diary> make_diary(int projects)
{
    std::unique_ptr<Diary> diary(new Diary());
    diary->create(scratch_file(), true);
    int n = 0;
    for (int p = 0; p < projects; ++p) {
        DiaryEntry* project = nullptr;
        diary->create_entry(nullptr, 'O', "Project " + std::to_string(p), &project);
        for (int f = 0; f < 10; ++f) {
            DiaryEntry* folder = nullptr;
            diary->create_entry(project, 'O', "Folder " + std::to_string(f), &folder);
            int previous = -1;
            for (int t = 0; t < 8; ++t, ++n) {
                DiaryEntry* entry = nullptr;
                const char type = n % 50 == 0 ? 'A' : 'T';
                diary->create_entry(folder, type, "Task " + std::to_string(n), &entry);
                const ZBDate day = C_Start + ZBDuration(std::int64_t(n % 200), 9 * 3600, 0);
                if (type == 'A') {
                    entry->edit_time().set_orig(ZBDateSlot(day, day + ZBDuration(3600)));
                    continue;
                }
                if (n % 5 == 0) {
                    entry->edit_due().set_orig(day);
                    ZBProgress progress;
                    progress.set_duration(ZBDuration(std::int64_t(n % 7 + 1) * 3600));
                    entry->edit_duration().set_orig(progress);
                }
                if (n % 7 == 0)
                    entry->edit_priority().set_orig(double(n % 90));
                if (previous >= 0)
                    entry->edit_depend().add_depend(previous);
                previous = entry->get_id();
            }
        }
    }
    diary->calculate_dependencies();
    diary->recalculate(ZBDatabase::E_RecalcQuick);
    return diary;
}

void BM_CheapPass(benchmark::State& state)
{
    ZBDateUtils::set_fixed_now(C_Start + ZBDuration(30, 0, 0));
    std::unique_ptr<Diary> diary = make_diary(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(diary->recalculate(ZBDatabase::E_RecalcQuick));
    state.counters["entries"] = diary->get_nobjects();
    ZBDateUtils::clear_fixed_now();
}
// 111 projects: 8,880 tasks and appointments, 1,110 folders and 111 projects, 10,101 entries.
BENCHMARK(BM_CheapPass)->Arg(111)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CheapPass)->Arg(11)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return Tervalon::bench_main(argc, argv, nullptr);
}
