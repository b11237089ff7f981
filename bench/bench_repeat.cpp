#include "LibDate/date/zbdaterepeat.h"

#include <benchmark/benchmark.h>

#include <vector>

using namespace Tervalon;

namespace {

const ZBDate C_Start(2026, 2, 1, 8, 0, 0, 0, ZBDate::C_GMT);

// 10,000 instances of one rule, from a fixed moment and with no end.
void generate(benchmark::State& state, const char* rule)
{
    ZBDateRepeat repeat;
    repeat.from_string(rule);
    std::vector<ZBDateSlot> slots;
    for (auto _ : state) {
        repeat.generate_slots(ZBDateSlot(), ZBDateSlot(C_Start, ZBDate(ZBDate::E_Blank)), 10000, nullptr, slots);
        benchmark::DoNotOptimize(slots.data());
    }
    state.SetItemsProcessed(state.iterations() * int64_t(slots.size()));
}

void BM_RepeatDaily(benchmark::State& state) { generate(state, "T=2@N=1@A=32400@O=3610"); }
void BM_RepeatWeekly(benchmark::State& state) { generate(state, "T=3@N=1@D=1,3,5@A=32400"); }
void BM_RepeatMonthly(benchmark::State& state) { generate(state, "T=4@N=1@D=0,14,-1"); }
void BM_RepeatYearly(benchmark::State& state) { generate(state, "T=5@N=1@D=1102,2311"); }
void BM_RepeatExpression(benchmark::State& state)
{
    generate(state, "T=6@Y=\"+1 Month 1st 17:00\"@Z=\"@TIME +2 Hour\"");
}

// The same expression rule stepped the way it was before rules were compiled:
// both texts read again at every instance.
void BM_RepeatExpressionReadEachStep(benchmark::State& state)
{
    const std::string step = "+1 Month 1st 17:00";
    const std::string end = "@TIME +2 Hour";
    std::vector<ZBDateSlot> slots;
    for (auto _ : state) {
        slots.clear();
        ZBDate date = C_Start;
        while (slots.size() < 10000) {
            ZBDate next;
            if (!next.from_string(step, &date, nullptr) || !(date < next))
                break;
            ZBDate finish;
            finish.from_string(end, &next, nullptr);
            slots.emplace_back(next, finish);
            date = next;
        }
        benchmark::DoNotOptimize(slots.data());
    }
    state.SetItemsProcessed(state.iterations() * int64_t(slots.size()));
}

BENCHMARK(BM_RepeatDaily)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RepeatWeekly)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RepeatMonthly)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RepeatYearly)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RepeatExpression)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RepeatExpressionReadEachStep)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
