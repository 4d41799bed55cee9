/**
 * @file
 * Compares two XML texts as documents.
 */
#pragma once

#include <gtest/gtest.h>

#include <string>

/**
 * Compares the documents node by node. The order of attributes, the XML declaration and character
 * references do not matter. A text may end with a NUL.
 */
::testing::AssertionResult sameDocument(const std::string& actual, const std::string& expected);
