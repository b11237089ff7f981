// The full pass on the background thread, on 10,000 tasks: the main thread
// writes the diary to text and wakes the thread, the thread reads a copy and
// plans it, and the main thread loads the results back. The main thread's
// share (writing the copy and loading the results) is what the user feels;
// the goal is under 100 ms. The whole pass is shown beside it.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <QThread>

#include <ctime>
#include <memory>

using namespace Tervalon;

namespace {

const ZBDate C_Start(2026, 0, 1, 0, 0, 0, 0, ZBDate::C_GMT);

std::string scratch_file()
{
    static int count = 0;
    return bench_scratch().path().toStdString() + "/recalcbg" + std::to_string(++count) + ".zbd";
}

// Projects of 10 folders of 8 tasks; every task but the first of a folder
// waits for the one before it, every fifth has a due date and a length.
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
                diary->create_entry(folder, 'T', "Task " + std::to_string(n), &entry);
                if (n % 5 == 0) {
                    entry->edit_due().set_orig(C_Start + ZBDuration(std::int64_t(n % 200), 9 * 3600, 0));
                    ZBProgress progress;
                    progress.set_duration(ZBDuration(std::int64_t(n % 7 + 1) * 3600));
                    entry->edit_duration().set_orig(progress);
                }
                if (previous >= 0)
                    entry->edit_depend().add_depend(previous);
                previous = entry->get_id();
            }
        }
    }
    diary->recalculate(ZBDatabase::E_RecalcQuick);
    diary->start_recalc_thread();
    return diary;
}

// The main thread's own CPU time: on a shared machine its wall time is
// mostly other programs'.
double thread_seconds()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

void wait_finished(const RecalculateMgr& mgr)
{
    while (!mgr.has_finished())
        QThread::usleep(200);
}

// Only the main thread's time (its CPU time): the copy sent, and the results loaded.
void BM_MainThreadShare(benchmark::State& state)
{
    ZBDateUtils::set_fixed_now(C_Start + ZBDuration(30, 0, 0));
    std::unique_ptr<Diary> diary = make_diary(int(state.range(0)));
    RecalculateMgr& mgr = diary->edit_recalc_mgr();
    double copy = 0, load = 0;
    for (auto _ : state) {
        diary->force_recalculate(false, true, false, true);
        double start = thread_seconds();
        mgr.schedule_recalculate(*diary);
        const double sent = thread_seconds() - start;
        wait_finished(mgr);
        start = thread_seconds();
        mgr.load_background(*diary);
        const double loaded = thread_seconds() - start;
        copy += sent;
        load += loaded;
        state.SetIterationTime(sent + loaded);
    }
    state.counters["copy_ms"] = benchmark::Counter(copy * 1000, benchmark::Counter::kAvgIterations);
    state.counters["load_ms"] = benchmark::Counter(load * 1000, benchmark::Counter::kAvgIterations);
    state.counters["entries"] = diary->get_nobjects();
    diary->stop_recalc_thread();
    ZBDateUtils::clear_fixed_now();
}

// The whole pass as the user waits for it: copy, read, full pass, load.
void BM_WholeBackgroundPass(benchmark::State& state)
{
    ZBDateUtils::set_fixed_now(C_Start + ZBDuration(30, 0, 0));
    std::unique_ptr<Diary> diary = make_diary(int(state.range(0)));
    RecalculateMgr& mgr = diary->edit_recalc_mgr();
    for (auto _ : state) {
        diary->force_recalculate(false, true, false, true);
        mgr.schedule_recalculate(*diary);
        wait_finished(mgr);
        mgr.load_background(*diary);
    }
    state.counters["entries"] = diary->get_nobjects();
    diary->stop_recalc_thread();
    ZBDateUtils::clear_fixed_now();
}

// 125 projects: 10,000 tasks, 1,250 folders and 125 projects.
BENCHMARK(BM_MainThreadShare)->Arg(125)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WholeBackgroundPass)->Arg(125)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return Tervalon::bench_main(argc, argv, nullptr);
}
