/**
 * @file
 * How an operation of the second interface ends.
 */
#pragma once

#include <vexa/xslt/Error.h>
#include <vexa/xslt/Options.h>

#include <chrono>
#include <cstddef>
#include <new>
#include <string>

/** What a host's own callback throws. */
struct HostFailure {};

struct Outcome {
    enum class End { Success, Failure, Usage, HostFailure, OutOfResources };

    End end = End::Success;
    /** The result; of a failure all that it says. */
    std::string text;

    /** Whether it is the same as another. Memory may end, and a limit be reached, earlier or later.
     */
    bool isLike(const Outcome& other) const {
        return end == End::OutOfResources || other.end == End::OutOfResources ||
               (end == other.end && text == other.text);
    }
};

/** With these, no input hangs, and none ends the process. */
inline vexa::Limits fuzzingLimits() {
    vexa::Limits limits;
    limits.memory = std::size_t{32} << 20;
    limits.output = std::size_t{1} << 20;
    limits.time = std::chrono::seconds(5);
    limits.depth = 500;
    return limits;
}

/** An error of the interface, which says what is wrong. */
Outcome failure(const vexa::Error& error);

/** @param operation returns its result as text. Other exceptions than the promised ones pass. */
template <typename Operation>
Outcome outcomeOf(Operation operation) {
    try {
        return {Outcome::End::Success, operation()};
    } catch (const vexa::Error& error) {
        return failure(error);
    } catch (const HostFailure&) {
        return {Outcome::End::HostFailure, ""};
    } catch (const std::bad_alloc&) {
        return {Outcome::End::OutOfResources, ""};
    }
}
