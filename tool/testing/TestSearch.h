/**
 * @file
 * Finds test files.
 */
#pragma once

#include "base/Errors.h"

#include <string>
#include <vector>

struct FoundTestFiles {
    /** Sorted. */
    std::vector<std::string> names;
    /** Of folders that cannot be read. */
    std::vector<Failure> failures;
};

/**
 * The file itself; of a folder all files "*.tests.xml" in it and the folders below it.
 *
 * @throws Failure where there is no such file, or no test file in the folder
 */
FoundTestFiles findTestFiles(const std::string& path);
