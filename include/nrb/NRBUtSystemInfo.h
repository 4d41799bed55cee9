/**
 * @file
 * System information: the current time. Only this class reads the clock.
 */
#pragma once

#include <nrb/NRBExport.h>

#include <string>

/** System information. All operations are static; any number of threads may call them. */
class NRB_EXPORT NRBUtSystemInfo {
public:
    NRBUtSystemInfo() = delete;

    /**
     * Returns the current local time as 17 digits: YYYYMMDDhhmmssmmm (year, month, day, hour,
     * minute, second, millisecond), each field with leading zeros. The time zone is that of the C
     * library: after a change of the environment variable TZ, call tzset().
     *
     * @param kind the kind of time stamp; every value is treated as 0
     * @return 17 ASCII digits
     * @throws std::bad_alloc
     */
    static std::string getTimeStamp(int kind);
};
