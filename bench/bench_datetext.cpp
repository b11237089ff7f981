// Date text: reading typical texts, and running a compiled expression as every
// recalculation does. Build in Release.
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateexp.h"
#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbdateutils.h"

#include <benchmark/benchmark.h>

using namespace Tervalon;

namespace {

const char* const C_Texts[] = {"9-Mar-2026 14:00", "tomorrow 9AM", "next Fri", "now +-1 Week", "+1 Month 1st +-1 Day",
                               "2026-03-09", "14:30", "+-3 Month (1-Apr|1-Jul|1-Oct|+1 Year 1-Jan)"};
const int C_NTexts = int(sizeof C_Texts / sizeof C_Texts[0]);

void BM_ParseDateText(benchmark::State& state)
{
    int i = 0;
    for (auto _ : state) {
        ZBDateExp exp = ZBDateParser::parse_date(C_Texts[i]);
        benchmark::DoNotOptimize(exp);
        i = (i + 1) % C_NTexts;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ParseDateText);

void BM_ReadDateText(benchmark::State& state)
{
    ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 3, 10, 30, 0, 0, ZBDate::C_GMT));
    int i = 0;
    for (auto _ : state) {
        ZBDate date = ZBDateUtils::read_date(C_Texts[i]);
        benchmark::DoNotOptimize(date);
        i = (i + 1) % C_NTexts;
    }
    state.SetItemsProcessed(state.iterations());
    ZBDateUtils::clear_fixed_now();
}
BENCHMARK(BM_ReadDateText);

void BM_ApplyCompiled(benchmark::State& state)
{
    ZBDateExp exp = ZBDateParser::parse_date(C_Texts[state.range(0)]);
    ZBDate start(2026, 2, 3, 10, 30, 0, 0, ZBDate::C_GMT);
    for (auto _ : state) {
        ZBDate date = exp.apply(start);
        benchmark::DoNotOptimize(date);
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel(C_Texts[state.range(0)]);
}
BENCHMARK(BM_ApplyCompiled)->Arg(3)->Arg(4)->Arg(7);

} // namespace

BENCHMARK_MAIN();
