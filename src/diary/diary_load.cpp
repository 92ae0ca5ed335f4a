#include "diary/diary_store.h"

// The diary's load: a year of a child's days (or one day, or the measures
// of a whole childhood) with their texts, photos and running illness.
//
// A year is read in one query and walked by day number: the calendar fields
// of every day come from one walk, the ages from the anniversaries worked
// out once, and the photos from one listing of each picture folder, so that
// the load costs little more than reading the rows.

#include <algorithm>
#include <cstdio>
#include <unordered_set>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/text.h"
#include "core/words.h"
#include "diary/day_rows.h"
#include "platform/folders.h"

namespace tilika::diary {

namespace {

namespace fs = std::filesystem;

constexpr const char* kIllness = "bolezn";
constexpr const char* kDiet = "dieta";
constexpr const char* kDietOver = "1000";
constexpr int kMeasureYears = 16;  // the charts' span when no year is asked for

bool isFullRegim(int regim) {
    return regim == loadregim::withoutEmptyDays || regim == loadregim::everyDay ||
           regim == loadregim::report || regim == loadregim::photoBook;
}

// The texts of a day are built at load only where the whole year is shown
// at once; the diary builds them as it draws a day.
bool isSimpleRegim(int regim) {
    return regim == loadregim::withoutEmptyDays || regim == loadregim::oneDay ||
           regim == loadregim::weight || regim == loadregim::height;
}

const char* typeFilter(int regim) {
    switch (regim) {
        case loadregim::weight:
            return " and type='ves'";
        case loadregim::height:
            return " and type='rost'";
        case loadregim::report:
            return " and type<>'alarm'";
        case loadregim::photoBook:
            return " and type<>'alarm' and type<>'pills'";
        default:
            return "";
    }
}

// "3.500 (+0.300)": a measure with its gain since the first one.
std::string withGain(double value, double base, int decimals) {
    const double gain = value - base;
    const std::string text = core::formatFixed(value, decimals);
    if (gain == 0.0) {
        return text;
    }
    return text + (gain > 0 ? " (+" : " (") + core::formatFixed(gain, decimals) + ")";
}

// The row of the illness list that ends an illness; "" when the list has
// none. The last one counts, as when the lists are read.
std::string recoveryOf(const std::vector<ListRow>& list) {
    std::string found;
    for (const ListRow& row : list) {
        if (row.deleted == rowstate::recovery && row.tp == cotype::illnesses) {
            found = row.index;
        }
    }
    return found;
}

// The day's date in one of the stored patterns, from its fields: the same
// text the date patterns give, without a formatter per day.
std::string dayText(const core::CalendarDay& day, std::string_view format) {
    char text[32];
    int length = 0;
    if (format == core::formats::day) {
        length = std::snprintf(text, sizeof text, "%04d-%02d-%02d", day.year, day.month, day.day);
    } else if (format == core::formats::photoDay) {
        length = std::snprintf(text, sizeof text, "%02d-%02d-%04d", day.day, day.month, day.year);
    } else if (format == core::formats::screenDay) {
        length = std::snprintf(text, sizeof text, "%02d.%02d.%04d", day.day, day.month, day.year);
    } else {
        length = std::snprintf(text, sizeof text, "%02d", day.day);
    }
    return std::string(text, static_cast<std::size_t>(std::max(length, 0)));
}

// A column as text, NULL as "", without a copy: valid until the next step.
std::string_view columnView(const SQLite::Statement& query, int index) {
    const SQLite::Column column = query.getColumn(index);
    const char* text = column.getText("");
    return {text, static_cast<std::size_t>(column.getBytes())};
}

std::string columnText(const SQLite::Statement& query, int index) {
    return std::string(columnView(query, index));
}

struct DayFields {
    int year = 0;
    int month = 0;
    int day = 0;
};

// The fields of a "yyyy-MM-dd" text, read strictly; whether they name a
// real day is for the calendar to say.
std::optional<DayFields> dayFields(std::string_view text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') {
        return std::nullopt;
    }
    int value[3] = {0, 0, 0};
    const std::size_t starts[3] = {0, 5, 8};
    const std::size_t lengths[3] = {4, 2, 2};
    for (std::size_t part = 0; part < 3; ++part) {
        for (std::size_t i = starts[part]; i < starts[part] + lengths[part]; ++i) {
            if (text[i] < '0' || text[i] > '9') {
                return std::nullopt;
            }
            value[part] = value[part] * 10 + (text[i] - '0');
        }
    }
    return DayFields{value[0], value[1], value[2]};
}

// Days from 1 March of year 0 in the Gregorian count; only differences of
// two are used.
long civilDays(const DayFields& fields) {
    const long year = fields.year - (fields.month <= 2 ? 1 : 0);
    const long era = (year >= 0 ? year : year - 399) / 400;
    const long yearOfEra = year - era * 400;
    const long dayOfYear =
        (153 * (fields.month + (fields.month > 2 ? -3 : 9)) + 2) / 5 + fields.day - 1;
    const long dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra;
}

// What a day's texts need of the calendar.
struct DayFacts {
    const core::CalendarDay& calendar;
    int fromToday = 0;
    std::optional<core::DateDifference> age;
};

// The day's derived keys; see DiaryStore::updateNoteStrings.
void fillDayTexts(DayNote& day, const DayFacts& facts, SetupRecord& setup, int regim, bool simple,
                  std::string_view recovery) {
    day.color = kNeutralNote;
    if (facts.fromToday == 0) {
        day.flags.istoday = true;
    }
    if (facts.age) {
        day.year = facts.age->years;
        day.month = facts.age->months + 1;
        day.group = facts.age->years * 12 + facts.age->months + 1;
    }
    day.compliteOK = false;
    if (simple) {
        return;
    }
    day.compliteOK = true;

    // Illness runs from day to day; the recovery day ends it, keeps its mark
    // and is not coloured.
    const auto found = day.values.find(kIllness);
    const std::string_view illness =
        found == day.values.end() ? std::string_view() : std::string_view(found->second);
    const bool recovered = !illness.empty() && illness == recovery;
    bool ill = setup.isbolezn.value_or(false) || (!illness.empty() && !recovered);
    if (recovered) {
        day.flags.isbolezn = true;
        setup.isbolezn = false;
    } else {
        day.flags.isbolezn = ill;
        setup.isbolezn = ill;
        if (ill && facts.fromToday <= 0) {
            day.color = kIllnessNote;
        }
    }

    const std::string diet = day.value(kDiet);
    if (diet == kDietOver) {
        setup.isdieta = false;
        day.flags.isdieta = true;
    } else if (core::intValue(diet) > 0) {
        setup.isdieta = true;
        day.flags.isdieta = true;
    } else {
        day.flags.isdieta = setup.isdieta.value_or(false);
    }

    // Weight and height with the gain since the first measure, which in the
    // first year is the measure at birth.
    const bool gains = isFullRegim(regim);
    auto measure = [&](const char* type, std::string& base, int decimals) {
        const auto it = day.values.find(type);
        if (it == day.values.end() || it->second.empty()) {
            return;
        }
        const double value = core::floatValue(it->second);
        if (!gains) {
            it->second = core::formatFixed(value, decimals);
            return;
        }
        if (core::floatValue(base) == 0.0) {
            base = it->second;
        }
        it->second = withGain(value, core::floatValue(base), decimals);
    };
    measure("ves", setup.ves, 3);
    measure("rost", setup.rost, 1);

    if (regim == loadregim::weight || regim == loadregim::report || regim == loadregim::photoBook) {
        day.day = dayText(facts.calendar, core::formats::screenDay) + " " +
                  core::weekdayfull(facts.calendar.weekday);
    } else {
        day.day = dayText(facts.calendar, "dd");
        day.weekday = core::weekday(facts.calendar.weekday);
    }
}

// A child's photos and thumbnails. For many days each folder is listed
// once; for a day or two the files are looked up themselves.
class ChildPhotos {
public:
    ChildPhotos(const fs::path& documents, std::string_view gid, bool listed)
        : gid_(gid),
          plain_(core::isPlainFileName(gid)),
          photoFolder_((documents / "picture" / "").string()),
          thumbnailFolder_((documents / "picture-s" / "").string()) {
        if (plain_ && listed) {
            photos_ = core::existingNames(documents / "picture", gid_ + "-");
            thumbnails_ = core::existingNames(documents / "picture-s", gid_ + "-");
        }
    }

    // A day shows a photo when both files are there; a report prints the
    // photo itself, the other uses show the thumbnail.
    void find(DayNote& day, const core::CalendarDay& calendar, int regim) const {
        if (!plain_) {
            return;
        }
        const std::string stem = gid_ + "-" + dayText(calendar, core::formats::photoDay);
        std::string photo = photoFolder_ + stem + ".jpg";
        std::string thumbnail = thumbnailFolder_ + stem + "-s.jpg";
        day.flags.isphoto = there(photos_, photo, photoFolder_.size()) &&
                            there(thumbnails_, thumbnail, thumbnailFolder_.size());
        day.photopath = regim == loadregim::report ? photo : std::move(thumbnail);
        day.photopath2 = std::move(photo);
    }

private:
    // Where a folder was not (or could not be) listed, the file is looked
    // up itself.
    static bool there(const std::shared_ptr<const std::unordered_set<std::string>>& names,
                      const std::string& path, std::size_t folderLength) {
        if (!names) {
            std::error_code error;
            return fs::exists(path, error);
        }
        return names->contains(path.substr(folderLength));
    }

    std::string gid_;
    bool plain_;
    std::string photoFolder_;
    std::string thumbnailFolder_;
    std::shared_ptr<const std::unordered_set<std::string>> photos_;
    std::shared_ptr<const std::unordered_set<std::string>> thumbnails_;
};

}  // namespace

DiaryStore::Window DiaryStore::yearOfLife(core::Date birthday, int year) const {
    const core::Dates& dates = context_.dates;
    const int birthYear = dates.decodeDate(birthday).year;
    const std::string monthDay = dates.dateToString(birthday, "-MM-dd");
    // A birthday on 29 February has its year of life start on 1 March in the
    // years that have no such day.
    auto anniversary = [&](int y) {
        const std::string text = std::to_string(y) + monthDay;
        if (auto day = dates.dateFromString(text)) {
            return *day;
        }
        return dates.dateFromString(std::to_string(y) + "-03-01").value_or(birthday);
    };
    const int first = birthYear + year - 1;
    return {anniversary(first), anniversary(first + 1)};
}

void DiaryStore::carryOver(SQLite::Database& db, SetupRecord& setup, core::Date start,
                           std::string_view gid, std::string_view recovery) const {
    DayRows rows(db, context_.dates);
    const std::string illness = rows.getLastDateValue(start, kIllness, gid);
    const std::string diet = rows.getLastDateValue(start, kDiet, gid);
    setup.isbolezn = !illness.empty() && illness != recovery;
    setup.isdieta = !diet.empty() && diet != kDietOver;
}

void DiaryStore::loadNoteData(std::vector<DayNote>& target, int regim, int year, core::Date date,
                              std::string_view gid) {
    std::vector<ListRow> list;
    lists_.loadConstList(list, cotype::all, "");
    SetupRecord setup = Profiles(context_).loadSetupData(gid);
    loadDays(context_.database.connectToBase(), list, std::move(setup), target, regim, year, date,
             gid);
}

void DiaryStore::loadNoteData(SQLite::Database& db, const std::vector<ListRow>& list,
                              SetupRecord setup, std::vector<DayNote>& target, int regim, int year,
                              core::Date date, std::string_view gid) const {
    loadDays(&db, list, std::move(setup), target, regim, year, date, gid);
}

void DiaryStore::loadDays(SQLite::Database* db, const std::vector<ListRow>& list, SetupRecord setup,
                          std::vector<DayNote>& target, int regim, int year, core::Date date,
                          std::string_view gid) const {
    const core::Dates& dates = context_.dates;
    target.clear();
    const std::string recovery = recoveryOf(list);
    if (year >= 2) {
        // In later years the gain counts from the year's first measure.
        setup.ves = "0";
        setup.rost = "0";
    }
    const bool full = isFullRegim(regim);
    const bool simple = isSimpleRegim(regim);
    const core::Date now = dates.now();
    const core::Date birthday = setup.sbirthdate ? setup.birthdate : dates.noTime(now);

    Window window;
    if (regim == loadregim::oneDay) {
        // The next calendar day rather than 24 hours on: a day when the
        // clocks go back lasts 25.
        window.start = dates.noTime(date);
        window.end = dates.addDays(window.start, 1);
    } else if ((regim == loadregim::weight || regim == loadregim::height) && year < 1) {
        window = {birthday, dates.addYears(birthday, kMeasureYears)};
    } else {
        window = yearOfLife(birthday, year);
    }

    // Every day of a shown year, walked once; the days with rows take their
    // dates from the walk too.
    std::vector<core::CalendarDay> walk;
    if (full) {
        walk = dates.calendarDays(window.start, dates.getDays(window.start, window.end));
    }
    // The walk's day of a stored "yyyy-MM-dd", where it is the very date that
    // text reads as.
    auto walked = [&](std::string_view text) -> const core::CalendarDay* {
        const std::optional<DayFields> fields = dayFields(text);
        if (!fields || walk.empty()) {
            return nullptr;
        }
        const long index = civilDays(*fields) -
                           civilDays({walk.front().year, walk.front().month, walk.front().day});
        if (index < 0 || index >= static_cast<long>(walk.size())) {
            return nullptr;
        }
        const core::CalendarDay& day = walk[static_cast<std::size_t>(index)];
        const bool same =
            day.year == fields->year && day.month == fields->month && day.day == fields->day;
        return same && day.midnight ? &day : nullptr;
    };
    const int today = dates.calendarDay(now).dayNumber;
    core::LifeCalendar ages(dates, birthday);
    const ChildPhotos photos(context_.folders.path(platform::SystemFolder::Document), gid, full);
    auto fill = [&](DayNote& day, const core::CalendarDay& calendar) {
        fillDayTexts(day, {calendar, calendar.dayNumber - today, ages.age(calendar)}, setup, regim,
                     simple, recovery);
        if (full) {
            photos.find(day, calendar, regim);
        }
    };

    // The calendar of each day with rows, by its place in the walk where it
    // has one; the same order as the days.
    std::vector<std::optional<core::CalendarDay>> rowDays;
    std::vector<DayNote> days;
    rowDays.reserve(walk.size());
    days.reserve(walk.size());
    SetupRecord carried;
    if (db != nullptr) {
        if (full) {
            carryOver(*db, carried, window.start, gid, recovery);
            setup.isbolezn = carried.isbolezn;
            setup.isdieta = carried.isdieta;
        }
        core::runGuarded("loadNoteData", [&] {
            SQLite::Statement query(
                *db, std::string("select sdat, type, value from childdata where childguid=? and "
                                 "date(sdat)>=date(?) and date(sdat)<date(?)") +
                         typeFilter(regim) + " order by date(sdat)");
            query.bind(1, std::string(gid));
            query.bind(2, dates.dateToString(window.start, core::formats::day));
            query.bind(3, dates.dateToString(window.end, core::formats::day));
            std::string currentDay;
            auto finish = [&] {
                if (const auto& calendar = rowDays.back()) {
                    fill(days.back(), *calendar);
                } else {
                    days.back().color = kNeutralNote;
                }
            };
            while (query.executeStep()) {
                // Rows of one day may differ in a stored time; the day is
                // what groups them.
                const std::string_view dayKey = columnView(query, 0).substr(0, 10);
                if (days.empty() || currentDay != dayKey) {
                    if (!days.empty()) {
                        finish();
                    }
                    currentDay = dayKey;
                    DayNote& opened = days.emplace_back();
                    std::optional<core::CalendarDay>& calendar = rowDays.emplace_back();
                    if (const core::CalendarDay* day = walked(currentDay)) {
                        calendar = *day;
                    } else if (const auto parsed = dates.dateFromString(currentDay)) {
                        calendar = dates.calendarDay(*parsed);
                    }
                    if (calendar) {
                        opened.dat = calendar->date;
                    }
                }
                // A NULL type or value reads as "".
                days.back().values.insert_or_assign(columnText(query, 1), columnText(query, 2));
            }
            if (!days.empty()) {
                finish();
            }
        });
    }

    if (!full) {
        target = std::move(days);
    } else {
        // A second walk fills the gaps, so that the illness of a day with an
        // entry runs on over the empty days after it.
        if (db != nullptr) {
            setup.isbolezn = carried.isbolezn;
            setup.isdieta = carried.isdieta;
        }
        target.reserve(regim == loadregim::everyDay ? walk.size() : days.size());
        const int length = static_cast<int>(walk.size());
        int next = 0;
        auto fillUpTo = [&](int offset) {
            for (; next < offset && next < length; ++next) {
                const core::CalendarDay& calendar = walk[static_cast<std::size_t>(next)];
                DayNote empty;
                empty.dat = calendar.date;
                fill(empty, calendar);
                if (regim == loadregim::everyDay || empty.flags.isphoto) {
                    target.push_back(std::move(empty));
                }
            }
        };
        for (std::size_t i = 0; i < days.size(); ++i) {
            DayNote& day = days[i];
            if (!day.dat) {
                continue;  // a row whose day can't be read
            }
            const int offset = rowDays[i]->dayNumber - (walk.empty() ? 0 : walk.front().dayNumber);
            fillUpTo(offset);
            next = std::max(next, offset + 1);
            setup.isbolezn = day.flags.isbolezn;
            setup.isdieta = day.flags.isdieta;
            const auto illness = day.values.find(kIllness);
            if (illness != day.values.end() && !illness->second.empty() &&
                illness->second == recovery) {
                setup.isbolezn = false;
            }
            if (day.value(kDiet) == kDietOver) {
                setup.isdieta = false;
            }
            target.push_back(std::move(day));
        }
        fillUpTo(length);
    }

    if (regim == loadregim::oneDay) {
        if (!target.empty()) {
            correctPhoto(target.front(), loadregim::oneDay, gid);
        } else {
            DayNote empty;
            empty.dat = date;
            const core::CalendarDay calendar = dates.calendarDay(date);
            fillDayTexts(empty, {calendar, calendar.dayNumber - today, ages.age(calendar)}, setup,
                         regim, simple, recovery);
            correctPhoto(empty, regim, gid);
            target.push_back(std::move(empty));
        }
    }
}

void DiaryStore::updateNoteStrings(DayNote& day, const std::vector<ListRow>& list,
                                   SetupRecord& setup, int regim, bool simple) const {
    day.color = kNeutralNote;
    if (!day.dat) {
        return;
    }
    const core::Dates& dates = context_.dates;
    const core::Date now = dates.now();
    const core::Date birthday = setup.sbirthdate ? setup.birthdate : dates.noTime(now);
    const core::CalendarDay calendar = dates.calendarDay(*day.dat);
    const std::string recovery = recoveryOf(list);
    fillDayTexts(day,
                 {calendar, dates.getDays(now, *day.dat), dates.dayDifference(birthday, *day.dat)},
                 setup, regim, simple, recovery.empty() ? lists_.boleznId() : recovery);
}

void DiaryStore::correctPhoto(DayNote& day, int regim, std::string_view gid) const {
    if (!day.dat) {
        return;
    }
    ChildPhotos(context_.folders.path(platform::SystemFolder::Document), gid, false)
        .find(day, context_.dates.calendarDay(*day.dat), regim);
}

}  // namespace tilika::diary
