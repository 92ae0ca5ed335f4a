#include "medication/reminders.h"

#include <SQLiteCpp/Statement.h>

#include <cctype>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "diary/profiles.h"
#include "diary/value_codecs.h"
#include "frame/translation.h"
#include "medication/dose_times.h"
#include "platform/notifier.h"

namespace tilika::medication {
namespace {

// Rows of one day come in the order they were written, so that two
// children's rows of a day are scheduled, and cut at the limit, the same way
// on every rebuild. The reminders are looked up by the old numeric profile
// number, which the names are not keyed by: their bodies begin "(null)", as
// they always have.
constexpr std::string_view kAlarmRows =
    "select sdat, value, chid from childdata where date(sdat)>=date(?) and type='alarm' "
    "order by date(sdat), datid limit 20";
constexpr std::string_view kPillsRows =
    "select sdat, value, childguid from childdata where date(sdat)>=date(?) and type='pills' "
    "order by date(sdat), datid limit 20";

constexpr std::string_view kDefaultText = "Напоминание программы Тилика";
constexpr std::string_view kOpenAction = "Открыть";

// "HH:mm" with two digits each; anything else is no time of a reminder.
bool isClockText(std::string_view time) {
    if (time.size() != 5 || time[2] != ':') {
        return false;
    }
    for (const std::size_t i : {0U, 1U, 3U, 4U}) {
        if (std::isdigit(static_cast<unsigned char>(time[i])) == 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::vector<Reminders::DayRow> Reminders::nextRows(std::string_view query) const {
    std::vector<DayRow> rows;
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return rows;
    }
    const bool read = core::runGuarded("reminders", [&] {
        SQLite::Statement select(*db, std::string(query));
        core::dateToBase(context_.dates, select, 1, context_.dates.now(), false);
        while (select.executeStep()) {
            DayRow row;
            row.day = core::stringFromBase(select, 0).value_or("").substr(0, 10);
            row.value = core::stringFromBase(select, 1).value_or("");
            row.owner = core::stringFromBase(select, 2).value_or("");
            rows.push_back(std::move(row));
        }
    });
    if (!read) {
        rows.clear();
    }
    return rows;
}

std::map<std::string, std::string> Reminders::childNames() const {
    if (context_.state.appid != core::edition::child) {
        return {};
    }
    return diary::Profiles(context_).childNames();
}

std::string Reminders::body(const std::map<std::string, std::string>& names,
                            const std::string& owner, std::string_view text) {
    const auto name = names.find(owner);
    return (name == names.end() ? std::string("(null)") : name->second) + ": " + std::string(text);
}

void Reminders::scheduleAt(core::Date fire, std::string body) const {
    if (fire <= context_.dates.now()) {
        return;
    }
    platform::LocalNotification notification;
    notification.fireDate = fire;
    notification.timeZone = context_.dates.timeZoneId();
    notification.alertAction = std::string(kOpenAction);
    notification.alertBody = std::move(body);
    notifier_.schedule(notification);
}

void Reminders::updateNoteAlarms() {
    notifier_.cancelAll();
    const auto names = childNames();
    const core::Dates& dates = context_.dates;
    for (const DayRow& row : nextRows(kAlarmRows)) {
        if (!diary::jsonIs(row.value)) {
            continue;
        }
        for (const nlohmann::json& element : diary::jsonToArray(row.value)) {
            const std::string time = diary::jsonText(element, "time");
            if (!isClockText(time)) {
                continue;
            }
            const auto fire =
                dates.dateFromStringFormat(row.day + " " + time, core::formats::minute);
            if (!fire) {
                continue;
            }
            std::string text = diary::jsonText(element, "temp");
            if (text.empty()) {
                text = frame::translate(context_.state, kDefaultText);
            }
            scheduleAt(*fire, body(names, row.owner, text));
        }
    }
}

void Reminders::updatePillsAlarms(const std::vector<diary::ListRow>& lists) {
    const auto names = childNames();
    const core::Dates& dates = context_.dates;
    const std::vector<DayRow> rows = nextRows(kPillsRows);
    if (rows.empty()) {
        return;
    }
    const DoseTimes doses(dates, lists, getObed(context_.database.connectToBase()));
    for (const DayRow& row : rows) {
        const auto day = dates.dateFromStringFormat(row.day, core::formats::day);
        if (!day) {
            continue;
        }
        for (const DoseTime& dose : doses.pillsToTimeArray(*day, row.value)) {
            scheduleAt(dose.dat, body(names, row.owner, dose.msg));
        }
    }
}

}  // namespace tilika::medication
