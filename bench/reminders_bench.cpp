// The rebuild of the reminders that runs at every activation of the window:
// the next twenty days with reminders and with medicine courses, of both
// children, on fourteen years of diary. It is measured with and without the
// index by type and day, and without the statistics of ANALYZE, which a
// diary that grew on a device never has. A rebuild that finds nothing
// changed must leave the file of pending reminders alone.
//
//   build/bench/tilika_bench --benchmark_filter=Reminders

#include <benchmark/benchmark.h>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/notification_ledger.h"
#include "core/reserve_copies.h"
#include "diary/reference_lists.h"
#include "diary_sample.h"
#include "medication/reminders.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "platform/notifier.h"

namespace {

using namespace tilika;

class KeepingNotifier final : public platform::Notifier {
public:
    std::vector<platform::LocalNotification> scheduled() const override { return pending; }
    void cancelAll() override { pending.clear(); }
    void schedule(const platform::LocalNotification& n) override { pending.push_back(n); }

    std::vector<platform::LocalNotification> pending;
};

// A copy of the sample diary beside it, since its index and statistics are
// changed here, with a clock of its own a month before the sample's now, so
// that the coming days hold reminders and courses.
class RemindersSample {
public:
    RemindersSample()
        : clock_(bench::sampleNow(), "Europe/Moscow"),
          dates_(clock_),
          database_(bench::sample().context().folders, dates_, "reminders.sqlite"),
          context_{clock_,
                   bench::sample().context().settings,
                   bench::sample().context().folders,
                   dates_,
                   database_,
                   state_} {
        core::backupDatabase(bench::sample().database().path(), database_.path());
        clock_.set(dates_.addDays(bench::sampleNow(), -30));
        if (SQLite::Database* db = database_.connectToBase()) {
            db->exec("DROP TABLE IF EXISTS sqlite_stat1");
        }
        // A connection keeps the statistics it read when it opened.
        database_.disconnectFromBase();
    }

    void setIndex(bool on) {
        SQLite::Database* db = database_.connectToBase();
        if (db == nullptr) {
            return;
        }
        db->exec(on ? "CREATE INDEX IF NOT EXISTS childdata_type_day ON childdata (type, "
                      "date(sdat))"
                    : "DROP INDEX IF EXISTS childdata_type_day");
    }

    // What activation does with the medicines' switch on.
    std::size_t rebuild() {
        rebuild(notifier_);
        return notifier_.pending.size();
    }
    void rebuild(platform::Notifier& notifier) {
        medication::Reminders reminders(context_, notifier);
        notifier.beginChanges();
        reminders.updateNoteAlarms();
        std::vector<diary::ListRow> lists;
        diary::ReferenceLists(context_).loadConstList(lists, 0, "");
        reminders.updatePillsAlarms(lists);
        notifier.endChanges();
    }

    const core::Dates& dates() const { return dates_; }

private:
    platform::ManualClock clock_;
    core::Dates dates_;
    core::DatabaseStore database_;
    core::AppState state_;
    core::Context context_;
    KeepingNotifier notifier_;
};

RemindersSample& remindersSample() {
    static RemindersSample instance;
    return instance;
}

void rebuild(benchmark::State& state, bool index) {
    RemindersSample& s = remindersSample();
    s.setIndex(index);
    std::size_t scheduled = 0;
    for (auto _ : state) {
        scheduled = s.rebuild();
    }
    state.counters["notifications"] = static_cast<double>(scheduled);
}

void BM_RemindersRebuildWithoutIndex(benchmark::State& state) {
    rebuild(state, false);
}

void BM_RemindersRebuild(benchmark::State& state) {
    rebuild(state, true);
}

// The rebuild of an activation that follows another with nothing changed in
// between, into the ledger the program keeps: no write of its file.
void BM_RemindersRebuildUnchanged(benchmark::State& state) {
    RemindersSample& s = remindersSample();
    s.setIndex(true);
    core::LedgerNotifier ledger(
        bench::sample().context().folders.path(platform::SystemFolder::Library), s.dates());
    s.rebuild(ledger);
    const int before = ledger.writes();
    for (auto _ : state) {
        s.rebuild(ledger);
    }
    state.counters["ledger_writes"] = static_cast<double>(ledger.writes() - before);
    state.counters["notifications"] = static_cast<double>(ledger.scheduled().size());
}

}  // namespace

BENCHMARK(BM_RemindersRebuildWithoutIndex)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RemindersRebuild)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RemindersRebuildUnchanged)->Unit(benchmark::kMillisecond);
