/**
 * @file
 * What the operating system can tell: the one place where the platform reads the clock.
 */
#pragma once

#include <nrb/NRBExport.h>

#include <string>

/** Facts about the system. Only static operations; any number of threads may call them. */
class NRB_EXPORT NRBUtSystemInfo {
public:
    NRBUtSystemInfo() = delete;

    /**
     * The present moment in the process's local time, in 17 digits: YYYYMMDDhhmmssmmm (year, month,
     * day, hour, minute, second, millisecond), each field with leading zeros. The time zone is the
     * one that the C library knows: after a change of the variable TZ, call tzset.
     *
     * @param kind which time stamp; 0 is the only kind there is, others are treated as 0
     * @return the digits, in ASCII
     * @throws std::bad_alloc
     */
    static std::string getTimeStamp(int kind);
};
