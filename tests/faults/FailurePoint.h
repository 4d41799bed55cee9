/**
 * @file
 * One operation with one failing allocation, in a process of its own, as the engines may crash.
 */
#pragma once

#include "FailingAllocations.h"
#include "Trial.h"

#include <string>
#include <vector>

/** Names of functions, the innermost call first. */
using Calls = std::vector<std::string>;

enum class Problem { None, Death, Loss, WrongBehaviour };

/** The result of a failure point. */
struct Outcome {
    /** The number of the failing allocation. */
    std::size_t allocation = 0;
    /** The operation made fewer allocations than that. */
    bool beyondTheLast = false;
    Problem problem = Problem::None;
    std::string message;
    Calls failedIn;
    /** Where the process died. */
    Calls diedIn;
    /** Where the blocks had been allocated that were never freed. */
    std::vector<Calls> lostIn;
};

/**
 * Tries one failure point after the other, beginning with allocation number `first`, up to the
 * first one with a problem, or to the one after the last allocation.
 */
Outcome tryFailurePoints(const Operation& operation, std::size_t first, Shortage shortage);
