#include "functions/NarrowText.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

NarrowText::NarrowText(const I18NString& text) {
    const auto length = text.asciiLength();
    if (length && *length < sizeof m_shortText) {
        const auto* const utf16 = static_cast<const char16_t*>(text.getExternalBuffer());
        std::transform(utf16, utf16 + *length + 1, m_shortText,
                       [](char16_t c) { return static_cast<char>(c); });
        m_pText = m_shortText;
    } else {
        m_pText = text.c_str();
    }
}

std::int32_t parseNumber(const I18NString& text) {
    constexpr long SMALLEST = std::numeric_limits<std::int32_t>::min();
    constexpr long LARGEST = std::numeric_limits<std::int32_t>::max();
    const long number = std::strtol(NarrowText(text).get(), nullptr, 10);
    return static_cast<std::int32_t>(std::clamp(number, SMALLEST, LARGEST));
}
