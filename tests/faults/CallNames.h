/**
 * @file
 * Return addresses as names of functions.
 */
#pragma once

#include <string>
#include <vector>

/** The names of the functions, each with its library: "libxerces-c-3.2.so: f(int)". */
std::vector<std::string> callNames(void* const* frames, int depth);
