#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdaterepeat.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/dateset/zbdateset.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <ctime>

using namespace Tervalon;

namespace {

const ZBDate C_Start(2026, 2, 9, 8, 30, 0, 0, ZBDate::C_GMT);

// Break a date down, step a day, build it again: the allocator's inner step.
void BM_DetailsRoundTrip(benchmark::State& state)
{
    ZBDate date = C_Start;
    for (auto _ : state) {
        ZBDateDetails d(date, ZBDate::C_OriginalTime);
        d.m_dayMonth += 1;
        date = d.get_date(ZBDate::C_OriginalTime);
        // Stay within the few years a plan covers.
        if (date.get_year() > 2030)
            date = C_Start;
        benchmark::DoNotOptimize(date);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DetailsRoundTrip);

// The same in a zone with summer time, where each step asks about DST.
void BM_DetailsRoundTripLondon(benchmark::State& state)
{
    ZBDateUtils::set_machine_zone("Europe/London");
    ZBDate date(2026, 2, 9, 8, 30, 0, 0, ZBDate::C_LocalTime);
    for (auto _ : state) {
        ZBDateDetails d(date, ZBDate::C_LocalTime);
        d.m_dayMonth += 1;
        date = d.get_date(ZBDate::C_OriginalTime);
        if (date.get_year() > 2030)
            date = ZBDate(2026, 2, 9, 8, 30, 0, 0, ZBDate::C_LocalTime);
        benchmark::DoNotOptimize(date);
    }
    ZBDateUtils::set_machine_zone("UTC");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DetailsRoundTripLondon);

void BM_DateAddDuration(benchmark::State& state)
{
    ZBDate date = C_Start;
    const ZBDuration step(0, 3600, 0);
    for (auto _ : state) {
        date += step;
        benchmark::DoNotOptimize(date);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DateAddDuration);

void BM_SlotSubtract(benchmark::State& state)
{
    const ZBDateSlot free(C_Start, C_Start + ZBDuration(0, 8 * 3600, 0));
    const ZBDateSlot busy(C_Start + ZBDuration(3600), C_Start + ZBDuration(2 * 3600));
    for (auto _ : state) {
        ZBDateSlot a = free;
        ZBDateSlot overlap;
        ZBDateSlot rest;
        benchmark::DoNotOptimize(ZBDateSlot::subtract(a, busy, overlap, rest));
        benchmark::DoNotOptimize(rest);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SlotSubtract);

void BM_SlotMerge(benchmark::State& state)
{
    const ZBDateSlot first(C_Start, C_Start + ZBDuration(0, 2 * 3600, 0));
    const ZBDateSlot second(C_Start + ZBDuration(3600), C_Start + ZBDuration(3 * 3600));
    for (auto _ : state) {
        ZBDateSlot a = first;
        ZBDateSlot b = second;
        benchmark::DoNotOptimize(ZBDateSlot::merge(a, b, false));
        benchmark::DoNotOptimize(a);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SlotMerge);

void BM_SlotIntersects(benchmark::State& state)
{
    const ZBDateSlot a(C_Start, C_Start + ZBDuration(0, 2 * 3600, 0));
    const ZBDateSlot b(C_Start + ZBDuration(3600), C_Start + ZBDuration(3 * 3600));
    for (auto _ : state)
        benchmark::DoNotOptimize(ZBDateSlot::intersects(a, b));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SlotIntersects);

void BM_StartWeek(benchmark::State& state)
{
    ZBDate date = C_Start;
    for (auto _ : state)
        benchmark::DoNotOptimize(ZBDateUtils::start_week(date));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StartWeek);

// The planner makes a set of free time and a repeat rule for each request and
// instance: construction alone, which registers the class each time.
void BM_MakeDateSet(benchmark::State& state)
{
    for (auto _ : state) {
        ZBDateSet set;
        benchmark::DoNotOptimize(set);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_MakeDateSet);

void BM_MakeDateRepeat(benchmark::State& state)
{
    for (auto _ : state) {
        ZBDateRepeat repeat;
        benchmark::DoNotOptimize(repeat);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_MakeDateRepeat);

// The machine's zone, asked at every breakdown of a date.
void BM_LocalZone(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(ZBDateUtils::local_standard_zone());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_LocalZone);

} // namespace

BENCHMARK_MAIN();
