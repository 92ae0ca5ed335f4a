#include "diary/diary_store.h"

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "diary/day_rows.h"
#include "diary/display_texts.h"
#include "diary/value_codecs.h"
#include "frame/course_amounts.h"

namespace tilika::diary {

namespace {

constexpr int kFromCloud = 2;

}  // namespace

std::string DayNote::value(std::string_view type) const {
    const auto it = values.find(std::string(type));
    return it == values.end() ? std::string() : it->second;
}

DiaryStore::DiaryStore(core::Context& context, const CoursesOfDay& courses)
    : context_(context), courses_(courses), lists_(context) {}

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
