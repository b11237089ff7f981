// What a diary costs in memory, and what deleting a large subtree costs in time.
//
// BM_ObjectSizes reports the size of a stream object, a database object, a
// record and an entry with its facets, before any heap use. BM_TreeResident
// runs the real `tervalon tree` on diaries of 10,000 and 100,000 tasks (and on
// an empty one, the program's own floor) and reports the peak resident memory
// of that process and its processor time (its wall time beside it). The files
// are made by a child run of this program, so that this process stays small: a
// child's peak counts the memory it had before it started the command.
// BM_DeleteSubtree deletes a project of 1k, 8k and 32k entries from a diary
// that holds another project beside it.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTemporaryDir>

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

using namespace Tervalon;

namespace {

const char* const C_MakeOption = "--make-diary";
const int C_Folders = 5;
const int C_TasksPerFolder = 10;

// Projects of 5 folders of 10 tasks, a share of them with due dates,
// priorities, durations and notes, as a user's diary has.
void fill_projects(Diary& diary, DiaryEntry* parent, int tasks, const std::string& name)
{
    const ZBDate base(2026, 2, 1, 9, 0, 0, 0, ZBDate::C_GMT);
    const int projects = std::max(1, tasks / (C_Folders * C_TasksPerFolder));
    int n = 0;
    for (int p = 0; p < projects; ++p) {
        DiaryEntry* project = nullptr;
        diary.create_entry(parent, 'O', name + " " + std::to_string(p), &project);
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
}

int make_diary(const std::string& file, int tasks)
{
    Diary diary;
    if (iszbwarn(diary.create(file, false)))
        return 1;
    fill_projects(diary, nullptr, tasks, "Project");
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    diary.complete_operation("Bench");
    return iszbwarn(diary.save(true, true, false)) ? 1 : 0;
}

struct ChildRun {
    bool ok = false;
    double seconds = 0.0;
    double cpuSeconds = 0.0;
    long peakKb = 0;
};

// Runs a program with its output thrown away; its wall and processor time and
// its peak resident memory.
ChildRun run_child(const std::vector<std::string>& args)
{
    std::vector<char*> argv;
    for (const std::string& arg : args)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    ChildRun run;
    const auto start = std::chrono::steady_clock::now();
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) == 0) {
        int status = 0;
        rusage usage {};
        if (wait4(pid, &status, 0, &usage) == pid) {
            run.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
            run.peakKb = usage.ru_maxrss;
            run.cpuSeconds = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
                + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
        }
    }
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    posix_spawn_file_actions_destroy(&actions);
    return run;
}

std::string self_path()
{
    return QCoreApplication::applicationFilePath().toStdString();
}

// The diary of that many tasks, made once by a child run of this program.
std::string diary_file(int tasks)
{
    const std::string file = bench_scratch().path().toStdString() + "/tasks" + std::to_string(tasks) + ".zbd";
    if (!QFileInfo::exists(QString::fromStdString(file)))
        run_child({self_path(), C_MakeOption, file, std::to_string(tasks)});
    return file;
}

void BM_ObjectSizes(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(sizeof(DiaryEntry));
    state.counters["ZBObject_B"] = double(sizeof(ZBObject));
    state.counters["ZBDBObject_B"] = double(sizeof(ZBDBObject));
    state.counters["ZBDEntry_B"] = double(sizeof(ZBDEntry));
    state.counters["EntryProperties_B"] = double(sizeof(EntryProperties));
    state.counters["EntryPlan_B"] = double(sizeof(EntryPlan));
    state.counters["DiaryEntry_B"] = double(sizeof(DiaryEntry));
}
BENCHMARK(BM_ObjectSizes)->Iterations(1);

// Argument: tasks in the diary (0: an empty diary).
void BM_TreeResident(benchmark::State& state)
{
    const std::string file = diary_file(int(state.range(0)));
    const std::string cli = TERVALON_CLI;
    ChildRun run;
    for (auto _ : state) {
        run = run_child({cli, "tree", file});
        if (!run.ok)
            state.SkipWithError("tervalon tree failed");
        // Processor time, user and system: on a shared machine the wall time
        // says more about the neighbours than about the program.
        state.SetIterationTime(run.cpuSeconds);
    }
    state.counters["resident_MB"] = double(run.peakKb) / 1024.0;
    state.counters["wall_s"] = run.seconds;
    state.counters["file_MB"] = double(QFileInfo(QString::fromStdString(file)).size()) / (1024.0 * 1024.0);
}
BENCHMARK(BM_TreeResident)->Arg(0)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

// Argument: entries in the project that is deleted.
void BM_DeleteSubtree(benchmark::State& state)
{
    const int entries = int(state.range(0));
    const int perProject = 1 + C_Folders + C_Folders * C_TasksPerFolder;
    const int tasks = std::max(1, entries / perProject) * C_Folders * C_TasksPerFolder;
    int deleted = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::unique_ptr<Diary> diary(new Diary());
        diary->load("", false);
        fill_projects(*diary, nullptr, 2000, "Kept");
        DiaryEntry* gone = nullptr;
        diary->create_entry(nullptr, 'O', "Gone", &gone);
        fill_projects(*diary, gone, tasks, "Part");
        const int before = diary->get_nobjects();
        state.ResumeTiming();
        if (iszbwarn(diary->delete_object(gone->get_id(), "Delete Entry")))
            state.SkipWithError("delete failed");
        state.PauseTiming();
        deleted = 0;
        for (int i = 0; i < before; ++i)
            deleted += diary->get_object_by_index(i)->is_deleted();
        diary.reset();
        state.ResumeTiming();
    }
    state.counters["deleted"] = double(deleted);
    state.counters["us_per_entry"] = benchmark::Counter(double(deleted), benchmark::Counter::kIsIterationInvariantRate
                                                                             | benchmark::Counter::kInvert);
}
BENCHMARK(BM_DeleteSubtree)->Arg(1000)->Arg(8000)->Arg(32000)->Unit(benchmark::kMillisecond)->Iterations(2);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName("Tervalon");
    QCoreApplication::setApplicationName("TervalonBench");
    ZBDateUtils::set_fixed_now(ZBDate(2026, 1, 1, 8, 0, 0, 0, ZBDate::C_GMT));
    if (argc == 4 && std::strcmp(argv[1], C_MakeOption) == 0)
        return make_diary(argv[2], std::atoi(argv[3]));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
