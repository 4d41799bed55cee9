/**
 * @file
 * The memory of this process, as the system counts it.
 */
#pragma once

#include <fstream>
#include <string>

/** A value of /proc/self/status, such as that of "VmRSS:", in KiB. */
inline double statusKiB(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, name.size(), name) == 0) {
            return std::stod(line.substr(name.size()));
        }
    }
    return 0;
}

/** From now on "VmHWM:" is the highest value since this call. */
inline void beginNewPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}
