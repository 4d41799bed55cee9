/**
 * @file
 * Distributes requests to processes, and passes on what they answer.
 */
#pragma once

#include "base/Limits.h"
#include "batch/Channel.h"
#include "process/ChildProcess.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

/**
 * Reads requests from standard input, a line each, and writes the answers to standard output.
 * Nothing more is read while all processes have enough to do, or nobody takes the answers. A
 * request that ends its process is answered for it.
 */
class RequestPool {
public:
    struct Settings {
        /** What is at fault where no process can start. */
        std::string name;
        /** For each request. */
        Limits limits;
        /** How many processes there are at most. */
        std::size_t jobs;
        /** Whether answers come in the order of the requests. */
        bool isOrdered;
    };
    /**
     * What a process does: it sends Started, and Done with the answer to each text that it gets.
     * Only the first one may send GivenUp, which ends all. @return its exit status
     */
    using Work = std::function<int(const WorkerChannel&, bool isFirst)>;

    RequestPool(Settings settings, Work work);

    /**
     * Until standard input has ended and all is answered.
     *
     * @throws Failure where no process can start, or standard output cannot be written
     */
    void run();

private:
    using Clock = ChildProcess::Clock;

    struct Line {
        std::uint64_t number;
        std::string text;
    };
    struct Slot {
        ChildProcess process;
        SchedulerChannel channel;
        bool hasStarted = false;
        /** How many processes in a row have ended before they could do anything. */
        int failedStarts = 0;
        /** Given to the process, the current one first. */
        std::deque<Line> lines;
        /** When it began with the current one. */
        Clock::time_point begin;
    };

    bool wantsInput() const;
    void readInput();
    void takeLine(std::string line);
    void giveLines();
    Slot* slotFor(const Line& line);
    static std::size_t bytesIn(const Slot& slot);
    void start(Slot& slot);
    void beginLine(Slot& slot);
    void endLine(Slot& slot);
    void wait();
    int millisecondsToWait() const;
    void receiveFrom(Slot& slot);
    void take(Slot& slot, Report report);
    void takeEnd(Slot& slot);
    void answer(std::uint64_t number, std::string text);
    bool isDone() const;

    const Settings m_settings;
    const Work m_work;
    std::vector<std::unique_ptr<Slot>> m_slots;
    bool m_hasStarted = false;
    bool m_isAtEnd = false;
    /** What was read of a line. */
    std::string m_begun;
    /** The line is too long: the rest of it is passed over. */
    bool m_isSkipping = false;
    /** Not given to a process yet. */
    std::deque<Line> m_waiting;
    std::uint64_t m_lines = 0;
    /** How many answers are written. */
    std::uint64_t m_answered = 0;
    /** Answers that wait for those before them. */
    std::map<std::uint64_t, std::string> m_held;
    std::size_t m_heldBytes = 0;
    Clock::time_point m_lastHeard = Clock::now();
};
