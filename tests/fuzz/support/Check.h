/**
 * @file
 * What a fuzzer holds the library to.
 */
#pragma once

#include <cstdio>
#include <cstdlib>

/** Ends the process where a promise is broken: the fuzzer then keeps the input. */
inline void require(bool kept, const char* promise) {
    if (!kept) {
        std::fprintf(stderr, "broken promise: %s\n", promise);
        std::abort();
    }
}
