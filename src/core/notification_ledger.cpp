#include "core/notification_ledger.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

#include "core/files.h"
#include "platform/log.h"

namespace tilika::core {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using platform::LocalNotification;

// What the system would show at most; the soonest are the ones that matter.
constexpr std::size_t kMostPending = 64;
// A reminder this late is news no more: a laptop that slept through the
// night shows nothing of yesterday's evening in the morning.
constexpr auto kStale = std::chrono::hours(12);
// 64 entries are a few hundred kilobytes even with long texts; anything
// larger is not ours.
constexpr std::uintmax_t kLargestFile = 4 * 1024 * 1024;

// An flock on the lock file for as long as the object lives. The lock file
// never changes, unlike the ledger, which is replaced on every write.
class FileLock {
public:
    FileLock(const fs::path& file, int operation) {
        fd_ = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        if (fd_ < 0 && operation == LOCK_SH) {
            // A folder that takes no writes can't be written by anyone
            // else either; reading it needs no lock then.
            fd_ = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        }
        if (fd_ < 0) {
            return;
        }
        while (::flock(fd_, operation) != 0) {
            if (errno != EINTR) {
                ::close(fd_);
                fd_ = -1;
                return;
            }
        }
    }
    ~FileLock() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    bool held() const { return fd_ >= 0; }

private:
    int fd_ = -1;
};

struct FileText {
    bool readable = false;
    std::optional<std::string> text;  // nothing: there is no file yet
};

FileText readText(const fs::path& file) {
    std::error_code error;
    if (!fs::is_directory(file.parent_path(), error)) {
        return {};
    }
    const auto status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found) {
        return {true, std::nullopt};
    }
    if (error) {
        return {};
    }
    const auto size = fs::file_size(file, error);
    if (!error && size > kLargestFile) {
        // Read as a damaged file, without reading it.
        return {true, std::string()};
    }
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        return {};
    }
    std::stringstream buffer;
    buffer << in.rdbuf();
    return {true, buffer.str()};
}

std::string textOf(const Json& pending, const Json& delivered) {
    const Json whole = {{"pending", pending}, {"delivered", delivered}};
    return whole.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string stringField(const Json& entry, const char* key) {
    const auto it = entry.find(key);
    return it != entry.end() && it->is_string() ? it->get<std::string>() : std::string();
}

}  // namespace

LedgerNotifier::LedgerNotifier(std::filesystem::path library, const Dates& dates)
    : file_(library / "notifications.json"),
      lockFile_(library / "notifications.lock"),
      dates_(dates) {}

std::vector<LocalNotification> LedgerNotifier::scheduled() const {
    const Date now = dates_.now();
    std::vector<LocalNotification> result;
    if (const auto ledger = current(now)) {
        for (const Json& entry : ledger->pending) {
            auto notification = notificationOf(entry);
            if (notification && notification->fireDate > now) {
                result.push_back(std::move(*notification));
            }
        }
    }
    return result;
}

void LedgerNotifier::cancelAll() {
    changes_.push_back({true, {}});
    if (depth_ == 0) {
        endChanges();
    }
}

void LedgerNotifier::schedule(const LocalNotification& n) {
    changes_.push_back({false, n});
    if (depth_ == 0) {
        endChanges();
    }
}

void LedgerNotifier::beginChanges() {
    ++depth_;
}

void LedgerNotifier::endChanges() {
    if (depth_ > 0 && --depth_ > 0) {
        return;
    }
    if (changes_.empty()) {
        return;
    }
    const Date now = dates_.now();
    std::vector<Change> changes = std::move(changes_);
    changes_.clear();
    update(now, [&](Ledger& ledger) {
        for (const Change& change : changes) {
            apply(ledger, change, now);
        }
    });
}

std::vector<LocalNotification> LedgerNotifier::takeDue(Date now) {
    std::vector<LocalNotification> due;
    update(now, [&](Ledger& ledger) {
        Json stillAhead = Json::array();
        for (Json& entry : ledger.pending) {
            auto notification = notificationOf(entry);
            if (notification && notification->fireDate <= now) {
                due.push_back(std::move(*notification));
                ledger.delivered.push_back(std::move(entry));
            } else {
                stillAhead.push_back(std::move(entry));
            }
        }
        ledger.pending = std::move(stillAhead);
    });
    return due;
}

std::optional<Date> LedgerNotifier::nextFireDate() const {
    const auto ledger = current(dates_.now());
    if (!ledger || ledger->pending.empty()) {
        return std::nullopt;
    }
    // Kept in fire order.
    return fireDateOf(ledger->pending.front());
}

int LedgerNotifier::writes() const {
    return writes_;
}

bool LedgerNotifier::readable() const {
    if (!readable_) {
        current(dates_.now());
    }
    return *readable_;
}

bool LedgerNotifier::update(Date now, const std::function<void(Ledger&)>& modify) {
    const FileLock lock(lockFile_, LOCK_EX);
    const FileText file = readText(file_);
    readable_ = file.readable;
    if (!file.readable) {
        platform::log("Reminders could not be read from " + file_.string());
        return false;
    }
    if (!lock.held()) {
        // Without the lock nothing may be changed: a due entry handed out
        // here could be handed out again by the other process.
        platform::log("The reminders file could not be locked: " + lockFile_.string());
        return true;
    }
    std::optional<Ledger> parsed = parse(file.text.value_or("{}"));
    Ledger ledger = parsed.value_or(Ledger{});
    if (!parsed) {
        // The reminders are rebuilt from the diary at the next activation;
        // the damaged file is kept for whoever wants to know what happened.
        const fs::path damaged = freePath(file_, ".damaged");
        std::error_code error;
        fs::rename(file_, damaged, error);
        platform::log(
            error ? "The reminders file was damaged and could not be kept aside: " + error.message()
                  : "The reminders file was damaged and has been kept as " + damaged.string());
    }
    tidy(ledger, now, false);
    modify(ledger);
    tidy(ledger, now, false);

    const std::string text = textOf(ledger.pending, ledger.delivered);
    if (file.text && *file.text == text) {
        return true;
    }
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    if (!writeFileReplacing(file_, {bytes, text.size()})) {
        platform::log("Reminders could not be written to " + file_.string());
        return true;
    }
    ++writes_;
    return true;
}

std::optional<LedgerNotifier::Ledger> LedgerNotifier::current(Date now) const {
    FileText file;
    {
        const FileLock lock(lockFile_, LOCK_SH);
        file = readText(file_);
    }
    readable_ = file.readable;
    if (!file.readable) {
        return std::nullopt;
    }
    // A damaged file reads as an empty one; the next change keeps it aside.
    Ledger ledger = parse(file.text.value_or("{}")).value_or(Ledger{});
    for (const Change& change : changes_) {
        apply(ledger, change, now);
    }
    tidy(ledger, now, true);
    return ledger;
}

std::optional<LedgerNotifier::Ledger> LedgerNotifier::parse(const std::string& text) {
    Json parsed = Json::parse(text, nullptr, false);
    if (!parsed.is_object()) {
        return std::nullopt;
    }
    Ledger ledger;
    ledger.pending = parsed.value("pending", Json::array());
    ledger.delivered = parsed.value("delivered", Json::array());
    if (!ledger.pending.is_array() || !ledger.delivered.is_array()) {
        return std::nullopt;
    }
    return ledger;
}

void LedgerNotifier::tidy(Ledger& ledger, Date now, bool quiet) const {
    const Date staleBefore = now - kStale;
    struct Dated {
        Date fire;
        Json entry;
    };
    std::vector<Dated> pending;
    std::size_t stale = 0;
    for (Json& entry : ledger.pending) {
        const auto fire = fireDateOf(entry);
        if (!fire) {
            continue;
        }
        if (*fire < staleBefore) {
            ++stale;
            continue;
        }
        pending.push_back({*fire, std::move(entry)});
    }
    std::stable_sort(pending.begin(), pending.end(),
                     [](const Dated& a, const Dated& b) { return a.fire < b.fire; });
    if (!quiet && stale > 0) {
        platform::log("Reminders: " + std::to_string(stale) +
                      " more than 12 hours overdue were dropped unshown");
    }
    if (pending.size() > kMostPending) {
        if (!quiet) {
            platform::log("Reminders: only the soonest " + std::to_string(kMostPending) +
                          " are kept, " + std::to_string(pending.size() - kMostPending) +
                          " later ones were dropped");
        }
        pending.resize(kMostPending);
    }
    ledger.pending = Json::array();
    for (Dated& dated : pending) {
        ledger.pending.push_back(std::move(dated.entry));
    }

    Json delivered = Json::array();
    for (Json& entry : ledger.delivered) {
        const auto fire = fireDateOf(entry);
        if (fire && *fire >= staleBefore) {
            delivered.push_back(std::move(entry));
        }
    }
    ledger.delivered = std::move(delivered);
}

void LedgerNotifier::apply(Ledger& ledger, const Change& change, Date now) const {
    if (change.cancel) {
        Json kept = Json::array();
        for (Json& entry : ledger.pending) {
            const auto fire = fireDateOf(entry);
            if (fire && *fire <= now) {
                kept.push_back(std::move(entry));
            }
        }
        ledger.pending = std::move(kept);
        return;
    }
    const Json entry = entryOf(change.notification);
    // A rebuild that began just before a reminder's minute may end after
    // the timer took it: the same reminder, shown or due, is not added twice.
    const auto same = [&](const Json& other) { return other == entry; };
    if (std::ranges::any_of(ledger.delivered, same)) {
        return;
    }
    if (change.notification.fireDate <= now && std::ranges::any_of(ledger.pending, same)) {
        return;
    }
    ledger.pending.push_back(entry);
}

Json LedgerNotifier::entryOf(const LocalNotification& n) const {
    return {{"fireDate", dates_.dateToString(n.fireDate, formats::minute)},
            {"timeZone", n.timeZone},
            {"alertAction", n.alertAction},
            {"alertBody", n.alertBody},
            {"soundName", n.soundName}};
}

std::optional<LocalNotification> LedgerNotifier::notificationOf(const Json& entry) const {
    const auto fire = fireDateOf(entry);
    if (!fire) {
        return std::nullopt;
    }
    return LocalNotification{*fire, stringField(entry, "timeZone"),
                             stringField(entry, "alertAction"), stringField(entry, "alertBody"),
                             stringField(entry, "soundName")};
}

std::optional<Date> LedgerNotifier::fireDateOf(const Json& entry) const {
    if (!entry.is_object()) {
        return std::nullopt;
    }
    return dates_.dateFromStringFormat(stringField(entry, "fireDate"), formats::minute);
}

}  // namespace tilika::core
