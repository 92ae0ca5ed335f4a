#include "diary/diary_store.h"

#include <system_error>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/text.h"
#include "core/words.h"
#include "diary/day_rows.h"
#include "diary/display_texts.h"
#include "diary/value_codecs.h"
#include "frame/course_amounts.h"
#include "platform/folders.h"

namespace tilika::diary {

namespace {

constexpr const char* kIllness = "bolezn";
constexpr const char* kDiet = "dieta";
constexpr const char* kDietOver = "1000";
constexpr int kMeasureYears = 16;  // the charts' span when no year is asked for
constexpr int kFromCloud = 2;

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

}  // namespace

std::string DayNote::value(std::string_view type) const {
    const auto it = values.find(std::string(type));
    return it == values.end() ? std::string() : it->second;
}

DiaryStore::DiaryStore(core::Context& context, const CoursesOfDay& courses)
    : context_(context), courses_(courses), lists_(context) {}

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

DayNote DiaryStore::emptyDay(core::Date dat, SetupRecord& setup, int regim, bool simple,
                             std::string_view gid, std::string_view recovery) const {
    DayNote day;
    day.dat = dat;
    correctPhoto(day, regim, gid);
    noteStrings(day, setup, regim, simple, recovery);
    return day;
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
    const core::Date birthday = setup.sbirthdate ? setup.birthdate : dates.noTime(dates.now());

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

    std::vector<DayNote> days;
    if (db != nullptr) {
        if (full) {
            carryOver(*db, setup, window.start, gid, recovery);
        }
        core::runGuarded("loadNoteData", [&] {
            SQLite::Statement query(
                *db, std::string("select sdat, type, value from childdata where childguid=? and "
                                 "date(sdat)>=date(?) and date(sdat)<date(?)") +
                         typeFilter(regim) + " order by date(sdat)");
            query.bind(1, std::string(gid));
            query.bind(2, dates.dateToString(window.start, core::formats::day));
            query.bind(3, dates.dateToString(window.end, core::formats::day));
            std::optional<std::string> currentDay;
            while (query.executeStep()) {
                const std::string sdat = core::stringFromBase(query, 0).value_or("");
                // Rows of one day may differ in a stored time; the day is
                // what groups them.
                const std::string dayKey = sdat.substr(0, 10);
                if (!currentDay || *currentDay != dayKey) {
                    if (currentDay) {
                        DayNote& finished = days.back();
                        noteStrings(finished, setup, regim, simple, recovery);
                        if (full) {
                            correctPhoto(finished, regim, gid);
                        }
                    }
                    currentDay = dayKey;
                    DayNote& opened = days.emplace_back();
                    opened.dat = dates.dateFromString(dayKey);
                }
                const std::string type = core::stringFromBase(query, 1).value_or("");
                days.back().values[type] = core::stringFromBase(query, 2).value_or("");
            }
            if (currentDay) {
                noteStrings(days.back(), setup, regim, simple, recovery);
                if (full) {
                    correctPhoto(days.back(), regim, gid);
                }
            }
        });
    }

    if (!full) {
        target = std::move(days);
    } else {
        // A second walk fills the gaps, so that the illness of a day with an
        // entry runs on over the empty days after it.
        if (db != nullptr) {
            carryOver(*db, setup, window.start, gid, recovery);
        }
        const int length = dates.getDays(window.start, window.end);
        int next = 0;
        auto fillUpTo = [&](int offset) {
            for (; next < offset; ++next) {
                DayNote empty = emptyDay(dates.addDays(window.start, next), setup, regim, simple,
                                         gid, recovery);
                if (regim == loadregim::everyDay || empty.flags.isphoto) {
                    target.push_back(std::move(empty));
                }
            }
        };
        for (DayNote& day : days) {
            if (!day.dat) {
                continue;  // a row whose day can't be read
            }
            const int offset = dates.getDays(window.start, *day.dat);
            fillUpTo(offset);
            next = std::max(next, offset + 1);
            setup.isbolezn = day.flags.isbolezn;
            setup.isdieta = day.flags.isdieta;
            if (!day.value(kIllness).empty() && day.value(kIllness) == recovery) {
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
            noteStrings(empty, setup, regim, simple, recovery);
            correctPhoto(empty, regim, gid);
            target.push_back(std::move(empty));
        }
    }
}

void DiaryStore::updateNoteStrings(DayNote& day, const std::vector<ListRow>& list,
                                   SetupRecord& setup, int regim, bool simple) const {
    const std::string recovery = recoveryOf(list);
    noteStrings(day, setup, regim, simple, recovery.empty() ? lists_.boleznId() : recovery);
}

void DiaryStore::noteStrings(DayNote& day, SetupRecord& setup, int regim, bool simple,
                             std::string_view recovery) const {
    const core::Dates& dates = context_.dates;
    day.color = kNeutralNote;
    if (!day.dat) {
        return;
    }
    const core::Date now = dates.now();
    const int fromToday = dates.getDays(now, *day.dat);
    if (fromToday == 0) {
        day.flags.istoday = true;
    }
    const core::Date birthday = setup.sbirthdate ? setup.birthdate : dates.noTime(now);
    if (const auto age = dates.dayDifference(birthday, *day.dat)) {
        day.year = age->years;
        day.month = age->months + 1;
        day.group = age->years * 12 + age->months + 1;
    }
    day.compliteOK = false;
    if (simple) {
        return;
    }
    day.compliteOK = true;

    // Illness runs from day to day; the recovery day ends it, keeps its mark
    // and is not coloured.
    const std::string illness = day.value(kIllness);
    const bool recovered = !illness.empty() && illness == recovery;
    bool ill = setup.isbolezn.value_or(false) || (!illness.empty() && !recovered);
    if (recovered) {
        day.flags.isbolezn = true;
        setup.isbolezn = false;
    } else {
        day.flags.isbolezn = ill;
        setup.isbolezn = ill;
        if (ill && fromToday <= 0) {
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
        day.day = dates.dateToString(day.dat, core::formats::screenDay) + " " +
                  core::weekdayfull(dates.decodeDate(*day.dat).weekday);
    } else {
        day.day = dates.dateToString(day.dat, "dd");
        day.weekday = core::weekday(dates.decodeDate(*day.dat).weekday);
    }
}

void DiaryStore::correctPhoto(DayNote& day, int regim, std::string_view gid) const {
    if (!day.dat || !core::isPlainFileName(gid)) {
        return;
    }
    const auto documents = context_.folders.path(platform::SystemFolder::Document);
    const std::string stem =
        std::string(gid) + "-" + context_.dates.dateToString(day.dat, core::formats::photoDay);
    const auto photo = documents / "picture" / (stem + ".jpg");
    const auto thumbnail = documents / "picture-s" / (stem + "-s.jpg");
    std::error_code error;
    day.flags.isphoto =
        std::filesystem::exists(photo, error) && std::filesystem::exists(thumbnail, error);
    day.photopath2 = photo.string();
    day.photopath = regim == loadregim::report ? photo.string() : thumbnail.string();
}

core::WriteResult DiaryStore::saveNoteData(int flag, std::vector<CatalogueRow>& data,
                                           const std::vector<ListRow>& list, std::string_view gid,
                                           core::Date date) {
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    const core::Dates& dates = context_.dates;
    return core::tryWrite("saveNoteData", [&] {
        // The day and every day its courses reach are written together: a
        // crash leaves the old day or the new one, never half of either.
        core::WriteTransaction transaction(*db);
        if (flag == kFromCloud) {
            // A record from another device may name list rows this one lacks.
            core::throwIfFailed(lists_.correctConstList(list));
        }
        DayRows rows(*db, dates);
        for (CatalogueRow& row : data) {
            if (row.tp == tp::medication) {
                row.oldsource = rows.getDateValue(date, row.field, gid);
            }
        }
        rows.deleteDay(date, gid);
        for (CatalogueRow& row : data) {
            switch (row.tp) {
                case tp::photo:
                    break;
                case tp::womanDay:
                    if (core::intValue(row.source) >= 2) {
                        rows.insertValue(row.field, row.source, date, gid, false, false);
                    }
                    break;
                case tp::birthResult:
                    // The result of a birth belongs to the pregnancy diary.
                    break;
                case tp::medication: {
                    const std::string old = row.oldsource.value_or("");
                    rows.insertValue(row.field, old, date, gid, false, false);
                    core::throwIfFailed(
                        courses_.reconcile(*db, row.field, row.source, date, gid, list, old));
                    row.oldsource.reset();
                    break;
                }
                default:
                    rows.insertValue(row.field, row.source, date, gid, false, false);
                    break;
            }
        }
        // A failed write has failed the transaction already; a failed read
        // means a course was spread over days it didn't see.
        core::throwIfFailed(rows.result());
        transaction.commit();
    });
}

core::WriteResult DiaryStore::noteDeleteValue(core::Date date, std::optional<std::string_view> type,
                                              std::string_view gid) {
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    DayRows rows(*db, context_.dates);
    if (type) {
        rows.deleteValue(*type, date, gid);
    } else {
        rows.deleteDay(date, gid);
    }
    return rows.result();
}

void DiaryStore::updateNoteToday(CatalogueRow& row, const std::vector<ListRow>& list,
                                 std::optional<core::Date> forDate) const {
    const std::string& source = row.source;
    switch (row.tp) {
        case tp::checkList:
        case tp::pickOne:
        case tp::pickFromList:
        case tp::popupList:
        case tp::popupList2:
            row.text = checkStringToRead(source, list);
            break;
        case tp::text:
        case tp::centimetres:
        case tp::kilograms:
        case tp::popupText:
        case tp::popupText2:
            row.text = source;
            break;
        case tp::timedRows:
        case tp::reminders:
        case tp::pressure:
        case tp::fluids:
            row.multiarray = multiFromString(source, row.tp);
            row.text.clear();
            break;
        case tp::medication:
        case tp::periods:
            row.multiarray = multi2FromString(source, list, row.tp, forDate, context_.dates);
            row.text.clear();
            break;
        case tp::bodyMeasures:
            row.text = biosizeStringToRead(source);
            break;
        case tp::teeth:
            row.text = toothStringToRead(source);
            break;
        case tp::analyses:
            row.text = analizyStringToRead(source, list);
            break;
        // The pregnancy diary's ultrasound and birth, kept readable for
        // records that come from it.
        case tp::ultrasound: {
            const nlohmann::json record = jsonToDictionary(source);
            std::vector<std::string> lines;
            if (const double rost = core::floatValue(jsonText(record, "rost")); rost > 0) {
                lines.push_back("Рост: " + core::formatFixed(rost, 1));
            }
            if (const double ves = core::floatValue(jsonText(record, "ves")); ves > 0) {
                lines.push_back("Вес: " + core::formatFixed(ves, 3));
            }
            row.text = core::join(lines, "\n");
            break;
        }
        case tp::birthResult: {
            const nlohmann::json record = jsonToDictionary(source);
            row.text = std::string(jsonText(record, "type") == "2" ? "Кесарево сечение"
                                                                   : "Естественные роды") +
                       "\nРост: " + jsonText(record, "rost") + "\nВес: " + jsonText(record, "ves") +
                       "\nВремя родов: " + jsonText(record, "time");
            break;
        }
        // The fields of medication records as old versions stored them, by
        // the positions of the pickers.
        case tp::medicationLength:
            row.text = frame::intervalToRead(source, true);
            break;
        case tp::medicationDose:
            row.text = frame::dozaToRead(source);
            break;
        case tp::medicationPeriod:
            row.text = frame::periodToRead(source);
            break;
        default:
            // The kinds of the other editions (pregnancy, the woman's diary)
            // have no readings in this one.
            break;
    }
}

void DiaryStore::noteStructToTodayNote(const DayNote& day, std::vector<CatalogueRow>& data,
                                       const std::vector<ListRow>& list) const {
    if (data.empty()) {
        initTodayNoteStruct(data);
    }
    for (CatalogueRow& row : data) {
        if (row.tp == tp::photo) {
            row.isphoto = day.flags.isphoto;
            row.photopath = day.photopath2;
            row.changephoto = false;
            continue;
        }
        row.source = day.value(row.field);
        row.text = row.source;
        if (row.tp == tp::centimetres || row.tp == tp::kilograms) {
            row.active = core::floatValue(row.source) > 0;
        }
        updateNoteToday(row, list, day.dat);
    }
}

DayNote DiaryStore::todayNoteForDay(core::Date date, std::string_view gid) {
    std::vector<DayNote> days;
    loadNoteData(days, loadregim::oneDay, 0, date, gid);
    return days.empty() ? DayNote{} : std::move(days.front());
}

TablePosition DiaryStore::prepareGroupData(const std::vector<DayNote>& days,
                                           const SetupRecord& setup,
                                           std::vector<DayGroup>& groups) const {
    const core::Dates& dates = context_.dates;
    const core::Date birthday = setup.sbirthdate ? setup.birthdate : dates.noTime(dates.now());
    const core::Date today = dates.now();
    groups.clear();
    TablePosition position;
    int count = 0;
    for (const DayNote& day : days) {
        // The position is read before the day is counted, and before a new
        // month is opened: the table scrolls to the row above the last day
        // up to today, which keeps that day in view under it.
        if (day.dat && dates.getDays(*day.dat, today) >= 0) {
            position.section = static_cast<int>(groups.size()) - 1;
            position.row = count - 1;
        }
        if (groups.empty() || groups.back().group != day.group) {
            if (!groups.empty()) {
                groups.back().count = count;
            }
            DayGroup group;
            group.group = day.group;
            group.name = std::to_string(day.month) + "-й месяц";
            const core::Date from = dates.addMonths(birthday, day.group - 1);
            const core::Date to = dates.addDays(dates.addMonths(birthday, day.group), -1);
            group.name2 =
                dates.dateToString(from, "dd.MM.yy") + "-" + dates.dateToString(to, "dd.MM.yy");
            groups.push_back(std::move(group));
            count = 0;
        }
        ++count;
    }
    if (!groups.empty()) {
        groups.back().count = count;
    }
    return position;
}

double DiaryStore::getLastValue(core::Date date, std::string_view type, std::string_view gid) {
    lastValueDate_.reset();
    std::optional<std::string> found;
    if (SQLite::Database* db = context_.database.connectToBase()) {
        core::runGuarded("getLastValue", [&] {
            SQLite::Statement query(*db,
                                    "select value,sdat from childdata where childguid=? and "
                                    "date(sdat)<=date(?) and type=? order by date(sdat) desc "
                                    "limit 1");
            query.bind(1, std::string(gid));
            query.bind(2, context_.dates.dateToString(date, core::formats::day));
            query.bind(3, std::string(type));
            if (query.executeStep()) {
                found = core::stringFromBase(query, 0);
                lastValueDate_ =
                    context_.dates.dateFromString(core::stringFromBase(query, 1).value_or(""));
            }
        });
    }
    const double value = found ? core::floatValue(*found) : 0.0;
    // Before the first measure the child has the measures of its birth.
    if ((type == "ves" && !found) || (type == "rost" && value == 0.0)) {
        const SetupRecord setup = Profiles(context_).loadSetupData(gid);
        return core::floatValue(type == "ves" ? setup.ves : setup.rost);
    }
    return value;
}

core::WriteResult DiaryStore::moveDates(bool forward) {
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    const core::Dates& dates = context_.dates;
    return core::tryWrite("moveDates", [&] {
        core::WriteTransaction transaction(*db);
        std::vector<std::pair<std::int64_t, std::string>> moved;
        {
            SQLite::Statement query(*db, "select datid, sdat from childdata");
            while (query.executeStep()) {
                const auto day =
                    dates.dateFromString(core::stringFromBase(query, 1).value_or("").substr(0, 10));
                if (day) {
                    moved.emplace_back(query.getColumn(0).getInt64(),
                                       dates.dateToString(dates.addDays(*day, forward ? 1 : -1),
                                                          core::formats::day));
                }
            }
        }
        SQLite::Statement update(*db, "update childdata set sdat=? where datid=?");
        for (const auto& [datid, sdat] : moved) {
            update.bind(1, sdat);
            update.bind(2, datid);
            update.exec();
            update.reset();
        }
        transaction.commit();
    });
}

}  // namespace tilika::diary
