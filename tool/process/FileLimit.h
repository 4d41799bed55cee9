/**
 * @file
 * How many files the system lets this process have open.
 */
#pragma once

#include <cstddef>

/** Lets this process have as many files open as it may. */
void allowManyFiles();

/**
 * How many of so many workers, one at least, can have their files open at the same time. The
 * process's own limit is raised for them as far as the system allows.
 */
std::size_t workersWithFiles(std::size_t wanted);
