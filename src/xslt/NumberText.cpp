#include "xslt/NumberText.h"

#include <charconv>
#include <cmath>
#include <limits>

std::string numberText(double number) {
    if (std::isnan(number)) {
        return "NaN";
    }
    if (std::isinf(number)) {
        return number > 0 ? "Infinity" : "-Infinity";
    }
    if (number == 0) {
        return "0"; // minus zero too
    }
    char text[400]; // the smallest number has some 340 characters
    const auto [end, error] =
        std::to_chars(std::begin(text), std::end(text), number, std::chars_format::fixed);
    static_cast<void>(error);
    return std::string(text, end);
}

double textNumber(std::string_view text) {
    constexpr std::string_view WHITE_SPACE = " \t\r\n";
    constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
    const auto first = text.find_first_not_of(WHITE_SPACE);
    if (first == std::string_view::npos) {
        return NOT_A_NUMBER;
    }
    text = text.substr(first, text.find_last_not_of(WHITE_SPACE) + 1 - first);
    // from_chars also knows exponents, "inf" and "nan", which are no numbers of XPath.
    if (text.find_first_not_of("-.0123456789") != std::string_view::npos) {
        return NOT_A_NUMBER;
    }
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [parsedEnd, error] = std::from_chars(text.data(), end, number);
    if (parsedEnd != end) {
        return NOT_A_NUMBER;
    }
    if (error == std::errc::result_out_of_range) {
        // from_chars leaves the number as it was.
        const bool isTooLarge = text.find_first_of("123456789") < text.find('.');
        return std::copysign(isTooLarge ? HUGE_VAL : 0, text.front() == '-' ? -1 : 1);
    }
    return number;
}
