// The diary page over the sample diary, offscreen in a phone's window: a
// dense year opened from the load to the first paint of its rows, with and
// without its empty days, and searches from the button to the repainted
// result. ui_stall_ms is the longest the event loop went without turning
// (a 1 ms timer's longest gap) while that happened.
//
//   QT_QPA_PLATFORM=offscreen build/bench/tilika_ui_bench
//   --benchmark_filter='DiaryYearRawRead|DiaryScreen'

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>

#include "core/settings_keys.h"
#include "diary/note.h"
#include "diary_sample.h"
#include "frame/pictures.h"
#include "frame/popup_panels.h"
#include "platform/qt_pictures.h"
#include "platform/settings_store.h"

namespace {

using namespace tilika;

// Watches a viewport for its first paint after being armed.
class PaintWatch final : public QObject {
public:
    explicit PaintWatch(QWidget* viewport) { viewport->installEventFilter(this); }
    void arm() {
        armed_ = true;
        painted_ = false;
    }
    bool painted() const { return painted_; }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        // The paint runs when the filter lets the event through; the loop
        // that waits sees the flag only after the paint has ended.
        if (armed_ && event->type() == QEvent::Paint) {
            painted_ = true;
            armed_ = false;
        }
        return false;
    }

private:
    bool armed_ = false;
    bool painted_ = false;
};

// The longest gap between the turns of a 1 ms timer while it runs.
class StallMeter final : public QObject {
public:
    StallMeter() {
        timer_.setInterval(1);
        connect(&timer_, &QTimer::timeout, this,
                [this] { longest_ = std::max(longest_, clock_.restart()); });
    }
    void start() {
        clock_.start();
        timer_.start();
    }
    void stop() {
        longest_ = std::max(longest_, clock_.elapsed());
        timer_.stop();
    }
    double longestMs() const { return static_cast<double>(longest_); }

private:
    QTimer timer_;
    QElapsedTimer clock_;
    qint64 longest_ = 0;
};

// The page in its window, over the sample's dense year.
class Screen {
public:
    Screen()
        : pictures_(TILIKA_BENCH_RESOURCE_DIR "/pictures"),
          qtPictures_(pictures_),
          popups_(context().state, context().settings, qtPictures_,
                  frame::TextPageEnvironment{context().state, pictures_, context().dates,
                                             TILIKA_BENCH_RESOURCE_DIR "/content"}) {
        window_.resize(360, 640);
        auto* layout = new QVBoxLayout(&window_);
        layout->setContentsMargins(0, 0, 0, 0);
        page_ = new diary::note(diary::NoteServices{context(), qtPictures_, popups_, {}}, &window_);
        layout->addWidget(page_);
        window_.show();
        watch_ = std::make_unique<PaintWatch>(page_->table()->viewport());
        open(true);
    }

    diary::note& page() { return *page_; }

    // Opens the dense year; `anew` first goes to the child's present year.
    void open(bool anew) {
        if (anew) {
            page_->prepare(bench::sample().gid(), true);
            waitLoaded();
            while (page_->gyear() > bench::kDenseYear) {
                page_->changeYear(-1);
                waitLoaded();
            }
            return;
        }
        page_->reload();
        waitLoaded();
    }

    void waitLoaded() {
        watch_->arm();
        while (page_->generating() || !watch_->painted()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    // Waits until the days beyond the first screen are laid out too.
    void settle() {
        while (!page_->laidOut()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    void search(const QString& text) {
        page_->findChild<QLineEdit*>(QStringLiteral("search"))->setText(text);
        watch_->arm();
        page_->findChild<QAbstractButton*>(QStringLiteral("searchButton"))->click();
        while (!watch_->painted()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

private:
    static core::Context& context() { return bench::sample().context(); }

    frame::Pictures pictures_;
    platform::QtPictures qtPictures_;
    frame::Popups popups_;
    QWidget window_;
    diary::note* page_ = nullptr;
    std::unique_ptr<PaintWatch> watch_;
};

// The page outlives each benchmark but not the application it runs in.
std::unique_ptr<Screen>& screenSlot() {
    static std::unique_ptr<Screen> instance;
    return instance;
}

Screen& screen() {
    if (!screenSlot()) {
        screenSlot() = std::make_unique<Screen>();
    }
    return *screenSlot();
}

void BM_DiaryScreenOpenYear(benchmark::State& state) {
    bench::sample().context().settings.setBool(core::keys::emptyNote, state.range(0) == 1);
    Screen& s = screen();
    s.open(false);  // the setting takes effect, outside the measure
    s.settle();
    StallMeter stall;
    for (auto _ : state) {
        stall.start();
        s.open(false);
        // The rest of the year is laid out on the worker after the first
        // paint, outside the measure; the stall meter still sees it.
        state.PauseTiming();
        s.settle();
        stall.stop();
        state.ResumeTiming();
    }
    state.counters["days"] = static_cast<double>(s.page().year().mainData.size());
    state.counters["ui_stall_ms"] = stall.longestMs();
}

void BM_DiaryScreenSearch(benchmark::State& state, const char* text) {
    bench::sample().context().settings.setBool(core::keys::emptyNote, false);
    Screen& s = screen();
    s.open(false);
    s.settle();
    StallMeter stall;
    for (auto _ : state) {
        stall.start();
        s.search(QString::fromUtf8(text));
        stall.stop();
        state.PauseTiming();
        s.search({});
        state.ResumeTiming();
    }
    s.search(QString::fromUtf8(text));
    state.counters["found"] = static_cast<double>(s.page().year().noteData.size());
    state.counters["ui_stall_ms"] = stall.longestMs();
    s.search({});
}

}  // namespace

BENCHMARK(BM_DiaryScreenOpenYear)->Arg(1)->Arg(5)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DiaryScreenSearch, ves, "вес")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DiaryScreenSearch, time, "08:")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DiaryScreenSearch, nurofen, "Нурофен")->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    screenSlot().reset();
    benchmark::Shutdown();
    return 0;
}
