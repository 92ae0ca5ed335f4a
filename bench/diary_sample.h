#pragma once

// The sample diary that the benchmarks of the diary share, and the floor of
// its year loads.

#include <filesystem>
#include <stdlib.h>
#include <string>
#include <system_error>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/settings_file.h"
#include "diary/diary_store.h"
#include "medication/courses.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "sample_diary.h"

namespace tilika::bench {

// The year of life of the first child that the diary is densest in.
inline constexpr int kDenseYear = 5;

// The sample diary, written once per run into a temporary folder.
class Sample {
public:
    Sample()
        : dir_(makeDir()),
          diary_(bench::writeSampleDiary(dir_, TILIKA_BENCH_RESOURCE_DIR)),
          folders_(dir_, TILIKA_BENCH_RESOURCE_DIR),
          settings_(dir_ / "Library" / "settings.json"),
          clock_(bench::sampleNow(), "Europe/Moscow"),
          dates_(clock_),
          database_(folders_, dates_),
          context_{clock_, settings_, folders_, dates_, database_, state_},
          courses_(dates_),
          store_(context_, courses_) {}

    ~Sample() {
        std::error_code error;
        std::filesystem::remove_all(dir_, error);
    }

    const std::string& gid() const { return diary_.children.front().gid; }
    const std::string& birth() const { return diary_.children.front().birth; }
    core::Dates& dates() { return dates_; }
    core::DatabaseStore& database() { return database_; }
    core::Context& context() { return context_; }
    diary::DiaryStore& store() { return store_; }

    core::Date yearStart() {
        return dates_.addYears(*dates_.dateFromString(diary_.children.front().birth),
                               kDenseYear - 1);
    }

private:
    static std::filesystem::path makeDir() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tilika-bench-XXXXXX").string();
        return ::mkdtemp(pattern.data());
    }

    std::filesystem::path dir_;
    bench::SampleDiary diary_;
    platform::DataFolders folders_;
    core::JsonSettingsStore settings_;
    platform::ManualClock clock_;
    core::Dates dates_;
    core::DatabaseStore database_;
    core::AppState state_;
    core::Context context_;
    medication::CourseReconciler courses_;
    diary::DiaryStore store_;
};

// One sample per run, written the first time it is asked for.
Sample& sample();

}  // namespace tilika::bench
