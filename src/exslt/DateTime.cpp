#include "exslt/DateTime.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>

namespace {

using Text = std::u16string_view;

/** Larger years and numbers are not a date or duration. */
constexpr std::int64_t MOST_YEAR = 999'999'999;
constexpr std::size_t MOST_DIGITS = 12;
constexpr int NANOSECONDS = 1'000'000'000;
constexpr std::int64_t DAY = 86'400;

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

std::int64_t floorDivide(std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

std::int64_t floorRemainder(std::int64_t a, std::int64_t b) {
    return a - floorDivide(a, b) * b;
}

int daysInMonth(std::int64_t year, int month) {
    static constexpr int DAYS[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : DAYS[month - 1];
}

/** Days before a year, since the year 1. */
std::int64_t daysBefore(std::int64_t year) {
    const std::int64_t y = year - 1;
    return y * 365 + floorDivide(y, 4) - floorDivide(y, 100) + floorDivide(y, 400);
}

std::int64_t daysSince1970(const DateTime& date) {
    return daysBefore(date.year) - daysBefore(1970) + date.dayInYear() - 1;
}

void setDays(DateTime& date, std::int64_t days) {
    days += daysBefore(1970);
    // 400 years have 146097 days. This gives the year, or the one before.
    date.year = floorDivide(days * 400, 146'097) + 1;
    if (daysBefore(date.year + 1) <= days) {
        ++date.year;
    }
    auto rest = static_cast<int>(days - daysBefore(date.year));
    date.month = 1;
    while (rest >= daysInMonth(date.year, date.month)) {
        rest -= daysInMonth(date.year, date.month);
        ++date.month;
    }
    date.day = rest + 1;
}

/** Reads a text from its beginning. */
class Reader {
public:
    explicit Reader(Text text) : m_text(text) {}

    bool atEnd() const { return m_text.empty(); }
    char16_t next() const { return m_text.empty() ? u'\0' : m_text.front(); }
    bool skip(char16_t c) {
        if (next() != c) {
            return false;
        }
        m_text.remove_prefix(1);
        return true;
    }
    std::size_t countDigits() const {
        return static_cast<std::size_t>(std::find_if_not(m_text.begin(), m_text.end(), isDigit) -
                                        m_text.begin());
    }
    std::int64_t digits(std::size_t count) {
        std::int64_t number = 0;
        for (std::size_t i = 0; i < count; ++i) {
            number = number * 10 + (m_text[i] - u'0');
        }
        m_text.remove_prefix(count);
        return number;
    }
    /** Two digits of a number in a range. */
    bool readTwo(int fewest, int most, int& number) {
        if (m_text.size() < 2 || !isDigit(m_text[0]) || !isDigit(m_text[1])) {
            return false;
        }
        number = static_cast<int>(digits(2));
        return number >= fewest && number <= most;
    }
    /** A point and digits, or nothing. More than nine digits are cut. */
    bool readFraction(int& nanoseconds) {
        nanoseconds = 0;
        if (!skip(u'.')) {
            return true;
        }
        const std::size_t count = countDigits();
        const std::size_t used = std::min<std::size_t>(count, 9);
        nanoseconds = static_cast<int>(digits(used));
        for (std::size_t i = used; i < 9; ++i) {
            nanoseconds *= 10;
        }
        m_text.remove_prefix(count - used);
        return count > 0;
    }
    bool readYear(std::int64_t& year) {
        const bool isNegative = skip(u'-');
        const std::size_t count = countDigits();
        if (count < 4 || count > 9 || (count > 4 && m_text.front() == u'0')) {
            return false;
        }
        const std::int64_t number = digits(count);
        year = isNegative ? 1 - number : number;
        return number != 0;
    }
    bool readZone(std::optional<int>& zone) {
        if (atEnd()) {
            return true;
        }
        if (skip(u'Z')) {
            zone = 0;
            return atEnd();
        }
        const bool isNegative = !skip(u'+');
        int hours = 0;
        int minutes = 0;
        if ((isNegative && !skip(u'-')) || !readTwo(0, 14, hours) || !skip(u':') ||
            !readTwo(0, 59, minutes) || hours * 60 + minutes > MOST_ZONE) {
            return false;
        }
        zone = (hours * 60 + minutes) * (isNegative ? -1 : 1);
        return atEnd();
    }

private:
    Text m_text;
};

struct Format {
    DateForm form;
    /** Y M D h m s are components, all others stand for themselves. */
    const char* components;
};

constexpr Format FORMATS[] = {
    {DateForm::DateTime, "Y-M-DTh:m:s"},
    {DateForm::Date, "Y-M-D"},
    {DateForm::YearMonth, "Y-M"},
    {DateForm::Year, "Y"},
    {DateForm::Time, "h:m:s"},
    {DateForm::MonthDay, "--M-D"},
    {DateForm::Month, "--M--"},
    {DateForm::Day, "---D"},
    {DateForm::Month, "--M"},
};

bool readComponent(char component, Reader& reader, DateTime& date) {
    switch (component) {
    case 'Y':
        return reader.readYear(date.year);
    case 'M':
        return reader.readTwo(1, 12, date.month);
    case 'D':
        return reader.readTwo(1, 31, date.day);
    case 'h':
        return reader.readTwo(0, 23, date.hour);
    case 'm':
        return reader.readTwo(0, 59, date.minute);
    case 's':
        return reader.readTwo(0, 59, date.second) && reader.readFraction(date.nanosecond);
    default:
        return reader.skip(static_cast<char16_t>(component));
    }
}

std::optional<DateTime> parseAs(const Format& format, Text text) {
    Reader reader(text);
    DateTime date;
    date.form = format.form;
    for (const char* component = format.components; *component; ++component) {
        if (!readComponent(*component, reader, date)) {
            return {};
        }
    }
    if (!reader.readZone(date.zone) || !date.isValid()) {
        return {};
    }
    return date;
}

std::string withDigits(std::int64_t number, std::size_t digits) {
    const std::string text = std::to_string(number < 0 ? -number : number);
    return (number < 0 ? "-" : "") +
           std::string(text.size() < digits ? digits - text.size() : 0, '0') + text;
}

/** With the digits that it needs after its point, if any. */
std::string fractionText(int nanosecond) {
    if (nanosecond == 0) {
        return {};
    }
    std::string digits = withDigits(nanosecond, 9);
    digits.erase(digits.find_last_not_of('0') + 1);
    return "." + digits;
}

std::string zoneText(const std::optional<int>& zone) {
    if (!zone) {
        return {};
    }
    if (*zone == 0) {
        return "Z";
    }
    const int minutes = std::abs(*zone);
    return (*zone < 0 ? "-" : "+") + withDigits(minutes / 60, 2) + ":" +
           withDigits(minutes % 60, 2);
}

void appendPart(std::int64_t number, char letter, std::string& text) {
    if (number != 0) {
        text += std::to_string(number) + letter;
    }
}

/** Brings the nanoseconds to the sign of the seconds, and below one second. */
void normalize(std::int64_t& seconds, std::int64_t nanoseconds, int& rest) {
    seconds += nanoseconds / NANOSECONDS;
    rest = static_cast<int>(nanoseconds % NANOSECONDS);
    if (seconds > 0 && rest < 0) {
        --seconds;
        rest += NANOSECONDS;
    } else if (seconds < 0 && rest > 0) {
        ++seconds;
        rest -= NANOSECONDS;
    }
}

DateTime inForm(const DateTime& date, DateForm form) {
    DateTime truncated = date;
    truncated.form = form;
    if (form >= DateForm::Date) {
        truncated.hour = truncated.minute = truncated.second = truncated.nanosecond = 0;
    }
    if (form >= DateForm::YearMonth) {
        truncated.day = 1;
    }
    if (form >= DateForm::Year) {
        truncated.month = 1;
    }
    return truncated;
}

} // namespace

bool isLeapYear(std::int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

std::optional<DateTime> DateTime::parse(Text text) {
    for (const Format& format : FORMATS) {
        if (const auto date = parseAs(format, text)) {
            return date;
        }
    }
    return {};
}

DateTime DateTime::now() {
    const std::time_t time = std::time(nullptr);
    std::tm local{};
    localtime_r(&time, &local);
    DateTime date;
    date.year = local.tm_year + 1900;
    date.month = local.tm_mon + 1;
    date.day = local.tm_mday;
    date.hour = local.tm_hour;
    date.minute = local.tm_min;
    date.second = std::min(local.tm_sec, 59);
    date.zone = static_cast<int>(local.tm_gmtoff / 60);
    return date;
}

std::string DateTime::text(DateForm format) const {
    const auto* const found =
        std::find_if(std::begin(FORMATS), std::end(FORMATS),
                     [&](const Format& known) { return known.form == format; });
    std::string text;
    for (const char* component = found->components; *component; ++component) {
        switch (*component) {
        case 'Y':
            text += withDigits(yearInText(), 4);
            break;
        case 'M':
            text += withDigits(month, 2);
            break;
        case 'D':
            text += withDigits(day, 2);
            break;
        case 'h':
            text += withDigits(hour, 2);
            break;
        case 'm':
            text += withDigits(minute, 2);
            break;
        case 's':
            text += withDigits(second, 2) + fractionText(nanosecond);
            break;
        default:
            text += *component;
        }
    }
    return text + zoneText(zone);
}

bool DateTime::isValid() const {
    // February has 29 days where no year is known.
    const std::int64_t leapYear = 2000;
    return form == DateForm::Day || day <= daysInMonth(hasYear() ? year : leapYear, month);
}

int DateTime::dayInYear() const {
    int days = day;
    for (int i = 1; i < month; ++i) {
        days += daysInMonth(year, i);
    }
    return days;
}

int DateTime::dayInWeek() const {
    // 1970 began on a Thursday.
    return static_cast<int>(floorRemainder(daysSince1970(*this) + 4, 7));
}

int DateTime::weekInYear() const {
    // The week of ISO 8601: it belongs to the year of its Thursday.
    DateTime thursday = *this;
    setDays(thursday, daysSince1970(*this) + 3 - (dayInWeek() + 6) % 7);
    return (thursday.dayInYear() - 1) / 7 + 1;
}

int DateTime::weekInMonth() const {
    DateTime first = *this;
    first.day = 1;
    return (day - 1 + (first.dayInWeek() + 6) % 7) / 7 + 1;
}

std::int64_t DateTime::seconds() const {
    return daysSince1970(*this) * DAY + std::int64_t{hour * 60 + minute - zone.value_or(0)} * 60 +
           second;
}

std::optional<Duration> Duration::parse(Text text) {
    Reader reader(text);
    const std::int64_t sign = reader.skip(u'-') ? -1 : 1;
    if (!reader.skip(u'P')) {
        return {};
    }
    struct Part {
        char16_t letter;
        std::int64_t months;
        std::int64_t seconds;
    };
    static constexpr Part DATE[] = {{u'Y', 12, 0}, {u'M', 1, 0}, {u'D', 0, DAY}};
    static constexpr Part TIME[] = {{u'H', 0, 3600}, {u'M', 0, 60}, {u'S', 0, 1}};
    Duration duration;
    bool inTime = reader.skip(u'T');
    std::size_t next = 0;
    bool needsPart = true;
    while (!reader.atEnd()) {
        const std::size_t digits = reader.countDigits();
        if (digits == 0 || digits > MOST_DIGITS) {
            return {};
        }
        const std::int64_t number = reader.digits(digits) * sign;
        int fraction = 0;
        const bool hasFraction = reader.next() == u'.';
        if (!reader.readFraction(fraction)) {
            return {};
        }
        const Part* const parts = inTime ? TIME : DATE;
        while (next < 3 && !reader.skip(parts[next].letter)) {
            ++next;
        }
        if (next == 3 || (hasFraction && parts[next].letter != u'S')) {
            return {};
        }
        duration.months += number * parts[next].months;
        duration.seconds += number * parts[next].seconds;
        duration.nanoseconds = static_cast<int>(fraction * sign);
        ++next;
        needsPart = false;
        if (!inTime && reader.skip(u'T')) {
            inTime = true;
            next = 0;
            needsPart = true;
        }
    }
    return needsPart ? std::nullopt : std::optional<Duration>(duration);
}

std::optional<Duration> Duration::ofSeconds(double seconds) {
    if (!(std::fabs(seconds) < 1e15)) {
        return {};
    }
    Duration duration;
    double whole = 0;
    const double fraction = std::modf(seconds, &whole);
    duration.seconds = static_cast<std::int64_t>(whole);
    // A double of so many seconds has no more digits.
    const double digits = std::fabs(whole) < 1e6 ? 1e9 : 1e6;
    normalize(duration.seconds,
              static_cast<std::int64_t>(std::round(fraction * digits) * (NANOSECONDS / digits)),
              duration.nanoseconds);
    return duration;
}

std::string Duration::text() const {
    const bool isNegative = months < 0 || seconds < 0 || nanoseconds < 0;
    const std::int64_t allMonths = std::abs(months);
    const std::int64_t allSeconds = std::abs(seconds);
    std::string date;
    appendPart(allMonths / 12, 'Y', date);
    appendPart(allMonths % 12, 'M', date);
    appendPart(allSeconds / DAY, 'D', date);
    std::string time;
    appendPart(allSeconds % DAY / 3600, 'H', time);
    appendPart(allSeconds % 3600 / 60, 'M', time);
    if (allSeconds % 60 != 0 || nanoseconds != 0) {
        time += std::to_string(allSeconds % 60) + fractionText(std::abs(nanoseconds)) + "S";
    }
    if (date.empty() && time.empty()) {
        return "P0D";
    }
    return (isNegative ? "-P" : "P") + date + (time.empty() ? "" : "T" + time);
}

std::optional<Duration> sum(const Duration& a, const Duration& b) {
    // Each duration of a text is far below this, and so is each sum.
    constexpr std::int64_t MOST = std::int64_t{1} << 60;
    Duration result;
    result.months = a.months + b.months;
    result.seconds = a.seconds + b.seconds;
    normalize(result.seconds, std::int64_t{a.nanoseconds} + b.nanoseconds, result.nanoseconds);
    const bool differ = (result.months > 0 && (result.seconds < 0 || result.nanoseconds < 0)) ||
                        (result.months < 0 && (result.seconds > 0 || result.nanoseconds > 0));
    if (differ || std::abs(result.months) > MOST || std::abs(result.seconds) > MOST) {
        return {};
    }
    return result;
}

std::optional<DateTime> sum(const DateTime& date, const Duration& duration) {
    DateTime result = date;
    const std::int64_t months = date.year * 12 + date.month - 1 + duration.months;
    result.year = floorDivide(months, 12);
    result.month = static_cast<int>(floorRemainder(months, 12)) + 1;
    const auto isPossible = [&] { return std::abs(result.yearInText()) <= MOST_YEAR; };
    if (!isPossible() || std::abs(duration.seconds) > MOST_YEAR * 366 * DAY) {
        return {};
    }
    result.day = std::min(date.day, daysInMonth(result.year, result.month));
    std::int64_t nanoseconds = std::int64_t{date.nanosecond} + duration.nanoseconds;
    std::int64_t seconds = daysSince1970(result) * DAY +
                           std::int64_t{result.hour * 60 + result.minute} * 60 + result.second +
                           duration.seconds + floorDivide(nanoseconds, NANOSECONDS);
    result.nanosecond = static_cast<int>(floorRemainder(nanoseconds, NANOSECONDS));
    setDays(result, floorDivide(seconds, DAY));
    const auto inDay = static_cast<int>(floorRemainder(seconds, DAY));
    result.hour = inDay / 3600;
    result.minute = inDay % 3600 / 60;
    result.second = inDay % 60;
    return isPossible() ? std::optional<DateTime>(result) : std::nullopt;
}

Duration difference(const DateTime& from, const DateTime& to) {
    const DateForm form = std::max(from.form, to.form);
    const DateTime a = inForm(from, form);
    const DateTime b = inForm(to, form);
    Duration result;
    if (form >= DateForm::YearMonth) {
        result.months = (b.year - a.year) * 12 + b.month - a.month;
        return result;
    }
    result.seconds = b.seconds() - a.seconds();
    normalize(result.seconds, std::int64_t{b.nanosecond} - a.nanosecond, result.nanoseconds);
    return result;
}
