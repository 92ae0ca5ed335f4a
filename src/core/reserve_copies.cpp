#include "core/reserve_copies.h"

#include <SQLiteCpp/Backup.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <cctype>
#include <sqlite3.h>
#include <string>
#include <system_error>

#include "core/dates.h"
#include "core/words.h"
#include "platform/log.h"

namespace tilika::core {

namespace fs = std::filesystem;

namespace {

constexpr int kBusyTimeoutMs = 5000;

bool isDamageCode(int code) {
    const int primary = code & 0xff;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

int countOf(SQLite::Database& db, const char* sql) {
    SQLite::Statement query(db, sql);
    return query.executeStep() ? query.getColumn(0).getInt() : 0;
}

}  // namespace

bool isCopyName(const fs::path& file) {
    const std::string stem = file.stem().string();
    return file.extension() == ".sqlite" && stem.size() == 6 &&
           std::all_of(stem.begin(), stem.end(),
                       [](unsigned char c) { return std::isdigit(c) != 0; });
}

FileHealth checkDatabaseFile(const fs::path& file) {
    try {
        // Read-write, without creating: a crash may have left a journal to
        // roll back, which a read-only connection would report as an error.
        SQLite::Database db(file.string(), SQLite::OPEN_READWRITE, kBusyTimeoutMs);
        SQLite::Statement check(db, "PRAGMA quick_check");
        if (!check.executeStep() || check.getColumn(0).getString() != "ok") {
            return FileHealth::damaged;
        }
        // A file cut short can still read as an empty database; without its
        // tables it is no diary.
        const int tables = countOf(db,
                                   "select count(*) from sqlite_master where type='table' and "
                                   "name in ('child', 'childdata')");
        return tables == 2 ? FileHealth::sound : FileHealth::damaged;
    } catch (const SQLite::Exception& e) {
        const int code = e.getExtendedErrorCode() > 0 ? e.getExtendedErrorCode() : e.getErrorCode();
        platform::log("Checking " + file.filename().string() + ": " + e.what());
        return isDamageCode(code) ? FileHealth::damaged : FileHealth::unknown;
    }
}

bool backupDatabase(const fs::path& from, const fs::path& to) {
    fs::path partial = to;
    partial += ".part";
    std::error_code error;
    fs::remove(partial, error);
    try {
        SQLite::Database source(from.string(), SQLite::OPEN_READONLY, kBusyTimeoutMs);
        SQLite::Database target(partial.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        const int result = SQLite::Backup(target, source).executeStep();
        if (result != SQLITE_DONE) {
            throw SQLite::Exception("the copy did not finish", result);
        }
    } catch (const SQLite::Exception& e) {
        platform::log("Copying " + from.filename().string() + " failed: " + e.what());
        fs::remove(partial, error);
        return false;
    }
    fs::rename(partial, to, error);
    if (error) {
        fs::remove(partial, error);
        return false;
    }
    return true;
}

std::vector<ReserveCopy> reserveCopies(const fs::path& folder, const Dates& dates) {
    std::vector<ReserveCopy> copies;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const fs::path& file = entry.path();
        if (!isCopyName(file) || !entry.is_regular_file(error)) {
            continue;
        }
        const auto day = dates.dateFromStringFormat(file.stem().string(), formats::backupDay);
        if (!day) {
            continue;
        }
        ReserveCopy copy{file, *day};
        copy.sound = checkDatabaseFile(file) == FileHealth::sound;
        if (copy.sound) {
            try {
                SQLite::Database db(file.string(), SQLite::OPEN_READONLY, kBusyTimeoutMs);
                copy.children =
                    countOf(db, "select count(*) from child where ifnull(deleted,0)<>1");
                copy.days = countOf(db, "select count(distinct date(sdat)) from childdata");
            } catch (const SQLite::Exception& e) {
                platform::log("Reading " + file.filename().string() + ": " + e.what());
                copy.sound = false;
            }
        }
        copies.push_back(std::move(copy));
    }
    std::sort(copies.begin(), copies.end(), [](const ReserveCopy& a, const ReserveCopy& b) {
        if (a.sound != b.sound) {
            return a.sound;
        }
        return a.day > b.day;
    });
    return copies;
}

std::string copySummary(const ReserveCopy& copy) {
    if (!copy.sound) {
        return "копия повреждена";
    }
    return std::to_string(copy.children) + " " +
           rusForms(copy.children, "ребенок", "ребенка", "детей") + ", " +
           std::to_string(copy.days) + " " + rusForms(copy.days, "день", "дня", "дней") +
           " в дневнике";
}

}  // namespace tilika::core
