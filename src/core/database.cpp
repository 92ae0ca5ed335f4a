#include "core/database.h"

#include <SQLiteCpp/Exception.h>

#include <algorithm>
#include <cctype>
#include <sqlite3.h>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "core/dates.h"
#include "core/files.h"
#include "core/reserve_copies.h"
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

// Indexes added to the template after files were made from it. Each costs
// one look at the schema once it is there; a file that takes no writes (a
// read-only disk, a copy being restored) works on without it.
void addLaterIndexes(SQLite::Database& db) {
    if (sqlite3_db_readonly(db.getHandle(), "main") == 1) {
        return;
    }
    try {
        db.exec("CREATE INDEX IF NOT EXISTS childdata_type_day ON childdata (type, date(sdat))");
    } catch (const SQLite::Exception& e) {
        platform::log(std::string("Could not add an index to the database: ") + e.what());
    }
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
    if (damaged_) {
        return false;
    }
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

    // A damaged diary is put aside before anything is built on it, and its
    // place stays empty: a template copied over it would look like a diary
    // that lost everything.
    liveCheckedOn_ = dates_.dateToString(dates_.now(), formats::backupDay);
    if (!checkLive() || fs::exists(live, error)) {
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
    // The first connect of a day reads the whole file once, before the day's
    // copy is made from it: a damaged file must never become a copy.
    if (today != liveCheckedOn_ && !damaged_) {
        liveCheckedOn_ = today;
        checkLive();
    }
    if (damaged_) {
        return nullptr;
    }
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
    std::unique_ptr<SQLite::Database> db;
    try {
        db = std::make_unique<SQLite::Database>(live.string(), SQLite::OPEN_READWRITE,
                                                kBusyTimeoutMs);
    } catch (const SQLite::Exception& e) {
        platform::log(std::string("Could not open the database: ") + e.what());
        return nullptr;
    }
    addLaterIndexes(*db);
    return db;
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

    // The copy reads through a connection of its own, so it holds what has
    // been committed and nothing of a change still under way. A half copy,
    // or one that does not read back whole, must not stand in for the day's
    // copy: it would block the real one and push a good one out of the
    // folder.
    if (!backupDatabase(live, copy)) {
        return false;
    }
    if (checkDatabaseFile(copy) != FileHealth::sound) {
        platform::log("The daily copy of the database does not read back whole");
        fs::remove(copy, error);
        return false;
    }

    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (isCopyName(entry.path()) || entry.path().filename() == fileName_) {
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

bool DatabaseStore::checkLive() {
    const fs::path live = path();
    std::error_code error;
    if (!fs::is_regular_file(live, error) || checkDatabaseFile(live) != FileHealth::damaged) {
        return true;
    }
    disconnectFromBase();
    damaged_ = true;
    // Kept, never deleted: whatever can still be read from it is the
    // user's, and a later tool may get more out of it than we do.
    const fs::path aside = freePath(live, ".damaged");
    if (moveDatabase(live, aside)) {
        damagedFile_ = aside;
        platform::log("The database is damaged; kept as " + aside.filename().string());
    } else {
        damagedFile_.clear();
        platform::log("The database is damaged and could not be put aside");
    }
    return false;
}

bool DatabaseStore::restoreFrom(const fs::path& copy) {
    if (checkDatabaseFile(copy) != FileHealth::sound) {
        return false;
    }
    const fs::path live = path();
    fs::path restored = live;
    restored += ".restored";
    if (!backupDatabase(copy, restored)) {
        return false;
    }
    disconnectFromBase();
    std::error_code error;
    if (fs::exists(live, error) && !moveDatabase(live, freePath(live, ".replaced"))) {
        fs::remove(restored, error);
        return false;
    }
    if (!moveDatabase(restored, live)) {
        return false;
    }
    damaged_ = false;
    liveCheckedOn_ = dates_.dateToString(dates_.now(), formats::backupDay);
    return true;
}

bool DatabaseStore::startEmpty() {
    disconnectFromBase();
    const fs::path live = path();
    std::error_code error;
    if (fs::exists(live, error) && !moveDatabase(live, freePath(live, ".replaced"))) {
        return false;
    }
    damaged_ = false;
    return fromOldVersionNewRestore() && fs::is_regular_file(live, error);
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
