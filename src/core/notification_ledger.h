#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/date.h"
#include "core/dates.h"
#include "platform/notifier.h"

namespace tilika::core {

// The reminders that wait for their time, in a file of the data folder that
// the running program and the once-a-minute timer run both read and write.
//
// Each change is one read, modify and write of the whole file under an
// exclusive lock, so that the two never lose each other's work, and the file
// is replaced only when its text changes (a rebuild that finds nothing new
// writes nothing). Fire times are kept as the wall clock ("2026-11-22
// 10:00") and read in the zone of the moment they are used: a reminder for
// ten o'clock rings at ten wherever the family has travelled.
//
// An entry that has come due stays until someone shows it: cancelAll()
// drops only the ones still ahead. A shown entry is remembered for a while,
// so that a rebuild racing with the delivery never schedules it again.
class LedgerNotifier final : public platform::Notifier {
public:
    // Keeps its notifications in `library / "notifications.json"`, guarded by
    // `library / "notifications.lock"`.
    LedgerNotifier(std::filesystem::path library, const Dates& dates);

    std::vector<platform::LocalNotification> scheduled() const override;
    void cancelAll() override;
    void schedule(const platform::LocalNotification& n) override;
    void beginChanges() override;
    void endChanges() override;

    // The entries due by `now`, in fire order, marked delivered under the lock.
    std::vector<platform::LocalNotification> takeDue(Date now);
    // When the next pending entry falls due, for the running program's timer.
    std::optional<Date> nextFireDate() const;
    // How many times the file was written since this object was made.
    int writes() const;
    // Whether the file could be read (false: the folder is unreadable).
    bool readable() const;

private:
    struct Change {
        bool cancel = false;
        platform::LocalNotification notification;
    };
    struct Ledger {
        nlohmann::json pending = nlohmann::json::array();
        nlohmann::json delivered = nlohmann::json::array();
    };

    // Reads the file under a lock, lets `change` work on its contents, and
    // writes the result back if its text differs. False when the file could
    // not be read; nothing is written then.
    bool update(Date now, const std::function<void(Ledger&)>& modify);
    // The file's contents as they are, under a shared lock, with the changes
    // of an unfinished batch applied; nothing when the file can't be read.
    std::optional<Ledger> current(Date now) const;
    // Nothing for a file that is not a ledger.
    static std::optional<Ledger> parse(const std::string& text);
    // Drops what is too old or too many, and sorts by fire time; `quiet`
    // leaves the log alone, for a look that changes nothing.
    void tidy(Ledger& ledger, Date now, bool quiet) const;
    void apply(Ledger& ledger, const Change& change, Date now) const;

    nlohmann::json entryOf(const platform::LocalNotification& n) const;
    std::optional<platform::LocalNotification> notificationOf(const nlohmann::json& entry) const;
    std::optional<Date> fireDateOf(const nlohmann::json& entry) const;

    std::filesystem::path file_;
    std::filesystem::path lockFile_;
    const Dates& dates_;
    std::vector<Change> changes_;
    int depth_ = 0;
    int writes_ = 0;
    mutable std::optional<bool> readable_;
};

}  // namespace tilika::core
