/**
 * @file
 * Those who do the jobs of a batch: threads of this process, or processes.
 */
#pragma once

#include "BatchPlan.h"
#include "Channel.h"

#include <memory>
#include <string>

class HeldSignals;

class Worker {
public:
    Worker() = default;
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    virtual ~Worker() = default;

    /** Has it do jobs; again, when the one before has ended. @throws Failure */
    virtual void start(WorkerChannel channel) = 0;

    /** Ends it in the middle of its work and leaves nothing unfinished, if it is a process. */
    virtual void stop() = 0;

    /** Waits for its end. @return what to say where it did not end by itself, or nothing */
    virtual std::string end() = 0;
};

/** A thread; the engines run. @param batch borrowed */
std::unique_ptr<Worker> makeThreadWorker(const Batch& batch);

/**
 * A process, which starts its own engines: these must not run here, and there must be no other
 * thread.
 *
 * @param batch borrowed
 */
std::unique_ptr<Worker> makeProcessWorker(const Batch& batch);
