#include "xslt/Text.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <unicode/ustring.h>

namespace {

constexpr UChar32 REPLACEMENT_CHARACTER = 0xFFFD;

template <typename Character>
bool isAscii(std::basic_string_view<Character> text) {
    return std::all_of(text.begin(), text.end(), [](Character c) {
        return static_cast<std::make_unsigned_t<int>>(c) < 0x80;
    });
}

/** ICU counts in 32 bits. */
std::int32_t icuLength(std::size_t length, std::int32_t growth) {
    if (length > static_cast<std::size_t>(INT32_MAX / growth)) {
        throw std::bad_alloc();
    }
    return static_cast<std::int32_t>(length);
}

} // namespace

std::u16string toUtf16(std::string_view text) {
    if (isAscii(text)) {
        return std::u16string(text.begin(), text.end());
    }
    const auto length = icuLength(text.size(), 1);
    std::u16string result(text.size(), 0); // never more units than bytes
    std::int32_t resultLength = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(result.data(), length, &resultLength, text.data(), length,
                         REPLACEMENT_CHARACTER, nullptr, &status);
    result.resize(static_cast<std::size_t>(resultLength));
    return result;
}

std::string toUtf8(std::u16string_view text) {
    if (isAscii(text)) {
        std::string result(text.size(), 0);
        std::transform(text.begin(), text.end(), result.begin(),
                       [](char16_t c) { return static_cast<char>(c); });
        return result;
    }
    const auto length = icuLength(text.size(), 3);
    std::string result(text.size() * 3, 0);
    std::int32_t resultLength = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(result.data(), length * 3, &resultLength, text.data(), length,
                       REPLACEMENT_CHARACTER, nullptr, &status);
    result.resize(static_cast<std::size_t>(resultLength));
    return result;
}

xalanc::XalanDOMString toEngineText(std::string_view text, xercesc::MemoryManager& memory) {
    const std::u16string utf16 = toUtf16(text);
    return xalanc::XalanDOMString(utf16.data(), memory,
                                  static_cast<xalanc::XalanDOMString::size_type>(utf16.size()));
}
