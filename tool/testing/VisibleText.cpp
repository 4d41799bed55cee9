#include "testing/VisibleText.h"

#include "base/Utf8.h"

#include <algorithm>

#include <unicode/uchar.h>

namespace {

std::u32string hexadecimal(char32_t number) {
    std::u32string digits;
    do {
        digits.insert(digits.begin(), U"0123456789ABCDEF"[number % 16]);
        number /= 16;
    } while (number != 0);
    return digits;
}

std::u32string visible(char32_t c) {
    switch (c) {
    case U'\n':
        return U"\\n";
    case U'\t':
        return U"\\t";
    case U'\r':
        return U"\\r";
    case U'\\':
        return U"\\\\";
    case U' ':
        return U" ";
    default:
        return u_isgraph(static_cast<UChar32>(c)) ? std::u32string(1, c)
                                                  : U"\\u{" + hexadecimal(c) + U"}";
    }
}

std::u32string visible(unsigned char byte) {
    return byte < 0x80 ? visible(static_cast<char32_t>(byte)) : U"\\x" + hexadecimal(byte);
}

} // namespace

std::u32string visibleText(const std::string& text) {
    constexpr char32_t SPACE_AT_THE_END = U'\u00B7';
    std::u32string result;
    if (const auto characters = decodeUtf8(text)) {
        for (const char32_t c : *characters) {
            result += visible(c);
        }
    } else {
        for (const char c : text) {
            result += visible(static_cast<unsigned char>(c));
        }
    }
    const auto end = result.find_last_not_of(std::u32string{U' ', SPACE_AT_THE_END}) + 1;
    const std::u32string atTheEnd = result.substr(end);
    result.resize(end);
    for (const char32_t c : atTheEnd) {
        result += c == U' ' ? std::u32string(1, SPACE_AT_THE_END) : U"\\u{B7}";
    }
    return result;
}

std::size_t firstDifference(const std::u32string& left, const std::u32string& right) {
    const std::size_t length = std::min(left.size(), right.size());
    const auto end = left.begin() + static_cast<std::ptrdiff_t>(length);
    return static_cast<std::size_t>(std::mismatch(left.begin(), end, right.begin()).first -
                                    left.begin());
}

std::string textAround(const std::u32string& text, std::size_t place) {
    constexpr std::size_t LONGEST = 160;
    constexpr std::size_t BEFORE = 40;
    const char32_t* const ellipsis = U"\u2026";
    std::u32string part = text;
    if (text.size() > LONGEST) {
        const std::size_t begin =
            std::min(place - std::min(place, BEFORE), text.size() - LONGEST + 2);
        part = (begin == 0 ? U"" : ellipsis) + text.substr(begin, LONGEST - 2) +
               (begin + LONGEST - 2 < text.size() ? ellipsis : U"");
    }
    std::string result;
    for (const char32_t c : part) {
        result += encodeUtf8(c);
    }
    return result;
}
