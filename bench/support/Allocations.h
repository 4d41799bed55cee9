/**
 * @file
 * What a program takes from the heap, whoever in it asks: our code, the engine, ICU.
 */
#pragma once

#include <cstdint>

/** Blocks asked for so far by the calling thread. */
std::uint64_t allocations();

/** Bytes of the heap in use by the whole process. */
std::int64_t heapBytes();
