/**
 * @file
 * Text as characters.
 */
#pragma once

#include <optional>
#include <string>

/** The Unicode characters of a text; nothing where it is not UTF-8. */
std::optional<std::u32string> decodeUtf8(const std::string& text);

/** A character as UTF-8. */
std::string encodeUtf8(char32_t character);
