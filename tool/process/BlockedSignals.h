/**
 * @file
 * Signals that are waited for instead of ending the process.
 */
#pragma once

#include <chrono>
#include <csignal>
#include <optional>

/**
 * Whether a signal comes from outside, and is to end the one who waits as well as the one who
 * works.
 */
bool isOuterSignal(int signalNumber);

/**
 * Keeps outer signals from ending this process, in this thread and in those that it makes later,
 * so that they can be waited for; SIGCHLD with them. What is ignored from outside (nohup) stays
 * ignored.
 */
class HeldSignals {
public:
    using Clock = std::chrono::steady_clock;

    HeldSignals();
    /** Releases them. */
    ~HeldSignals() { release(); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    const sigset_t& set() const { return m_held; }

    /** As before, for a child process. */
    void release() const;

    /** The next signal; none if the time comes first. */
    std::optional<int> next(const std::optional<Clock::time_point>& time) const;

    /** Ends the process as the signal would have. */
    [[noreturn]] void endBy(int signalNumber) const;

private:
    int waitUntil(Clock::time_point time) const;

    sigset_t m_held{};
    sigset_t m_before{};
};
