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
    ZBDateSet fresh;
    for (const ZBDateSlot& slot : in)
        fresh.bulk_add(slot, 0);
    fresh.finish_bulk_add();
    ZBDateSet free;
    ZBDateSet booked;
    for (auto _ : state) {
        state.PauseTiming();
        free = fresh;
        booked.clear();
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

// Working days as a calendar with two time types gives them: a long span of
// type 1 from 8:15 to 18:00 under four short spans of type 0, so that ends do
// not ascend. n is the number of entries.
ZBDateSet overlapping_days(int n)
{
    ZBDateSet set;
    const int C_Short[4][2] = {{480, 510}, {540, 570}, {600, 660}, {720, 780}};
    for (int day = 0; day * 5 < n; ++day) {
        ZBDate midnight = C_Start + ZBDuration(std::int64_t(day) * 86400);
        set.bulk_add(ZBDateSlot(midnight + ZBDuration(495 * 60), midnight + ZBDuration(1080 * 60)), 1);
        for (const auto& span : C_Short)
            set.bulk_add(ZBDateSlot(midnight + ZBDuration(std::int64_t(span[0]) * 60),
                                    midnight + ZBDuration(std::int64_t(span[1]) * 60)),
                         0);
    }
    set.finish_bulk_add();
    return set;
}

// Every search of the set at random moments of a set with overlapping types.
void BM_OverlapSearches(benchmark::State& state)
{
    const int n = int(state.range(0));
    ZBDateSet set = overlapping_days(n);
    std::mt19937 random(1);
    std::uniform_int_distribution<std::int64_t> second(0, std::int64_t(n / 5) * 86400);
    std::vector<ZBDate> probes;
    for (int i = 0; i < 1000; ++i)
        probes.push_back(C_Start + ZBDuration(second(random)));
    for (auto _ : state) {
        int hits = 0;
        for (const ZBDate& probe : probes) {
            ZBDateSlot hour(probe, probe + ZBDuration(3600));
            hits += set.match(probe) ? 1 : 0;
            hits += set.has_range(hour, 0) ? 1 : 0;
            hits += int(set.query_range(hour, 1).get_as_seconds());
            hits += set.safe_find(probe, 0, true);
            benchmark::DoNotOptimize(set.time_after(probe, ZBDuration(7200)));
            benchmark::DoNotOptimize(set.time_before(probe, ZBDuration(7200)));
        }
        benchmark::DoNotOptimize(hits);
    }
    state.SetComplexityN(n);
    state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(BM_OverlapSearches)->Arg(1000)->Arg(10000)->Arg(100000)->Complexity()->Unit(benchmark::kMicrosecond);

// The time allocator's round on a set with overlapping types: for each of
// 1000 requests, take 2 hours forwards from its start after a short look at
// the latest finish, give half back, take a 90-minute appointment out, and
// place a deadline task backwards from its due date.
void BM_AllocatorRound(benchmark::State& state)
{
    const int n = int(state.range(0));
    const int days = n / 5;
    const ZBDateSet fresh = overlapping_days(n);
    ZBDateSet free;
    for (auto _ : state) {
        // Setting up and tearing down the large set is not the allocator's work.
        state.PauseTiming();
        free = fresh;
        state.ResumeTiming();
        for (int i = 0; i < 1000; ++i) {
            ZBDate midnight = C_Start + ZBDuration(std::int64_t(i % days) * 86400);
            ZBDate from = midnight + ZBDuration(9 * 3600 + (i % 7) * 600);
            benchmark::DoNotOptimize(free.time_after(from, ZBDuration(7200)));
            ZBDateSet booked;
            free.allocate(booked, ZBDuration(7200), from, ZBDate(), false);
            ZBDateSet back;
            booked.allocate(back, ZBDuration(3600), ZBDate(), ZBDate(), true);
            free.add_return(back);
            free.subtract(ZBDateSlot(midnight + ZBDuration(14 * 3600), midnight + ZBDuration(15 * 3600 + 1800)), -1);
            ZBDateSet deadline;
            free.allocate(deadline, ZBDuration(3600), ZBDate(), midnight + ZBDuration(17 * 3600), true);
            free.add_return(deadline);
        }
        benchmark::DoNotOptimize(free.size());
    }
    state.SetComplexityN(n);
    state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(BM_AllocatorRound)->Arg(1000)->Arg(10000)->Arg(100000)->Complexity()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
