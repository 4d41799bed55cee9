/**
 * @file
 * Whether a memory checker is at work: it takes memory and time of its own.
 */
#pragma once

#include <cstdlib>
#include <cstring>

inline bool isUnderAMemoryChecker() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    const char* const preloaded = std::getenv("LD_PRELOAD");
    return preloaded && std::strstr(preloaded, "vgpreload");
#endif
}
