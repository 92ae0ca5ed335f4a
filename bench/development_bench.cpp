// The development pages over the sample diary of fourteen years.

#include <benchmark/benchmark.h>

#include "development/teeth.h"
#include "diary_sample.h"

namespace tilika::bench {
namespace {

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

BENCHMARK(BM_TeethRulerSweepNaive)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TeethRulerSweepReplay)->Unit(benchmark::kMillisecond);

}  // namespace tilika::bench
