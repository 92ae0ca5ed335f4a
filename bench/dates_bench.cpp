// Formatting and parsing dates is on the path of every diary load: a year of
// days is thousands of calls. This compares the cached formatters of
// core::Dates with building an ICU formatter for every call.
//
//   build/bench/tilika_bench --benchmark_filter=Dates

#include <benchmark/benchmark.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <string>
#include <vector>

#include "core/dates.h"
#include "platform/clock.h"

namespace {

using tilika::core::Date;
using tilika::core::Dates;
namespace formats = tilika::core::formats;

constexpr int kDates = 10'000;
constexpr const char* kZone = "Europe/Moscow";

struct Fixture {
    tilika::platform::ManualClock clock{Date{}, kZone};
    Dates dates{clock};
    std::vector<Date> days;
    std::vector<std::string> texts;

    Fixture() {
        Date day = *dates.dateFromString("2000-01-01 09:30:00");
        for (int i = 0; i < kDates; ++i) {
            days.push_back(day);
            texts.push_back(dates.dateToString(day, formats::moment));
            day = dates.addDays(day, 1);
        }
    }
};

const Fixture& fixture() {
    static const Fixture instance;
    return instance;
}

std::unique_ptr<icu::SimpleDateFormat> freshFormatter() {
    UErrorCode status = U_ZERO_ERROR;
    auto formatter = std::make_unique<icu::SimpleDateFormat>(
        icu::UnicodeString::fromUTF8(formats::moment.data()), icu::Locale("ru_RU"), status);
    formatter->adoptTimeZone(icu::TimeZone::createTimeZone(kZone));
    return formatter;
}

void BM_DatesFormatCached(benchmark::State& state) {
    const Fixture& f = fixture();
    for (auto _ : state) {
        for (const Date& day : f.days) {
            benchmark::DoNotOptimize(f.dates.dateToString(day, formats::moment));
        }
    }
    state.SetItemsProcessed(state.iterations() * kDates);
}

// The same through the real clock, which looks up the device's zone.
void BM_DatesFormatCachedSystemClock(benchmark::State& state) {
    const Fixture& f = fixture();
    const tilika::platform::SystemClock clock;
    const Dates dates(clock);
    for (auto _ : state) {
        for (const Date& day : f.days) {
            benchmark::DoNotOptimize(dates.dateToString(day, formats::moment));
        }
    }
    state.SetItemsProcessed(state.iterations() * kDates);
}

void BM_DatesFormatNewFormatterEachCall(benchmark::State& state) {
    const Fixture& f = fixture();
    for (auto _ : state) {
        for (const Date& day : f.days) {
            icu::UnicodeString out;
            freshFormatter()->format(static_cast<UDate>(day.time_since_epoch().count()), out);
            std::string text;
            benchmark::DoNotOptimize(out.toUTF8String(text));
        }
    }
    state.SetItemsProcessed(state.iterations() * kDates);
}

void BM_DatesParseCached(benchmark::State& state) {
    const Fixture& f = fixture();
    for (auto _ : state) {
        for (const std::string& text : f.texts) {
            benchmark::DoNotOptimize(f.dates.dateFromString(text));
        }
    }
    state.SetItemsProcessed(state.iterations() * kDates);
}

void BM_DatesParseNewFormatterEachCall(benchmark::State& state) {
    const Fixture& f = fixture();
    for (auto _ : state) {
        for (const std::string& text : f.texts) {
            auto formatter = freshFormatter();
            formatter->setLenient(false);
            icu::ParsePosition position(0);
            benchmark::DoNotOptimize(
                formatter->parse(icu::UnicodeString::fromUTF8(text), position));
        }
    }
    state.SetItemsProcessed(state.iterations() * kDates);
}

}  // namespace

BENCHMARK(BM_DatesFormatCached)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DatesFormatCachedSystemClock)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DatesFormatNewFormatterEachCall)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DatesParseCached)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DatesParseNewFormatterEachCall)->Unit(benchmark::kMillisecond);
