/**
 * @file
 * Dates in a format that a pattern describes: letters as in SimpleDateFormat of JDK 1.1.
 */
#pragma once

#include "exslt/DateTime.h"
#include "exslt/ExsltCall.h"

/** The length of an abbreviated name. */
constexpr std::size_t ABBREVIATION = 3;

/** In English, from January. */
const std::string_view* monthNames();
/** In English, from Sunday. */
const std::string_view* dayNames();

/** A component that the date does not have is an empty text. @return whether the pattern is right
 */
bool formatDateTime(const DateTime& date, std::u16string_view pattern, ExsltText& text);

/**
 * Reads a date, in the format that has the components of the pattern.
 *
 * @return nothing where the text does not match the pattern
 */
std::optional<DateTime> parseDateTime(std::u16string_view text, std::u16string_view pattern);
