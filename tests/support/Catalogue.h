/**
 * @file
 * The message catalogue's sources, read without ICU.
 */
#pragma once

#include <map>
#include <set>
#include <string>

/** The languages that have a file. */
std::set<std::string> catalogueLanguages();

/** Identifier to text, in UTF-8. */
std::map<unsigned long, std::string> catalogueTexts(const std::string& language);
