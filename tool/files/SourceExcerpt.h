/**
 * @file
 * The line of a file that an error is about.
 */
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

/**
 * The column counted in Unicode characters.
 *
 * @param column in UTF-16 units, from 1, as the engine counts; it stays so where the excerpt would
 *               be empty
 */
std::size_t columnInCharacters(const std::filesystem::path& file, std::size_t line,
                               std::size_t column);

/**
 * The line with its number, and below it a caret under the column:
 *
 *     3 | <xsl:value-of select='a['/>
 *       | ^
 *
 * A long line is cut on both sides. Empty where there is no such line, where the text is not UTF-8,
 * or what is named is no regular file.
 *
 * @param column  in Unicode characters, from 1; 0 for no caret
 * @param columns the width of the terminal
 */
std::string sourceExcerpt(const std::filesystem::path& file, std::size_t line, std::size_t column,
                          std::size_t columns);
