/**
 * @file
 * The operator new of this program, which the libraries and the engines use as well. It counts
 * allocations, and fails on request.
 */
#pragma once

#include <cstddef>
#include <vector>

/** Which allocations fail from the chosen one on. */
enum class Shortage { Once, FromThenOn };

namespace allocations {

/** The allocation number `n` from now on fails, counted from 1; 0: none fails. */
void failAt(std::size_t n, Shortage shortage);
/** Starts counting, or continues after suspend(). */
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

/** Stores the place of each block that is allocated from now on. */
void trace();
/** The places of the blocks since trace() that are still allocated; ends the tracing. */
std::vector<Place> tracedPlaces();

} // namespace allocations
