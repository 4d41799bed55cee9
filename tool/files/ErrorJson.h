/**
 * @file
 * Errors for programs.
 */
#pragma once

#include "base/Json.h"

#include <vexa/xslt/Error.h>

#include <string>

/** The name of a kind, as in vexa::ErrorKind. */
const char* nameOf(vexa::ErrorKind kind);

/** Adds a member "error": {"kind", "text", "uri", "line", "column"}. */
void addError(JsonText& json, const std::string& kind, const std::string& text,
              const vexa::Location& where);
/** The same. */
void addError(JsonText& json, const vexa::Error& error);
/** Adds "text", "uri", "line" and "column" to an object. Columns count characters. */
void addTextAndPlace(JsonText& json, const std::string& text, const vexa::Location& where);
