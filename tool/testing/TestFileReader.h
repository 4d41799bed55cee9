/**
 * @file
 * Reads files of tests.
 */
#pragma once

#include "testing/TestFile.h"

#include <vexa/xslt/Options.h>

#include <string>

/**
 * Reads a test file.
 *
 * @param makesFiles whether files that are expected may be missing
 * @throws vexa::Error where it is wrong
 */
TestFile readTestFile(const std::string& name, bool makesFiles, const vexa::Options& options);
