#include "core/dates.h"

#include <unicode/basictz.h>
#include <unicode/calendar.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/tzrule.h>
#include <unicode/tztrans.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <unordered_map>

#include "core/words.h"
#include "platform/clock.h"

namespace tilika::core {
namespace {

constexpr const char* kLocale = "ru_RU@calendar=gregorian";
// A program uses a few dozen patterns in one or two zones; the bound only
// keeps a stream of odd zones from growing the cache without end.
constexpr std::size_t kCacheLimit = 64;
// ICU handles about ±1.8e17 ms; anything past a few million years is noise
// from a damaged record, not a date.
constexpr double kLargestMillis = 1e17;

icu::UnicodeString toUnicode(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

std::string toUtf8(const icu::UnicodeString& text) {
    std::string out;
    text.toUTF8String(out);
    return out;
}

UDate toUDate(Date date) {
    return static_cast<UDate>(date.time_since_epoch().count());
}

std::optional<Date> fromUDate(UDate value) {
    if (!std::isfinite(value) || std::fabs(value) > kLargestMillis) {
        return std::nullopt;
    }
    return Date(std::chrono::milliseconds(std::llround(value)));
}

std::string cacheKey(std::string_view zone, std::string_view pattern) {
    std::string key;
    key.reserve(zone.size() + pattern.size() + 1);
    key.append(zone).push_back('\n');
    key.append(pattern);
    return key;
}

class FormatterCache {
public:
    icu::SimpleDateFormat* get(std::string_view pattern, std::string_view zone) {
        std::string key = cacheKey(zone, pattern);
        if (auto it = formatters_.find(key); it != formatters_.end()) {
            return it->second.get();
        }
        if (formatters_.size() >= kCacheLimit) {
            formatters_.clear();
        }
        UErrorCode status = U_ZERO_ERROR;
        auto formatter = std::make_unique<icu::SimpleDateFormat>(toUnicode(pattern),
                                                                 icu::Locale(kLocale), status);
        if (U_FAILURE(status)) {
            return nullptr;
        }
        formatter->adoptTimeZone(icu::TimeZone::createTimeZone(toUnicode(zone)));
        return formatters_.emplace(std::move(key), std::move(formatter)).first->second.get();
    }

private:
    std::unordered_map<std::string, std::unique_ptr<icu::SimpleDateFormat>> formatters_;
};

class CalendarCache {
public:
    icu::Calendar* get(std::string_view zone) {
        std::string key(zone);
        if (auto it = calendars_.find(key); it != calendars_.end()) {
            return it->second.get();
        }
        if (calendars_.size() >= kCacheLimit) {
            calendars_.clear();
        }
        UErrorCode status = U_ZERO_ERROR;
        auto calendar = std::make_unique<icu::GregorianCalendar>(
            icu::TimeZone::createTimeZone(toUnicode(zone)), icu::Locale(kLocale), status);
        if (U_FAILURE(status)) {
            return nullptr;
        }
        return calendars_.emplace(std::move(key), std::move(calendar)).first->second.get();
    }

private:
    std::unordered_map<std::string, std::unique_ptr<icu::Calendar>> calendars_;
};

thread_local FormatterCache formatters;
thread_local CalendarCache calendars;

// Sets the calendar to the date; false when ICU refuses it.
bool setTo(icu::Calendar& calendar, Date date) {
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(toUDate(date), status);
    return U_SUCCESS(status);
}

std::optional<Date> timeOf(icu::Calendar& calendar) {
    UErrorCode status = U_ZERO_ERROR;
    UDate value = calendar.getTime(status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return fromUDate(value);
}

std::string formatIn(std::optional<Date> date, std::string_view format, std::string_view zone) {
    if (!date) {
        return {};
    }
    icu::SimpleDateFormat* formatter = formatters.get(format, zone);
    if (formatter == nullptr) {
        return {};
    }
    icu::UnicodeString out;
    formatter->format(toUDate(*date), out);
    return toUtf8(out);
}

std::optional<UDate> parseWhole(icu::SimpleDateFormat& formatter, const icu::UnicodeString& text,
                                bool lenient) {
    formatter.setLenient(lenient);
    icu::ParsePosition position(0);
    UDate value = formatter.parse(text, position);
    if (position.getErrorIndex() != -1 || position.getIndex() != text.length()) {
        return std::nullopt;
    }
    return value;
}

std::string countPhrase(int count, const char* one, const char* few, const char* many) {
    return std::to_string(count) + " " + rusForms(count, one, few, many);
}

}  // namespace

Date Dates::now() const {
    return clock_->now();
}

std::string Dates::timeZoneId() const {
    return clock_->timeZoneId();
}

Date Dates::noTime(Date date) const {
    icu::Calendar* calendar = calendars.get(clock_->timeZoneId());
    if (calendar == nullptr || !setTo(*calendar, date)) {
        return date;
    }
    calendar->set(UCAL_HOUR_OF_DAY, 0);
    calendar->set(UCAL_MINUTE, 0);
    calendar->set(UCAL_SECOND, 0);
    calendar->set(UCAL_MILLISECOND, 0);
    return timeOf(*calendar).value_or(date);
}

std::string Dates::dateToString(std::optional<Date> date, std::string_view format) const {
    return formatIn(date, format, clock_->timeZoneId());
}

std::string Dates::dateToStringUTC(std::optional<Date> date, std::string_view format) const {
    return formatIn(date, format, "UTC");
}

std::optional<Date> Dates::dateFromStringFormat(std::string_view text,
                                                std::string_view format) const {
    icu::SimpleDateFormat* formatter = formatters.get(format, clock_->timeZoneId());
    if (formatter == nullptr || text.empty()) {
        return std::nullopt;
    }
    const icu::UnicodeString utext = toUnicode(text);
    std::optional<UDate> value = parseWhole(*formatter, utext, false);
    if (!value) {
        // The strict parse also refuses a day whose midnight a change of
        // clocks skips (there are zones that do this). Take the lenient
        // reading only when it gives back the very same text, which still
        // turns away 29 February of an ordinary year.
        value = parseWhole(*formatter, utext, true);
        if (value) {
            icu::UnicodeString back;
            formatter->format(*value, back);
            if (back != utext) {
                value.reset();
            }
        }
    }
    return value ? fromUDate(*value) : std::nullopt;
}

std::optional<Date> Dates::dateFromString(std::string_view text) const {
    switch (text.size()) {
        case 10:
            return dateFromStringFormat(text, formats::day);
        case 16:
            return dateFromStringFormat(text, formats::minute);
        case 19:
            return dateFromStringFormat(text, formats::moment);
        default:
            return std::nullopt;
    }
}

Date Dates::encodeDate(int day, int month, int year) const {
    icu::Calendar* calendar = calendars.get(clock_->timeZoneId());
    if (calendar == nullptr) {
        return Date{};
    }
    calendar->clear();
    calendar->set(year, month - 1, day);
    return timeOf(*calendar).value_or(Date{});
}

DateParts Dates::decodeDate(Date date) const {
    icu::Calendar* calendar = calendars.get(clock_->timeZoneId());
    if (calendar == nullptr || !setTo(*calendar, date)) {
        return {};
    }
    UErrorCode status = U_ZERO_ERROR;
    DateParts parts;
    parts.year = calendar->get(UCAL_YEAR, status);
    parts.month = calendar->get(UCAL_MONTH, status) + 1;
    parts.day = calendar->get(UCAL_DATE, status);
    parts.weekday = calendar->get(UCAL_DAY_OF_WEEK, status);
    parts.weekOfYear = calendar->get(UCAL_WEEK_OF_YEAR, status);
    return U_SUCCESS(status) ? parts : DateParts{};
}

namespace {
// Noon of the date's day: unlike midnight, it exists on every day, also where
// a change of clocks skips the start of the day.
std::optional<UDate> noonOf(icu::Calendar& calendar, Date date) {
    if (!setTo(calendar, date)) {
        return std::nullopt;
    }
    calendar.set(UCAL_HOUR_OF_DAY, 12);
    calendar.set(UCAL_MINUTE, 0);
    calendar.set(UCAL_SECOND, 0);
    calendar.set(UCAL_MILLISECOND, 0);
    UErrorCode status = U_ZERO_ERROR;
    const UDate noon = calendar.getTime(status);
    return U_SUCCESS(status) ? std::optional<UDate>(noon) : std::nullopt;
}

// Whole units of `field` from the day of the first date to the day of the
// second (negative when the second is earlier).
int unitsBetweenDays(std::string_view zone, Date first, Date second, UCalendarDateFields field) {
    icu::Calendar* calendar = calendars.get(zone);
    if (calendar == nullptr) {
        return 0;
    }
    const std::optional<UDate> to = noonOf(*calendar, second);
    const std::optional<UDate> from = noonOf(*calendar, first);
    if (!from || !to) {
        return 0;
    }
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(*from, status);
    const int count = calendar->fieldDifference(*to, field, status);
    return U_SUCCESS(status) ? count : 0;
}
}  // namespace

namespace {
// The local calendar day of a date as one running number.
std::optional<std::int32_t> dayNumber(icu::Calendar& calendar, UDate date) {
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(date, status);
    const std::int32_t number = calendar.get(UCAL_JULIAN_DAY, status);
    return U_SUCCESS(status) ? std::optional<std::int32_t>(number) : std::nullopt;
}

// The date moved by whole units of a field, as the calendar adds them: the
// time of day kept, a missing day falling back to the month's last.
std::optional<UDate> plus(icu::Calendar& calendar, UDate date, UCalendarDateFields field,
                          int amount) {
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(date, status);
    calendar.add(field, amount, status);
    const UDate moved = calendar.getTime(status);
    return U_SUCCESS(status) ? std::optional<UDate>(moved) : std::nullopt;
}

// Years, then months, then days from `start` on to a later `end`, the way
// the calendar's own field differences count them, but from the fields
// instead of by trial: a diary year asks for this for every one of its
// days. For each unit the count of the fields is either right or one too
// many, which a single addition tells.
std::optional<DateDifference> forwardDifference(icu::Calendar& calendar, UDate start, UDate end) {
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(end, status);
    const int endYear = calendar.get(UCAL_EXTENDED_YEAR, status);
    const int endMonth = calendar.get(UCAL_MONTH, status);
    calendar.setTime(start, status);
    const int startYear = calendar.get(UCAL_EXTENDED_YEAR, status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }

    DateDifference difference;
    difference.years = endYear - startYear;
    std::optional<UDate> afterYears = plus(calendar, start, UCAL_YEAR, difference.years);
    if (afterYears && *afterYears > end) {
        afterYears = plus(calendar, start, UCAL_YEAR, --difference.years);
    }
    if (!afterYears) {
        return std::nullopt;
    }

    calendar.setTime(*afterYears, status);
    const int year = calendar.get(UCAL_EXTENDED_YEAR, status);
    const int month = calendar.get(UCAL_MONTH, status);
    difference.months = (endYear - year) * 12 + (endMonth - month);
    std::optional<UDate> afterMonths = plus(calendar, *afterYears, UCAL_MONTH, difference.months);
    if (afterMonths && *afterMonths > end) {
        afterMonths = plus(calendar, *afterYears, UCAL_MONTH, --difference.months);
    }
    if (!afterMonths || U_FAILURE(status)) {
        return std::nullopt;
    }

    const auto from = dayNumber(calendar, *afterMonths);
    const auto to = dayNumber(calendar, end);
    if (!from || !to) {
        return std::nullopt;
    }
    difference.days = *to - *from;
    const std::optional<UDate> afterDays = plus(calendar, *afterMonths, UCAL_DATE, difference.days);
    if (afterDays && *afterDays > end) {
        --difference.days;
    }
    return difference;
}
}  // namespace

int Dates::getDays(Date from, Date to) const {
    icu::Calendar* calendar = calendars.get(clock_->timeZoneId());
    if (calendar == nullptr) {
        return 0;
    }
    const auto first = dayNumber(*calendar, toUDate(from));
    const auto second = dayNumber(*calendar, toUDate(to));
    return first && second ? *second - *first : 0;
}

int Dates::getMonths(Date from, Date to) const {
    icu::Calendar* calendar = calendars.get(clock_->timeZoneId());
    if (calendar == nullptr) {
        return 0;
    }
    const auto start = noonOf(*calendar, from);
    const auto end = noonOf(*calendar, to);
    if (!start || !end) {
        return 0;
    }
    if (*end < *start) {
        return unitsBetweenDays(clock_->timeZoneId(), from, to, UCAL_MONTH);
    }
    // Months counted straight, not years first: after 29 February the two
    // ways part (a year from it is 28 February, a month from that the 28th).
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(*end, status);
    const int endMonths =
        calendar->get(UCAL_EXTENDED_YEAR, status) * 12 + calendar->get(UCAL_MONTH, status);
    calendar->setTime(*start, status);
    const int startMonths =
        calendar->get(UCAL_EXTENDED_YEAR, status) * 12 + calendar->get(UCAL_MONTH, status);
    if (U_FAILURE(status)) {
        return 0;
    }
    int months = endMonths - startMonths;
    const auto moved = plus(*calendar, *start, UCAL_MONTH, months);
    if (moved && *moved > *end) {
        --months;
    }
    return months;
}

std::optional<DateDifference> Dates::dayDifference(Date start, Date end) const {
    icu::Calendar* calendar = calendars.get(clock_->timeZoneId());
    if (calendar == nullptr) {
        return std::nullopt;
    }
    const auto first = noonOf(*calendar, start);
    const auto second = noonOf(*calendar, end);
    const auto firstDate = first ? fromUDate(*first) : std::nullopt;
    const auto secondDate = second ? fromUDate(*second) : std::nullopt;
    if (!firstDate || !secondDate) {
        return std::nullopt;
    }
    return difference(*firstDate, *secondDate);
}

namespace {
Date addField(std::string_view zone, Date date, UCalendarDateFields field, int amount) {
    icu::Calendar* calendar = calendars.get(zone);
    if (calendar == nullptr || !setTo(*calendar, date)) {
        return date;
    }
    UErrorCode status = U_ZERO_ERROR;
    calendar->add(field, amount, status);
    if (U_FAILURE(status)) {
        return date;
    }
    return timeOf(*calendar).value_or(date);
}
}  // namespace

Date Dates::addDays(Date date, int days) const {
    return addField(clock_->timeZoneId(), date, UCAL_DATE, days);
}

Date Dates::addMonths(Date date, int months) const {
    return addField(clock_->timeZoneId(), date, UCAL_MONTH, months);
}

Date Dates::addYears(Date date, int years) const {
    return addField(clock_->timeZoneId(), date, UCAL_YEAR, years);
}

namespace {

constexpr double kDayMillis = 86400000.0;
// The running day number of 1 January 1970, and of the first day from which
// counting the Gregorian calendar's days by hand agrees with ICU's calendar
// (which is Julian before October 1582).
constexpr int kEpochDayNumber = 2440588;
constexpr int kGregorianDayNumber = 2299239;  // 1 January 1583
// Wider than any change of clocks.
constexpr double kClockChangeMillis = 3 * 3600000.0;

std::optional<std::int32_t> offsetAt(const icu::TimeZone& zone, UDate date) {
    std::int32_t raw = 0;
    std::int32_t dst = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone.getOffset(date, false, raw, dst, status);
    return U_SUCCESS(status) ? std::optional<std::int32_t>(raw + dst) : std::nullopt;
}

// The zone's offsets over a span of time. Asked for every day of a year, it
// answers from the zone's few changes of clocks in the span rather than
// from its rules each time; outside the span, or where the zone can't list
// its changes, it asks the zone.
class Offsets {
public:
    explicit Offsets(const icu::TimeZone& zone) : zone_(zone) {}

    Offsets(const icu::TimeZone& zone, UDate from, UDate to) : zone_(zone) {
        const auto* basic = dynamic_cast<const icu::BasicTimeZone*>(&zone);
        const std::optional<std::int32_t> initial = offsetAt(zone, from);
        if (basic == nullptr || !initial) {
            return;
        }
        changes_.push_back({from, *initial});
        icu::TimeZoneTransition transition;
        UDate base = from;
        while (basic->getNextTransition(base, false, transition) && transition.getTime() <= to) {
            const icu::TimeZoneRule* rule = transition.getTo();
            const std::int32_t offset = rule->getRawOffset() + rule->getDSTSavings();
            // A change that the zone itself reads otherwise, or a zone that
            // changes without end, is left to the zone.
            if (offsetAt(zone, transition.getTime()) != offset || changes_.size() > kMostChanges) {
                changes_.clear();
                return;
            }
            changes_.push_back({transition.getTime(), offset});
            base = transition.getTime();
        }
        to_ = to;
    }

    std::optional<std::int32_t> at(UDate date) const {
        if (changes_.empty() || date < changes_.front().time || date > to_) {
            return offsetAt(zone_, date);
        }
        const auto after =
            std::upper_bound(changes_.begin(), changes_.end(), date,
                             [](UDate value, const Change& change) { return value < change.time; });
        return std::prev(after)->offset;
    }

    // Whether the date is a day's 00:00 with no change of clocks near it.
    bool midnight(UDate date, double millisInDay) const {
        return millisInDay == 0 && at(date - kClockChangeMillis) == at(date + kClockChangeMillis);
    }

private:
    static constexpr std::size_t kMostChanges = 4096;
    struct Change {
        UDate time;
        std::int32_t offset;
    };
    const icu::TimeZone& zone_;
    std::vector<Change> changes_;  // the offset from each time on
    UDate to_ = 0;
};

// The fields as the calendar, set to the date, has them.
std::optional<CalendarDay> dayFromCalendar(icu::Calendar& calendar, UDate date) {
    const std::optional<Date> instant = fromUDate(date);
    if (!instant || !setTo(calendar, *instant)) {
        return std::nullopt;
    }
    UErrorCode status = U_ZERO_ERROR;
    CalendarDay day;
    day.date = *instant;
    day.dayNumber = calendar.get(UCAL_JULIAN_DAY, status);
    day.year = calendar.get(UCAL_YEAR, status);
    day.month = calendar.get(UCAL_MONTH, status) + 1;
    day.day = calendar.get(UCAL_DATE, status);
    day.weekday = calendar.get(UCAL_DAY_OF_WEEK, status);
    const int millisInDay = calendar.get(UCAL_MILLISECONDS_IN_DAY, status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    day.midnight = Offsets(calendar.getTimeZone()).midnight(date, millisInDay);
    return day;
}

// The same from the local time alone: days counted into Gregorian years
// and months.
std::optional<CalendarDay> dayFromLocalTime(const Offsets& offsets, UDate date,
                                            std::int32_t offset) {
    const std::optional<Date> instant = fromUDate(date);
    if (!instant) {
        return std::nullopt;
    }
    const double local = date + offset;
    const double days = std::floor(local / kDayMillis);
    CalendarDay day;
    day.date = *instant;
    day.dayNumber = static_cast<int>(days) + kEpochDayNumber;
    if (day.dayNumber < kGregorianDayNumber) {
        return std::nullopt;
    }
    // Days into years of 400, then into years starting on 1 March, so that
    // the leap day comes last.
    const long z = static_cast<long>(days) + 719468;
    const long era = z / 146097;
    const long dayOfEra = z - era * 146097;
    const long yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const long shiftedMonth = (5 * dayOfYear + 2) / 153;
    day.day = static_cast<int>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
    day.month = static_cast<int>(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
    day.year = static_cast<int>(yearOfEra + era * 400 + (day.month <= 2 ? 1 : 0));
    day.weekday = (day.dayNumber + 1) % 7 + 1;
    day.midnight = offsets.midnight(date, local - days * kDayMillis);
    return day;
}

}  // namespace

CalendarDay Dates::calendarDay(Date date) const {
    icu::Calendar* calendar = calendars.get(clock_->timeZoneId());
    if (calendar == nullptr) {
        return CalendarDay{date};
    }
    return dayFromCalendar(*calendar, toUDate(date)).value_or(CalendarDay{date});
}

std::vector<CalendarDay> Dates::calendarDays(Date start, int count) const {
    std::vector<CalendarDay> days;
    icu::Calendar* calendar = calendars.get(clock_->timeZoneId());
    if (calendar == nullptr || count <= 0) {
        return days;
    }
    days.reserve(static_cast<std::size_t>(count));
    const UDate first = toUDate(start);
    const Offsets offsets(calendar->getTimeZone(), first - kDayMillis,
                          first + (count + 1) * kDayMillis);
    const std::optional<std::int32_t> startOffset = offsets.at(first);
    for (int k = 0; k < count; ++k) {
        // The calendar adds days as whole days of time and then moves back
        // by any change of the zone's offset, so that the clock shows the
        // same time; where that time does not exist on the day, it is left
        // to the calendar itself.
        const UDate moved = first + k * kDayMillis;
        const std::optional<std::int32_t> movedOffset = offsets.at(moved);
        std::optional<CalendarDay> day;
        if (startOffset && movedOffset) {
            if (*movedOffset == *startOffset) {
                day = dayFromLocalTime(offsets, moved, *movedOffset);
            } else if (const UDate kept = moved + (*startOffset - *movedOffset);
                       offsets.at(kept) == movedOffset) {
                day = dayFromLocalTime(offsets, kept, *movedOffset);
            }
        }
        if (!day) {
            const std::optional<UDate> added = plus(*calendar, first, UCAL_DATE, k);
            day = added ? dayFromCalendar(*calendar, *added) : std::nullopt;
        }
        days.push_back(day.value_or(CalendarDay{addDays(start, k)}));
    }
    return days;
}

LifeCalendar::LifeCalendar(const Dates& dates, Date birthday) : dates_(dates), birthday_(birthday) {
    icu::Calendar* calendar = calendars.get(dates.timeZoneId());
    if (calendar == nullptr) {
        return;
    }
    const std::optional<UDate> noon = noonOf(*calendar, birthday);
    const std::optional<std::int32_t> day = noon ? dayNumber(*calendar, *noon) : std::nullopt;
    if (!noon || !day) {
        return;
    }
    birthNoon_ = fromUDate(*noon);
    birthDay_ = *day;
}

int LifeCalendar::anniversary(int years, int months) const {
    icu::Calendar* calendar = calendars.get(dates_.timeZoneId());
    if (calendar == nullptr) {
        return -1;
    }
    // Years first and then months from where the years ended, as ages are
    // counted: a child born on 29 February is a year and a month old on
    // 28 March.
    const std::optional<UDate> afterYears = plus(*calendar, toUDate(*birthNoon_), UCAL_YEAR, years);
    const std::optional<UDate> after =
        afterYears ? plus(*calendar, *afterYears, UCAL_MONTH, months) : std::nullopt;
    const std::optional<std::int32_t> day = after ? dayNumber(*calendar, *after) : std::nullopt;
    return day.value_or(-1);
}

void LifeCalendar::enterYear(int years) {
    years_ = years;
    yearStart_ = anniversary(years, 0);
    nextYear_ = anniversary(years + 1, 0);
    monthStarts_.clear();
    if (yearStart_ < 0 || nextYear_ < 0) {
        birthNoon_.reset();  // the calendar failed: ask it day by day
    }
}

std::optional<DateDifference> LifeCalendar::age(const CalendarDay& day) {
    if (!birthNoon_ || day.dayNumber < birthDay_) {
        return dates_.dayDifference(birthday_, day.date);
    }
    if (nextYear_ == 0) {
        // No year is shorter than 366 days, so the walk starts at most one
        // year early.
        enterYear((day.dayNumber - birthDay_) / 366);
    }
    while (birthNoon_ && day.dayNumber >= nextYear_) {
        enterYear(years_ + 1);
    }
    while (birthNoon_ && years_ > 0 && day.dayNumber < yearStart_) {
        enterYear(years_ - 1);
    }
    if (birthNoon_ && monthStarts_.empty()) {
        // A year of whole months can hold a thirteenth: from 28 February, the
        // first year of a child born on 29 February, to 29 February four
        // years on.
        for (int month = 0; month <= 12; ++month) {
            monthStarts_.push_back(anniversary(years_, month));
        }
        if (std::find(monthStarts_.begin(), monthStarts_.end(), -1) != monthStarts_.end()) {
            birthNoon_.reset();
        }
    }
    if (!birthNoon_) {
        return dates_.dayDifference(birthday_, day.date);
    }
    int months = 0;
    while (months + 1 < static_cast<int>(monthStarts_.size()) &&
           monthStarts_[static_cast<std::size_t>(months + 1)] <= day.dayNumber) {
        ++months;
    }
    return DateDifference{years_, months,
                          day.dayNumber - monthStarts_[static_cast<std::size_t>(months)]};
}

int Dates::lastDateOfMonth(Date date) const {
    icu::Calendar* calendar = calendars.get(clock_->timeZoneId());
    if (calendar == nullptr || !setTo(*calendar, date)) {
        return 0;
    }
    UErrorCode status = U_ZERO_ERROR;
    const int last = calendar->getActualMaximum(UCAL_DATE, status);
    return U_SUCCESS(status) ? last : 0;
}

std::optional<DateDifference> Dates::difference(Date start, Date end) const {
    icu::Calendar* calendar = calendars.get(clock_->timeZoneId());
    if (calendar == nullptr) {
        return std::nullopt;
    }
    if (end >= start) {
        return forwardDifference(*calendar, toUDate(start), toUDate(end));
    }
    if (!setTo(*calendar, start)) {
        return std::nullopt;
    }
    // fieldDifference walks the calendar forward field by field, which gives
    // years, then the months left, then the days left.
    UErrorCode status = U_ZERO_ERROR;
    const UDate target = toUDate(end);
    DateDifference difference;
    difference.years = calendar->fieldDifference(target, UCAL_YEAR, status);
    difference.months = calendar->fieldDifference(target, UCAL_MONTH, status);
    difference.days = calendar->fieldDifference(target, UCAL_DATE, status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return difference;
}

std::string Dates::monthAge(Date start, Date end, bool noempty, bool nodays) const {
    const std::optional<DateDifference> age = difference(start, end);
    if (!age) {
        return {};
    }
    const int years = age->years;
    const int months = age->months;
    const int days = age->days;

    std::string phrase;
    if (years >= 1) {
        phrase = countPhrase(years, "год", "года", "лет");
    }
    if (months >= 1) {
        // The connective follows the days even when they are not shown, so
        // "1 год, 2 месяца" keeps its comma without the days. A negative day
        // count (an end before the start) puts nothing between.
        if (!phrase.empty()) {
            if (days > 0) {
                phrase += ", ";
            } else if (days == 0) {
                phrase += " и ";
            }
        }
        phrase += countPhrase(months, "месяц", "месяца", "месяцев");
    }
    if (days > 0 && !nodays) {
        if (!phrase.empty()) {
            phrase += " и ";
        }
        phrase += countPhrase(days, "день", "дня", "дней");
    }
    if (phrase.empty() && years == 0 && months == 0 && days < 1 && noempty) {
        phrase = "Только что родился";
    }
    return phrase;
}

}  // namespace tilika::core
