#include "session/upgrade.h"

#include <SQLiteCpp/Statement.h>

#include <chrono>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/reserve_copies.h"
#include "core/text.h"
#include "platform/folders.h"
#include "platform/log.h"
#include "platform/number_text.h"
#include "platform/settings_store.h"

namespace tilika::session {

namespace fs = std::filesystem;
using platform::SystemFolder;

namespace {

constexpr int kBusyTimeoutMs = 5000;

core::Date fromSeconds(long long seconds) {
    return core::Date{std::chrono::seconds{seconds}};
}

// The shipped template, which holds every table's current statement and
// the rows a new diary starts with.
std::unique_ptr<SQLite::Database> openTemplate(const core::Context& context) {
    const fs::path shipped =
        context.folders.path(SystemFolder::Root) / context.database.path().filename();
    std::error_code error;
    if (!fs::is_regular_file(shipped, error)) {
        return nullptr;
    }
    try {
        return std::make_unique<SQLite::Database>(shipped.string(), SQLite::OPEN_READONLY);
    } catch (const SQLite::Exception& e) {
        platform::log(std::string("Could not open the template database: ") + e.what());
        return nullptr;
    }
}

// Creates a table with the template's own statement, so that a table an
// upgrade adds has exactly the shape of a new diary's. Throws when it can't.
void createAsTemplate(SQLite::Database& db, SQLite::Database& shipped, std::string_view table) {
    SQLite::Statement query(shipped, "select sql from sqlite_master where type='table' and name=?");
    query.bind(1, std::string(table));
    if (!query.executeStep()) {
        throw std::runtime_error("the template has no table " + std::string(table));
    }
    db.exec(query.getColumn(0).getString());
}

// Old achievement and health marks were one row per mark, the mark's list
// row number in the type ("achiv105"); today a day holds all of them in one
// row. The numbers are offsets into the lists as they were then.
struct OldMarks {
    long long chid = 0;
    long long dat = 0;
    std::vector<std::string> achive;
    std::vector<std::string> health;
};

std::optional<std::pair<std::string_view, int>> oldMark(std::string_view type) {
    for (auto [prefix, offset] :
         {std::pair<std::string_view, int>{"achiv", 100}, {"health", 190}}) {
        if (type.size() > prefix.size() && type.substr(0, prefix.size()) == prefix) {
            const std::string_view number = type.substr(prefix.size());
            if (number.find_first_not_of("0123456789") == std::string_view::npos) {
                return std::pair{prefix, platform::intValue(number) - offset};
            }
        }
    }
    return std::nullopt;
}

void convertOldMarks(SQLite::Database& db, const core::Dates& dates) {
    std::map<std::pair<long long, std::string>, OldMarks> days;
    std::vector<long long> converted;
    SQLite::Statement query(db,
                            "select datid, chid, dat, type from childdata where type like "
                            "'achiv%' or type like 'health%' order by dat, datid");
    while (query.executeStep()) {
        const auto mark = oldMark(query.getColumn(3).getString());
        if (!mark) {
            continue;
        }
        const long long chid = query.getColumn(1).getInt64();
        const long long dat = query.getColumn(2).getInt64();
        OldMarks& day = days[{chid, dates.dateToString(fromSeconds(dat), core::formats::day)}];
        if (day.achive.empty() && day.health.empty()) {
            day.chid = chid;
            day.dat = dat;
        }
        (mark->first == "achiv" ? day.achive : day.health).push_back(std::to_string(mark->second));
        converted.push_back(query.getColumn(0).getInt64());
    }
    if (converted.empty()) {
        return;
    }
    core::WriteTransaction transaction(db);
    SQLite::Statement insert(db,
                             "insert into childdata (chid, dat, type, value) "
                             "values (?, ?, ?, ?)");
    for (const auto& [key, day] : days) {
        for (const auto& [type, marks] :
             {std::pair{"achive", &day.achive}, std::pair{"health", &day.health}}) {
            if (marks->empty()) {
                continue;
            }
            insert.bind(1, static_cast<std::int64_t>(day.chid));
            insert.bind(2, static_cast<std::int64_t>(day.dat));
            insert.bind(3, type);
            insert.bind(4, core::join(*marks, "<tr>"));
            insert.exec();
            insert.reset();
        }
    }
    SQLite::Statement remove(db, "delete from childdata where datid=?");
    for (long long datid : converted) {
        remove.bind(1, static_cast<std::int64_t>(datid));
        remove.exec();
        remove.reset();
    }
    transaction.commit();
}

// Fills the NULL cells of a text column from a seconds column, as dates in
// the given form, in one transaction: years of diary rows take one write.
void fillFromSeconds(SQLite::Database& db, const core::Dates& dates, std::string_view table,
                     std::string_view key, std::string_view target, std::string_view source,
                     std::string_view format) {
    core::runGuarded("upgrade dates", [&] {
        const std::string from(table);
        SQLite::Statement query(db, "select " + std::string(key) + ", " + std::string(source) +
                                        " from " + from + " where " + std::string(target) +
                                        " is null and " + std::string(source) + " is not null");
        std::vector<std::pair<long long, long long>> rows;
        while (query.executeStep()) {
            rows.emplace_back(query.getColumn(0).getInt64(), query.getColumn(1).getInt64());
        }
        if (rows.empty()) {
            return;
        }
        core::WriteTransaction transaction(db);
        SQLite::Statement update(db, "update " + from + " set " + std::string(target) +
                                         "=? where " + std::string(key) + "=?");
        for (const auto& [id, seconds] : rows) {
            update.bind(1, dates.dateToString(fromSeconds(seconds), format));
            update.bind(2, static_cast<std::int64_t>(id));
            update.exec();
            update.reset();
        }
        transaction.commit();
    });
}

// The first versions kept the ticks of the first profile's tags in the
// settings.
void addOldTags(SQLite::Database& db, const platform::SettingsStore& settings) {
    SQLite::Statement first(db, "select min(chid) from child");
    if (!first.executeStep() || first.getColumn(0).isNull()) {
        return;
    }
    const long long chid = first.getColumn(0).getInt64();
    SQLite::Statement insert(db,
                             "insert into childselect (chid, seltypeid, seltagid) "
                             "values (?, 1, ?)");
    for (int n = 1; n <= 31; ++n) {
        if (settings.boolValue("picTag" + std::to_string(n))) {
            insert.bind(1, static_cast<std::int64_t>(chid));
            insert.bind(2, n);
            insert.exec();
            insert.reset();
        }
    }
}

}  // namespace

bool Upgrade::prepares(SQLite::Database& db, std::string_view sql) {
    try {
        SQLite::Statement probe(db, std::string(sql));
        return true;
    } catch (const SQLite::Exception&) {
        return false;
    }
}

bool Upgrade::execStep(SQLite::Database& db, std::string_view sql) {
    return core::runGuarded("upgrade", [&] { db.exec(std::string(sql)); });
}

bool Upgrade::anyRow(SQLite::Database& db, std::string_view sql) {
    bool found = false;
    core::runGuarded("upgrade", [&] {
        SQLite::Statement query(db, std::string(sql));
        found = query.executeStep();
    });
    return found;
}

std::unique_ptr<SQLite::Database> Upgrade::connect() const {
    // Not the store's connect: opening it there would already add indexes,
    // which is a change made before the copy of the old diary is taken.
    const fs::path live = context_.database.path();
    std::error_code error;
    if (context_.database.damaged() || !fs::is_regular_file(live, error)) {
        return nullptr;
    }
    try {
        return std::make_unique<SQLite::Database>(live.string(), SQLite::OPEN_READWRITE,
                                                  kBusyTimeoutMs);
    } catch (const SQLite::Exception& e) {
        platform::log(std::string("Could not open the database to upgrade it: ") + e.what());
        return nullptr;
    }
}

bool Upgrade::beforeChange() {
    if (!backupFile_.empty()) {
        return true;
    }
    const fs::path live = context_.database.path();
    const std::string stem =
        "before-upgrade-" +
        context_.dates.dateToString(context_.dates.now(), core::formats::backupDay);
    fs::path copy = live.parent_path() / (stem + ".sqlite");
    std::error_code error;
    for (int n = 2; fs::exists(copy, error); ++n) {
        copy = live.parent_path() / (stem + "-" + std::to_string(n) + ".sqlite");
    }
    if (!core::backupDatabase(live, copy)) {
        platform::log("Could not keep a copy of the diary before upgrading it");
        return false;
    }
    backupFile_ = copy;
    return true;
}

bool Upgrade::addColumnIfMissing(SQLite::Database& db, std::string_view probe,
                                 std::string_view alter) {
    if (prepares(db, probe) || !beforeChange()) {
        return false;
    }
    return execStep(db, alter);
}

void Upgrade::addSeedRows(SQLite::Database& db, std::initializer_list<int> seeds) {
    auto shipped = openTemplate(context_);
    if (!shipped || !beforeChange()) {
        return;
    }
    core::runGuarded("seed rows", [&] {
        SQLite::Statement read(*shipped,
                               "select coname, cotype, deleted from childconst where coguid=?");
        SQLite::Statement insert(db,
                                 "insert into childconst (coname, cotype, deleted, coguid) "
                                 "select ?1, ?2, ?3, ?4 where not exists "
                                 "(select 1 from childconst where coguid=?4)");
        core::WriteTransaction transaction(db);
        for (int seed : seeds) {
            const std::string guid = core::newID2(core::idkind::seededRow, seed);
            read.bind(1, guid);
            if (read.executeStep()) {
                insert.bind(1, read.getColumn(0).getString());
                insert.bind(2, read.getColumn(1).getInt());
                insert.bind(3, read.getColumn(2).getInt());
                insert.bind(4, guid);
                insert.exec();
                insert.reset();
            }
            read.reset();
        }
        transaction.commit();
    });
}

void Upgrade::addSeedRowsUnless(std::string_view found, std::initializer_list<int> seeds) {
    // A diary without the lists gets them whole from the template first;
    // until then there is nothing to add to.
    auto db = connect();
    if (db && prepares(*db, "select coid from childconst") && !anyRow(*db, found)) {
        addSeedRows(*db, seeds);
    }
}

void Upgrade::run() {
    fromOldVersionConstGuid();
    fromOldVersionChildFields();
    fromOldVersionChildCorrectVes();
    fromOldVersionChild7();
    fromOldVersionPills();
    fromOldVersionChild8();
    fromOldDateStore();
    moveImages();
    fromOldVersionAnalizy();
    fromOldVersionChild9();
    fromOldVersionChild11();
    fromOldVersionChild115();
    fromOldVersionPills2();
    fromOldVersionPills3();
    fromOldVersionGuid();
    addIndexes();
}

void Upgrade::fromOldVersionConstGuid() {
    if (auto db = connect()) {
        // A diary from before the reference lists has no table to add the
        // column to; the next step creates the table whole.
        if (prepares(*db, "select coid from childconst")) {
            addColumnIfMissing(*db, "select coguid from childconst",
                               "alter table childconst add column coguid text");
        }
    }
}

void Upgrade::fromOldVersionChildFields() {
    auto db = connect();
    if (!db) {
        return;
    }
    if (addColumnIfMissing(*db, "select blood from child",
                           "alter table child add column blood text")) {
        execStep(*db, "update child set blood='31'");
    }
    if (addColumnIfMissing(*db, "select allergen from child",
                           "alter table child add column allergen text")) {
        execStep(*db, "update child set allergen=''");
    }
    if (prepares(*db, "select coid from childconst") || !beforeChange()) {
        return;
    }
    auto shipped = openTemplate(context_);
    if (!shipped) {
        return;
    }
    // The new tables, their rows and the old marks' conversion land
    // together: a diary with the lists is taken for one that has all this.
    core::runGuarded("reference lists", [&] {
        core::WriteTransaction transaction(*db);
        createAsTemplate(*db, *shipped, "childselect");
        createAsTemplate(*db, *shipped, "childconst");
        // The template's rows come with their guids, the seeded ones
        // included, so the lists read exactly as in a new diary and the
        // later steps find their rows already there.
        SQLite::Statement read(*shipped,
                               "select coid, coname, cotype, deleted, coguid from childconst");
        SQLite::Statement insert(*db,
                                 "insert into childconst (coid, coname, cotype, deleted, "
                                 "coguid) values (?, ?, ?, ?, ?)");
        while (read.executeStep()) {
            insert.bind(1, read.getColumn(0).getInt64());
            insert.bind(2, read.getColumn(1).getString());
            insert.bind(3, read.getColumn(2).getInt());
            insert.bind(4, read.getColumn(3).getInt());
            if (read.getColumn(4).isNull()) {
                insert.bind(5);
            } else {
                insert.bind(5, read.getColumn(4).getString());
            }
            insert.exec();
            insert.reset();
        }
        convertOldMarks(*db, context_.dates);
        addOldTags(*db, context_.settings);
        transaction.commit();
    });
}

void Upgrade::fromOldVersionChildCorrectVes() {
    auto db = connect();
    if (!db) {
        return;
    }
    // Weights were once kept in grams. No child weighs a thousand
    // kilograms, so a value above that can only be grams.
    core::runGuarded("weights in grams", [&] {
        SQLite::Statement query(*db,
                                // Spelt as the index spells it, or the index is not used.
                                "select datid, value from childdata where type = 'ves' and "
                                "CAST(value AS REAL) > 1000");
        std::vector<std::pair<long long, std::string>> rows;
        while (query.executeStep()) {
            rows.emplace_back(
                query.getColumn(0).getInt64(),
                core::formatFixed(platform::floatValue(query.getColumn(1).getString()) / 1000, 3));
        }
        if (rows.empty() || !beforeChange()) {
            return;
        }
        core::WriteTransaction transaction(*db);
        SQLite::Statement update(*db, "update childdata set value=? where datid=?");
        for (const auto& [datid, value] : rows) {
            update.bind(1, value);
            update.bind(2, static_cast<std::int64_t>(datid));
            update.exec();
            update.reset();
        }
        transaction.commit();
    });
}

void Upgrade::fromOldVersionChild7() {
    auto db = connect();
    if (!db || prepares(*db, "select birthtime from child") || !beforeChange()) {
        return;
    }
    addColumnIfMissing(*db, "select ves from child", "alter table child add column ves text");
    addColumnIfMissing(*db, "select rost from child", "alter table child add column rost text");
    if (!prepares(*db, "select koid from childkorm")) {
        if (auto shipped = openTemplate(context_)) {
            createAsTemplate(*db, *shipped, "childkorm");
        }
    }
    addSeedRows(*db, {61, 62, 63, 64, 65, 66, 67, 68, 69});
    // The probe's column goes last: until it is there, a launch after a
    // crash does the step again, and each part of it skips what is done.
    execStep(*db, "alter table child add column birthtime integer");
}

void Upgrade::fromOldVersionPills() {
    addSeedRowsUnless("select 1 from childconst where cotype=103",
                      {7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24});
}

void Upgrade::fromOldVersionChild8() {
    auto db = connect();
    if (!db) {
        return;
    }
    addColumnIfMissing(*db, "select sbirthdate from child",
                       "alter table child add column sbirthdate text");
    addColumnIfMissing(*db, "select sbirthtime from child",
                       "alter table child add column sbirthtime text");
    // Filling works by empty cells, so a crash halfway is finished later.
    fillFromSeconds(*db, context_.dates, "child", "chid", "sbirthdate", "birthday",
                    core::formats::day);
    fillFromSeconds(*db, context_.dates, "child", "chid", "sbirthtime", "birthtime",
                    core::formats::moment);
    if (!prepares(*db, "select koid from childkorm")) {
        return;
    }
    addColumnIfMissing(*db, "select kodates from childkorm",
                       "alter table childkorm add column kodates text");
    fillFromSeconds(*db, context_.dates, "childkorm", "koid", "kodates", "kodate",
                    core::formats::moment);
}

void Upgrade::fromOldDateStore() {
    auto db = connect();
    if (!db) {
        return;
    }
    addColumnIfMissing(*db, "select sdat from childdata",
                       "alter table childdata add column sdat text");
    fillFromSeconds(*db, context_.dates, "childdata", "datid", "sdat", "dat", core::formats::day);
}

void Upgrade::moveImages() {
    const fs::path documents = context_.folders.path(SystemFolder::Document);
    std::error_code error;
    for (const char* folder : {"picture", "picture-s", "analizy"}) {
        fs::create_directories(documents / folder, error);
    }
    // The first versions kept photos and their thumbnails beside the
    // database. A name that is already taken in the new folder stays
    // where it is rather than overwrite the photo there.
    const std::string database = context_.database.path().filename().string();
    for (const auto& entry : fs::directory_iterator(documents, error)) {
        const std::string name = entry.path().filename().string();
        if (name == database || name.size() < 7 || !entry.is_regular_file(error)) {
            continue;
        }
        const char* folder = name.ends_with("-s.jpg") ? "picture-s"
                             : name.ends_with(".jpg") ? "picture"
                                                      : nullptr;
        if (folder == nullptr) {
            continue;
        }
        const fs::path target = documents / folder / name;
        if (fs::exists(target, error)) {
            continue;
        }
        fs::rename(entry.path(), target, error);
        if (error) {
            platform::log("Could not move " + name + ": " + error.message());
        }
    }
}

void Upgrade::fromOldVersionAnalizy() {
    addSeedRowsUnless("select 1 from childconst where cotype=200", {31, 32, 33});
}

void Upgrade::fromOldVersionChild9() {
    auto db = connect();
    if (!db) {
        return;
    }
    std::error_code error;
    fs::create_directories(context_.folders.path(SystemFolder::Document) / "documents", error);
    // The document types come with their guids, so no old scan numbered
    // by a list row ever needs renaming after them.
    if (!prepares(*db, "select documents from child") && beforeChange()) {
        addSeedRows(*db, {51, 52});
        execStep(*db, "alter table child add column documents text");
    }
}

void Upgrade::fromOldVersionChild11() {
    addSeedRowsUnless("select 1 from childconst where coname='Сцеженное молоко<tr>2'", {70});
}

void Upgrade::fromOldVersionChild115() {
    addSeedRowsUnless("select 1 from childconst where cotype=9", {71, 72});
}

void Upgrade::addIndexes() {
    auto db = connect();
    if (!db) {
        return;
    }
    // The same indexes a new diary is made with; each one whose columns an
    // unfinished upgrade has not added yet fails alone and waits for the
    // next launch.
    for (const char* sql : {
             "CREATE INDEX IF NOT EXISTS childdata_child_day ON childdata (childguid, date(sdat))",
             "CREATE INDEX IF NOT EXISTS childdata_child_type_day ON childdata "
             "(childguid, type, date(sdat))",
             "CREATE INDEX IF NOT EXISTS childdata_type_day ON childdata (type, date(sdat))",
             "CREATE INDEX IF NOT EXISTS childconst_guid ON childconst (coguid)",
             "CREATE INDEX IF NOT EXISTS childconst_type ON childconst (cotype, deleted)",
             "CREATE INDEX IF NOT EXISTS childselect_child ON childselect (childguid, seltypeid)",
             "CREATE INDEX IF NOT EXISTS childkorm_child_moment ON childkorm "
             "(childguid, datetime(kodates))",
             // The rows the chain still has to convert; empty in a current
             // diary, so its probes cost nothing however long it is.
             "CREATE INDEX IF NOT EXISTS childdata_undated ON childdata (datid) "
             "WHERE sdat IS NULL",
             "CREATE INDEX IF NOT EXISTS childdata_grams ON childdata "
             "(type, CAST(value AS REAL)) WHERE type = 'ves'",
             "CREATE INDEX IF NOT EXISTS childkorm_undated ON childkorm (koid) "
             "WHERE kodates IS NULL",
         }) {
        execStep(*db, sql);
    }
}

}  // namespace tilika::session
