/**
 * @file
 * Numbers as text, as XPath 1.0 has them.
 */
#pragma once

#include <string>
#include <string_view>

/** Without an exponent, and with as many digits as tell the number from all others. */
std::string numberText(double number);

/** NaN for a text that is no number. */
double textNumber(std::string_view text);
