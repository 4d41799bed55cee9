/**
 * @file
 * Heap allocations of the whole program: our code, the engine and ICU.
 */
#pragma once

#include <cstdint>

/** The number of allocations of the calling thread so far. */
std::uint64_t allocations();

/** Bytes of the heap that the process uses. */
std::int64_t heapBytes();
