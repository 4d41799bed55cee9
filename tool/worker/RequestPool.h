/**
 * @file
 * Distributes requests to processes, and passes on what they answer.
 */
#pragma once

#include "process/WorkerPool.h"

#include <cstdint>
#include <map>
#include <string>

/**
 * Reads requests from standard input, a line each, and writes the answers to standard output.
 * Nothing more is read while all processes have enough to do, or nobody takes the answers. A
 * request that ends its process is answered for it.
 */
class RequestPool {
public:
    /** @param isOrdered whether answers come in the order of the requests */
    RequestPool(WorkerPool::Settings settings, bool isOrdered, WorkerPool::Work work);
    RequestPool(const RequestPool&) = delete;
    RequestPool& operator=(const RequestPool&) = delete;

    /**
     * Until standard input has ended and all is answered.
     *
     * @throws Failure where no process can start, or standard output cannot be written
     */
    void run();

private:
    bool wantsInput() const;
    void readInput();
    void takeLine(std::string line);
    void answerLost(const WorkerPool::Job& request, const ChildProcess::End& end,
                    double milliseconds);
    void answer(std::uint64_t number, std::string text);

    const bool m_isOrdered;
    const Limits m_limits;
    WorkerPool m_pool;
    bool m_isAtEnd = false;
    /** What was read of a line. */
    std::string m_begun;
    /** The line is too long: the rest of it is passed over. */
    bool m_isSkipping = false;
    std::uint64_t m_lines = 0;
    /** How many answers are written. */
    std::uint64_t m_answered = 0;
    /** Answers that wait for those before them. */
    std::map<std::uint64_t, std::string> m_held;
    std::size_t m_heldBytes = 0;
};
