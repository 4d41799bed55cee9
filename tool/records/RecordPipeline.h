/**
 * @file
 * Reads the records of a source, and has them transformed by child processes.
 */
#pragma once

#include "base/Limits.h"
#include "batch/Channel.h"
#include "batch/ProgressBar.h"
#include "process/ChildProcess.h"
#include "records/RecordOutput.h"

#include <vexa/xslt/Document.h>
#include <vexa/xslt/Error.h>
#include <vexa/xslt/Records.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/** One record, or why there is none. */
struct SourceRecord {
    vexa::Document document;
    std::uint64_t number;
    /** On which it begins. */
    std::size_t line;
    /** Not empty where it could not be read. */
    std::string failure;
};

/**
 * A child process gets some records at a time: it is forked when they have been read, so that they
 * need not be written and read again. A crash costs one record; another process takes the rest.
 * Results come in the order of the records. Memory is bounded: while those who take the results, or
 * the child processes, do not keep up, nothing more is read.
 */
class RecordPipeline {
public:
    struct Settings {
        /** Of the source, for messages. */
        std::string name;
        /** For each record. */
        Limits limits;
        /** How many processes transform at the same time. */
        std::size_t jobs;
        /** What the source is read from, if that may have to be waited for; or -1. */
        int waitsFor;
        /** Of the source in bytes; 0 where it is not known. */
        std::uint64_t size;
        bool showsProgress;
    };
    /** Transforms a record in a child process: sends messages, and Done with the result or Failed.
     */
    using Work = std::function<void(const SourceRecord&, const WorkerChannel&)>;
    /** An error in words. */
    using Describe = std::function<std::string(const vexa::Error&)>;

    /** @param records,output borrowed */
    RecordPipeline(Settings settings, vexa::Records& records, RecordOutput& output, Work work,
                   Describe describe);

    /**
     * Does all. What fails is printed.
     *
     * @return false where the source broke off
     * @throws vexa::Error: Output; std::system_error where no process can be started
     */
    bool run();

    /** Of the records. */
    const Tally& tally() const { return m_tally; }

private:
    using Clock = ChildProcess::Clock;

    /** Records with the process that transforms them. */
    struct Chunk {
        std::vector<SourceRecord> records;
        /** So many of them have a result, or have failed. */
        std::size_t finished = 0;
        ChildProcess process;
        SchedulerChannel channel;
        /** What is not printed yet, as the chunks before it are not done. */
        std::deque<Report> waiting;

        bool isDone() const { return finished == records.size(); }
    };

    bool hasRoom() const;
    bool canRead() const;
    void readChunk();
    bool read(Chunk& chunk);
    std::size_t recordsAtOnce();
    void start(Chunk& chunk);
    void wait();
    int millisecondsToWait() const;
    bool mayReceive(const Chunk& chunk) const;
    void receiveFrom(Chunk& chunk);
    void take(Chunk& chunk, Report report);
    void takeEnd(Chunk& chunk);
    void deliver(const Report& report);
    void deliverWaiting();
    std::string placeOf(const SourceRecord& record) const;

    const Settings m_settings;
    vexa::Records& m_records;
    RecordOutput& m_output;
    const Work m_work;
    const Describe m_describe;
    /** In the order of the source. */
    std::deque<std::unique_ptr<Chunk>> m_chunks;
    /** Of all times. */
    std::size_t m_chunkCount = 0;
    std::size_t m_waitingBytes = 0;
    bool m_isAtEnd = false;
    /** Why the source broke off. */
    std::string m_end;
    Clock::time_point m_begin = Clock::now();
    /** When the processes were last heard. */
    Clock::time_point m_lastHeard = Clock::now();
    Tally m_tally;
    ProgressBar m_progress;
};
