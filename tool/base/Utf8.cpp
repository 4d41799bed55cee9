#include "base/Utf8.h"

#include <cstdint>

#include <unicode/unistr.h>
#include <unicode/ustring.h>

std::optional<std::u32string> decodeUtf8(const std::string& text) {
    // Neither form has more units than the one before.
    const auto size = static_cast<std::int32_t>(text.size());
    std::u16string units(text.size(), u'\0');
    std::u32string characters(text.size(), U'\0');
    std::int32_t unitCount = 0;
    std::int32_t characterCount = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), size, &unitCount, text.data(), size, &error);
    u_strToUTF32(reinterpret_cast<UChar32*>(characters.data()), size, &characterCount, units.data(),
                 unitCount, &error);
    if (U_FAILURE(error)) {
        return std::nullopt;
    }
    characters.resize(static_cast<std::size_t>(characterCount));
    return characters;
}

std::string encodeUtf8(char32_t character) {
    std::string text;
    return icu::UnicodeString(static_cast<UChar32>(character)).toUTF8String(text);
}
