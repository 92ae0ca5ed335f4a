#include "core/database.h"

#include <SQLiteCpp/Backup.h>
#include <SQLiteCpp/Exception.h>

#include <algorithm>
#include <cctype>
#include <sqlite3.h>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "core/dates.h"
#include "core/files.h"
#include "platform/folders.h"
#include "platform/log.h"

namespace tilika::core {

namespace fs = std::filesystem;
using platform::SystemFolder;

namespace {

constexpr int kBusyTimeoutMs = 5000;
constexpr int kCopyAttempts = 3;

std::string lowerAscii(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// SQLite keeps an unfinished transaction in files beside the database; they
// travel with it, or a crash's pending changes would be lost on the way.
constexpr const char* kSideFiles[] = {"-journal", "-wal", "-shm"};

bool moveDatabase(const fs::path& from, const fs::path& to) {
    std::error_code error;
    for (const char* side : kSideFiles) {
        fs::path target = to;
        target += side;
        fs::remove(target, error);
    }
    if (!moveReplacing(from, to)) {
        return false;
    }
    for (const char* side : kSideFiles) {
        fs::path source = from;
        source += side;
        if (fs::exists(source, error)) {
            fs::path target = to;
            target += side;
            moveReplacing(source, target);
        }
    }
    return true;
}

// Copies through a temporary name so that a crash never leaves a half file
// under the real one.
bool copyWhole(const fs::path& from, const fs::path& to) {
    fs::path partial = to;
    partial += ".part";
    std::error_code error;
    fs::copy_file(from, partial, fs::copy_options::overwrite_existing, error);
    if (!error) {
        fs::rename(partial, to, error);
    }
    if (error) {
        fs::remove(partial, error);
        return false;
    }
    return true;
}

}  // namespace

DatabaseStore::DatabaseStore(const platform::Folders& folders, const Dates& dates,
                             std::string fileName)
    : folders_(folders), dates_(dates), fileName_(std::move(fileName)) {}

DatabaseStore::~DatabaseStore() = default;

fs::path DatabaseStore::path() const {
    return folders_.path(SystemFolder::Reserv) / fileName_;
}

bool DatabaseStore::fromOldVersionNewRestore() {
    disconnectFromBase();
    const fs::path live = path();
    std::error_code error;
    fs::create_directories(live.parent_path(), error);

    for (SystemFolder oldHome : {SystemFolder::Library, SystemFolder::Document}) {
        const fs::path old = folders_.path(oldHome) / fileName_;
        if (!fs::exists(old, error)) {
            continue;
        }
        // The file from the old home wins, as it always has; whatever it
        // displaces is kept beside it rather than lost.
        if (fs::exists(live, error)) {
            moveDatabase(live, freePath(live, ".replaced"));
        }
        if (!moveDatabase(old, live)) {
            platform::log("Could not move the database from " + old.string());
        }
    }

    if (fs::exists(live, error)) {
        return false;
    }
    const fs::path shipped = folders_.path(SystemFolder::Root) / fileName_;
    if (!copyWhole(shipped, live)) {
        platform::log("Could not copy the template database from " + shipped.string());
    }
    return true;
}

SQLite::Database* DatabaseStore::connectToBase() {
    const std::string today = dates_.dateToString(dates_.now(), formats::backupDay);
    if (today != backupCheckedOn_) {
        // A copy that failed (a full disk, a file locked by another program)
        // is tried again on later connects, but a few times only: each try
        // reads the whole file.
        if (failedCopyDay_ != today) {
            failedCopyDay_ = today;
            failedCopies_ = 0;
        }
        if (toReserv()) {
            backupCheckedOn_ = today;
        } else if (++failedCopies_ >= kCopyAttempts) {
            backupCheckedOn_ = today;
        }
    }
    if (db_ && sqlite3_db_readonly(db_->getHandle(), "main") == 1 &&
        sqlite3_get_autocommit(db_->getHandle()) != 0) {
        // A file opened while its folder refused writes stays read-only on
        // that connection, even once the folder takes writes again; a fresh
        // connection is tried, so that a save the user repeats can land.
        // Never under a transaction: an operation joining one holds the
        // connection it began with.
        if (auto fresh = openConnection();
            fresh && sqlite3_db_readonly(fresh->getHandle(), "main") == 0) {
            db_ = std::move(fresh);
        }
    }
    if (!db_) {
        db_ = openConnection();
    }
    return db_.get();
}

void DatabaseStore::disconnectFromBase() {
    db_.reset();
}

std::unique_ptr<SQLite::Database> DatabaseStore::openConnection() const {
    const fs::path live = path();
    std::error_code error;
    // Opening must never create an empty file where the diary should be.
    if (!fs::is_regular_file(live, error)) {
        return nullptr;
    }
    try {
        return std::make_unique<SQLite::Database>(live.string(), SQLite::OPEN_READWRITE,
                                                  kBusyTimeoutMs);
    } catch (const SQLite::Exception& e) {
        platform::log(std::string("Could not open the database: ") + e.what());
        return nullptr;
    }
}

bool DatabaseStore::toReserv() {
    const fs::path live = path();
    const fs::path folder = live.parent_path();
    std::error_code error;
    if (!fs::is_regular_file(live, error)) {
        return true;
    }
    const Date yesterday = dates_.addDays(dates_.now(), -1);
    const fs::path copy = folder / (dates_.dateToString(yesterday, formats::backupDay) + ".sqlite");
    if (fs::exists(copy, error)) {
        return true;
    }

    fs::path partial = copy;
    partial += ".part";
    fs::remove(partial, error);
    // The copy reads through a connection of its own, so it holds what has
    // been committed and nothing of a change still under way.
    try {
        SQLite::Database source(live.string(), SQLite::OPEN_READONLY, kBusyTimeoutMs);
        SQLite::Database target(partial.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        const int result = SQLite::Backup(target, source).executeStep();
        if (result != SQLITE_DONE) {
            throw SQLite::Exception("the copy did not finish", result);
        }
    } catch (const SQLite::Exception& e) {
        // A half copy must not stand in for the day's copy: it would block
        // the real one and push a good one out of the folder.
        platform::log(std::string("Daily copy of the database failed: ") + e.what());
        fs::remove(partial, error);
        return false;
    }
    fs::rename(partial, copy, error);
    if (error) {
        fs::remove(partial, error);
        return false;
    }

    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() == ".sqlite") {
            names.push_back(entry.path().filename().string());
        }
    }
    if (names.size() <= kReserveFiles) {
        return true;
    }
    // Copies are named by date in digits, so the first name is the oldest;
    // one goes per day. The live file sorts after the digits, and is never
    // taken even if something odd sorts before it.
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return lowerAscii(a) < lowerAscii(b);
    });
    if (names.front() != fileName_) {
        fs::remove(folder / names.front(), error);
    }
    return true;
}

bool DatabaseStore::testBaseFile() const {
    try {
        SQLite::Database db(path().string(), SQLite::OPEN_READONLY);
        try {
            SQLite::Statement count(db, "select count(*) from childconst");
            return count.executeStep() && count.getColumn(0).getInt() > 0;
        } catch (const SQLite::Exception&) {
            return false;
        }
    } catch (const SQLite::Exception&) {
        return true;
    }
}

namespace {

// The transactions begun on this thread, innermost last; a part that joins
// finds the one of its connection here.
thread_local std::vector<WriteTransaction*> tOpenTransactions;

WriteFailure failureOfCode(int code) {
    switch (code & 0xff) {
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return WriteFailure::readOnly;
        case SQLITE_CANTOPEN:
            // The file is there (it was open), so what can't be made is the
            // journal beside it: the folder refuses writes.
            return WriteFailure::readOnly;
        case SQLITE_FULL:
            return WriteFailure::diskFull;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return WriteFailure::busy;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return WriteFailure::damaged;
        case SQLITE_IOERR:
            return WriteFailure::diskError;
        default:
            return WriteFailure::other;
    }
}

}  // namespace

WriteFailure failureOf(const std::exception& error) noexcept {
    if (const auto* failed = dynamic_cast<const WriteFailed*>(&error)) {
        return failed->failure();
    }
    if (const auto* sqlite = dynamic_cast<const SQLite::Exception*>(&error)) {
        // The extended code holds the primary one in its low byte, and is
        // the one set for errors raised by the connection itself.
        const int code = sqlite->getExtendedErrorCode() > 0 ? sqlite->getExtendedErrorCode()
                                                            : sqlite->getErrorCode();
        return failureOfCode(code);
    }
    return WriteFailure::other;
}

WriteTransaction::WriteTransaction(SQLite::Database& db) : db_(db) {
    const auto open = std::find_if(
        tOpenTransactions.rbegin(), tOpenTransactions.rend(),
        [&](const WriteTransaction* t) { return t->db_.getHandle() == db_.getHandle(); });
    const bool inTransaction = sqlite3_get_autocommit(db_.getHandle()) == 0;
    if (open != tOpenTransactions.rend()) {
        outer_ = *open;
        // After some errors (a full disk, an I/O error) SQLite cancels the
        // whole transaction; what followed would be written bit by bit.
        if (!inTransaction) {
            if (!outer_->partFailure_) {
                outer_->partFailure_ = failureOfCode(sqlite3_extended_errcode(db_.getHandle()));
            }
            throw SQLite::Exception("the transaction was cancelled by an earlier error",
                                    SQLITE_ABORT);
        }
        return;
    }
    // A transaction begun by hand has no one a failed part could tell.
    if (inTransaction) {
        throw std::logic_error("a write joined a transaction it can't report to");
    }
    db_.exec("BEGIN");
    tOpenTransactions.push_back(this);
}

WriteTransaction::~WriteTransaction() {
    if (outer_ != nullptr) {
        if (!done_ && !outer_->partFailure_) {
            // The exception that ends this part is not ours to see; the
            // connection still holds the error of the statement that threw.
            outer_->partFailure_ = failureOfCode(sqlite3_extended_errcode(db_.getHandle()));
        }
        return;
    }
    std::erase(tOpenTransactions, this);
    // SQLite may have rolled back already (a full disk, an I/O error).
    if (!done_ && sqlite3_get_autocommit(db_.getHandle()) == 0) {
        try {
            db_.exec("ROLLBACK");
        } catch (const SQLite::Exception& e) {
            platform::log(std::string("Rollback failed: ") + e.what());
        }
    }
}

void WriteTransaction::commit() {
    if (done_) {
        return;
    }
    if (outer_ != nullptr) {
        done_ = true;
        return;
    }
    if (partFailure_) {
        // Leaving undone: the destructor rolls everything back.
        throw WriteFailed(*partFailure_);
    }
    db_.exec("COMMIT");
    done_ = true;
}

std::optional<std::string> stringFromBase(const SQLite::Statement& statement, int column) {
    const SQLite::Column value = statement.getColumn(column);
    if (value.isNull()) {
        return std::nullopt;
    }
    return value.getString();
}

std::optional<Date> dateFromBase(const Dates& dates, const SQLite::Statement& statement, int column,
                                 bool time) {
    const std::optional<std::string> text = stringFromBase(statement, column);
    if (!text) {
        return std::nullopt;
    }
    return dates.dateFromStringFormat(*text, time ? formats::moment : formats::day);
}

void dateToBase(const Dates& dates, SQLite::Statement& statement, int position,
                std::optional<Date> date, bool time) {
    if (!date) {
        statement.bind(position);
        return;
    }
    statement.bind(position, dates.dateToString(date, time ? formats::moment : formats::day));
}

}  // namespace tilika::core
