/**
 * @file
 * One operation with one allocation failing, in a process of its own: the engines may not survive.
 */
#pragma once

#include "FailingAllocations.h"
#include "Trial.h"

#include <string>
#include <vector>

/** Names of functions, the innermost call first. */
using Calls = std::vector<std::string>;

enum class Trouble { None, Death, Loss, WrongBehaviour };

/** What came of a failure point. */
struct Outcome {
    /** The number of the allocation that failed. */
    std::size_t allocation = 0;
    /** The operation made fewer allocations than that. */
    bool beyondTheLast = false;
    Trouble trouble = Trouble::None;
    /** What is wrong, in words. */
    std::string complaint;
    Calls failedIn;
    /** Where the process died. */
    Calls diedIn;
    /** Where blocks that were never given back had been allocated. */
    std::vector<Calls> lostIn;
};

/**
 * Tries one failure point after the other, from allocation number `first` on, up to one with a
 * trouble, or to the one beyond the last.
 */
Outcome tryFailurePoints(const Operation& operation, std::size_t first, Shortage shortage);
