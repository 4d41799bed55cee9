/**
 * @file
 * Where the time went, for people.
 */
#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

/** Measures one phase after another. */
class Timing {
public:
    /** Ends the phase that began at the last call, or at construction, and gives it a name. */
    void endPhase(const std::string& name);

    /** The phases and their sum in milliseconds, each on a line of its own. */
    std::string report() const;

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point m_begin = Clock::now();
    Clock::time_point m_last = m_begin;
    std::vector<std::pair<std::string, Clock::duration>> m_phases;
};
