/**
 * @file
 * The platform's clock in the hands of a test: this program's own NRBUtSystemInfo::getTimeStamp.
 */
#pragma once

#include <string>

/** What getTimeStamp returns from now on. */
void setTimeStamp(const std::string& stamp);
