// The day schedule of a busy day of the sample diary.

#include <SQLiteCpp/Statement.h>
#include <benchmark/benchmark.h>

#include "diary_sample.h"
#include "medication/day_schedule.h"

namespace tilika::bench {
namespace {

// The day of the first child with the most courses on it; reminders fall on
// every other day.
core::Date busiestDay(Sample& s) {
    SQLite::Statement query(*s.database().connectToBase(),
                            "select sdat from childdata where childguid=? and type='pills' "
                            "order by length(value) desc limit 1");
    query.bind(1, s.gid());
    return query.executeStep() ? *s.dates().dateFromString(query.getColumn(0).getString())
                               : s.dates().now();
}

// What opening the page, or a step to another day, costs: the day read, the
// meal times read and every course laid out and sorted.
void BM_InDayPrepare(benchmark::State& state) {
    Sample& s = sample();
    medication::DaySchedule schedule(s.context());
    schedule.activateView(s.gid());
    const core::Date day = busiestDay(s);
    std::size_t rows = 0;
    for (auto _ : state) {
        rows = schedule.prepare(day).size();
        benchmark::DoNotOptimize(rows);
    }
    state.counters["rows"] = static_cast<double>(rows);
    if (rows < 3) {
        state.SkipWithError("the day has no courses");
    }
}

}  // namespace

BENCHMARK(BM_InDayPrepare)->Unit(benchmark::kMillisecond);

}  // namespace tilika::bench
