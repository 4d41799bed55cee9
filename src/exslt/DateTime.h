/**
 * @file
 * Dates, times and durations of XML Schema.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/** The formats, from the least truncated on the right, then those truncated on the left. */
enum class DateForm { DateTime, Date, YearMonth, Year, Time, MonthDay, Month, Day };

/** In minutes. */
constexpr int MOST_ZONE = 14 * 60;

struct DateTime {
    DateForm form = DateForm::DateTime;
    /** The year before 1 is 0 here. There is no year 0000 in a text: it is -0001. */
    std::int64_t year = 1;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int nanosecond = 0;
    /** Minutes from UTC, if it is known. */
    std::optional<int> zone;

    /** @return nothing for a text of another format */
    static std::optional<DateTime> parse(std::u16string_view text);
    /** The time of the call, in the zone of the process, in seconds. */
    static DateTime now();

    /** In a format of the same or of fewer components. */
    std::string text(DateForm format) const;
    std::int64_t yearInText() const { return year > 0 ? year : year - 1; }

    bool hasDate() const { return form == DateForm::DateTime || form == DateForm::Date; }
    bool hasTime() const { return form == DateForm::DateTime || form == DateForm::Time; }
    bool hasYear() const { return form <= DateForm::Year; }
    bool hasMonth() const {
        return form <= DateForm::YearMonth || form == DateForm::MonthDay || form == DateForm::Month;
    }
    bool hasDay() const { return hasDate() || form == DateForm::MonthDay || form == DateForm::Day; }

    /** Whether the month and the day exist. */
    bool isValid() const;
    /** Of the year, from 1. */
    int dayInYear() const;
    /** 0 is Sunday. */
    int dayInWeek() const;
    int weekInYear() const;
    int weekInMonth() const;
    /** Since 1970 began in UTC, which is taken for the zone if none is known. */
    std::int64_t seconds() const;
};

bool isLeapYear(std::int64_t year);

/** Months and seconds do not depend on one another, and have the same sign. */
struct Duration {
    std::int64_t months = 0;
    std::int64_t seconds = 0;
    int nanoseconds = 0; // with the sign of the whole

    static std::optional<Duration> parse(std::u16string_view text);
    /** @return nothing for a number that is no duration, or too large */
    static std::optional<Duration> ofSeconds(double seconds);

    std::string text() const;
    double inSeconds() const { return static_cast<double>(seconds) + nanoseconds / 1e9; }
};

/** @return nothing where the months and the seconds would differ in sign, or become too large */
std::optional<Duration> sum(const Duration& a, const Duration& b);

/** In the same format. @return nothing for a year that is too large */
std::optional<DateTime> sum(const DateTime& date, const Duration& duration);

/** From the first to the second, in the format of the one that has fewer components. */
Duration difference(const DateTime& from, const DateTime& to);
