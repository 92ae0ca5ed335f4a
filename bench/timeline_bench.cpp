// The timeline of fourteen years built for the sample child, whose diary
// holds thousands of achievements, and for a twin with an empty diary: the
// events read and laid in their lanes.
//
//   build/bench/tilika_bench --benchmark_filter=Timeline

#include <benchmark/benchmark.h>

#include "development/timeline.h"
#include "timeline_sample.h"

namespace tilika::bench {
namespace {

void timelineBuild(benchmark::State& state, const std::string& gid) {
    Sample& s = sample();
    const development::NoPlaneAppend noAppend;
    development::Timeline timeline(s.context(), TILIKA_BENCH_RESOURCE_DIR "/content", noAppend);
    for (auto _ : state) {
        timeline.buildPlane(gid);
        benchmark::DoNotOptimize(timeline.lanesUsed());
    }
    state.counters["events"] = static_cast<double>(timeline.mainData().size());
}

void BM_TimelineBuildSample(benchmark::State& state) {
    timelineBuild(state, sample().gid());
}

void BM_TimelineBuildEmpty(benchmark::State& state) {
    timelineBuild(state, emptyTwin());
}

}  // namespace

BENCHMARK(BM_TimelineBuildSample)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TimelineBuildEmpty)->Unit(benchmark::kMillisecond);

}  // namespace tilika::bench
