/**
 * @file
 * Reads the records of a source, and has them transformed by other processes.
 */
#pragma once

#include "batch/ProgressBar.h"
#include "process/WorkerPool.h"
#include "records/RecordOutput.h"

#include <vexa/xslt/Error.h>
#include <vexa/xslt/Records.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>

/**
 * Results come in the order of the records. Memory is bounded: while those who take the results, or
 * the other processes, do not keep up, nothing more is read.
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
    /** An error in words. */
    using Describe = std::function<std::string(const vexa::Error&)>;

    /**
     * @param records,output borrowed
     * @param work           what another process does: it is given packed records
     */
    RecordPipeline(Settings settings, vexa::Records& records, RecordOutput& output,
                   WorkerPool::Work work, Describe describe);
    RecordPipeline(const RecordPipeline&) = delete;
    RecordPipeline& operator=(const RecordPipeline&) = delete;

    /**
     * Does all. What fails is printed.
     *
     * @return false where the source broke off
     * @throws vexa::Error: Output; std::system_error, Failure where no process can be started
     */
    bool run();

    /** Of the records. */
    const Tally& tally() const { return m_tally; }

private:
    /** A record that was read. */
    struct Record {
        std::uint64_t number;
        /** On which it begins. */
        std::size_t line;
        /** What is not printed yet, as the records before it are not done. */
        std::deque<Report> waiting;
        bool isDone = false;
    };

    bool hasRoom() const;
    bool canRead() const;
    void read();
    void take(std::uint64_t number, Report report);
    void deliver(const Report& report);
    void deliverWaiting();
    std::string placeOf(const Record& record) const;

    const Settings m_settings;
    vexa::Records& m_records;
    RecordOutput& m_output;
    const Describe m_describe;
    /** Those that are not delivered, in the order of the source. */
    std::deque<Record> m_inFlight;
    std::size_t m_waitingBytes = 0;
    bool m_isAtEnd = false;
    /** Why the source broke off. */
    std::string m_end;
    Tally m_tally;
    ProgressBar m_progress;
    WorkerPool m_pool;
};
