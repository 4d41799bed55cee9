/**
 * @file
 * What the work on one source may take.
 */
#pragma once

#include <string>

/** 0: no limit; of the depth, the usual one. */
struct Limits {
    unsigned maxMemory = 0;  ///< MiB
    unsigned maxSeconds = 0; ///< by the clock
    unsigned maxOutput = 0;  ///< MiB
    unsigned maxDepth = 0;   ///< levels of templates and elements

    bool areSet() const {
        return maxMemory != 0 || maxSeconds != 0 || maxOutput != 0 || maxDepth != 0;
    }
};

inline std::string timeLimitText(const Limits& limits) {
    return "time limit of " + std::to_string(limits.maxSeconds) + " s exceeded (--max-seconds)";
}

inline std::string outputLimitText(const Limits& limits) {
    return "output limit of " + std::to_string(limits.maxOutput) + " MiB exceeded (--max-output)";
}
