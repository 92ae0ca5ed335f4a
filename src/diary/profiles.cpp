#include "diary/profiles.h"

#include <system_error>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/ids.h"
#include "platform/folders.h"

namespace tilika::diary {

namespace {

constexpr int kUnknownBloodGroup = 31;

std::size_t letterCount(std::string_view utf8) {
    std::size_t count = 0;
    for (char c : utf8) {
        // Continuation bytes of a UTF-8 sequence don't start a letter.
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
            ++count;
        }
    }
    return count;
}

template <class Row, class Fill>
std::vector<Row> readProfiles(core::Context& context, const char* what, const char* sql,
                              Fill fill) {
    std::vector<Row> rows;
    SQLite::Database* db = context.database.connectToBase();
    if (db == nullptr) {
        return rows;
    }
    core::runGuarded(what, [&] {
        SQLite::Statement query(*db, sql);
        while (query.executeStep()) {
            rows.push_back(fill(query));
        }
    });
    return rows;
}

}  // namespace

void Profiles::initSetupStruct(SetupRecord& record) const {
    record = SetupRecord{};
    record.birthdate = context_.dates.noTime(context_.dates.now());
    record.blood = core::newID2(core::idkind::listRow, kUnknownBloodGroup);
}

SetupRecord Profiles::loadSetupData(std::optional<std::string_view> gid) const {
    SetupRecord record;
    initSetupStruct(record);
    if (!gid) {
        return record;
    }
    if (SQLite::Database* db = context_.database.connectToBase()) {
        core::runGuarded("loadSetupData", [&] {
            SQLite::Statement query(*db,
                                    "select chname, sbirthdate, sex, blood, allergen, ves, rost, "
                                    "sbirthtime, documents from child where childguid=?");
            query.bind(1, std::string(*gid));
            if (!query.executeStep()) {
                return;
            }
            const core::Dates& dates = context_.dates;
            record.name = core::stringFromBase(query, 0).value_or("");
            record.sbirthdate = core::stringFromBase(query, 1);
            if (record.sbirthdate) {
                record.birthdate =
                    dates.dateFromStringFormat(*record.sbirthdate, core::formats::day)
                        .value_or(record.birthdate);
            }
            record.sex = query.getColumn(2).getInt();
            record.blood = core::stringFromBase(query, 3).value_or(record.blood);
            record.allerg = core::stringFromBase(query, 4).value_or(record.allerg);
            record.ves = core::stringFromBase(query, 5).value_or(record.ves);
            record.rost = core::stringFromBase(query, 6).value_or(record.rost);
            record.sbirthtime = core::stringFromBase(query, 7);
            if (record.sbirthtime) {
                record.birthtime =
                    dates.dateFromStringFormat(*record.sbirthtime, core::formats::moment);
            }
            record.documents = core::stringFromBase(query, 8);
        });
    }
    record.active = true;
    return record;
}

core::WriteResult Profiles::saveSetupData(int flag, SetupRecord record, std::string_view gid) {
    // Other editions keep their profiles elsewhere; this one has children.
    return saveSetupDataChild(flag, std::move(record), gid);
}

core::WriteResult Profiles::saveSetupDataChild(int flag, SetupRecord record, std::string_view gid) {
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    const bool active = record.active.value_or(false);
    bool removed = false;
    const core::WriteResult saved = core::tryWrite("saveSetupData", [&] {
        // What is kept of the stored row is read in the same transaction, so
        // a read that fails can't have the allergens written over with
        // nothing.
        core::WriteTransaction transaction(*db);
        // A row may exist without a birth date (the first profile before the
        // first start, or one from an old version): it is updated all the
        // same, never doubled.
        bool exists = false;
        std::optional<std::string> storedAllergens;
        std::optional<std::string> storedBirthdate;
        {
            SQLite::Statement find(*db, "select allergen, sbirthdate from child where childguid=?");
            find.bind(1, std::string(gid));
            if (find.executeStep()) {
                exists = true;
                storedAllergens = core::stringFromBase(find, 0);
                storedBirthdate = core::stringFromBase(find, 1);
            }
        }

        if (!active) {
            if (exists) {
                SQLite::Statement remove(*db, "update child set deleted=1 where childguid=?");
                remove.bind(1, std::string(gid));
                remove.exec();
                removed = true;
            }
            transaction.commit();
            return;
        }

        if (flag == saveflag::form) {
            record.allerg = storedAllergens.value_or("");
        }
        const std::string sbirthdate = record.sbirthdate.value_or(storedBirthdate.value_or(
            context_.dates.dateToString(record.birthdate, core::formats::day)));
        SQLite::Statement save(
            *db, exists ? "update child set chname=?, sbirthdate=?, sex=?, blood=?, ves=?, "
                          "rost=?, sbirthtime=?, allergen=?, documents=? where childguid=?"
                        : "insert into child (chname, sbirthdate, sex, blood, ves, rost, "
                          "sbirthtime, allergen, documents, childguid) "
                          "values (?,?,?,?,?,?,?,?,?,?)");
        save.bind(1, record.name);
        save.bind(2, sbirthdate);
        save.bind(3, record.sex);
        save.bind(4, record.blood);
        save.bind(5, record.ves);
        save.bind(6, record.rost);
        if (record.sbirthtime) {
            save.bind(7, *record.sbirthtime);
        }
        save.bind(8, record.allerg);
        if (record.documents) {
            save.bind(9, *record.documents);
        }
        save.bind(10, std::string(gid));
        save.exec();
        transaction.commit();
    });

    // The portrait goes only with a profile that is gone: a removal that
    // failed leaves the child whole.
    if (saved && removed) {
        std::error_code error;
        if (const auto portrait = portraitPath(gid); !portrait.empty()) {
            std::filesystem::remove(portrait, error);
        }
    }
    return saved;
}

std::vector<ProfileListRow> Profiles::profileList() const {
    const core::Dates& dates = context_.dates;
    return readProfiles<ProfileListRow>(
        context_, "profileList",
        "select chid, chname, sbirthdate from child where ifnull(deleted,0)<>1 "
        "order by date(sbirthdate)",
        [&](const SQLite::Statement& query) {
            ProfileListRow row;
            row.chid = query.getColumn(0).getInt64();
            row.chname = core::stringFromBase(query, 1).value_or("");
            row.sbirthdate = core::dateFromBase(dates, query, 2, false);
            return row;
        });
}

std::optional<std::string> Profiles::untouchedTemplateChild() const {
    struct Row {
        std::string guid;
        bool untouched = false;
    };
    const std::vector<Row> rows =
        readProfiles<Row>(context_, "untouchedTemplateChild",
                          "select childguid, ifnull(chname,'')='' and ves is null and rost is null "
                          "from child where ifnull(deleted,0)<>1 limit 2",
                          [](const SQLite::Statement& query) {
                              return Row{core::stringFromBase(query, 0).value_or(""),
                                         query.getColumn(1).getInt() != 0};
                          });
    if (rows.size() != 1 || !rows.front().untouched ||
        rows.front().guid != core::newID2(core::idkind::profile, 1)) {
        return std::nullopt;
    }
    return rows.front().guid;
}

std::vector<ProfileRow> Profiles::loadProfils() const {
    const core::Dates& dates = context_.dates;
    return readProfiles<ProfileRow>(
        context_, "loadProfils",
        "select childguid, chname, sbirthdate, sex from child where ifnull(deleted,0)<>1 "
        "order by date(sbirthdate)",
        [&](const SQLite::Statement& query) {
            ProfileRow row;
            row.childguid = core::stringFromBase(query, 0).value_or("");
            row.guid = row.childguid;
            row.childname = core::stringFromBase(query, 1).value_or("");
            row.sbirthdate = core::dateFromBase(dates, query, 2, false);
            row.sex = query.getColumn(3).getInt();
            return row;
        });
}

std::map<std::string, std::string> Profiles::childNames() const {
    std::map<std::string, std::string> names;
    for (const ProfileRow& row : loadProfils()) {
        names[row.childguid] = shownChildName(row.childname);
    }
    return names;
}

std::string shownChildName(const std::string& name) {
    return letterCount(name) < 2 ? std::string("Без имени") : name;
}

std::filesystem::path Profiles::portraitPath(std::string_view gid) const {
    if (!core::isPlainFileName(gid)) {
        return {};
    }
    return context_.folders.path(platform::SystemFolder::Document) / "picture" /
           ("child-" + std::string(gid) + ".jpg");
}

}  // namespace tilika::diary
