/**
 * @file
 * Signals that are waited for instead of ending the process.
 */
#pragma once

#include <chrono>
#include <csignal>
#include <optional>

/** Whether a signal asks a program from outside to end, and not because of what it did itself. */
bool isFromOutside(int signalNumber);

/**
 * Blocks the signals that end a process from outside, and SIGCHLD, so that they can be waited for.
 * What is ignored from outside (nohup) stays ignored.
 */
class BlockedSignals {
public:
    using Clock = std::chrono::steady_clock;

    BlockedSignals();
    ~BlockedSignals() { unblock(); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

    const sigset_t& set() const { return m_blocked; }

    /** As before, for a child process. */
    void unblock() const;

    /** The next signal; nothing if the time comes first. */
    std::optional<int> next(const std::optional<Clock::time_point>& time) const;

    /** Ends the process as the signal would have. */
    [[noreturn]] void endBy(int signalNumber) const;

private:
    int waitUntil(Clock::time_point time) const;

    sigset_t m_blocked{};
    sigset_t m_before{};
};
