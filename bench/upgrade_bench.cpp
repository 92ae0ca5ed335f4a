// The upgrade chain that every launch runs: on a diary of the first
// versions that holds fourteen years of two children's days, and on the
// sample diary of the current shape, where each step only finds that it has
// nothing to do.
//
//   build/bench/tilika_bench --benchmark_filter=Upgrade

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/settings_file.h"
#include "core/settings_keys.h"
#include "diary_sample.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "session/upgrade.h"

namespace tilika::bench {
namespace {

namespace fs = std::filesystem;

constexpr long long kDay = 86400;
constexpr int kYears = 14;

// A diary as the first versions kept it: the day in seconds only, weights
// in grams, every achievement and health mark a row of its own, medicine
// courses in the delimited form, and no guids anywhere.
void writeOldestDiary(const fs::path& file, long long firstDay) {
    SQLite::Database db(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    db.exec(
        "create table child (chid integer primary key, chname text, birthday integer, "
        "sex integer, deleted integer);"
        "create table childdata (datid integer primary key, chid integer, dat integer, "
        "type text, value text)");
    SQLite::Transaction transaction(db);
    db.exec("insert into child values (1, 'Маша', " + std::to_string(firstDay) + ", 2, 0)");
    db.exec("insert into child values (2, 'Петя', " + std::to_string(firstDay + 400 * kDay) +
            ", 1, 0)");
    SQLite::Statement insert(db, "insert into childdata (chid, dat, type, value) values (?,?,?,?)");
    const auto row = [&](int chid, long long dat, const char* type, const std::string& value) {
        insert.bind(1, chid);
        insert.bind(2, static_cast<std::int64_t>(dat));
        insert.bind(3, type);
        insert.bind(4, value);
        insert.exec();
        insert.reset();
    };
    const int days = kYears * 365;
    for (int chid = 1; chid <= 2; ++chid) {
        for (int day = 0; day < days; ++day) {
            const long long dat = firstDay + day * kDay + 9 * 3600;
            row(chid, dat, "comment", "Гуляли в парке, день " + std::to_string(day));
            row(chid, dat, "temp", "12:30<td>36." + std::to_string(day % 10));
            row(chid, dat, "sleep", "13:00<table>15:00<table>120");
            if (day % 7 == 0) {
                row(chid, dat, "ves", std::to_string(3500 + day * 8));
            }
            if (day % 30 == 0) {
                row(chid, dat, "rost", std::to_string(50 + day / 30));
            }
            if (day % 10 == 0) {
                row(chid, dat, "pills",
                    "Нурофен<table>1<td>2<table>3<table>08:00<end>"
                    "Нурофен<table>1<td>2<table>3<table>08:00");
            }
            if (day % 45 == 0) {
                row(chid, dat, "achiv105", "1");
                row(chid, dat, "health192", "1");
            }
        }
    }
    transaction.commit();
}

// A data folder of its own, with the shipped template beside it, over
// which the chain runs as a launch runs it.
class UpgradeWorld {
public:
    UpgradeWorld()
        : dir_(makeDir()),
          folders_(dir_, TILIKA_BENCH_RESOURCE_DIR),
          settings_(dir_ / "Library" / "settings.json"),
          clock_(sampleNow(), "Europe/Moscow"),
          dates_(clock_),
          database_(folders_, dates_),
          context_{clock_, settings_, folders_, dates_, database_, state_} {
        folders_.createLayout();
    }
    ~UpgradeWorld() {
        std::error_code error;
        fs::remove_all(dir_, error);
    }

    core::Context& context() { return context_; }
    const fs::path& dir() const { return dir_; }

    // The diary as it was before the last run: the pristine old file in
    // place, and no copy or mark a run left behind.
    void reset(const fs::path& pristine) {
        database_.disconnectFromBase();
        const fs::path live = database_.path();
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(live.parent_path(), error)) {
            if (entry.path().filename().string().starts_with("before-upgrade-")) {
                fs::remove(entry.path(), error);
            }
        }
        fs::copy_file(pristine, live, fs::copy_options::overwrite_existing, error);
        settings_.remove(core::keys::oldVersionPill3);
    }

private:
    // One per process is all a run makes.
    static fs::path makeDir() {
        const fs::path dir =
            fs::temp_directory_path() / ("tilika-upgrade-bench-" + std::to_string(::getpid()));
        fs::remove_all(dir);
        fs::create_directories(dir);
        return dir;
    }

    fs::path dir_;
    platform::DataFolders folders_;
    core::JsonSettingsStore settings_;
    platform::ManualClock clock_;
    core::Dates dates_;
    core::DatabaseStore database_;
    core::AppState state_;
    core::Context context_;
};

void BM_UpgradeOldestShape(benchmark::State& state) {
    UpgradeWorld world;
    const fs::path pristine = world.dir() / "oldest.sqlite";
    // Fourteen years before the sample's "now", in seconds.
    const long long now =
        std::chrono::duration_cast<std::chrono::seconds>(sampleNow().time_since_epoch()).count();
    writeOldestDiary(pristine, now - kYears * 365 * kDay);
    for (auto _ : state) {
        state.PauseTiming();
        world.reset(pristine);
        state.ResumeTiming();
        session::Upgrade(world.context()).run();
    }
    SQLite::Database db(world.context().database.path().string(), SQLite::OPEN_READONLY);
    const long long rows = db.execAndGet("select count(*) from childdata").getInt64();
    state.counters["rows"] = static_cast<double>(rows);
    if (db.execAndGet("select count(*) from childdata where childguid is null").getInt64() != 0) {
        state.SkipWithError("the chain left rows without guids");
    }
}
BENCHMARK(BM_UpgradeOldestShape)->Unit(benchmark::kMillisecond)->Iterations(3);

// What every launch of a current diary pays: the probes that fail, and the
// scans that find nothing to convert.
void BM_UpgradeCurrent(benchmark::State& state) {
    Sample& s = sample();
    s.database().disconnectFromBase();
    for (auto _ : state) {
        session::Upgrade chain(s.context());
        chain.run();
        if (!chain.backupFile().empty()) {
            state.SkipWithError("the chain changed a current diary");
            break;
        }
    }
}
BENCHMARK(BM_UpgradeCurrent)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tilika::bench
