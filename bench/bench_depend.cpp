// Pushing a later end along a chain of tasks, each waiting on the one
// before: the cost grows with the length of the chain and no faster.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include <QCoreApplication>

#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

using namespace Tervalon;

namespace {

void BM_UpgradeDateAlongAChain(benchmark::State& state)
{
    const int length = int(state.range(0));
    Diary diary;
    if (iszbwarn(diary.load(std::string(), true)))
        state.SkipWithError("no diary");
    std::vector<DiaryEntry*> chain;
    for (int i = 0; i < length; ++i) {
        DiaryEntry* task = nullptr;
        diary.create_entry(nullptr, 'T', "Step " + std::to_string(i), &task);
        if (!chain.empty())
            chain.back()->edit_depend().edit_depend_on_this() = {task->get_id()};
        chain.push_back(task);
    }
    // The last waits on the first too, as in a damaged file: the push must
    // still come to rest.
    chain.back()->edit_depend().edit_depend_on_this() = {chain.front()->get_id()};
    ZBDate date(2026, 2, 1, 9, 0, 0, 0, ZBDate::C_GMT);
    for (auto _ : state) {
        // A later date each time, so that every end in the chain moves.
        date = date + ZBDuration(3600);
        chain.front()->edit_etime().upgrade_date(date, false, -1);
    }
    if (chain.back()->get_time().calc.m_end != date)
        state.SkipWithError("the end did not reach the last task");
    state.SetComplexityN(length);
}
BENCHMARK(BM_UpgradeDateAlongAChain)
    ->Arg(1000)
    ->Arg(3000)
    ->Arg(10000)
    ->Arg(30000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity(benchmark::oN);

} // namespace

int main(int argc, char** argv)
{
    const ZBDate now(2026, 1, 1, 8, 0, 0, 0, ZBDate::C_GMT);
    return Tervalon::bench_main(argc, argv, &now);
}
