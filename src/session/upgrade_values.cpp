// The steps of the upgrade that rewrite stored values: the medicine
// records of older forms and the step into the guid era.

#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/settings_keys.h"
#include "core/text.h"
#include "diary/old_values.h"
#include "diary/reference_lists.h"
#include "medication/dose_times.h"
#include "platform/folders.h"
#include "platform/log.h"
#include "platform/settings_store.h"
#include "session/upgrade.h"

namespace tilika::session {

namespace fs = std::filesystem;

namespace {

// The meals of a diary that had none; they differ from the reading
// default on purpose, as they always have.
constexpr std::string_view kFirstMeals = "08:00<table>11:00<table>14:00<table>16:00<table>20:00";

// Values of the guid era are JSON; only the delimited old form is
// rewritten.
bool isOldForm(std::string_view value) {
    const std::string_view text = core::trimmed(value);
    return !text.empty() && text.front() != '{' && text.front() != '[';
}

// A medicine course gained a field before its last one.
std::string withEmptyField(std::string_view value) {
    std::vector<std::string> records = core::split(value, "<end>");
    for (auto& record : records) {
        std::vector<std::string> fields = core::split(record, "<table>");
        if (fields.size() >= 3) {
            fields.insert(fields.end() - 1, std::string());
            record = core::join(fields, "<table>");
        }
    }
    return core::join(records, "<end>");
}

// Old versions appended fields and left copies of the same course; a
// course keeps its first eight fields (never its last) and one field after
// them, and a copy of a course already kept goes.
std::string withoutDuplicates(std::string_view value) {
    std::vector<std::string> kept;
    for (const auto& record : core::split(value, "<end>")) {
        std::vector<std::string> fields = core::split(record, "<table>");
        std::string result = record;
        if (fields.size() > 2) {
            const std::size_t n = fields.size();
            std::string last = n > 8 ? fields[8] : std::string();
            if (last.empty() && n > 9) {
                last = fields[9];
            }
            fields.resize(std::min<std::size_t>(8, n - 1));
            fields.push_back(std::move(last));
            result = core::join(fields, "<table>");
        }
        if (std::find(kept.begin(), kept.end(), result) == kept.end()) {
            kept.push_back(std::move(result));
        }
    }
    return core::join(kept, "<end>");
}

// Rewrites every old-form medicine value in one transaction.
void rewritePills(SQLite::Database& db, const std::function<std::string(std::string_view)>& to) {
    SQLite::Statement query(db, "select datid, value from childdata where type='pills'");
    std::vector<std::pair<long long, std::string>> rows;
    while (query.executeStep()) {
        const std::string value = query.getColumn(1).getString();
        if (isOldForm(value)) {
            std::string rewritten = to(value);
            if (rewritten != value) {
                rows.emplace_back(query.getColumn(0).getInt64(), std::move(rewritten));
            }
        }
    }
    SQLite::Statement update(db, "update childdata set value=? where datid=?");
    for (const auto& [datid, value] : rows) {
        update.bind(1, value);
        update.bind(2, static_cast<std::int64_t>(datid));
        update.exec();
        update.reset();
    }
}

}  // namespace

void Upgrade::fromOldVersionPills2() {
    auto db = connect();
    if (!db || prepares(*db, "select obed from child") || !beforeChange()) {
        return;
    }
    // One transaction with the new column: until it is there, no value has
    // been rewritten, so the step can't be done twice.
    core::runGuarded("medicines", [&] {
        core::WriteTransaction transaction(*db);
        db->exec("alter table child add column obed text");
        if (!medication::setObed(*db, kFirstMeals)) {
            throw std::runtime_error("the meals could not be stored");
        }
        rewritePills(*db, withEmptyField);
        transaction.commit();
    });
}

void Upgrade::fromOldVersionPills3() {
    if (context_.settings.boolValue(core::keys::oldVersionPill3)) {
        return;
    }
    auto db = connect();
    if (!db) {
        return;
    }
    const bool done = core::runGuarded("medicine copies", [&] {
        SQLite::Statement query(*db,
                                "select 1 from childdata where type='pills' and value not "
                                "like '{%' and value not like '[%' and value <> '' limit 1");
        if (!query.executeStep()) {
            return;
        }
        query.reset();
        if (!beforeChange()) {
            throw std::runtime_error("no copy of the diary");
        }
        core::WriteTransaction transaction(*db);
        rewritePills(*db, withoutDuplicates);
        transaction.commit();
    });
    if (done) {
        context_.settings.setBool(core::keys::oldVersionPill3, true);
        context_.settings.synchronize();
    }
}

void Upgrade::fromOldVersionGuid() {
    guidChildren();
    if (auto db = connect()) {
        if (prepares(*db, "select coguid from childconst") &&
            anyRow(*db, "select 1 from childconst where coguid is null") && beforeChange()) {
            execStep(*db,
                     "update childconst set coguid = "
                     "printf('00000000-0000-0000-0002-%012d', coid) where coguid is null");
        }
    }
    guidValues("childdata", "datid", "value", "type");
    guidSelections();
    guidValues("childkorm", "koid", "kovalue", "'kovalue'");
}

namespace {

// The whole reference list, which old values are read against; after the
// lists have their guids.
std::vector<diary::ListRow> wholeList(core::Context& context) {
    std::vector<diary::ListRow> rows;
    diary::ReferenceLists(context).loadConstList(rows, diary::cotype::all, "");
    return rows;
}

}  // namespace

void Upgrade::guidChildren() {
    auto db = connect();
    if (!db) {
        return;
    }
    addColumnIfMissing(*db, "select childguid from child",
                       "alter table child add column childguid text");
    if (!anyRow(*db, "select 1 from child where childguid is null") || !beforeChange()) {
        return;
    }
    const std::vector<diary::ListRow> clist = wholeList(context_);
    const fs::path pictures = context_.folders.path(platform::SystemFolder::Document) / "picture";
    std::vector<std::pair<fs::path, fs::path>> photos;
    core::runGuarded("profile guids", [&] {
        SQLite::Statement query(*db,
                                "select chid, allergen, sbirthtime, blood, documents "
                                "from child where childguid is null");
        SQLite::Statement update(*db,
                                 "update child set childguid=?, allergen=?, sbirthtime=?, "
                                 "blood=?, documents=? where chid=?");
        core::WriteTransaction transaction(*db);
        while (query.executeStep()) {
            const long long chid = query.getColumn(0).getInt64();
            const std::string guid = core::newID2(core::idkind::profile, chid);
            const std::string moment = query.getColumn(2).getString();
            std::string time = "06:00";
            if (!moment.empty()) {
                const auto parsed =
                    context_.dates.dateFromStringFormat(moment, core::formats::moment);
                time = parsed ? context_.dates.dateToString(*parsed, core::formats::timeOfDay)
                              : moment;
            }
            std::string blood = query.getColumn(3).getString();
            blood = core::newID2(core::idkind::listRow, blood.empty() ? "31" : blood);
            update.bind(1, guid);
            update.bind(2,
                        diary::oldValueToJson("allergen", query.getColumn(1).getString(), clist));
            update.bind(3, time);
            update.bind(4, blood);
            update.bind(5,
                        diary::oldValueToJson("documents", query.getColumn(4).getString(), clist));
            update.bind(6, static_cast<std::int64_t>(chid));
            update.exec();
            update.reset();
            photos.emplace_back(pictures / ("child" + std::to_string(chid) + ".jpg"),
                                pictures / ("child-" + guid + ".jpg"));
        }
        transaction.commit();
    });
    // The profile photos follow the guids once those are stored; a copy that
    // fails leaves the old name, and a new name taken already is not
    // overwritten.
    for (const auto& [from, to] : photos) {
        std::error_code error;
        if (!fs::exists(from, error) || fs::exists(to, error)) {
            continue;
        }
        if (fs::copy_file(from, to, error)) {
            fs::remove(from, error);
        } else {
            platform::log("Could not rename the photo " + from.string() + ": " + error.message());
        }
    }
}

void Upgrade::guidValues(std::string_view table, std::string_view key, std::string_view valueColumn,
                         std::string_view field) {
    auto db = connect();
    const std::string from(table);
    if (!db || !prepares(*db, "select " + std::string(key) + " from " + from)) {
        return;
    }
    addColumnIfMissing(*db, "select childguid from " + from,
                       "alter table " + from + " add column childguid text");
    if (!anyRow(*db, "select 1 from " + from + " where childguid is null") || !beforeChange()) {
        return;
    }
    // Values are read against the whole list: a feeding's unit, for one,
    // comes from its product's row.
    const std::vector<diary::ListRow> clist = wholeList(context_);
    core::runGuarded("guids of " + from, [&] {
        const std::string value(valueColumn);
        SQLite::Statement query(*db, "select " + std::string(key) + ", chid, " +
                                         std::string(field) + ", " + value + " from " + from +
                                         " where childguid is null");
        SQLite::Statement update(*db, "update " + from + " set childguid=?, " + value +
                                          "=? where " + std::string(key) + "=?");
        core::WriteTransaction transaction(*db);
        while (query.executeStep()) {
            update.bind(1, core::newID2(core::idkind::profile, query.getColumn(1).getInt64()));
            update.bind(2, diary::oldValueToJson(query.getColumn(2).getString(),
                                                 query.getColumn(3).getString(), clist));
            update.bind(3, static_cast<std::int64_t>(query.getColumn(0).getInt64()));
            update.exec();
            update.reset();
        }
        transaction.commit();
    });
}

void Upgrade::guidSelections() {
    auto db = connect();
    if (!db || !prepares(*db, "select pselid from childselect")) {
        return;
    }
    addColumnIfMissing(*db, "select childguid from childselect",
                       "alter table childselect add column childguid text");
    addColumnIfMissing(*db, "select tagguid from childselect",
                       "alter table childselect add column tagguid text");
    if (anyRow(*db, "select 1 from childselect where childguid is null") && beforeChange()) {
        execStep(*db,
                 "update childselect set "
                 "childguid = printf('00000000-0000-0000-0001-%012d', chid), "
                 "tagguid = printf('00000000-0000-0000-0002-%012d', seltagid) "
                 "where childguid is null");
    }
}

}  // namespace tilika::session
