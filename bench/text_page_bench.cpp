// A long page of reading matter, such as a guide of several hundred
// chapters, laid out whole and in a window of six groups. The window still
// parses the whole source each time it moves; this shows what that costs.
// The canvas is the recording one, so the figures are the layout's own and
// leave out the platform's text measurement.
//
//   build/bench/tilika_bench --benchmark_filter=TextPage

#include <benchmark/benchmark.h>

#include <string>

#include "core/app_state.h"
#include "core/dates.h"
#include "frame/pictures.h"
#include "frame/text_page.h"
#include "platform/clock.h"
#include "platform/recording_canvas.h"

namespace {

using namespace tilika;

constexpr int kGroups = 400;

std::string longPage() {
    std::string markup = "tp<val>2<tr>text<val>Развитие ребёнка по неделям";
    for (int i = 1; i <= kGroups; ++i) {
        const std::string n = std::to_string(i);
        markup += "<br>tp<val>1<tr>groupid<val>" + n + "<br>tp<val>3<tr>text<val>Неделя " + n +
                  "<tr>format<val>WS" + n + "-WE" + n + " CAP" +
                  "<br>tp<val>4<tr>text<val>На этой неделе малыш учится новому: следит за "
                  "игрушкой, узнаёт голоса близких и всё дольше не спит после кормления." +
                  "<br>tp<val>7<tr>text<val>Подробнее<tr>linkid<val>" + n +
                  "<tr>pic<val>text-doc.png<br>tp<val>4<tr>text<val>Отметить<tr>checkid<val>" + n +
                  "<tr>hiddentext<val>Неделя " + n;
    }
    return markup;
}

struct Fixture {
    platform::ManualClock clock{core::Date{}, "Europe/Moscow"};
    core::Dates dates{clock};
    core::AppState state;
    frame::Pictures pictures{std::filesystem::path(TILIKA_BENCH_RESOURCE_DIR) / "pictures"};
    platform::RecordingCanvas metrics;
    std::string source = longPage();

    frame::TextPage page() {
        frame::TextPage result({state, pictures, dates, {}}, metrics);
        result.setWidth(360);
        result.setStartDate(*dates.dateFromString("2026-01-05"));
        return result;
    }
};

void TextPageWhole(benchmark::State& run) {
    Fixture fixture;
    auto page = fixture.page();
    for (auto _ : run) {
        page.prepareTextFromString(fixture.source, true);
        benchmark::DoNotOptimize(page.elements().data());
    }
    run.counters["elements"] = static_cast<double>(page.elements().size());
}
BENCHMARK(TextPageWhole)->Unit(benchmark::kMillisecond);

void TextPageWindow(benchmark::State& run) {
    Fixture fixture;
    auto page = fixture.page();
    page.specialPartial(kGroups / 2);
    for (auto _ : run) {
        page.prepareTextFromString(fixture.source, true);
        benchmark::DoNotOptimize(page.elements().data());
    }
    run.counters["elements"] = static_cast<double>(page.elements().size());
}
BENCHMARK(TextPageWindow)->Unit(benchmark::kMillisecond);

void TextPageDraw(benchmark::State& run) {
    Fixture fixture;
    auto page = fixture.page();
    page.prepareTextFromString(fixture.source, true);
    platform::RecordingCanvas canvas;
    // One screen's worth from the middle of the page.
    const platform::Rect screen{0, page.contentHeight() / 2, 360, 640};
    for (auto _ : run) {
        canvas.clear();
        page.draw(canvas, screen);
        benchmark::DoNotOptimize(canvas.commands().data());
    }
}
BENCHMARK(TextPageDraw)->Unit(benchmark::kMicrosecond);

}  // namespace
