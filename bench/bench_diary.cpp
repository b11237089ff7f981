// Loading, printing the tree of, and saving a diary of 10,000 tasks: 200
// projects, each a folder of 5 sub-folders of 10 tasks, a share of them with
// due dates, priorities and durations. The tree is printed by the tree command
// itself, so the figure is what a user waits for (load included).
#include "AppTervalonDiary/cli/tervaloncli.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <sstream>

using namespace Tervalon;

namespace {

const int C_Projects = 200;
const int C_Folders = 5;
const int C_TasksPerFolder = 10;

std::string make_file(const QTemporaryDir& dir)
{
    const std::string file = dir.path().toStdString() + "/bench.zbd";
    Diary diary;
    diary.create(file, false);
    const ZBDate base(2026, 2, 1, 9, 0, 0, 0, ZBDate::C_GMT);
    int n = 0;
    for (int p = 0; p < C_Projects; ++p) {
        DiaryEntry* project = nullptr;
        diary.create_entry(nullptr, 'O', "Project " + std::to_string(p), &project);
        for (int f = 0; f < C_Folders; ++f) {
            DiaryEntry* folder = nullptr;
            diary.create_entry(project, 'O', "Stage " + std::to_string(f) + " of project " + std::to_string(p),
                               &folder);
            for (int t = 0; t < C_TasksPerFolder; ++t, ++n) {
                DiaryEntry* task = nullptr;
                diary.create_entry(folder, 'T', "Task " + std::to_string(n) + " needs doing", &task);
                if (n % 3 == 0)
                    task->edit_due().set_orig(base + ZBDuration(std::int64_t(n % 90) * 24 * 3600));
                if (n % 4 == 0)
                    task->edit_priority().set_orig(double(n % 100));
                if (n % 2 == 0) {
                    ZBProgress progress = task->get_duration().orig;
                    progress.set_duration(ZBDuration(std::int64_t(1 + n % 8) * 3600));
                    task->edit_duration().set_orig(progress);
                }
                if (n % 10 == 0)
                    task->set_text("Notes for task " + std::to_string(n) + "\nsecond line");
            }
        }
    }
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    diary.complete_operation("Bench");
    diary.save(true, true, false);
    diary.unload();
    return file;
}

void BM_DiaryLoad10k(benchmark::State& state)
{
    const std::string& file = bench_file<make_file>();
    for (auto _ : state) {
        std::unique_ptr<Diary> diary(new Diary());
        if (iszbwarn(diary->read(file)))
            state.SkipWithError("load failed");
        benchmark::DoNotOptimize(diary->get_nentries());
        state.PauseTiming();
        diary.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_DiaryLoad10k)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_DiaryTreeCommand10k(benchmark::State& state)
{
    const std::string& file = bench_file<make_file>();
    size_t length = 0;
    for (auto _ : state) {
        std::ostringstream out;
        std::ostringstream err;
        TervalonCli cli;
        if (cli.run({"tervalon", "tree", file}, out, err) != 0)
            state.SkipWithError("tree failed");
        length = out.str().size();
    }
    state.counters["output_kB"] = double(length) / 1024.0;
}
BENCHMARK(BM_DiaryTreeCommand10k)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_DiarySave10k(benchmark::State& state)
{
    const std::string& file = bench_file<make_file>();
    Diary diary;
    if (iszbwarn(diary.load(file, false)))
        state.SkipWithError("load failed");
    for (auto _ : state) {
        if (iszbwarn(diary.save(true, true, false)))
            state.SkipWithError("save failed");
    }
    diary.unload();
}
BENCHMARK(BM_DiarySave10k)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    const ZBDate now(2026, 1, 1, 8, 0, 0, 0, ZBDate::C_GMT);
    return Tervalon::bench_main(argc, argv, &now);
}
