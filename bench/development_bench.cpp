// The development pages over the sample diary.

#include <benchmark/benchmark.h>

#include "development/growth.h"
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

}  // namespace

BENCHMARK(BM_GrowthAllData)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GrowthYear14)->Unit(benchmark::kMillisecond);

}  // namespace tilika::bench
