#include "exslt/DatePatterns.h"

#include <algorithm>
#include <cstdlib>

namespace {

using Text = std::u16string_view;

/** A piece of a pattern: a letter and how often it is there, or a literal text. */
struct Token {
    char16_t letter = 0;
    std::size_t count = 0;
    std::u16string literal;
};

bool isLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

/** Takes the next token. Two apostrophes are one, in and out of quotes. */
Token takeToken(Text& pattern) {
    Token token;
    if (isLetter(pattern.front())) {
        token.letter = pattern.front();
        token.count = std::min(pattern.find_first_not_of(token.letter), pattern.size());
        pattern.remove_prefix(token.count);
        return token;
    }
    bool isQuoted = false;
    while (!pattern.empty() && (isQuoted || !isLetter(pattern.front()))) {
        const char16_t c = pattern.front();
        pattern.remove_prefix(1);
        if (c != u'\'') {
            token.literal += c;
        } else if (pattern.substr(0, 1) == u"'") {
            token.literal += c;
            pattern.remove_prefix(1);
        } else {
            isQuoted = !isQuoted;
        }
    }
    return token;
}

std::string padded(std::int64_t number, std::size_t digits) {
    const std::string text = std::to_string(number);
    // A count of letters is of any size.
    return std::string(text.size() < digits ? std::min<std::size_t>(digits - text.size(), 100) : 0,
                       '0') +
           text;
}

std::string name(std::string_view name, std::size_t letters) {
    return std::string(letters > ABBREVIATION ? name : name.substr(0, ABBREVIATION));
}

std::string zoneName(const DateTime& date) {
    if (!date.zone) {
        return {};
    }
    std::string name = "GMT";
    if (*date.zone != 0) {
        const int minutes = std::abs(*date.zone);
        name += *date.zone < 0 ? '-' : '+';
        name += padded(minutes / 60, 2);
        name += ':';
        name += padded(minutes % 60, 2);
    }
    return name;
}

/** Missing components on the right have their first value, those on the left none. */
bool hasComponent(const DateTime& date, char16_t letter) {
    switch (letter) {
    case u'G':
    case u'y':
        return date.hasYear();
    case u'M':
        return date.hasYear() || date.hasMonth();
    case u'd':
    case u'F':
        return date.hasYear() || date.hasDay();
    case u'E':
    case u'D':
    case u'w':
    case u'W':
        return date.hasYear();
    case u'z':
        return true;
    default:
        return date.hasYear() || date.hasTime();
    }
}

/** @return nothing for a letter without a meaning */
std::optional<std::string> component(const DateTime& date, char16_t letter, std::size_t count) {
    switch (letter) {
    case u'G':
        return date.year > 0 ? "AD" : "BC";
    case u'y': {
        const std::int64_t year = std::abs(date.yearInText());
        return count == 2 ? padded(year % 100, 2) : padded(year, count);
    }
    case u'M':
        return count > 2 ? name(monthNames()[date.month - 1], count) : padded(date.month, count);
    case u'E':
        return name(dayNames()[date.dayInWeek()], count);
    case u'd':
        return padded(date.day, count);
    case u'D':
        return padded(date.dayInYear(), count);
    case u'F':
        return padded((date.day - 1) / 7 + 1, count);
    case u'w':
        return padded(date.weekInYear(), count);
    case u'W':
        return padded(date.weekInMonth(), count);
    case u'H':
        return padded(date.hour, count);
    case u'k':
        return padded(date.hour == 0 ? 24 : date.hour, count);
    case u'K':
        return padded(date.hour % 12, count);
    case u'h':
        return padded((date.hour + 11) % 12 + 1, count);
    case u'm':
        return padded(date.minute, count);
    case u's':
        return padded(date.second, count);
    case u'S':
        return padded(date.nanosecond / 1'000'000, count);
    case u'a':
        return date.hour < 12 ? "AM" : "PM";
    case u'z':
        return zoneName(date);
    default:
        return {};
    }
}

/** What has been read of a date. */
struct Components {
    std::optional<std::int64_t> year;
    std::optional<int> month, day, dayInYear, hour, minute, second, millisecond, zone;
    bool isHalfDay = false;
    bool isAfternoon = false;
    bool isBeforeChrist = false;
};

bool equalLetters(char16_t a, char b) {
    const auto lower = [](char16_t c) {
        return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
    };
    return lower(a) == lower(static_cast<char16_t>(b));
}

bool takeWord(Text& text, std::string_view word) {
    if (text.size() < word.size() ||
        !std::equal(word.begin(), word.end(), text.begin(),
                    [](char b, char16_t a) { return equalLetters(a, b); })) {
        return false;
    }
    text.remove_prefix(word.size());
    return true;
}

/** Takes one of the names, in full or abbreviated. The first one has the number 1. */
bool takeName(Text& text, const std::string_view* names, int count, std::optional<int>& number) {
    for (int i = 0; i < count; ++i) {
        if (takeWord(text, names[i]) || takeWord(text, names[i].substr(0, ABBREVIATION))) {
            number = i + 1;
            return true;
        }
    }
    return false;
}

/** Takes a number of at most so many digits. @return nothing where there is none */
std::optional<std::int64_t> takeNumber(Text& text, std::size_t mostDigits) {
    std::int64_t number = 0;
    std::size_t count = 0;
    while (count < text.size() && count < mostDigits && isDigit(text[count])) {
        number = number * 10 + (text[count++] - u'0');
    }
    text.remove_prefix(count);
    return count > 0 ? std::optional<std::int64_t>(number) : std::nullopt;
}

/** Takes the name of UTC, an offset from it, or both. */
std::optional<int> takeZone(Text& text) {
    const bool isNamed = takeWord(text, "GMT") || takeWord(text, "UTC") || takeWord(text, "Z");
    const bool isBehind = takeWord(text, "-");
    if (!isBehind && !takeWord(text, "+")) {
        return isNamed ? std::optional<int>(0) : std::nullopt;
    }
    const auto hours = takeNumber(text, 2);
    takeWord(text, ":");
    const auto minutes = takeNumber(text, 2);
    if (!hours || !minutes || *minutes > 59 || *hours * 60 + *minutes > MOST_ZONE) {
        return {};
    }
    return static_cast<int>(*hours * 60 + *minutes) * (isBehind ? -1 : 1);
}

/** A year of two digits is at most 80 years ago, and less than 20 to come. */
std::int64_t withCentury(std::int64_t year) {
    const std::int64_t first = DateTime::now().year - 80;
    const std::int64_t offset = (year - first % 100 + 100) % 100;
    return first + offset;
}

bool takeYear(const Token& token, Text& text, std::size_t mostDigits, Components& found) {
    const std::size_t before = text.size();
    found.year = takeNumber(text, mostDigits);
    if (found.year && token.count == 2 && before - text.size() == 2) {
        found.year = withCentury(*found.year);
    }
    return found.year && *found.year > 0;
}

template <typename Number>
bool takeInto(Number& target, Text& text, std::size_t mostDigits, std::int64_t fewest,
              std::int64_t most) {
    const auto number = takeNumber(text, mostDigits);
    if (!number || *number < fewest || *number > most) {
        return false;
    }
    target = static_cast<int>(*number);
    return true;
}

bool takeComponent(const Token& token, Text& text, std::size_t mostDigits, Components& found) {
    std::optional<int> ignored;
    switch (token.letter) {
    case u'G':
        found.isBeforeChrist = takeWord(text, "BC");
        return found.isBeforeChrist || takeWord(text, "AD");
    case u'y':
        return takeYear(token, text, mostDigits, found);
    case u'M':
        return token.count > 2 ? takeName(text, monthNames(), 12, found.month)
                               : takeInto(found.month, text, mostDigits, 1, 12);
    case u'E':
        return takeName(text, dayNames(), 7, ignored);
    case u'd':
        return takeInto(found.day, text, mostDigits, 1, 31);
    case u'D':
        return takeInto(found.dayInYear, text, mostDigits, 1, 366);
    case u'F':
    case u'w':
    case u'W':
        return takeInto(ignored, text, mostDigits, 0, 53);
    case u'H':
        return takeInto(found.hour, text, mostDigits, 0, 23);
    case u'k':
        return takeInto(found.hour, text, mostDigits, 1, 24) && (*found.hour %= 24, true);
    case u'K':
        found.isHalfDay = true;
        return takeInto(found.hour, text, mostDigits, 0, 11);
    case u'h':
        found.isHalfDay = true;
        return takeInto(found.hour, text, mostDigits, 1, 12) && (*found.hour %= 12, true);
    case u'm':
        return takeInto(found.minute, text, mostDigits, 0, 59);
    case u's':
        return takeInto(found.second, text, mostDigits, 0, 59);
    case u'S':
        return takeInto(found.millisecond, text, mostDigits, 0, 999);
    case u'a':
        found.isAfternoon = takeWord(text, "PM");
        return found.isAfternoon || takeWord(text, "AM");
    case u'z':
        found.zone = takeZone(text);
        return found.zone.has_value();
    default:
        return false;
    }
}

/** The format with the fewest components that has all that were found. */
std::optional<DateForm> formOf(const Components& found) {
    const bool hasTime = found.hour || found.minute || found.second || found.millisecond;
    const bool hasDay = found.day || found.dayInYear;
    if (found.year || (hasTime && (found.month || found.day))) {
        return hasTime       ? DateForm::DateTime
               : hasDay      ? DateForm::Date
               : found.month ? DateForm::YearMonth
                             : DateForm::Year;
    }
    if (hasTime) {
        return DateForm::Time;
    }
    if (found.month) {
        return found.day ? DateForm::MonthDay : DateForm::Month;
    }
    return found.day ? std::optional<DateForm>(DateForm::Day) : std::nullopt;
}

std::optional<DateTime> toDateTime(const Components& found) {
    const auto form = formOf(found);
    if (!form || (found.dayInYear && !found.year)) {
        return {};
    }
    DateTime date;
    date.form = *form;
    date.year = found.year.value_or(1);
    if (found.isBeforeChrist) {
        date.year = 1 - date.year;
    }
    if (!found.dayInYear) {
        date.month = found.month.value_or(1);
        date.day = found.day.value_or(1);
    }
    date.hour = found.hour.value_or(0) + (found.isHalfDay && found.isAfternoon ? 12 : 0);
    date.minute = found.minute.value_or(0);
    date.second = found.second.value_or(0);
    date.nanosecond = found.millisecond.value_or(0) * 1'000'000;
    date.zone = found.zone;
    if (found.dayInYear) {
        if (*found.dayInYear == 366 && !isLeapYear(date.year)) {
            return {};
        }
        Duration days;
        days.seconds = std::int64_t{*found.dayInYear - 1} * 86'400;
        return sum(date, days);
    }
    return date.isValid() ? std::optional<DateTime>(date) : std::nullopt;
}

} // namespace

const std::string_view* monthNames() {
    static constexpr std::string_view NAMES[] = {"January",   "February", "March",    "April",
                                                 "May",       "June",     "July",     "August",
                                                 "September", "October",  "November", "December"};
    return NAMES;
}

const std::string_view* dayNames() {
    static constexpr std::string_view NAMES[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                 "Thursday", "Friday", "Saturday"};
    return NAMES;
}

bool formatDateTime(const DateTime& date, Text pattern, ExsltText& text) {
    while (!pattern.empty()) {
        const Token token = takeToken(pattern);
        if (token.letter == 0) {
            text.append(token.literal);
            continue;
        }
        const auto part = component(date, token.letter, token.count);
        if (!part) {
            return false;
        }
        if (hasComponent(date, token.letter)) {
            text.append(std::u16string(part->begin(), part->end()));
        }
    }
    return true;
}

std::optional<DateTime> parseDateTime(Text text, Text pattern) {
    Components found;
    while (!pattern.empty()) {
        const Token token = takeToken(pattern);
        if (token.letter == 0) {
            if (text.substr(0, token.literal.size()) != token.literal) {
                return {};
            }
            text.remove_prefix(token.literal.size());
            continue;
        }
        // A number that another follows has as many digits as letters.
        const bool isFollowed = !pattern.empty() && isLetter(pattern.front());
        const std::size_t mostDigits = std::min<std::size_t>(isFollowed ? token.count : 9, 9);
        if (!takeComponent(token, text, mostDigits, found)) {
            return {};
        }
    }
    return text.empty() ? toDateTime(found) : std::nullopt;
}
