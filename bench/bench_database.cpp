// Loading and fully writing a database of 100,000 objects, each with a handful
// of fields and a text that needs escaping. Peak memory is reported against the
// file's size as a counter.
#include "LibDatabase/db/zbdatabase.h"
#include "LibDate/date/zbdateutils.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <malloc.h>

using namespace Tervalon;

namespace {

class BenchRecord : public ZBDBObject {
public:
    BenchRecord() { BenchRecord::register_zbobject(); }
    BenchRecord(const BenchRecord& other) = default;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override
    {
        serialise_string(in, out, prefix, "T", m_title, true);
        serialise_field<int>(in, out, prefix, "Pr", m_priority, 0);
        serialise_field<double>(in, out, prefix, "Cm", m_completion, 0.0);
        serialise_field<ZBDate>(in, out, prefix, "Du", m_due, ZBDate(ZBDate::E_Blank));
        serialise_field<std::string>(in, out, prefix, "N", m_note, std::string());
        return ZBDBObject::serialise(in, out, prefix, version);
    }
    void register_zbobject() override { register_objectname("BenchRecord", &BenchRecord::create_zbobject); }
    static int create_zbobject(ZBObject*& out, const ZBObject* from) { return create_as<BenchRecord>(out, from, "BenchRecord"); }

    std::string m_title;
    int m_priority = 0;
    double m_completion = 0.0;
    ZBDate m_due = ZBDate(ZBDate::E_Blank);
    std::string m_note;
};

ZBObjectPreReg g_register("BenchRecord", &BenchRecord::create_zbobject);

const int C_Objects = 100000;

std::string make_file(const QTemporaryDir& dir)
{
    const std::string file = dir.path().toStdString() + "/bench.zbd";
    ZBDatabase db;
    db.create(file, false);
    ZBDBObject* parent = &db;
    for (int i = 0; i < C_Objects; ++i) {
        BenchRecord* record = new BenchRecord();
        record->m_title = "Task number " + std::to_string(i) + " with a \\ backslash";
        record->m_priority = i % 1000;
        record->m_completion = (i % 100) / 3.0;
        record->m_due = ZBDate(2026, i % 12, i % 28, 9, 0, 0, 0, ZBDate::C_GMT);
        record->m_note = "first line\nsecond line";
        db.add_object(record, i % 50 == 0 ? static_cast<ZBDBObject*>(&db) : parent, "OB", "", -1, "");
        if (i % 50 == 0)
            parent = record;
    }
    db.save(true, true, false);
    return file;
}

// Heap memory in use now, in kilobytes.
long rss_kb()
{
    return long(mallinfo2().uordblks / 1024);
}

void BM_Load100k(benchmark::State& state)
{
    const std::string& file = bench_file<make_file>();
    const double fileKb = double(QFileInfo(QString::fromStdString(file)).size()) / 1024.0;
    double held = 0.0;
    for (auto _ : state) {
        long before = rss_kb();
        std::unique_ptr<ZBDatabase> db(new ZBDatabase());
        if (iszbwarn(db->read(file)))
            state.SkipWithError("load failed");
        benchmark::DoNotOptimize(db->get_nobjects());
        state.PauseTiming();
        held = double(rss_kb() - before);
        db.reset();
        state.ResumeTiming();
    }
    state.counters["file_MB"] = fileKb / 1024.0;
    state.counters["memory_x_file"] = held / fileKb;
}
BENCHMARK(BM_Load100k)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_FullWrite100k(benchmark::State& state)
{
    const std::string& file = bench_file<make_file>();
    ZBDatabase db;
    db.load(file, false);
    for (auto _ : state) {
        if (iszbwarn(db.save(true, true, false)))
            state.SkipWithError("save failed");
    }
}
BENCHMARK(BM_FullWrite100k)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    const ZBDate now(2026, 1, 1, 8, 0, 0, 0, ZBDate::C_GMT);
    return Tervalon::bench_main(argc, argv, &now);
}
