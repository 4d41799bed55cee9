/**
 * @file
 * This program's own operator new, which the libraries and the engines use as well: it counts, and
 * fails on request.
 */
#pragma once

#include <cstddef>
#include <vector>

/** Which allocations fail from the chosen one on. */
enum class Shortage { Once, FromThenOn };

namespace allocations {

/** The allocation number `n` from now on fails, counted from 1; 0: none fails. */
void failAt(std::size_t n, Shortage shortage);
/** Goes on counting after suspend(). */
void resume();
/** Neither counts nor fails until resume(). */
void suspend();
/** Whether an allocation has failed since failAt(). */
bool hasFailed();

/** Where a block was allocated, or could not be: return addresses, the innermost first. */
using Place = std::vector<void*>;

/** Where the first allocation has failed since failAt(). */
Place placeOfFailure();

/** Blocks that are allocated now. */
long liveBlocks();

/** From now on each block is remembered with its place. */
void trace();
/** The places of the remembered blocks that are still allocated. */
std::vector<Place> tracedPlaces();

} // namespace allocations
