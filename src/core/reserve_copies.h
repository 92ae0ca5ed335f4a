#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/date.h"

namespace tilika::core {

class Dates;

// What a look at a diary file found.
enum class FileHealth {
    sound,    // it opens, passes SQLite's quick check and holds the diary's tables
    damaged,  // not a database, or one whose pages or tables are broken
    unknown,  // it could not be read just now (locked, a disk error): no verdict
};

// Reads the whole file once (PRAGMA quick_check). Only what SQLite calls
// corrupt, or not a database, counts as damaged: a file that is busy or out
// of reach for a moment must never be taken for a broken one and put aside.
FileHealth checkDatabaseFile(const std::filesystem::path& file);

// Copies a database through SQLite's online backup into `to`, by way of a
// ".part" file so that a failure never leaves half a copy under the name.
bool backupDatabase(const std::filesystem::path& from, const std::filesystem::path& to);

// True for the name of a daily copy, "yyMMdd.sqlite". Other copies kept in
// the reserve folder (the one taken before an upgrade) are not part of the
// daily rotation.
bool isCopyName(const std::filesystem::path& file);

// One daily copy of the reserve folder, as the restore screen lists it.
struct ReserveCopy {
    std::filesystem::path file;
    Date day;  // the day whose data it holds, from its name
    bool sound = false;
    int children = 0;  // profiles not deleted
    int days = 0;      // days with entries in the diary
};

// The daily copies ("yyMMdd.sqlite") of the folder, each checked: the sound
// ones first, newest first, then the damaged ones, newest first.
std::vector<ReserveCopy> reserveCopies(const std::filesystem::path& folder, const Dates& dates);

// What a copy holds, as the list says it: "2 ребенка, 12 дней в дневнике",
// or that it is damaged.
std::string copySummary(const ReserveCopy& copy);

}  // namespace tilika::core
