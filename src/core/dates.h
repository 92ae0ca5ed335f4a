#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"

namespace tilika::platform {
class Clock;
}

namespace tilika::core {

// Date patterns the stored data and the screens rely on.
namespace formats {
inline constexpr std::string_view day = "yyyy-MM-dd";
inline constexpr std::string_view moment = "yyyy-MM-dd HH:mm:ss";
inline constexpr std::string_view minute = "yyyy-MM-dd HH:mm";
inline constexpr std::string_view screenDay = "dd.MM.yyyy";
inline constexpr std::string_view screenMoment = "dd.MM.yyyy HH:mm";
inline constexpr std::string_view longDay = "dd MMMM yyyy";
inline constexpr std::string_view longMoment = "dd MMMM yyyy HH:mm";
inline constexpr std::string_view timeOfDay = "HH:mm";
inline constexpr std::string_view photoDay = "dd-MM-yyyy";
inline constexpr std::string_view backupDay = "yyMMdd";
}  // namespace formats

// Calendar fields of one date, read in the device's zone.
struct DateParts {
    int year = 0;
    int month = 0;  // 1..12
    int day = 0;
    int weekday = 0;  // 1 = Sunday .. 7 = Saturday
    int weekOfYear = 0;
};

// Whole years, then the months and days left over, from one date to another;
// all negative when the second date is earlier.
struct DateDifference {
    int years = 0;
    int months = 0;
    int days = 0;
};

// A date with the fields of the day it falls on, for walks over many days.
struct CalendarDay {
    Date date{};
    int dayNumber = 0;  // a running count of days: getDays() is a difference of two
    int year = 0;
    int month = 0;  // 1..12
    int day = 0;
    int weekday = 0;  // 1 = Sunday .. 7 = Saturday
    // The date is the day's 00:00, which the clock shows once that day (no
    // change of clocks near it): the day's "yyyy-MM-dd" reads as this date.
    bool midnight = false;
};

// Every date, day and age in the program passes through here: the Gregorian
// calendar and Unicode date patterns in the Russian locale and the zone the
// clock reports at the moment of the call. Formatters and calendars are
// cached per pattern and zone (per thread, since ICU's are not thread-safe),
// so loops over years of days stay cheap and a zone change is still honoured.
class Dates {
public:
    explicit Dates(const platform::Clock& clock) : clock_(&clock) {}

    Date now() const;
    std::string timeZoneId() const;

    // The same day at 00:00 local time (the first moment of the day where a
    // change of clocks skips midnight).
    Date noTime(Date date) const;

    // Empty text for a missing date, or a date ICU can't represent.
    std::string dateToString(std::optional<Date> date, std::string_view format) const;
    std::string dateToStringUTC(std::optional<Date> date, std::string_view format) const;

    // The whole text must match the pattern and name a real date:
    // "2014-02-29" is no date at all.
    std::optional<Date> dateFromStringFormat(std::string_view text, std::string_view format) const;
    // Chooses the pattern by length: 10 day, 16 minute, 19 moment.
    std::optional<Date> dateFromString(std::string_view text) const;

    // Local midnight of the given fields; out-of-range fields roll over the
    // way the calendar counts (day 0 is the last day of the month before).
    Date encodeDate(int day, int month, int year) const;
    DateParts decodeDate(Date date) const;

    // Whole days and whole months between the two days the dates fall on;
    // negative when `to` is earlier.
    int getDays(Date from, Date to) const;
    int getMonths(Date from, Date to) const;

    // Calendar moves that keep the time of day; a day missing from the target
    // month becomes the last day of that month.
    Date addDays(Date date, int days) const;
    Date addMonths(Date date, int months) const;
    Date addYears(Date date, int years) const;

    int lastDateOfMonth(Date date) const;

    CalendarDay calendarDay(Date date) const;
    // `count` days from `start` on: the k-th is the date addDays(start, k)
    // gives, with its fields. A year of days costs about as much as a few
    // calendar additions, since the days between two changes of clocks are
    // counted rather than added one by one.
    std::vector<CalendarDay> calendarDays(Date start, int count) const;

    // The dates are taken as they are, times of day included.
    std::optional<DateDifference> difference(Date start, Date end) const;
    // The same between the days the dates fall on, whatever their times.
    std::optional<DateDifference> dayDifference(Date start, Date end) const;

    // Age as a phrase: "1 год, 2 месяца и 3 дня". With `noempty` a zero age
    // reads "Только что родился"; with `nodays` the days are left out.
    std::string monthAge(Date start, Date end, bool noempty, bool nodays) const;

private:
    const platform::Clock* clock_;
};

// Ages on many days from one birthday, as Dates::dayDifference() counts them:
// the anniversaries are worked out once and the days compared with them, so
// that a walk over a year of days does no calendar work per day. Keeps state;
// one per walk and thread.
class LifeCalendar {
public:
    LifeCalendar(const Dates& dates, Date birthday);

    std::optional<DateDifference> age(const CalendarDay& day);

private:
    // The day number of the birthday moved by whole years, then by whole
    // months, as the calendar adds them.
    int anniversary(int years, int months) const;
    void enterYear(int years);

    const Dates& dates_;
    Date birthday_;
    std::optional<Date> birthNoon_;
    int birthDay_ = 0;
    int years_ = 0;
    // The day numbers of this whole year and the next; none yet while 0.
    int yearStart_ = 0;
    int nextYear_ = 0;
    std::vector<int> monthStarts_;  // the year's months, from month 0
};

}  // namespace tilika::core
