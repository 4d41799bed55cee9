/**
 * @file
 * Distributes the jobs of a batch to workers, and reports what becomes of them.
 */
#pragma once

#include "base/Descriptor.h"
#include "batch/BatchPlan.h"
#include "batch/BatchReport.h"
#include "batch/ProgressBar.h"
#include "process/BlockedSignals.h"
#include "process/WorkerPool.h"

#include <cstdint>
#include <string>
#include <vector>

/** Only the scheduler writes to standard error, so that lines stay whole. */
class Scheduler {
public:
    /**
     * @param options,jobs,report,signals borrowed
     * @param workers as many of these work as the system allows; 0 only where there are no jobs
     * @param work    what a worker does: it is given numbers of jobs
     */
    Scheduler(const BatchOptions& options, const std::vector<BatchJob>& jobs, BatchReport& report,
              const BlockedSignals& signals, std::size_t workers, WorkerPool::Work work);
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;

    /**
     * Has all jobs done. Each failure is printed at once. When a signal comes, the workers are
     * killed, a last line is printed, and the process ends by that signal.
     *
     * Where no more workers can be started, the rest is left undone, and the cause printed.
     *
     * @throws std::runtime_error where the workers cannot do any job; what() says why, in the form
     * of an error
     */
    Tally run();

private:
    void runAll();
    void startWorkers(std::size_t count);
    void giveJobs();
    void take(const BatchJob& job, const Report& report);
    void takeOther(const Report& report);
    void takeLoss(const BatchJob& job, const ChildProcess::End& end, double milliseconds);
    void leaveOutUnchanged(const std::string& modules);
    bool waitUntilWritable(int descriptor);
    void print(const std::string& text);
    void printMessage(const std::string& text);
    void fail(const BatchJob& job, const std::string& text, const std::string& outcome);
    void endOnSignal();
    [[noreturn]] void interrupt(int signalNumber);
    const BatchJob& jobOf(const WorkerPool::Job& job) const {
        return m_jobs[static_cast<std::size_t>(job.number)];
    }
    std::size_t jobsLeft() const { return m_todo.size() - m_nGiven; }

    const BatchOptions& m_options;
    const std::vector<BatchJob>& m_jobs;
    BatchReport& m_report;
    const BlockedSignals& m_signals;
    const std::size_t m_workers;
    Descriptor m_signalSource;
    /** A signal has come: nothing is waited for any more. */
    bool m_isEnding = false;
    /** What is to be done; with --newer nothing until the modules are known. */
    std::vector<std::uint32_t> m_todo;
    /** So many of these were given to the workers. */
    std::size_t m_nGiven = 0;
    bool m_isPlanned = false;
    Tally m_tally;
    ProgressBar m_progress;
    WorkerPool m_pool;
};

/** "9 of 12 sources done, 1 failed, 2 not done" */
std::string summary(const Tally& tally);
