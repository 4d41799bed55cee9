#include "exslt/DatePatterns.h"
#include "exslt/DateTime.h"
#include "exslt/ExsltTables.h"

#include <limits>

namespace {

using Result = ExsltCall::Result;
using Test = bool (DateTime::*)() const;

Result textResult(const ExsltCall& call, const std::string& text) {
    return call.result(std::u16string(text.begin(), text.end()));
}

Result notANumber(const ExsltCall& call) {
    return call.result(std::numeric_limits<double>::quiet_NaN());
}

/** The first argument, or the current time if there is none. */
std::optional<DateTime> dateOf(const ExsltCall& call) {
    return call.size() == 0 ? DateTime::now() : DateTime::parse(call.text(0));
}

/** A number of a date that has a component, or NaN. */
template <typename Number>
Result number(const ExsltCall& call, Test has, Number numberOf) {
    const auto date = dateOf(call);
    return date && ((*date).*has)() ? call.result(static_cast<double>(numberOf(*date)))
                                    : notANumber(call);
}

/** A text of a date that has a component, or an empty one. */
template <typename ToText>
Result text(const ExsltCall& call, Test has, ToText toText) {
    const auto date = dateOf(call);
    return textResult(call, date && ((*date).*has)() ? std::string(toText(*date)) : std::string());
}

Result dateTime(const ExsltCall& call) {
    return textResult(call, DateTime::now().text(DateForm::DateTime));
}

Result date(const ExsltCall& call) {
    return text(call, &DateTime::hasDate,
                [](const DateTime& date) { return date.text(DateForm::Date); });
}

Result time(const ExsltCall& call) {
    return text(call, &DateTime::hasTime,
                [](const DateTime& date) { return date.text(DateForm::Time); });
}

Result year(const ExsltCall& call) {
    return number(call, &DateTime::hasYear, [](const DateTime& date) { return date.yearInText(); });
}

Result leapYear(const ExsltCall& call) {
    const auto date = dateOf(call);
    return date && date->hasYear() ? call.result(isLeapYear(date->year)) : notANumber(call);
}

Result monthInYear(const ExsltCall& call) {
    return number(call, &DateTime::hasMonth, [](const DateTime& date) { return date.month; });
}

Result monthName(const ExsltCall& call) {
    return text(call, &DateTime::hasMonth,
                [](const DateTime& date) { return monthNames()[date.month - 1]; });
}

Result monthAbbreviation(const ExsltCall& call) {
    return text(call, &DateTime::hasMonth, [](const DateTime& date) {
        return monthNames()[date.month - 1].substr(0, ABBREVIATION);
    });
}

Result weekInYear(const ExsltCall& call) {
    return number(call, &DateTime::hasDate, [](const DateTime& date) { return date.weekInYear(); });
}

Result weekInMonth(const ExsltCall& call) {
    return number(call, &DateTime::hasDate,
                  [](const DateTime& date) { return date.weekInMonth(); });
}

Result dayInYear(const ExsltCall& call) {
    return number(call, &DateTime::hasDate, [](const DateTime& date) { return date.dayInYear(); });
}

Result dayInMonth(const ExsltCall& call) {
    return number(call, &DateTime::hasDay, [](const DateTime& date) { return date.day; });
}

Result dayOfWeekInMonth(const ExsltCall& call) {
    return number(call, &DateTime::hasDate,
                  [](const DateTime& date) { return (date.day - 1) / 7 + 1; });
}

Result dayInWeek(const ExsltCall& call) {
    return number(call, &DateTime::hasDate,
                  [](const DateTime& date) { return date.dayInWeek() + 1; });
}

Result dayName(const ExsltCall& call) {
    return text(call, &DateTime::hasDate,
                [](const DateTime& date) { return dayNames()[date.dayInWeek()]; });
}

Result dayAbbreviation(const ExsltCall& call) {
    return text(call, &DateTime::hasDate, [](const DateTime& date) {
        return dayNames()[date.dayInWeek()].substr(0, ABBREVIATION);
    });
}

Result hourInDay(const ExsltCall& call) {
    return number(call, &DateTime::hasTime, [](const DateTime& date) { return date.hour; });
}

Result minuteInHour(const ExsltCall& call) {
    return number(call, &DateTime::hasTime, [](const DateTime& date) { return date.minute; });
}

Result secondInMinute(const ExsltCall& call) {
    return number(call, &DateTime::hasTime,
                  [](const DateTime& date) { return date.second + date.nanosecond / 1e9; });
}

Result seconds(const ExsltCall& call) {
    if (call.size() > 0) {
        if (const auto duration = Duration::parse(call.text(0))) {
            return duration->months == 0 ? call.result(duration->inSeconds()) : notANumber(call);
        }
    }
    return number(call, &DateTime::hasYear, [](const DateTime& date) {
        return static_cast<double>(date.seconds()) + date.nanosecond / 1e9;
    });
}

Result add(const ExsltCall& call) {
    const auto date = DateTime::parse(call.text(0));
    const auto duration = Duration::parse(call.text(1));
    const auto result = date && date->hasYear() && duration ? sum(*date, *duration) : std::nullopt;
    return textResult(call, result ? result->text(result->form) : std::string());
}

Result addDuration(const ExsltCall& call) {
    const auto first = Duration::parse(call.text(0));
    const auto second = Duration::parse(call.text(1));
    const auto result = first && second ? sum(*first, *second) : std::nullopt;
    return textResult(call, result ? result->text() : std::string());
}

Result difference(const ExsltCall& call) {
    const auto from = DateTime::parse(call.text(0));
    const auto to = DateTime::parse(call.text(1));
    return textResult(call, from && to && from->hasYear() && to->hasYear()
                                ? difference(*from, *to).text()
                                : std::string());
}

Result duration(const ExsltCall& call) {
    const auto duration = Duration::ofSeconds(
        call.size() > 0 ? call.number(0) : static_cast<double>(DateTime::now().seconds()));
    return textResult(call, duration ? duration->text() : std::string());
}

Result sumOfNodes(const ExsltCall& call) {
    const auto& nodes = call.nodes(0);
    std::optional<Duration> total = Duration();
    for (xalanc::NodeRefListBase::size_type i = 0; total && i < nodes.getLength(); ++i) {
        call.poll();
        const auto duration = Duration::parse(textOf(*nodes.item(i), call));
        total = duration ? sum(*total, *duration) : std::nullopt;
    }
    return textResult(call, total ? total->text() : std::string());
}

Result formatDate(const ExsltCall& call) {
    ExsltText text(call);
    const auto date = DateTime::parse(call.text(0));
    return date && formatDateTime(*date, call.text(1), text) ? call.result(text.text())
                                                             : call.result(std::u16string_view());
}

Result parseDate(const ExsltCall& call) {
    const auto date = parseDateTime(call.text(0), call.text(1));
    return textResult(call, date ? date->text(date->form) : std::string());
}

constexpr ExsltFunction FUNCTIONS[] = {
    {u"add", 2, 2, add},
    {u"add-duration", 2, 2, addDuration},
    {u"date", 0, 1, date},
    {u"date-time", 0, 0, dateTime},
    {u"day-abbreviation", 0, 1, dayAbbreviation},
    {u"day-in-month", 0, 1, dayInMonth},
    {u"day-in-week", 0, 1, dayInWeek},
    {u"day-in-year", 0, 1, dayInYear},
    {u"day-name", 0, 1, dayName},
    {u"day-of-week-in-month", 0, 1, dayOfWeekInMonth},
    {u"difference", 2, 2, difference},
    {u"duration", 0, 1, duration},
    {u"format-date", 2, 2, formatDate},
    {u"hour-in-day", 0, 1, hourInDay},
    {u"leap-year", 0, 1, leapYear},
    {u"minute-in-hour", 0, 1, minuteInHour},
    {u"month-abbreviation", 0, 1, monthAbbreviation},
    {u"month-in-year", 0, 1, monthInYear},
    {u"month-name", 0, 1, monthName},
    {u"parse-date", 2, 2, parseDate},
    {u"second-in-minute", 0, 1, secondInMinute},
    {u"seconds", 0, 1, seconds},
    {u"sum", 1, 1, sumOfNodes},
    {u"time", 0, 1, time},
    {u"week-in-month", 0, 1, weekInMonth},
    {u"week-in-year", 0, 1, weekInYear},
    {u"year", 0, 1, year},
};

} // namespace

ExsltTable dateFunctions() {
    return FUNCTIONS;
}
