/**
 * @file
 * Detects memory checkers, which need additional memory and time.
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
