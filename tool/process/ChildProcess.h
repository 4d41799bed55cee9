/**
 * @file
 * Work in a process of its own, so that whatever becomes of it can be told as an error.
 */
#pragma once

#include "base/Limits.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>

/**
 * One child process after another: a new one may be started when the one before has ended. There
 * must be no other threads when it is started. The child ends with its parent.
 */
class ChildProcess {
public:
    using Clock = std::chrono::steady_clock;

    /** How a child ended. */
    struct End {
        /** As waitpid() gives it. */
        int status;
        bool wasLate;
        bool hadStackOverflow;

        /** The exit status, if it ended by itself with one of this program. */
        std::optional<int> exitStatus() const;
        /** The signal that ended it from outside. */
        std::optional<int> outerSignal() const;
        /** What to say of a child that did not end by itself. */
        std::string cause(const Limits& limits) const;
    };

    /** @throws std::system_error */
    ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /** Kills it. */
    ~ChildProcess();

    /**
     * Starts a child, which does the work, and exits with what that returns.
     * @throws std::system_error
     */
    void start(const std::function<int()>& work);

    /** It is killed if it has not ended so many seconds from now; 0: it may take forever. */
    void setTimeLimit(unsigned seconds);
    /** When it will be late. */
    const std::optional<Clock::time_point>& deadline() const { return m_deadline; }
    /** Gives it more time, if its time is limited. */
    void postponeDeadline(Clock::duration time);
    /** Kills it if its time is over. */
    void killIfLate();
    /** Whether it was killed because it was late. */
    bool isLate() const { return m_bLate; }
    /** Sends a signal. */
    void send(int signalNumber) const;

    bool isRunning() const { return m_nProcess > 0; }
    /** Its end, if it has ended. */
    std::optional<End> poll() { return reap(false); }
    /** Waits for its end. It must be running. */
    End wait() { return *reap(true); }

private:
    struct CrashRecord;

    std::optional<End> reap(bool wait);

    /** In memory that both processes share. */
    CrashRecord& m_crash;
    pid_t m_nProcess = 0;
    std::optional<Clock::time_point> m_deadline;
    bool m_bLate = false;
};
