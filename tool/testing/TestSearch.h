/**
 * @file
 * Finds test files.
 */
#pragma once

#include <string>
#include <vector>

/**
 * The file itself; of a folder all files "*.tests.xml" in it and the folders below it, sorted.
 *
 * @throws Failure where there is no such file, no test file in the folder, or one cannot be read
 */
std::vector<std::string> findTestFiles(const std::string& path);
