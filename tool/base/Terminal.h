/**
 * @file
 * What a terminal can show.
 */
#pragma once

#include <cstddef>
#include <string>

/** Whether the stream is a terminal that can do more than print one line after another. */
bool isSmartTerminal(int descriptor);

/** How many columns a terminal has; 80 if it does not say. */
std::size_t terminalColumns(int descriptor);

enum class Style { Heading, Error, Caret };

/**
 * The text in a style, or as it is where nobody would see it: where the stream is no terminal, the
 * terminal can show none, or the user wants none (NO_COLOR is set, be it to nothing).
 *
 * @param descriptor of the very stream that the text goes to
 */
std::string styled(const std::string& text, Style style, int descriptor);
