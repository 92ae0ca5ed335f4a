// The floor of every year load: one dense year of a child read raw from
// SQLite, with nothing built from the rows.

#include <benchmark/benchmark.h>

#include <stdlib.h>

#include "diary_sample.h"

namespace tilika::bench {

Sample& sample() {
    static Sample instance;
    return instance;
}

namespace {

void BM_DiaryYearRawRead(benchmark::State& state) {
    Sample& s = sample();
    SQLite::Database& db = *s.database().connectToBase();
    const std::string from = s.dates().dateToString(s.yearStart(), core::formats::day);
    const std::string to =
        s.dates().dateToString(s.dates().addYears(s.yearStart(), 1), core::formats::day);
    std::size_t rows = 0;
    for (auto _ : state) {
        SQLite::Statement query(db,
                                "select sdat, type, value from childdata where childguid=? and "
                                "date(sdat)>=date(?) and date(sdat)<date(?) order by date(sdat)");
        query.bind(1, s.gid());
        query.bind(2, from);
        query.bind(3, to);
        rows = 0;
        while (query.executeStep()) {
            std::string sdat = query.getColumn(0).getString();
            std::string type = query.getColumn(1).getString();
            std::string value = query.getColumn(2).getString();
            benchmark::DoNotOptimize(value);
            ++rows;
        }
    }
    state.counters["rows"] = static_cast<double>(rows);
}

}  // namespace

BENCHMARK(BM_DiaryYearRawRead)->Unit(benchmark::kMillisecond);

}  // namespace tilika::bench
