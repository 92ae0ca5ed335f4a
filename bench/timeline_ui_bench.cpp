// One paint of the whole timeline strip, fourteen years wide, into an
// offscreen image, for the sample child and for its twin with an empty
// diary.
//
//   QT_QPA_PLATFORM=offscreen build/bench/tilika_ui_bench --benchmark_filter=Timeline

#include <QImage>
#include <QPainter>
#include <benchmark/benchmark.h>

#include <cmath>

#include "development/timeline.h"
#include "development/timeline_paint.h"
#include "frame/pictures.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"
#include "timeline_sample.h"

namespace tilika::bench {
namespace {

void timelinePaint(benchmark::State& state, const std::string& gid) {
    Sample& s = sample();
    const frame::Pictures pictures(TILIKA_BENCH_RESOURCE_DIR "/pictures");
    const platform::QtPictures qtPictures(pictures);
    const development::NoPlaneAppend noAppend;
    development::Timeline timeline(s.context(), TILIKA_BENCH_RESOURCE_DIR "/content", noAppend);
    timeline.buildPlane(gid);
    const platform::Size size = timeline.stripSize();
    QImage image(static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height)),
                 QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        platform::QtCanvas canvas(painter, qtPictures);
        development::paintPlane(canvas, timeline, s.context().state,
                                {0, 0, size.width, size.height});
    }
    state.counters["events"] = static_cast<double>(timeline.mainData().size());
    state.counters["lanes"] = timeline.lanesUsed();
}

void BM_TimelinePaintSample(benchmark::State& state) {
    timelinePaint(state, sample().gid());
}

void BM_TimelinePaintEmpty(benchmark::State& state) {
    timelinePaint(state, emptyTwin());
}

}  // namespace

BENCHMARK(BM_TimelinePaintSample)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TimelinePaintEmpty)->Unit(benchmark::kMillisecond);

}  // namespace tilika::bench
