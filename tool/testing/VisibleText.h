/**
 * @file
 * Texts of which every character can be seen.
 */
#pragma once

#include <cstddef>
#include <string>

/**
 * Text with \n, \t, \r, \u{A0} and the like for what has no shape, \xE4 for each byte of what is
 * not UTF-8, and a dot in the middle for each space at the end.
 */
std::u32string visibleText(const std::string& text);

/** Where two texts begin to differ. */
std::size_t firstDifference(const std::u32string& left, const std::u32string& right);

/** The text as UTF-8; of a long one what is around the place, with an ellipsis for the rest. */
std::string textAround(const std::u32string& text, std::size_t place);
