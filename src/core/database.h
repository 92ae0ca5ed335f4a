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
    // then do nothing, as with an empty database.
    SQLite::Database* connectToBase();
    // Closes the connection; the next connectToBase() opens it again.
    void disconnectFromBase();

    // The daily copy, named "yyMMdd.sqlite" for yesterday, taken through
    // SQLite's online backup so it is consistent even with the file open.
    // Keeps at most kReserveFiles ".sqlite" files, deleting the oldest copy.
    // False when the copy was due and could not be made; the next connect
    // tries again.
    bool toReserv();

    // True when the file can't be opened, or when its reference table has
    // rows; false when the query fails or the table is empty.
    bool testBaseFile() const;

    // A separate connection for work off the owning thread.
    std::unique_ptr<SQLite::Database> openConnection() const;

private:
    const platform::Folders& folders_;
    const Dates& dates_;
    std::string fileName_;
    std::unique_ptr<SQLite::Database> db_;
    std::string backupCheckedOn_;  // "yyMMdd" of the day whose copy was last seen to
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

// One user action's writes as one transaction: they all land, or none do.
// Inside a transaction the caller already holds, it joins that one instead,
// so an operation that is whole by itself can also be part of a larger one.
class WriteTransaction {
public:
    explicit WriteTransaction(SQLite::Database& db);
    ~WriteTransaction();
    WriteTransaction(const WriteTransaction&) = delete;
    WriteTransaction& operator=(const WriteTransaction&) = delete;

    void commit();

private:
    SQLite::Database& db_;
    bool owner_ = false;
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
