#include "sample_diary.h"

#include <array>
#include <fstream>
#include <random>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/settings_file.h"
#include "core/text.h"
#include "development/feeding.h"
#include "diary/day_rows.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"
#include "medication/courses.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "platform/settings_store.h"
#include "sample_photos.h"

namespace tilika::bench {

namespace {

using nlohmann::json;
constexpr int kYears = 14;
constexpr int kCoursesAMonth = 10;

std::string listGuid(int coid) {
    return core::newID2(core::idkind::listRow, coid);
}
std::string seedGuid(int n) {
    return core::newID2(core::idkind::seededRow, n);
}

class Writer {
public:
    Writer(SQLite::Database& db, const core::Dates& dates, SampleDiary& diary,
           const std::filesystem::path& documents)
        : db_(db), dates_(dates), rows_(db, dates), diary_(diary), documents_(documents) {}

    void writeChild(const SampleChild& child) {
        const core::Date birth = *dates_.dateFromString(child.birth);
        const int days = dates_.getDays(birth, sampleNow());
        double weight = 3.3;
        double height = 51.0;
        bool ill = false;
        for (int offset = 0; offset < days; ++offset) {
            const core::Date day = dates_.addDays(birth, offset);
            auto put = [&](const char* type, const std::string& value) {
                rows_.insertValue(type, value, day, child.gid, false, false);
                ++diary_.rows;
            };
            weight += 0.004 + chance(0.5) * 0.002;
            height += 0.02;
            if (chance(0.3)) {
                put("achive", listGuid(pick(1, 30)) + "<tr>" + listGuid(pick(1, 30)));
            }
            if (chance(0.4)) {
                put("health", listGuid(pick(40, 63)));
            }
            if (chance(0.5)) {
                put("doctor", "Спросить про прививки и про режим сна");
            }
            if (chance(0.05)) {
                put("priv", "Плановая прививка, реакции не было");
            }
            if (!ill && chance(0.03)) {
                put("bolezn", listGuid(pick(65, 95)));
                ill = true;
            } else if (ill && chance(0.15)) {
                put("bolezn", listGuid(64));
                ill = false;
            }
            if (chance(0.6)) {
                json temps = json::array();
                for (int i = 0, n = pick(1, 3); i < n; ++i) {
                    temps.push_back({{"time", clock(8 + i * 5)},
                                     {"temp", core::formatFixed(36.4 + pick(0, 20) / 10.0, 1)}});
                }
                put("temp", diary::jsonFromObject(temps));
            }
            if (chance(0.5)) {
                put("ves", core::formatFixed(weight, 3));
            }
            if (chance(0.3)) {
                put("rost", core::formatFixed(height, 1));
            }
            if (chance(0.6)) {
                put("smile", "Смеялся, когда кот прыгнул на диван");
            }
            if (chance(0.5)) {
                put("alarm", diary::jsonFromObject(json::array(
                                 {{{"time", clock(pick(8, 20))}, {"temp", "Дать витамины"}}})));
            }
            if (chance(0.1)) {
                put("biosize", diary::jsonFromObject({{"bio1", "45"},
                                                      {"bio2", "50"},
                                                      {"bio3", "48"},
                                                      {"bio4", "52"},
                                                      {"bio5", "12.5"}}));
            }
            if (chance(0.03)) {
                put("tooth", std::to_string(pick(1, 20)));
            }
            if (chance(0.1)) {
                put("analizy",
                    diary::jsonFromObject(json::array({{{"tp", "1"},
                                                        {"captiontype", seedGuid(pick(31, 33))},
                                                        {"file", "a-sample.jpg"},
                                                        {"tag", "1"}}})));
            }
            if (chance(0.95)) {
                put("sleep", diary::jsonFromObject(json::array(
                                 {{{"start", "13:00"}, {"end", "15:00"}, {"interval", "02:00"}},
                                  {{"start", "21:00"}, {"end", "07:00"}, {"interval", "10:00"}}})));
            }
            if (chance(0.9)) {
                put("walk", diary::jsonFromObject(json::array(
                                {{{"start", "10:00"}, {"end", "11:30"}, {"interval", "01:30"}}})));
            }
            if (chance(0.9)) {
                put("note", "Обычный день: гуляли, читали, играли в кубики.");
            }
            if (offset % 3 == 0) {
                writePhoto(child.gid, day);
            }
        }
        writeCourses(child, birth, days);
    }

private:
    bool chance(double p) { return std::uniform_real_distribution<>(0, 1)(random_) < p; }
    int pick(int from, int to) { return std::uniform_int_distribution<>(from, to)(random_); }
    static std::string clock(int hour) {
        return (hour < 10 ? "0" : "") + std::to_string(hour) + ":00";
    }

    void writePhoto(const std::string& gid, core::Date day) {
        const std::string stem = gid + "-" + dates_.dateToString(day, core::formats::photoDay);
        std::ofstream(documents_ / "picture" / (stem + ".jpg"), std::ios::binary)
            .write(reinterpret_cast<const char*>(kSamplePhoto), sizeof kSamplePhoto);
        std::ofstream(documents_ / "picture-s" / (stem + "-s.jpg"), std::ios::binary)
            .write(reinterpret_cast<const char*>(kSampleThumbnail), sizeof kSampleThumbnail);
        ++diary_.photos;
    }

    void writeCourses(const SampleChild& child, core::Date birth, int days) {
        std::vector<diary::ListRow> list;
        medication::Courses courses(db_, dates_);
        static const char* const kLengths[] = {"5<td>дни", "1<td>недели", "10<td>дни",
                                               "2<td>недели", "1<td>месяцы"};
        for (int month = 0; month * 30 < days; ++month) {
            for (int i = 0; i < kCoursesAMonth; ++i) {
                const core::Date start = dates_.addDays(birth, month * 30 + pick(0, 29));
                const json course = {
                    {"pillname", seedGuid(pick(7, 9))},
                    {"pilldoza", "1/2<td>шт."},
                    {"pillinter", "3<td>раз в день"},
                    {"pillperiod", seedGuid(pick(10, 14))},
                    {"pilleat", seedGuid(pick(15, 24))},
                    {"pilllength", kLengths[pick(0, 4)]},
                    {"pillsdate", dates_.dateToString(start, core::formats::screenDay)},
                    {"pilltime", "08:00<td>15:00<td>22:00"}};
                courses.addNoteComplex(medication::kPillsType, diary::jsonFromObject(course), list,
                                       child.gid, start);
                ++diary_.courses;
            }
        }
    }

    SQLite::Database& db_;
    const core::Dates& dates_;
    diary::DayRows rows_;
    SampleDiary& diary_;
    std::filesystem::path documents_;
    std::mt19937 random_{20261122};
};

// The feeding diary of a child's first years: breast and formula at first,
// then all kinds of food once complementary feeding starts in the sixth
// month. A generator of its own keeps the rest of the sample as it was.
class FeedingWriter {
public:
    FeedingWriter(SQLite::Database& db, const core::Dates& dates, diary::ReferenceLists& lists)
        : db_(db), dates_(dates) {
        const auto add = [&](int cotype, std::vector<std::string> names) {
            auto& products = products_[static_cast<std::size_t>(cotype)];
            for (std::string& name : names) {
                products.push_back(*lists.addConst(cotype, std::move(name), 0).guid);
            }
        };
        add(diary::cotype::formula, {"Смесь №1 (мил.)", "Смесь №2 (мил.)", "Сцеженное молоко"});
        add(diary::cotype::cereals, {"Гречневая (мил.)", "Рисовая (мил.)", "Овсяная (мил.)"});
        add(diary::cotype::purees,
            {"Пюре из кабачка (мил.)", "Пюре из яблок (мил.)", "Суп овощной (мил.)"});
        add(diary::cotype::otherFood,
            {"Сок яблочный (мил.)<tr>10", "Печенье (шт.)<tr>13", "Мясо (г.)<tr>11"});
        lists.loadConstList(otherFood_, diary::cotype::otherFood, {});
    }

    long long write(const SampleChild& child, int years) {
        const core::Date birth = *dates_.dateFromString(child.birth);
        const int days = dates_.getDays(birth, dates_.addYears(birth, years));
        long long rows = 0;
        for (int offset = 0; offset < days; ++offset) {
            const std::string day =
                dates_.dateToString(dates_.addDays(birth, offset), core::formats::day);
            const bool solids = offset > 150;
            for (int feeding = 0, n = pick(6, 8); feeding < n; ++feeding) {
                const int minutes = 6 * 60 + feeding * 140 + pick(0, 40);
                const core::Date moment =
                    *dates_.dateFromString(day + " " + twoDigits(minutes / 60) + ":" +
                                           twoDigits(minutes % 60) + ":" + twoDigits(pick(0, 59)));
                int kind = solids ? pick(1, kKinds) : pick(1, 2);
                for (int food = 0, foods = pick(1, 3); food < foods; ++food) {
                    development::insertKorm(db_, dates_, moment, value(kind), child.gid);
                    ++rows;
                    kind = kind % (solids ? kKinds : 2) + 1;
                }
            }
        }
        return rows;
    }

private:
    static constexpr int kKinds = development::kKormKinds;

    int pick(int from, int to) { return std::uniform_int_distribution<>(from, to)(random_); }
    static std::string twoDigits(int n) { return (n < 10 ? "0" : "") + std::to_string(n); }

    std::string value(int kind) {
        if (kind == development::kormkind::breast) {
            return *development::addEditKorm(kind, std::to_string(pick(3, 15)),
                                             std::to_string(pick(0, 15)), {})
                        .value;
        }
        const int cotype = kind == development::kormkind::formula  ? diary::cotype::formula
                           : kind == development::kormkind::cereal ? diary::cotype::cereals
                           : kind == development::kormkind::puree  ? diary::cotype::purees
                                                                   : diary::cotype::otherFood;
        const auto& products = products_[static_cast<std::size_t>(cotype)];
        return *development::addEditKorm(kind, std::to_string(pick(2, 24) * 10),
                                         products[static_cast<std::size_t>(pick(0, 2))], otherFood_)
                    .value;
    }

    SQLite::Database& db_;
    const core::Dates& dates_;
    std::array<std::vector<std::string>, diary::cotype::otherFood + 1> products_;
    std::vector<diary::ListRow> otherFood_;
    std::mt19937 random_{20151122};
};

}  // namespace

core::Date sampleNow() {
    return core::Date(std::chrono::milliseconds(1795338000000));  // 22.11.2026 09:00 in Moscow
}

SampleDiary writeSampleDiary(const std::filesystem::path& dataDir,
                             const std::filesystem::path& resourceDir) {
    platform::DataFolders folders(dataDir, resourceDir);
    folders.createLayout();
    core::JsonSettingsStore settings(folders.path(platform::SystemFolder::Library) /
                                     "settings.json");
    platform::ManualClock clock(sampleNow(), "Europe/Moscow");
    core::Dates dates(clock);
    core::DatabaseStore database(folders, dates);
    core::AppState state;
    core::Context context{clock, settings, folders, dates, database, state};
    database.fromOldVersionNewRestore();

    SampleDiary diary;
    diary.children = {{core::newID2(core::idkind::profile, 1), "Маша", "2012-11-22"},
                      {core::newID(), "Петя", "2012-11-23"}};
    diary::Profiles profiles(context);
    for (const SampleChild& child : diary.children) {
        diary::SetupRecord record = profiles.loadSetupData(child.gid);
        record.name = child.name;
        record.sbirthdate = child.birth;
        record.ves = "3.300";
        record.rost = "51";
        if (!profiles.saveSetupData(diary::saveflag::cloud, record, child.gid)) {
            return diary;
        }
    }

    SQLite::Database* db = database.connectToBase();
    if (db == nullptr) {
        return diary;
    }
    // Written in one go: a page cache large enough for the whole file, and no
    // waiting for the disk, which a generated diary can do without.
    db->exec("PRAGMA cache_size=-262144");
    db->exec("PRAGMA synchronous=OFF");
    core::WriteTransaction transaction(*db);
    Writer writer(*db, dates, diary, folders.path(platform::SystemFolder::Document));
    for (const SampleChild& child : diary.children) {
        writer.writeChild(child);
    }
    diary::ReferenceLists lists(context);
    diary.feedings = FeedingWriter(*db, dates, lists).write(diary.children.front(), 3);
    transaction.commit();
    db->exec("ANALYZE");
    return diary;
}

}  // namespace tilika::bench
