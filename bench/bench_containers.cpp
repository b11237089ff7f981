#include "LibDatabase/db/zbdatabase.h"
#include "LibCore/ptrarray/zbptrarray.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>

using namespace Tervalon;

namespace {

struct Entry {
    int key;
    int serial;
};

int by_key(const Entry& a, const Entry& b)
{
    return a.key > b.key;
}

std::vector<Entry> make_entries(int n)
{
    std::vector<Entry> entries;
    std::uint32_t state = 2024;
    for (int i = 0; i < n; ++i) {
        state = state * 1103515245u + 12345u;
        entries.push_back({int((state >> 8) % 1000u), i});
    }
    return entries;
}

void BM_OneSort(benchmark::State& state)
{
    const std::vector<Entry> entries = make_entries(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        ZBPtrArray<Entry> array(false);
        std::vector<Entry> copy = entries;
        for (Entry& entry : copy)
            array.push_back(&entry);
        state.ResumeTiming();
        array.sort(by_key);
        benchmark::DoNotOptimize(array.first());
    }
}
BENCHMARK(BM_OneSort)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_StdStableSort(benchmark::State& state)
{
    const std::vector<Entry> entries = make_entries(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<Entry> copy = entries;
        std::vector<Entry*> pointers;
        for (Entry& entry : copy)
            pointers.push_back(&entry);
        state.ResumeTiming();
        std::stable_sort(pointers.begin(), pointers.end(), [](const Entry* a, const Entry* b) { return a->key < b->key; });
        benchmark::DoNotOptimize(pointers.front());
    }
}
BENCHMARK(BM_StdStableSort)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

// A tree of 100 folders of about 1000 objects each under the database.
void BM_ResolveContainers(benchmark::State& state)
{
    ZBDatabase db;
    db.load("", false);
    const int n = int(state.range(0));
    std::vector<ZBDBObject*> folders;
    for (int i = 0; i < 100; ++i) {
        ZBDBObject* folder = nullptr;
        db.create_object(nullptr, "Object", -1, &folder);
        folders.push_back(folder);
    }
    for (int i = 100; i < n; ++i) {
        ZBDBObject* object = new ZBDBObject();
        db.add_object(object, folders[size_t(i % 100)], "Object", i % 3 ? "task" : "note", -1, std::string());
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(db.resolve_containers());
    state.counters["objects"] = db.get_nobjects();
}
BENCHMARK(BM_ResolveContainers)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
