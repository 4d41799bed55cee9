/**
 * @file
 * Sets the platform's clock: this program has its own NRBUtSystemInfo::getTimeStamp().
 */
#pragma once

#include <string>

/** Sets the time stamp that getTimeStamp() returns. */
void setTimeStamp(const std::string& stamp);
