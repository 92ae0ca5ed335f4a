#pragma once

#include <gtest/gtest.h>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/settings_file.h"
#include "diary/profiles.h"
#include "medication/courses.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "platform/settings_store.h"
#include "support/temp_dir.h"

namespace tilika::test {

// A whole core over a temporary folder: a real database made from the
// template, with its first child born today as after the first start, a
// fresh settings file, and a clock fixed at 22 November 2026, 10:00 in
// Moscow.
class CoreFixture : public ::testing::Test {
protected:
    TempDir dir;
    platform::DataFolders folders{dir.path(), resourceDir()};
    core::JsonSettingsStore settings{dir.path() / "Library" / "settings.json"};
    platform::ManualClock clock{core::Date{}, "Europe/Moscow"};
    core::Dates dates{clock};
    core::DatabaseStore database{folders, dates};
    core::AppState state;
    core::Context context{clock, settings, folders, dates, database, state};
    // What the program wires into the diary's day save.
    const medication::CourseReconciler courses{dates};

    CoreFixture() {
        folders.createLayout();
        clock.set(*dates.dateFromString("2026-11-22 10:00"));
        database.fromOldVersionNewRestore();
        db().exec("update child set sbirthdate='2026-11-22' where chid=1");
    }

    // The database, open; fails the test if it can't be.
    SQLite::Database& db() {
        SQLite::Database* open = database.connectToBase();
        if (open == nullptr) {
            throw std::runtime_error("the test database can't be opened");
        }
        return *open;
    }

    // A child as the profile form saves one, with its measures at birth; its
    // guid.
    std::string newChild(const std::string& birth, const std::string& ves = "",
                         const std::string& rost = "") {
        const std::string gid = core::newID();
        diary::Profiles profiles(context);
        diary::SetupRecord record = profiles.loadSetupData(gid);
        record.name = "Аня";
        record.sbirthdate = birth;
        record.ves = ves;
        record.rost = rost;
        EXPECT_TRUE(profiles.saveSetupData(diary::saveflag::cloud, record, gid));
        return gid;
    }

    // The first column of the first row of a query, as text ("" for none).
    std::string queryText(const std::string& sql) {
        SQLite::Statement query(db(), sql);
        return query.executeStep() ? query.getColumn(0).getString() : std::string();
    }
};

}  // namespace tilika::test
