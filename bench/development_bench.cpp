// The development pages over the sample diary of fourteen years.

#include <benchmark/benchmark.h>

#include "development/growth.h"
#include "development/teeth.h"
#include "diary_sample.h"

namespace tilika::bench {
namespace {

// A rebuild of the growth page: the year's norms and measures loaded and
// both chart dictionaries made, with the centile lines laid over them.
void growthRebuild(benchmark::State& state, int year) {
    Sample& s = sample();
    development::Growth growth(s.context());
    growth.activateView(s.gid());
    growth.setYear(year);
    std::size_t points = 0;
    for (auto _ : state) {
        const development::GrowthView view = growth.changeText(true);
        points = view.rost.color.graph[2].size() + view.ves.color.graph[2].size();
        benchmark::DoNotOptimize(points);
    }
    state.counters["own"] = static_cast<double>(points);
    if (points == 0) {
        state.SkipWithError("the child has no measures");
    }
}

void BM_GrowthAllData(benchmark::State& state) {
    growthRebuild(state, 0);
}

void BM_GrowthYear14(benchmark::State& state) {
    growthRebuild(state, 14);
}

// A sweep of the teeth page's ruler: a stop for each month of fifteen years.
constexpr int kRulerStops = 180;

// Time per ruler stop, beside the time of the whole sweep.
void countStops(benchmark::State& state) {
    state.counters["per_stop"] = benchmark::Counter(
        kRulerStops, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Each stop asks the diary again for every tooth row before its day.
void BM_TeethRulerSweepNaive(benchmark::State& state) {
    Sample& s = sample();
    development::Teeth teeth(s.context());
    const core::Date birth = *s.dates().dateFromString(s.birth());
    std::size_t shown = 0;
    for (auto _ : state) {
        for (int month = 0; month < kRulerStops; ++month) {
            shown += teeth.toothForDay(s.dates().addMonths(birth, month), s.gid()).size();
        }
    }
    benchmark::DoNotOptimize(shown);
    countStops(state);
}

// The page reads the child's tooth rows once and every stop looks its day
// up in that replay; the read is counted in.
void BM_TeethRulerSweepReplay(benchmark::State& state) {
    Sample& s = sample();
    development::Teeth teeth(s.context());
    teeth.activateView(s.gid());
    teeth.stateChange();
    double shown = 0;
    for (auto _ : state) {
        teeth.reload();
        for (int month = 0; month < kRulerStops; ++month) {
            shown += teeth.update(month)[0];
        }
    }
    benchmark::DoNotOptimize(shown);
    countStops(state);
}

}  // namespace

BENCHMARK(BM_GrowthAllData)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GrowthYear14)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TeethRulerSweepNaive)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TeethRulerSweepReplay)->Unit(benchmark::kMillisecond);

}  // namespace tilika::bench
