#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>

#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/date.h"
#include "core/write_result.h"
#include "platform/log.h"

namespace tilika::platform {
class Folders;
}

namespace tilika::core {

class Dates;

// The diary's SQLite file: where it lives, how it comes into being, how it is
// opened and how it is copied once a day.
//
// One connection stays open for the life of the store (for the thread that
// owns it); background passes open their own with openConnection(). Every
// operation starts with connectToBase(), which also takes the daily backup
// the first time it is called on a new day, so the copy always holds the
// data as they were before that day's first change.
class DatabaseStore {
public:
    static constexpr std::string_view kChildFileName = "child.sqlite";
    // Copies kept in the reserve folder, the live file included.
    static constexpr std::size_t kReserveFiles = 5;

    DatabaseStore(const platform::Folders& folders, const Dates& dates,
                  std::string fileName = std::string(kChildFileName));
    ~DatabaseStore();
    DatabaseStore(const DatabaseStore&) = delete;
    DatabaseStore& operator=(const DatabaseStore&) = delete;

    // The live database: the reserve folder and the edition's file name.
    std::filesystem::path path() const;

    // Brings the database into being: moves a file left in one of the old
    // homes (Library, Documents) into the reserve folder, and copies the
    // shipped template when there is still none. True exactly when the
    // template had to be copied, that is when the database is new.
    bool fromOldVersionNewRestore();

    // The open connection, or nullptr when the file can't be opened; callers
    // then do nothing, as with an empty database. A connection that could
    // only read is opened again when it can write by now, so an operation
    // takes the connection as it starts and keeps it only while it runs.
    SQLite::Database* connectToBase();
    // Closes the connection; the next connectToBase() opens it again.
    void disconnectFromBase();

    // The daily copy, named "yyMMdd.sqlite" for yesterday, taken through
    // SQLite's online backup so it is consistent even with the file open.
    // Keeps at most kReserveFiles ".sqlite" files, deleting the oldest copy.
    // A copy that fails its check is not kept, so the rotation, which only
    // follows a sound new copy, never removes the last sound one.
    // False when the copy was due and could not be made; the next connect
    // tries again.
    bool toReserv();

    // True when the file can't be opened, or when its reference table has
    // rows; false when the query fails or the table is empty.
    bool testBaseFile() const;

    // A separate connection for work off the owning thread; nullptr when
    // the file can't be opened. It never takes the daily copy, and it waits
    // a few seconds on a file busy with another connection's write instead
    // of failing at once.
    std::unique_ptr<SQLite::Database> openConnection() const;

    // The live file failed its check (at the start, or the first connect of
    // a day) and was put aside under `damagedFile()`. Until a copy is
    // restored, or the user chooses to start empty, there is no database:
    // every operation finds none, and nothing is created in its place.
    bool damaged() const { return damaged_; }
    // The name the damaged file was kept under; empty if it could not be
    // moved.
    const std::filesystem::path& damagedFile() const { return damagedFile_; }

    // Makes a daily copy the live database, through SQLite's backup. The
    // file it replaces, if any, is kept beside it as ".replaced". False, and
    // nothing changed, when the copy is not sound or can't be copied.
    bool restoreFrom(const std::filesystem::path& copy);
    // Puts the live file (if any) aside and starts from the template, as a
    // new installation does. True when the template was copied.
    bool startEmpty();

private:
    // Checks the live file; a damaged one is put aside, and false returned.
    bool checkLive();

    const platform::Folders& folders_;
    const Dates& dates_;
    std::string fileName_;
    std::unique_ptr<SQLite::Database> db_;
    std::string backupCheckedOn_;  // "yyMMdd" of the day whose copy was last seen to
    std::string liveCheckedOn_;    // "yyMMdd" of the day the live file was last checked
    bool damaged_ = false;
    std::filesystem::path damagedFile_;
    std::string failedCopyDay_;
    int failedCopies_ = 0;
};

// Runs one database operation. A statement that fails, or a stored value
// that can't be read, ends the operation quietly (with a log line): callers
// show an empty result, never an error. Returns false when it failed.
template <class Operation>
bool runGuarded(std::string_view what, Operation&& operation) noexcept {
    try {
        operation();
        return true;
    } catch (const std::exception& e) {
        platform::log(std::string(what) + ": " + e.what());
        return false;
    }
}

// The reason behind an exception from a write, by SQLite's error code.
WriteFailure failureOf(const std::exception& error) noexcept;

// Runs one write that a user's action asked for. A statement that fails, or
// a part that reports a failure (WriteFailed), ends it with a log line, and
// the caller is told why, so that the screen can say so. Any transaction the
// operation opened has rolled back by then.
template <class Operation>
WriteResult tryWrite(std::string_view what, Operation&& operation) noexcept {
    try {
        operation();
        return {};
    } catch (const std::exception& e) {
        platform::log(std::string(what) + ": " + e.what());
        return failureOf(e);
    }
}

// One user action's writes as one transaction: they all land, or none do.
//
// Inside a transaction the caller already holds, it joins that one instead,
// so an operation that is whole by itself can also be part of a larger one.
// A joined part that ends without commit() (a statement in it threw) marks
// the transaction it joined as failed, and that one's commit() then rolls
// everything back and throws: a failure inside can't be caught and
// forgotten on the way out, leaving half of the action to be committed.
//
// It is the only way a transaction is begun on a connection: one begun by
// hand has no one a failed part could tell, and a part refuses to join it.
// A connection is used by one thread at a time, so the open transactions
// are kept per thread.
class WriteTransaction {
public:
    explicit WriteTransaction(SQLite::Database& db);
    ~WriteTransaction();
    WriteTransaction(const WriteTransaction&) = delete;
    WriteTransaction& operator=(const WriteTransaction&) = delete;

    // Ends this part of the work as done. The transaction that began it
    // writes everything to the file, or throws when a part failed (or the
    // file refused the commit); nothing is kept then.
    void commit();

private:
    SQLite::Database& db_;
    WriteTransaction* outer_ = nullptr;        // the one this part joined
    std::optional<WriteFailure> partFailure_;  // the first joined part that failed
    bool done_ = false;
};

// Reading and binding columns in the stored forms.
std::optional<std::string> stringFromBase(const SQLite::Statement& statement, int column);
// A day "yyyy-MM-dd", or with `time` a moment "yyyy-MM-dd HH:mm:ss"; NULL or
// unreadable text gives nothing.
std::optional<Date> dateFromBase(const Dates& dates, const SQLite::Statement& statement, int column,
                                 bool time);
// Binds the date as text in the same forms; a missing date binds NULL.
void dateToBase(const Dates& dates, SQLite::Statement& statement, int position,
                std::optional<Date> date, bool time);

}  // namespace tilika::core
