// The cost of the undo log. Writing one change to the partial file must not
// grow with the file: measured on databases of 10 and 100,000 objects. And
// undo of the last of 1,000 operations on a diary of 10,000 entries, which
// replays the whole log on the base file.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDatabase/db/zbdatabase.h"

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <QFile>

#include <memory>
#include <string>

using namespace Tervalon;

namespace {

// A database of count plain objects, saved, and loaded again for the run.
std::unique_ptr<ZBDatabase> open_database(int count)
{
    const std::string file =
        bench_scratch().path().toStdString() + "/objects" + std::to_string(count) + ".zbd";
    QFile::remove(QString::fromStdString(file));
    {
        ZBDatabase db;
        db.create(file, false);
        for (int i = 0; i < count; ++i) {
            ZBDBObject* object = new ZBDBObject();
            db.add_object(object, &db, "OB", "item", -1, "");
            object->set_var_value("X", "0");
        }
        db.save(true, true, false);
        db.unload();
    }
    std::unique_ptr<ZBDatabase> db(new ZBDatabase());
    db->load(file, false);
    return db;
}

// One object changed and its operation closed: the partial file gets one block.
void BM_PartialWriteOfOneChange(benchmark::State& state)
{
    std::unique_ptr<ZBDatabase> db = open_database(int(state.range(0)));
    const int id = db->get_object_by_index(db->get_nobjects() / 2)->get_id();
    int value = 0;
    for (auto _ : state) {
        db->edit_object(id, false);
        db->get_object_by_id(id)->set_var_value("X", std::to_string(++value));
        db->commit_object(id, "Edit");
    }
    state.counters["objects"] = double(db->get_nobjects());
    db->unload();
}
BENCHMARK(BM_PartialWriteOfOneChange)->Arg(10)->Arg(100000)->Unit(benchmark::kMicrosecond);

// A diary of 10,000 tasks in 100 folders, saved; then 1,000 operations each
// renaming one task; undo of the last one is timed (and redone after).
void BM_UndoLastOfThousandOperations(benchmark::State& state)
{
    const std::string file = bench_scratch().path().toStdString() + "/undo.zbd";
    QFile::remove(QString::fromStdString(file));
    std::unique_ptr<Diary> diary(new Diary());
    diary->create(file, false);
    std::vector<DiaryEntry*> tasks;
    for (int f = 0; f < 100; ++f) {
        DiaryEntry* folder = nullptr;
        diary->create_entry(nullptr, 'O', "Folder " + std::to_string(f), &folder);
        for (int t = 0; t < 99; ++t) {
            DiaryEntry* task = nullptr;
            diary->create_entry(folder, 'T', "Task " + std::to_string(t) + " of folder " + std::to_string(f), &task);
            tasks.push_back(task);
        }
    }
    diary->complete_operation("Build");
    diary->save(true, true, false);
    for (int i = 0; i < 1000; ++i) {
        DiaryEntry* task = diary->get_entry_id(tasks[size_t(i * 7 % int(tasks.size()))]->get_id());
        task->set_summary("Renamed " + std::to_string(i));
        task->mark_changed("", true);
        diary->complete_operation("Rename");
    }
    for (auto _ : state) {
        diary->undo();
        state.PauseTiming();
        diary->redo();
        state.ResumeTiming();
    }
    state.counters["entries"] = double(diary->get_nobjects());
    diary->unload();
}
BENCHMARK(BM_UndoLastOfThousandOperations)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char** argv)
{
    const ZBDate now(2026, 2, 2, 8, 0, 0, 0, ZBDate::C_GMT);
    return bench_main(argc, argv, &now);
}
