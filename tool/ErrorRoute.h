/**
 * @file
 * Where texts for std::cerr go, thread by thread.
 */
#pragma once

#include <streambuf>

/**
 * From now on, what this thread writes to std::cerr goes to `target`. The first call of all is to
 * be made while there is one thread.
 *
 * @param target borrowed until the next call; null for standard error
 * @return where it went before
 */
std::streambuf* redirectErrors(std::streambuf* target);
