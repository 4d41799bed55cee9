/**
 * @file
 * UTF-8 at the interface, UTF-16 in the engine.
 */
#pragma once

#include <string>
#include <string_view>

#include <xalanc/XalanDOM/XalanDOMString.hpp>

/** Each malformed sequence becomes U+FFFD. */
std::u16string toUtf16(std::string_view text);

/** Each lone surrogate becomes U+FFFD. */
std::string toUtf8(std::u16string_view text);

inline std::string toUtf8(const xalanc::XalanDOMString& text) {
    return toUtf8(std::u16string_view(text.c_str(), text.length()));
}

/** Null is an empty text. */
inline std::string toUtf8(const char16_t* text) {
    return text ? toUtf8(std::u16string_view(text)) : std::string();
}

xalanc::XalanDOMString toEngineText(std::string_view text, xercesc::MemoryManager& memory);
