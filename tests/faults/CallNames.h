/**
 * @file
 * Return addresses as names of functions.
 */
#pragma once

#include <string>
#include <vector>

/** The functions' names, each with the library that it is in: "libxerces-c-3.2.so: f(int)". */
std::vector<std::string> callNames(void* const* frames, int depth);
