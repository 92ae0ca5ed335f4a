#include "core/dates.h"

#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <random>

#include "platform/clock.h"

namespace tilika::core {
namespace {

using namespace std::chrono_literals;

class DatesTest : public ::testing::Test {
protected:
    platform::ManualClock clock{Date{}, "Europe/Moscow"};
    Dates dates{clock};

    Date at(std::string_view text) {
        auto date = dates.dateFromString(text);
        EXPECT_TRUE(date.has_value()) << text;
        return date.value_or(Date{});
    }
    std::string moment(Date date) { return dates.dateToString(date, formats::moment); }
    std::string day(Date date) { return dates.dateToString(date, formats::day); }
};

TEST_F(DatesTest, FormatsInRussianInTheClocksZone) {
    const Date date = dates.encodeDate(22, 11, 2026);
    EXPECT_EQ(dates.dateToString(date, formats::longDay), "22 ноября 2026");
    EXPECT_EQ(dates.dateToString(date, formats::screenDay), "22.11.2026");
    EXPECT_EQ(dates.dateToString(date, formats::backupDay), "261122");
    EXPECT_EQ(dates.dateToString(date, formats::photoDay), "22-11-2026");
    EXPECT_EQ(dates.dateToString(date + 14h + 5min, formats::longMoment), "22 ноября 2026 14:05");
    EXPECT_EQ(dates.dateToStringUTC(date, formats::moment), "2026-11-21 21:00:00");
    EXPECT_EQ(dates.dateToString(std::nullopt, formats::day), "");

    const DateParts parts = dates.decodeDate(date);
    EXPECT_EQ(parts.year, 2026);
    EXPECT_EQ(parts.month, 11);
    EXPECT_EQ(parts.day, 22);
    EXPECT_EQ(parts.weekday, 1);  // a Sunday
    EXPECT_EQ(parts.weekOfYear, 47);
}

TEST_F(DatesTest, FollowsAZoneChangeBetweenCalls) {
    // 22:30 UTC is already the next day in Moscow, still the same day in New York.
    const Date instant = at("2026-11-23 01:30");
    const Date moscowMidnight = at("2026-11-22");
    EXPECT_EQ(day(instant), "2026-11-23");
    clock.setTimeZoneId("America/New_York");
    EXPECT_EQ(day(instant), "2026-11-22");
    EXPECT_EQ(moment(instant), "2026-11-22 17:30:00");
    EXPECT_EQ(at("2026-11-22") - moscowMidnight, 8h);
    clock.setTimeZoneId("Europe/Moscow");
    EXPECT_EQ(day(instant), "2026-11-23");
}

TEST_F(DatesTest, ParsesOnlyWholeTextsOfRealDates) {
    EXPECT_EQ(moment(at("2026-11-22")), "2026-11-22 00:00:00");
    EXPECT_EQ(moment(at("2026-11-22 08:15")), "2026-11-22 08:15:00");
    EXPECT_EQ(moment(at("2026-11-22 08:15:42")), "2026-11-22 08:15:42");
    EXPECT_TRUE(dates.dateFromString("2016-02-29 00:00"));

    for (std::string_view bad : {"2014-02-29 00:00", "2014-02-29", "2026-13-01", "2026-11-22 25:00",
                                 "2026-11-2", "2026-11-22x", "2026-11-22 10:00:0x", "abcd-ef-gh",
                                 "", "\xff\xfe\xfd-11-22", "2026-11-22 08:15:42.5"}) {
        EXPECT_FALSE(dates.dateFromString(bad)) << bad;
    }
    EXPECT_EQ(day(*dates.dateFromStringFormat("22.11.2026", formats::screenDay)), "2026-11-22");
    EXPECT_EQ(day(*dates.dateFromStringFormat("22 ноября 2026", formats::longDay)), "2026-11-22");
    EXPECT_FALSE(dates.dateFromStringFormat("22.11.2026", formats::day));
    EXPECT_FALSE(dates.dateFromStringFormat(std::string(100000, '7'), formats::day));
}

TEST_F(DatesTest, ParsesADayWhoseMidnightIsSkipped) {
    // Chile moves its clocks forward at midnight, so 6 September 2026 starts at 01:00.
    clock.setTimeZoneId("America/Santiago");
    const auto date = dates.dateFromString("2026-09-06");
    ASSERT_TRUE(date);
    EXPECT_EQ(day(*date), "2026-09-06");
    EXPECT_EQ(day(dates.noTime(*date + 5h)), "2026-09-06");
    EXPECT_EQ(dates.getDays(at("2026-09-05"), at("2026-09-07")), 2);
    EXPECT_EQ(dates.getDays(at("2026-09-06"), at("2026-09-07")), 1);
    EXPECT_EQ(dates.getDays(at("2026-09-07"), at("2026-09-06 13:00")), -1);
    EXPECT_EQ(dates.getMonths(at("2026-09-06"), at("2026-10-06")), 1);
    EXPECT_EQ(dates.getMonths(at("2026-08-06"), at("2026-09-06")), 1);
}

TEST_F(DatesTest, MovesByCalendarFields) {
    EXPECT_EQ(day(dates.addMonths(at("2026-01-31"), 1)), "2026-02-28");
    EXPECT_EQ(day(dates.addMonths(at("2024-01-31"), 1)), "2024-02-29");
    EXPECT_EQ(day(dates.addMonths(at("2026-03-31"), -1)), "2026-02-28");
    EXPECT_EQ(day(dates.addYears(at("2024-02-29"), 1)), "2025-02-28");
    EXPECT_EQ(moment(dates.addDays(at("2026-12-31 18:45"), 1)), "2027-01-01 18:45:00");
    EXPECT_EQ(day(dates.addDays(at("2026-03-01"), -1)), "2026-02-28");

    EXPECT_EQ(dates.lastDateOfMonth(at("2024-02-10")), 29);
    EXPECT_EQ(dates.lastDateOfMonth(at("2026-02-10")), 28);
    EXPECT_EQ(dates.lastDateOfMonth(at("2026-11-22")), 30);
    // Out-of-range fields roll over.
    EXPECT_EQ(day(dates.encodeDate(0, 3, 2026)), "2026-02-28");
    EXPECT_EQ(day(dates.encodeDate(32, 12, 2026)), "2027-01-01");

    EXPECT_EQ(dates.getDays(at("2026-11-22 23:59"), at("2026-11-23 00:01")), 1);
    EXPECT_EQ(dates.getDays(at("2026-11-23"), at("2026-11-22 12:00")), -1);
    EXPECT_EQ(dates.getDays(at("2024-01-01"), at("2025-01-01")), 366);
    // A month after 31 January is the last day of February, both ways.
    EXPECT_EQ(dates.getMonths(at("2026-01-31"), at("2026-02-28")), 1);
    EXPECT_EQ(dates.getMonths(at("2026-01-31"), at("2026-02-27")), 0);
    EXPECT_EQ(dates.getMonths(at("2026-01-15 20:00"), at("2026-03-15 01:00")), 2);
    EXPECT_EQ(dates.getMonths(at("2026-03-15"), at("2025-03-15")), -12);
    EXPECT_EQ(dates.getMonths(at("2020-02-29"), at("2021-03-28")), 12);
    // The age of a day counts its whole day, even where midnight is skipped.
    clock.setTimeZoneId("America/Sao_Paulo");
    const auto age = dates.dayDifference(at("2018-11-04"), at("2018-12-04"));
    ASSERT_TRUE(age);
    EXPECT_EQ(age->months, 1);
    EXPECT_EQ(age->days, 0);
}

TEST_F(DatesTest, KeepsTheDayAcrossAChangeOfClocks) {
    clock.setTimeZoneId("Europe/Berlin");
    // The night of 29 March 2026 is an hour short, the night of 25 October an hour long.
    EXPECT_EQ(moment(dates.addDays(at("2026-03-28 12:00"), 1)), "2026-03-29 12:00:00");
    EXPECT_EQ(moment(dates.addDays(at("2026-03-29 00:30"), 1)), "2026-03-30 00:30:00");
    EXPECT_EQ(moment(dates.addDays(at("2026-10-26 00:30"), -1)), "2026-10-25 00:30:00");
    EXPECT_EQ(moment(dates.noTime(at("2026-10-25 23:00"))), "2026-10-25 00:00:00");
    EXPECT_EQ(dates.getDays(at("2026-03-01"), at("2026-04-01")), 31);
    EXPECT_EQ(dates.getDays(at("2026-10-25 00:00"), at("2026-10-26 00:00")), 1);
    EXPECT_EQ(dates.getDays(at("2026-03-29 00:00"), at("2026-03-29 23:59")), 0);

    Date walk = at("2026-01-01 00:00");
    for (int i = 0; i < 365; ++i) {
        walk = dates.addDays(walk, 1);
    }
    EXPECT_EQ(moment(walk), "2027-01-01 00:00:00");
}

// The calendar's own count by trial, which the quick count must agree with.
DateDifference countedByTrial(const std::string& zone, Date start, Date end) {
    UErrorCode status = U_ZERO_ERROR;
    icu::GregorianCalendar calendar(icu::TimeZone::createTimeZone(zone.c_str()),
                                    icu::Locale("ru_RU"), status);
    calendar.setTime(static_cast<UDate>(start.time_since_epoch().count()), status);
    const UDate target = static_cast<UDate>(end.time_since_epoch().count());
    DateDifference difference;
    difference.years = calendar.fieldDifference(target, UCAL_YEAR, status);
    difference.months = calendar.fieldDifference(target, UCAL_MONTH, status);
    difference.days = calendar.fieldDifference(target, UCAL_DATE, status);
    return difference;
}

// Whole units between the days of two dates, counted noon to noon by trial.
int byTrialFromNoon(const std::string& zone, Date start, Date end, UCalendarDateFields field) {
    UErrorCode status = U_ZERO_ERROR;
    icu::GregorianCalendar calendar(icu::TimeZone::createTimeZone(zone.c_str()),
                                    icu::Locale("ru_RU"), status);
    auto noon = [&](Date date) {
        calendar.setTime(static_cast<UDate>(date.time_since_epoch().count()), status);
        calendar.set(UCAL_HOUR_OF_DAY, 12);
        calendar.set(UCAL_MINUTE, 0);
        calendar.set(UCAL_SECOND, 0);
        calendar.set(UCAL_MILLISECOND, 0);
        return calendar.getTime(status);
    };
    const UDate to = noon(end);
    calendar.setTime(noon(start), status);
    return calendar.fieldDifference(to, field, status);
}

TEST_F(DatesTest, CountsYearsMonthsAndDaysAsTheCalendarDoes) {
    std::mt19937 random(7);
    for (const char* zone : {"Europe/Berlin", "America/Santiago", "Europe/Moscow"}) {
        clock.setTimeZoneId(zone);
        const Date base = at("2012-02-29 00:00");
        for (int i = 0; i < 1500; ++i) {
            // Month ends, leap days and changes of clocks come up often in
            // twenty years of random moments.
            const Date start = base + std::chrono::minutes(random() % (20 * 365 * 24 * 60));
            const Date end = start + std::chrono::minutes(random() % (3 * 365 * 24 * 60));
            const auto quick = dates.difference(start, end);
            const DateDifference trial = countedByTrial(zone, start, end);
            ASSERT_TRUE(quick);
            ASSERT_TRUE(quick->years == trial.years && quick->months == trial.months &&
                        quick->days == trial.days)
                << zone << " " << moment(start) << " to " << moment(end) << ": " << quick->years
                << "/" << quick->months << "/" << quick->days << " against " << trial.years << "/"
                << trial.months << "/" << trial.days;
            ASSERT_EQ(dates.getDays(start, end), byTrialFromNoon(zone, start, end, UCAL_DATE))
                << moment(start) << " " << moment(end);
            ASSERT_EQ(dates.getMonths(start, end), byTrialFromNoon(zone, start, end, UCAL_MONTH))
                << moment(start) << " " << moment(end);
        }
    }
}

TEST_F(DatesTest, WalksDaysAndAgesAsTheCalendarAddsThem) {
    // Zones that change clocks at night, at midnight (Santiago, Havana,
    // Beirut, Sao Paulo until 2019) and by half an hour (Lord Howe).
    for (const char* zone : {"Europe/Berlin", "America/Santiago", "America/Havana", "Asia/Beirut",
                             "America/Sao_Paulo", "Australia/Lord_Howe", "Europe/Moscow"}) {
        clock.setTimeZoneId(zone);
        for (const char* from : {"2016-02-29 00:00", "2017-10-14 00:30", "2018-11-03 23:30"}) {
            const Date start = at(from);
            const std::vector<CalendarDay> days = dates.calendarDays(start, 3 * 365);
            ASSERT_EQ(days.size(), 3u * 365);
            for (int k = 0; k < static_cast<int>(days.size()); ++k) {
                const CalendarDay& walked = days[static_cast<std::size_t>(k)];
                const Date added = dates.addDays(start, k);
                ASSERT_EQ(moment(walked.date), moment(added)) << zone << " " << from << " +" << k;
                const DateParts parts = dates.decodeDate(added);
                ASSERT_TRUE(walked.year == parts.year && walked.month == parts.month &&
                            walked.day == parts.day && walked.weekday == parts.weekday)
                    << zone << " " << moment(added);
                ASSERT_EQ(walked.dayNumber - days[0].dayNumber, dates.getDays(start, added));
                if (walked.midnight) {
                    ASSERT_EQ(dates.dateFromString(day(added)), added) << zone << " " << day(added);
                }
            }
        }

        // Ages of every day of five years, walked forward and then back, for
        // birthdays at the ends of months.
        for (const char* birth : {"2016-02-29", "2016-01-31", "2015-03-31", "2016-10-16"}) {
            const Date birthday = at(birth);
            const std::vector<CalendarDay> days =
                dates.calendarDays(dates.addDays(birthday, -3), 5 * 365);
            LifeCalendar ages(dates, birthday);
            auto check = [&](const CalendarDay& walked) {
                const auto expected = dates.dayDifference(birthday, walked.date);
                const auto age = ages.age(walked);
                ASSERT_TRUE(age && expected);
                ASSERT_TRUE(age->years == expected->years && age->months == expected->months &&
                            age->days == expected->days)
                    << zone << " " << birth << " on " << day(walked.date) << ": " << age->years
                    << "/" << age->months << "/" << age->days << " against " << expected->years
                    << "/" << expected->months << "/" << expected->days;
            };
            for (const CalendarDay& walked : days) {
                check(walked);
            }
            for (auto walked = days.rbegin(); walked != days.rend(); ++walked) {
                check(*walked);
            }
        }
    }
}

TEST_F(DatesTest, SaysTheAgeAsAPhrase) {
    const Date birth = at("2025-08-19");
    auto age = [&](std::string_view end, bool noempty = false, bool nodays = false) {
        return dates.monthAge(birth, at(end), noempty, nodays);
    };
    EXPECT_EQ(age("2026-10-22"), "1 год, 2 месяца и 3 дня");
    EXPECT_EQ(age("2026-10-19"), "1 год и 2 месяца");
    EXPECT_EQ(age("2026-10-22", false, true), "1 год, 2 месяца");
    EXPECT_EQ(age("2025-10-22"), "2 месяца и 3 дня");
    EXPECT_EQ(age("2026-08-21"), "1 год и 2 дня");
    EXPECT_EQ(age("2025-08-20"), "1 день");
    EXPECT_EQ(age("2030-09-14"), "5 лет и 26 дней");
    EXPECT_EQ(age("2046-08-30"), "21 год и 11 дней");
    EXPECT_EQ(age("2025-08-19", true), "Только что родился");
    EXPECT_EQ(age("2025-08-19"), "");
    EXPECT_EQ(age("2025-08-25", true, true), "");
    EXPECT_EQ(dates.monthAge(birth, birth + 20h, true, false), "Только что родился");
}

}  // namespace
}  // namespace tilika::core
