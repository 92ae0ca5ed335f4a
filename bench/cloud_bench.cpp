// A day of the dense year with its photo, sent to the cloud folder and taken
// in from it. The day editor's save waits for the write on the UI thread,
// and a pass of the folder applies one such record after another. The
// settings already hold ten thousand last-seen dates, as after a full load,
// since every write stores one and flushes them all.
//
//   build/bench/tilika_bench --benchmark_filter=Cloud

#include <benchmark/benchmark.h>

#include <filesystem>

#include "cloud/names.h"
#include "cloud/records.h"
#include "diary_sample.h"
#include "platform/qt_image_codec.h"
#include "platform/settings_store.h"

namespace {

using namespace tilika;
using bench::sample;
using bench::Sample;

constexpr int kLastSeenKeys = 10'000;

struct CloudSample {
    Sample& s = sample();
    platform::QtImageCodec codec;
    cloud::Records records{s.context(), codec};
    core::Date day{};
    std::string name;

    CloudSample() {
        s.context().state.cloudMode = core::cloudmode::icloud;
        platform::SettingsStore& settings = s.context().settings;
        for (int i = 0; i < kLastSeenKeys; ++i) {
            settings.setDate("CLOUD-2-" + std::to_string(i) + ".dat", s.dates().now());
        }
        settings.synchronize();
        // The first day of the dense year that has a photo.
        const auto pictures =
            s.context().folders.path(platform::SystemFolder::Document) / "picture";
        day = s.yearStart();
        for (int i = 0; i < 3 && !std::filesystem::exists(pictures / photo()); ++i) {
            day = s.dates().addDays(day, 1);
        }
        name = cloud::dayRecordName(s.gid(), day, s.dates());
    }

    std::string photo() const {
        return s.gid() + "-" + s.dates().dateToString(day, core::formats::photoDay) + ".jpg";
    }
    std::filesystem::path file() const {
        return s.context().folders.path(platform::SystemFolder::Cloud) / name;
    }
};

CloudSample& cloudSample() {
    static CloudSample instance;
    return instance;
}

void BM_CloudWriteDay(benchmark::State& state) {
    CloudSample& c = cloudSample();
    for (auto _ : state) {
        benchmark::DoNotOptimize(c.records.dataToCloud(cloud::kind::day, c.day, c.s.gid()));
    }
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(c.file()));
}

void BM_CloudApplyDay(benchmark::State& state) {
    CloudSample& c = cloudSample();
    c.records.dataToCloud(cloud::kind::day, c.day, c.s.gid());
    bool applied = true;
    for (auto _ : state) {
        applied = c.records.dataFromCloud(c.file(), c.name, std::nullopt) && applied;
    }
    if (!applied) {
        state.SkipWithError("the record was not applied");
    }
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(c.file()));
}

}  // namespace

BENCHMARK(BM_CloudWriteDay)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CloudApplyDay)->Unit(benchmark::kMillisecond);
