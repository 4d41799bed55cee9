/**
 * @file
 * The connection between the scheduler and a worker, a process that may end at any time.
 */
#pragma once

#include "base/Descriptor.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>

/** What a worker reports. */
struct Report {
    enum class Kind : std::uint32_t {
        Started, ///< it can do jobs
        Message, ///< a message about the job
        Done,    ///< the job's result is in its place
        Failed,  ///< there is no result; the text says why
        GivenUp, ///< it can do no job at all; the text says why
    };

    Kind kind;
    std::string text;
    /** The same for programs. */
    std::string outcome;
};

/** The worker's end. */
class WorkerChannel {
public:
    explicit WorkerChannel(Descriptor socket) : m_socket(std::move(socket)) {}

    void send(Report::Kind kind, const std::string& text = "",
              const std::string& outcome = "") const;

    /** Waits for the next job; nothing when there will be no more. */
    std::optional<std::string> nextJob() const;

private:
    bool receive(char* bytes, std::size_t length) const;

    Descriptor m_socket;
};

/** The other end. */
class SchedulerChannel {
public:
    /** Closes: the worker ends when its jobs are done. */
    ~SchedulerChannel();
    explicit SchedulerChannel(Descriptor socket = Descriptor()) : m_socket(std::move(socket)) {}
    SchedulerChannel(SchedulerChannel&&) = default;
    SchedulerChannel& operator=(SchedulerChannel&&) = default;

    /** To be polled for what can be received. */
    int descriptor() const { return m_socket.get(); }

    /** Waits where the worker does not take it. */
    void send(const std::string& job) const;

    /** There will be no more jobs. */
    void close() const;

    /**
     * Receives all that is there, without waiting.
     * @return false when the worker is gone
     */
    bool receiveAll(std::deque<Report>& reports);

private:
    Descriptor m_socket;
    std::string m_strReceived;
};

/** Both ends of a connection. */
struct Connection {
    SchedulerChannel schedulersEnd;
    WorkerChannel workersEnd;
};

/** @throws std::system_error */
Connection openConnection();
