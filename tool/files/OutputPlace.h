/**
 * @file
 * Where a result really goes.
 */
#pragma once

#include <filesystem>
#include <string>

/**
 * The place that the name of an output stands for: symbolic links followed, also to a file that is
 * not there yet, up to the link of an open descriptor (/dev/stdout).
 */
std::filesystem::path outputPlace(std::filesystem::path output);

/** The same for all names of a place; empty where it cannot be known. */
std::filesystem::path fullPlace(const std::string& output);

/** The name by which an output is opened: standard error may have another descriptor by now. */
std::string writablePath(const std::string& output);
