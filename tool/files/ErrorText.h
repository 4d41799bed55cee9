/**
 * @file
 * Errors and messages of the library, in words for people.
 */
#pragma once

#include "base/Limits.h"
#include "files/FileNames.h"

#include <vexa/xslt/Error.h>

#include <string>

/**
 * "NAME:LINE:COLUMN: cause" on one line.
 *
 * @param limits what was asked for: a limit that was reached is told with its option
 */
std::string errorText(const vexa::Error& error, const FileNames& names, const Limits& limits);

/** Counted in characters where the file can be read; 0 where it is not known. */
std::size_t columnOf(const vexa::Location& where);

/** The line of the file that the error is about, after a newline; empty if it cannot be shown. */
std::string errorExcerpt(const vexa::Error& error);

/** A text of xsl:message as it is; a warning as "NAME:LINE:COLUMN: warning: text". */
std::string messageText(const vexa::Diagnostic& diagnostic, const FileNames& names);
