/**
 * @file
 * How an operation of the second interface ends.
 */
#pragma once

#include <vexa/xslt/Error.h>

#include <new>
#include <string>

/** What a host's own callback throws. */
struct HostFailure {};

struct Outcome {
    enum class End { Success, Failure, Usage, HostFailure, OutOfMemory };

    End end = End::Success;
    /** The result; of a failure all that it says. */
    std::string text;

    /** Whether it is the same as another. Running out of memory may come earlier or later. */
    bool isLike(const Outcome& other) const {
        return end == End::OutOfMemory || other.end == End::OutOfMemory ||
               (end == other.end && text == other.text);
    }
};

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
        return {Outcome::End::OutOfMemory, ""};
    }
}
