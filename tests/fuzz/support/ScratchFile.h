/**
 * @file
 * Files for the engine to read, in a folder that goes with the process.
 */
#pragma once

#include <string>
#include <string_view>

/** Writes a file into the process's own folder, over one of that name, and gives its path. */
std::string scratchFile(const std::string& name, std::string_view content);
