/**
 * @file
 * The connection between the one who gives out work and a worker: a thread, or a process that may
 * end at any time.
 */
#pragma once

#include "../Descriptor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/** What a worker tells. */
struct Report {
    enum class Kind : std::uint32_t {
        Ready,   ///< it wants a job
        Message, ///< what the engine prints, in whole lines
        Done,    ///< the job's result is in its place
        Failed,  ///< there is no result; the text says why
        GivenUp, ///< it can do no job at all; the text says why
    };

    Kind kind;
    std::string text;
};

/** The worker's end. */
class WorkerChannel {
public:
    explicit WorkerChannel(Descriptor socket) : m_socket(std::move(socket)) {}

    void send(Report::Kind kind, const std::string& text = "") const;

    /** Waits for the number of the next job; none when there will be no more. */
    std::optional<std::uint32_t> nextJob() const;

private:
    Descriptor m_socket;
};

/** The other end. */
class ForemanChannel {
public:
    /** Hangs up: the worker ends when its job is done. */
    ~ForemanChannel();
    explicit ForemanChannel(Descriptor socket = Descriptor()) : m_socket(std::move(socket)) {}
    ForemanChannel(ForemanChannel&&) = default;
    ForemanChannel& operator=(ForemanChannel&&) = default;

    /** To be polled for what can be received. */
    int descriptor() const { return m_socket.get(); }

    void handOver(std::uint32_t job) const;

    /** There will be no more jobs. */
    void hangUp() const;

    /**
     * Receives what is there, without waiting.
     * @return false when the worker is gone
     */
    bool receive(std::vector<Report>& reports);

private:
    Descriptor m_socket;
    std::string m_strReceived;
};

/** Both ends of a connection. */
struct Connection {
    ForemanChannel foremansEnd;
    WorkerChannel workersEnd;
};

/** @throws std::system_error */
Connection openConnection();
