/**
 * @file
 * How a text differs from what was expected.
 */
#pragma once

#include <string>

/**
 * The lines that differ, with some lines around them, as `diff -u` shows them; of very many the
 * first ones. All characters can be seen, and long lines are cut around the first difference.
 *
 * @param name of what was expected
 */
std::string textDifference(const std::string& name, const std::string& expected,
                           const std::string& actual);
