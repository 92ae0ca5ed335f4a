#include "development/teeth.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <cmath>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "core/words.h"
#include "development/passport.h"
#include "diary/day_rows.h"
#include "diary/profiles.h"
#include "frame/translation.h"

namespace tilika::development {

namespace {

// When each milk tooth usually comes through and falls out, in months of
// life, by the dental number of the pair of teeth.
struct ToothTimes {
    int dental[2];
    int eruptionFrom;
    int eruptionTo;
    int lossFrom;
    int lossTo;
};

constexpr std::array<ToothTimes, 10> kToothTimes{{
    {{51, 61}, 8, 12, 72, 84},
    {{52, 62}, 9, 13, 84, 96},
    {{53, 63}, 16, 22, 120, 144},
    {{54, 64}, 13, 19, 108, 132},
    {{55, 65}, 25, 33, 120, 144},
    {{81, 71}, 6, 10, 72, 84},
    {{82, 72}, 10, 16, 84, 96},
    {{83, 73}, 17, 23, 108, 144},
    {{84, 74}, 14, 18, 108, 132},
    {{85, 75}, 23, 31, 120, 144},
}};

// The first teeth fall out in the seventh year; until then the page shows
// teeth coming.
constexpr int kLastEruptionMonth = 71;

const ToothTimes& timesOf(int dental) {
    for (const ToothTimes& times : kToothTimes) {
        if (times.dental[0] == dental || times.dental[1] == dental) {
            return times;
        }
    }
    // Every dental number of the chart stands in the table.
    return kToothTimes.front();
}

std::string counted(int count, const char* one, const char* few, const char* many) {
    return std::to_string(count) + " " + core::rusForms(count, one, few, many);
}

}  // namespace

double calcToothAlpha(int x, int min, int max, bool show) {
    if (x >= min && x < max) {
        const double f = static_cast<double>(x - min) / static_cast<double>(max - min);
        return show ? f : 1 - f;
    }
    const bool before = x < min;
    return show == before ? 0 : 1;
}

int toothMonth(double position) {
    if (!(position > 0)) {
        return 0;
    }
    return static_cast<int>(std::floor(position));
}

ToothOpacity statOpacity(int month) {
    const bool show = month <= kLastEruptionMonth;
    ToothOpacity opacity{};
    for (std::size_t i = 0; i < opacity.size(); ++i) {
        const ToothTimes& times = timesOf(diary::kDentalNumbers[i]);
        opacity[i] = show ? calcToothAlpha(month, times.eruptionFrom, times.eruptionTo, true)
                          : calcToothAlpha(month, times.lossFrom, times.lossTo, false);
    }
    return opacity;
}

ToothOpacity boyOpacity(std::string_view teeth) {
    const std::size_t end = teeth.find("<tm>");
    ToothOpacity opacity{};
    for (const std::string& item : core::split(teeth.substr(0, end), "<tr>")) {
        const int n = core::intValue(item);
        if (n >= 1 && n <= diary::kMilkTeeth) {
            opacity[static_cast<std::size_t>(n - 1)] = 1;
        }
    }
    return opacity;
}

std::string toothAgeCaption(int month) {
    const int years = month / 12;
    const int months = month % 12;
    if (month <= 0) {
        return "Только что родился";
    }
    if (month < 12) {
        return counted(months, "месяц", "месяца", "месяцев");
    }
    std::string text = counted(years, "год", "года", "лет");
    if (months > 0) {
        text += " и " + counted(months, "месяц", "месяца", "месяцев");
    }
    return text;
}

// ---- ToothHistory ----

ToothHistory ToothHistory::load(SQLite::Database& db, std::string_view gid) {
    ToothHistory history;
    core::runGuarded("ToothHistory::load", [&] {
        SQLite::Statement query(db,
                                "select date(sdat), value from childdata where type='tooth' and "
                                "childguid=? and date(sdat) is not null order by date(sdat)");
        query.bind(1, std::string(gid));
        diary::ToothReplay replay;
        while (query.executeStep()) {
            std::string day = core::stringFromBase(query, 0).value_or("");
            replay.apply(core::stringFromBase(query, 1).value_or(""));
            // A day's rows all land before the next day is asked for.
            if (!history.days_.empty() && history.days_.back().first == day) {
                history.days_.back().second = replay.text();
            } else {
                history.days_.emplace_back(std::move(day), replay.text());
            }
        }
    });
    return history;
}

std::string ToothHistory::before(std::string_view day) const {
    // Days are "yyyy-MM-dd", which sort as text in the order of time.
    const auto after = std::lower_bound(days_.begin(), days_.end(), day,
                                        [](const std::pair<std::string, std::string>& entry,
                                           std::string_view d) { return entry.first < d; });
    return after == days_.begin() ? std::string() : std::prev(after)->second;
}

// ---- Teeth ----

Teeth::Teeth(core::Context& context) : context_(context) {}

void Teeth::activateView(std::string_view gid) {
    gchildguid_ = std::string(gid);
    birth_.reset();
    const diary::SetupRecord record = diary::Profiles(context_).loadSetupData(gid);
    if (record.sbirthdate) {
        birth_ = context_.dates.dateFromString(*record.sbirthdate);
    }
    reload();
}

void Teeth::reload() {
    SQLite::Database* db = context_.database.connectToBase();
    history_ = db != nullptr ? ToothHistory::load(*db, gchildguid_) : ToothHistory();
}

int Teeth::startMonth() const {
    return birth_ ? std::max(0, Passport(context_).getCurMonth(*birth_)) : 0;
}

void Teeth::stateChange() {
    gState_ = gState_ == toothstate::child ? toothstate::statistics : toothstate::child;
}

std::string Teeth::caption() const {
    return frame::translate(context_.state, gState_ == toothstate::child
                                                ? "Молочные зубы ребенка"
                                                : "Молочные зубы (статистика)");
}

std::string Teeth::statePicture() const {
    // The button shows the mode it switches to.
    return gState_ == toothstate::child ? "tooth-stat.png" : "tooth-boy.png";
}

ToothOpacity Teeth::update(double position) const {
    return gState_ == toothstate::child ? showBoy(position) : showStat(position);
}

ToothOpacity Teeth::showStat(double position) const {
    return statOpacity(toothMonth(position));
}

ToothOpacity Teeth::showBoy(double position) const {
    if (!birth_) {
        return {};
    }
    const core::Date day = context_.dates.addMonths(*birth_, toothMonth(position));
    return boyOpacity(history_.before(dayText(day)));
}

std::string Teeth::toothForDay(core::Date date, std::string_view childguid) const {
    diary::ToothReplay teeth;
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return {};
    }
    core::runGuarded("toothForDay", [&] {
        // The day is bound as "yyyy-MM-dd", so rows of that day, with or
        // without a time, are left out.
        SQLite::Statement query(*db,
                                "select value from childdata where type='tooth' and childguid=? "
                                "and date(sdat)<? order by date(sdat)");
        query.bind(1, std::string(childguid));
        query.bind(2, dayText(date));
        while (query.executeStep()) {
            teeth.apply(core::stringFromBase(query, 0).value_or(""));
        }
    });
    return teeth.text();
}

std::string Teeth::dayText(core::Date date) const {
    const core::Dates& dates = context_.dates;
    return dates.dateToString(dates.noTime(date), core::formats::day);
}

}  // namespace tilika::development
