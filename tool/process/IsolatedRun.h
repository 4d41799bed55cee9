/**
 * @file
 * The work of a command in a child process, which may crash.
 */
#pragma once

#include "base/Limits.h"

#include <functional>
#include <string>

/**
 * Does the work in a child process, and passes signals on to it. A crash, and a time limit that the
 * work does not keep by itself, is printed as an error.
 *
 * @param name   the document that is at fault for a crash
 * @param limits the time limit holds
 * @return the exit status of the work
 * @throws std::system_error
 */
int runIsolated(const std::string& name, const Limits& limits, const std::function<int()>& work);
