#pragma once

#include <SQLiteCpp/Database.h>

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string_view>

namespace tilika::core {
struct Context;
}

namespace tilika::session {

// Brings a diary made by an older version forward to the current shape.
//
// There is no schema version: each step looks for itself whether it is
// needed, mostly by preparing a statement that reads a newer column (a
// failure means the column is missing), or by looking for rows not yet
// converted. So the chain runs at every launch, costs a current diary only a
// few failed prepares, and can be cut off anywhere: whatever a crash left
// undone, the next launch finds and finishes. Each step opens and closes its
// own connection, and a statement that fails is skipped.
//
// Before the first change to an old diary, a copy of it is kept in the
// reserve folder as "before-upgrade-yyMMdd.sqlite", outside the daily
// rotation, so that an upgrade gone wrong can be undone by hand.
class Upgrade {
public:
    explicit Upgrade(core::Context& context) : context_(context) {}

    // The steps in their order, then the indexes the diary's queries need.
    void run();

    void fromOldVersionConstGuid();
    void fromOldVersionChildFields();
    void fromOldVersionChildCorrectVes();
    void fromOldVersionChild7();
    void fromOldVersionPills();
    void fromOldVersionChild8();
    void fromOldDateStore();
    void moveImages();
    void fromOldVersionAnalizy();
    void fromOldVersionChild9();
    void fromOldVersionChild11();
    void fromOldVersionChild115();
    void fromOldVersionPills2();
    void fromOldVersionPills3();
    void fromOldVersionGuid();
    void addIndexes();

    // The copy taken before the first change, if one was taken.
    const std::filesystem::path& backupFile() const { return backupFile_; }

private:
    // A probe: whether the statement prepares, that is whether the tables
    // and columns it names are there.
    static bool prepares(SQLite::Database& db, std::string_view sql);
    // A statement of a step; one that fails is logged and skipped, and the
    // step goes on with the next.
    static bool execStep(SQLite::Database& db, std::string_view sql);
    static bool anyRow(SQLite::Database& db, std::string_view sql);

    std::unique_ptr<SQLite::Database> connect() const;
    // Takes the copy of the diary as it was, once per run, before anything
    // in it changes. False when the copy could not be made; the step then
    // leaves the diary as it is, for the next launch to try again.
    bool beforeChange();
    // Adds the column unless a prepare of `probe` shows it is there; true
    // when it was added.
    bool addColumnIfMissing(SQLite::Database& db, std::string_view probe, std::string_view alter);
    // Adds the template's rows of these seed numbers that the diary lacks,
    // under their fixed guids.
    void addSeedRows(SQLite::Database& db, std::initializer_list<int> seeds);
    // The same, for a diary with lists, unless the query finds a row.
    void addSeedRowsUnless(std::string_view found, std::initializer_list<int> seeds);

    // The parts of the step into the guid era, one connection each.
    void guidChildren();
    // Gives the rows of a table without a guid their profile's guid, and
    // turns their old values into the current forms; `field` is the SQL
    // that names each value's entry type.
    void guidValues(std::string_view table, std::string_view key, std::string_view valueColumn,
                    std::string_view field);
    void guidSelections();

    core::Context& context_;
    std::filesystem::path backupFile_;
};

}  // namespace tilika::session
