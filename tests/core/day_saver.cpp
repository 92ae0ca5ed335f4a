// Saves whole days of a diary in a loop, as the day editor does, until it is
// killed; or checks what such a loop left behind. A test kills it at random
// moments and checks after each kill that no day was left half written.
//
//   day_saver save DIR RESOURCES   save days into the diary in DIR forever
//   day_saver check DIR RESOURCES  exit 0 when the diary is sound and whole

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/settings_file.h"
#include "diary/diary_store.h"
#include "medication/courses.h"
#include "platform/clock.h"
#include "platform/folders.h"

namespace {

using namespace tilika;

// Every saved day holds one row of each of these, all with the same mark.
const std::vector<std::string> kTypes = {"note", "dostig", "zhaloby", "temp", "ves", "rost"};
constexpr const char* kChild = "day-saver-child";
constexpr int kDays = 40;

int save(core::Context& context, core::Dates& dates) {
    const medication::CourseReconciler courses(dates);
    diary::DiaryStore store(context, courses);
    const core::Date first = *dates.dateFromString("2026-01-01");
    for (long long round = 0;; ++round) {
        std::vector<diary::CatalogueRow> rows;
        for (const std::string& type : kTypes) {
            diary::CatalogueRow row;
            row.field = type;
            row.source = "mark-" + std::to_string(round);
            rows.push_back(row);
        }
        const core::Date day = dates.addDays(first, static_cast<int>(round % kDays));
        if (!store.saveNoteData(1, rows, {}, kChild, day)) {
            std::fprintf(stderr, "a save failed\n");
            return 1;
        }
    }
}

int check(core::DatabaseStore& database) {
    SQLite::Database* db = database.connectToBase();
    if (db == nullptr) {
        std::fprintf(stderr, "the diary does not open\n");
        return 1;
    }
    const std::string integrity = db->execAndGet("pragma integrity_check").getString();
    if (integrity != "ok") {
        std::fprintf(stderr, "integrity check: %s\n", integrity.c_str());
        return 1;
    }
    // A day is whole when it has every type once, all with one mark.
    std::map<std::string, std::vector<std::string>> days;
    SQLite::Statement rows(*db, "select sdat, type, value from childdata where childguid=?");
    rows.bind(1, kChild);
    while (rows.executeStep()) {
        days[rows.getColumn(0).getString()].push_back(rows.getColumn(1).getString() + "=" +
                                                      rows.getColumn(2).getString());
    }
    for (const auto& [day, values] : days) {
        const std::string mark = values.front().substr(values.front().find('=') + 1);
        std::map<std::string, int> seen;
        for (const std::string& value : values) {
            const auto cut = value.find('=');
            if (value.substr(cut + 1) != mark) {
                std::fprintf(stderr, "day %s mixes two saves\n", day.c_str());
                return 1;
            }
            ++seen[value.substr(0, cut)];
        }
        for (const std::string& type : kTypes) {
            if (seen[type] != 1) {
                std::fprintf(stderr, "day %s is not whole (%s)\n", day.c_str(), type.c_str());
                return 1;
            }
        }
    }
    std::printf("%zu whole days\n", days.size());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: day_saver save|check DIR RESOURCES\n");
        return 64;
    }
    const std::string mode = argv[1];
    platform::DataFolders folders(argv[2], argv[3]);
    folders.createLayout();
    core::JsonSettingsStore settings(std::filesystem::path(argv[2]) / "settings.json");
    platform::SystemClock clock;
    core::Dates dates(clock);
    core::DatabaseStore database(folders, dates);
    database.fromOldVersionNewRestore();
    core::AppState state;
    core::Context context{clock, settings, folders, dates, database, state};
    return mode == "save" ? save(context, dates) : check(database);
}
