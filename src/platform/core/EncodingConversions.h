/**
 * @file
 * Conversions between narrow text and UTF-16, for all encodings of ICU.
 */
#pragma once

#include <cstddef>
#include <string>

namespace nrb {

/**
 * Converts narrow text to UTF-16.
 *
 * @param encoding an ICU encoding name; null: the platform's default encoding
 * @throws std::invalid_argument for an unknown encoding
 * @throws std::length_error for a text whose length does not fit into 32 bits
 */
std::u16string narrowToUtf16(const char* text, std::size_t length, const char* encoding);

/** Converts UTF-16 to narrow text: the reverse of narrowToUtf16(), with the same rules. */
std::string utf16ToNarrow(const std::u16string& text, const char* encoding);

} // namespace nrb
