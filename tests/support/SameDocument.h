/**
 * @file
 * Whether two XML texts are the same document.
 */
#pragma once

#include <gtest/gtest.h>

#include <string>

/**
 * Compares element by element, whatever the order of attributes, the declaration and the way
 * characters are written. A text may end with the library's NUL.
 */
::testing::AssertionResult sameDocument(const std::string& actual, const std::string& expected);
