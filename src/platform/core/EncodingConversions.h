/**
 * @file
 * Narrow text to UTF-16 and back, in any encoding that ICU knows.
 */
#pragma once

#include <cstddef>
#include <string>

namespace nrb {

/**
 * @param encoding an ICU encoding name; null: the platform's default encoding
 * @throws std::invalid_argument for an unknown encoding, std::length_error for a text that ICU
 *         cannot count
 */
std::u16string narrowToUtf16(const char* text, std::size_t length, const char* encoding);

/** The reverse of narrowToUtf16, under the same rules. */
std::string utf16ToNarrow(const std::u16string& text, const char* encoding);

} // namespace nrb
