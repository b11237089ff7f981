#include "LibDate/dateset/zbdateset.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

using namespace Tervalon;

namespace {

const ZBDate C_Start(2026, 0, 0, 0, 0, 0, 0, ZBDate::C_GMT);

// One-hour slots two hours apart, so that none merge.
std::vector<ZBDateSlot> slots(int n, bool shuffled)
{
    std::vector<ZBDateSlot> out;
    out.reserve(size_t(n));
    for (int i = 0; i < n; ++i) {
        ZBDate start = C_Start + ZBDuration(std::int64_t(i) * 7200);
        out.emplace_back(start, start + ZBDuration(3600));
    }
    if (shuffled)
        std::shuffle(out.begin(), out.end(), std::mt19937(42));
    return out;
}

// As a calendar fills a set: slots in date order, one by one.
void BM_AddOneByOne(benchmark::State& state)
{
    std::vector<ZBDateSlot> in = slots(int(state.range(0)), false);
    for (auto _ : state) {
        ZBDateSet set;
        for (const ZBDateSlot& slot : in)
            set.add(slot, 0);
        benchmark::DoNotOptimize(set.size());
    }
    state.SetComplexityN(state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_AddOneByOne)->Arg(1000)->Arg(10000)->Arg(100000)->Complexity()->Unit(benchmark::kMillisecond);

// The allocator's path: safe_add with the last index as the hint.
void BM_SafeAddWithHint(benchmark::State& state)
{
    std::vector<ZBDateSlot> in = slots(int(state.range(0)), false);
    for (auto _ : state) {
        ZBDateSet set;
        int hint = 0;
        for (const ZBDateSlot& slot : in)
            hint = set.safe_add(slot, 0, hint, true);
        benchmark::DoNotOptimize(set.size());
    }
    state.SetComplexityN(state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SafeAddWithHint)->Arg(1000)->Arg(10000)->Arg(100000)->Complexity()->Unit(benchmark::kMillisecond);

// Bulk adding in random order with the one final sort.
void BM_BulkAddShuffled(benchmark::State& state)
{
    std::vector<ZBDateSlot> in = slots(int(state.range(0)), true);
    for (auto _ : state) {
        ZBDateSet set;
        for (const ZBDateSlot& slot : in)
            set.bulk_add(slot, 0);
        set.finish_bulk_add();
        benchmark::DoNotOptimize(set.size());
    }
    state.SetComplexityN(state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_BulkAddShuffled)->Arg(1000)->Arg(10000)->Arg(100000)->Complexity()->Unit(benchmark::kMillisecond);

// Finding every slot's start in turn, each search from the last answer.
void BM_FindWithHint(benchmark::State& state)
{
    std::vector<ZBDateSlot> in = slots(int(state.range(0)), false);
    ZBDateSet set;
    for (const ZBDateSlot& slot : in)
        set.bulk_add(slot, 0);
    set.finish_bulk_add();
    for (auto _ : state) {
        int hint = 0;
        for (const ZBDateSlot& slot : in)
            hint = set.safe_find(slot.m_start + ZBDuration(1800), hint, true);
        benchmark::DoNotOptimize(hint);
    }
    state.SetComplexityN(state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_FindWithHint)->Arg(1000)->Arg(10000)->Arg(100000)->Complexity()->Unit(benchmark::kMillisecond);

// Drawing hour after hour out of a large free-time set.
void BM_AllocateHours(benchmark::State& state)
{
    std::vector<ZBDateSlot> in = slots(int(state.range(0)), false);
    for (auto _ : state) {
        state.PauseTiming();
        ZBDateSet free;
        for (const ZBDateSlot& slot : in)
            free.bulk_add(slot, 0);
        free.finish_bulk_add();
        ZBDateSet booked;
        state.ResumeTiming();
        ZBDate earliest = C_Start;
        for (int i = 0; i < 1000; ++i) {
            free.allocate(booked, ZBDuration(1800), earliest, ZBDate(), false);
            earliest += ZBDuration(std::int64_t(state.range(0) / 1000) * 7200);
        }
        benchmark::DoNotOptimize(booked.size());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_AllocateHours)->Arg(1000)->Arg(10000)->Arg(100000)->Complexity()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
