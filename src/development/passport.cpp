#include "development/passport.h"

#include <array>
#include <optional>
#include <utility>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "core/words.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"
#include "frame/translation.h"

namespace tilika::development {

namespace {

// The passport and the feeding screen show the allergens.
constexpr int kAllergenPages[] = {1, 7};

// The latest girths are looked for in this many latest rows; one measured
// longer ago is taken as out of date.
constexpr int kBiosizeRows = 5;

// The count in a translated pattern: "%d месяца назад".
std::string withCount(std::string pattern, int count) {
    return core::replaceAll(pattern, "%d", std::to_string(count));
}

std::string countPhrase(int count, const char* one, const char* few, const char* many) {
    return std::to_string(count) + " " + core::rusForms(count, one, few, many);
}

std::string days(int count) {
    return countPhrase(count, "день", "дня", "дней");
}

// A girth the sizes can use: a positive number. Anything else is as if it
// had not been measured.
bool isMeasure(const std::string& text) {
    return !text.empty() && core::floatValue(text) > 0;
}

// The days of the month before `month`, as the months-and-days age borrows
// them; February always has 28 here.
int borrowedDays(int month) {
    constexpr std::array<int, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const int before = month == 1 ? 12 : month - 1;
    return kDays[static_cast<std::size_t>(before - 1)];
}

}  // namespace

std::string Passport::translated(std::string_view text) const {
    return frame::translate(context_.state, text);
}

int Passport::getCurMonth(core::Date date) const {
    const core::Dates& dates = context_.dates;
    return dates.getMonths(dates.noTime(date), dates.noTime(dates.now())) + 1;
}

int Passport::getCurPeriod(const diary::SetupRecord& setup) const {
    return getCurMonth(setup.birthdate);
}

int Passport::getCurWeek(core::Date date) const {
    const core::Dates& dates = context_.dates;
    return dates.getDays(dates.noTime(date), dates.noTime(dates.now())) / 7;
}

std::string Passport::dateToPeriod(core::Date date) const {
    const int w = getCurMonth(date) - 1;
    if (w < 1) {
        return translated("меньше месяца");
    }
    if (w == 1) {
        return translated("1 месяц назад");
    }
    if (w < 12) {
        return withCount(translated("%d месяца назад"), w);
    }
    if (w == 12) {
        return {};
    }
    return translated("болше года");
}

PassportData Passport::loadPassportData(std::string_view gid) const {
    PassportData data;
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return data;
    }
    const core::Dates& dates = context_.dates;
    const auto period = [&](const SQLite::Statement& query) {
        const std::optional<core::Date> day = core::dateFromBase(dates, query, 0, false);
        return day ? dateToPeriod(*day) : std::string();
    };

    const auto latest = [&](const char* type, std::string& value, std::string& per) {
        core::runGuarded("loadPassportData", [&] {
            SQLite::Statement query(*db,
                                    "select sdat,value from childdata where childguid=? and "
                                    "type=? order by date(sdat) desc limit 1");
            query.bind(1, std::string(gid));
            query.bind(2, type);
            if (query.executeStep()) {
                value = core::formatFixed(
                    core::floatValue(core::stringFromBase(query, 1).value_or("")), 3);
                per = period(query);
            }
        });
    };
    latest("ves", data.ves, data.vesper);
    latest("rost", data.rost, data.rostper);

    const std::array<std::pair<std::string*, std::string*>, 5> girths{{
        {&data.bio1, &data.bio1per},
        {&data.bio2, &data.bio2per},
        {&data.bio3, &data.bio3per},
        {&data.bio4, &data.bio4per},
        {&data.bio5, &data.bio5per},
    }};
    core::runGuarded("loadPassportData", [&] {
        SQLite::Statement query(*db,
                                "select sdat,value from childdata where childguid=? and "
                                "type='biosize' order by date(sdat) desc limit ?");
        query.bind(1, std::string(gid));
        query.bind(2, kBiosizeRows);
        while (query.executeStep()) {
            const std::string value = core::stringFromBase(query, 1).value_or("");
            if (!diary::jsonIs(value)) {
                continue;
            }
            const nlohmann::json record = diary::jsonToDictionary(value);
            for (std::size_t i = 0; i < girths.size(); ++i) {
                auto [girth, per] = girths[i];
                if (!girth->empty()) {
                    continue;  // a newer row had it
                }
                std::string measure = diary::jsonText(record, "bio" + std::to_string(i + 1));
                if (isMeasure(measure)) {
                    *girth = std::move(measure);
                    *per = period(query);
                }
            }
        }
    });
    return data;
}

std::string Passport::ageString(int mode, const diary::SetupRecord& setup) const {
    const core::Dates& dates = context_.dates;
    const core::Date birth = dates.noTime(setup.birthdate);
    const core::Date today = dates.noTime(dates.now());

    if (mode == agemode::weeks) {
        const int count = dates.getDays(birth, today);
        if (count < 0) {
            return translated("Еще не родился");
        }
        if (count == 0) {
            return translated("Только что родился");
        }
        if (count < 7) {
            return days(count);
        }
        const std::string weeks = countPhrase(count / 7, "неделя", "недели", "недель");
        if (count % 7 == 0) {
            return weeks;
        }
        return weeks + " и " + days(count % 7);
    }

    if (mode == agemode::monthOfLife) {
        const int months = dates.getMonths(birth, today);
        return months < 1 ? "1" : std::to_string(months + 1);
    }

    // Months by the calendar fields, with a day count that goes below zero
    // borrowing the month before today's month.
    const core::DateParts from = dates.decodeDate(birth);
    const core::DateParts to = dates.decodeDate(today);
    int months = (to.year - from.year) * 12 + (to.month - from.month);
    int dayCount = to.day - from.day;
    if (dayCount < 0) {
        --months;
        dayCount += borrowedDays(to.month);
    }
    if (months < 1) {
        return {};
    }
    const std::string monthText = countPhrase(months, "месяц", "месяца", "месяцев");
    if (dayCount <= 0) {
        return monthText;
    }
    return monthText + " и " + days(dayCount);
}

std::vector<IllnessOnCard> Passport::loadBolezn(std::string_view gid) const {
    std::vector<IllnessOnCard> illnesses;
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return illnesses;
    }
    const core::Dates& dates = context_.dates;
    const core::Date birth = diary::Profiles(context_).loadSetupData(gid).birthdate;
    core::runGuarded("loadBolezn", [&] {
        SQLite::Statement query(
            *db,
            "select sdat, coname from childdata d inner join childconst c on c.coguid=d.value "
            "where type='bolezn' and coname like '%<tr>1'  and childguid=? order by coid, "
            "date(sdat)");
        query.bind(1, std::string(gid));
        while (query.executeStep()) {
            IllnessOnCard illness;
            illness.name = frame::captionText(core::stringFromBase(query, 1).value_or(""));
            const std::optional<core::Date> day = core::dateFromBase(dates, query, 0, false);
            if (day) {
                illness.date = dates.monthAge(birth, *day, true, true);
            }
            if (illness.date.empty()) {
                illness.date = translated("меньше месяца");
            }
            illnesses.push_back(std::move(illness));
        }
    });
    return illnesses;
}

std::vector<std::string> Passport::prepareAllergHilite(std::string_view gid) const {
    const diary::SetupRecord setup = diary::Profiles(context_).loadSetupData(gid);
    std::vector<frame::ListRow> rows;
    diary::ReferenceLists(context_).loadConstList(rows, diary::cotype::allergens, setup.allerg);
    std::vector<std::string> captions;
    for (const frame::ListRow& row : rows) {
        if (row.checked) {
            captions.push_back(frame::captionText(row.cap));
        }
    }
    return captions;
}

core::WriteResult Passport::saveAllergen(std::string_view gid, std::string_view value) {
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    const core::WriteResult result = core::tryWrite("saveAllergen", [&] {
        core::WriteTransaction transaction(*db);
        SQLite::Statement update(*db, "update child set allergen=? where childguid=?");
        update.bind(1, std::string(value));
        update.bind(2, std::string(gid));
        update.exec();
        transaction.commit();
    });
    if (result) {
        for (const int page : kAllergenPages) {
            context_.state.pageDirty[static_cast<std::size_t>(page)] = true;
        }
    }
    return result;
}

}  // namespace tilika::development
