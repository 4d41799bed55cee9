/**
 * @file
 * Every kind of failure of the interface, for what must hold at all of them.
 */
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

/** What the callbacks of these failures throw. */
struct HostFailure {};

struct Failure {
    std::string name;
    /** Throws a vexa::Error or a HostFailure; each call does the whole operation. */
    std::function<void()> fail;
};

inline void PrintTo(const Failure& failure, std::ostream* stream) {
    *stream << failure.name;
}

const std::vector<Failure>& allFailures();
