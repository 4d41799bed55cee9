/**
 * @file
 * Reads the source files of the message catalogue without ICU.
 */
#pragma once

#include <map>
#include <set>
#include <string>

/** All languages that have a file. */
std::set<std::string> catalogueLanguages();

/** All texts of a language, in UTF-8, by identifier. */
std::map<unsigned long, std::string> catalogueTexts(const std::string& language);
