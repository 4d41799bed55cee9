/**
 * @file
 * Distributes the jobs of a batch to workers, and reports what becomes of them.
 */
#pragma once

#include "base/Limits.h"
#include "batch/BatchPlan.h"
#include "batch/BatchReport.h"
#include "batch/ProgressBar.h"
#include "process/BlockedSignals.h"
#include "process/Channel.h"
#include "process/ChildProcess.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

/** The workers cannot do any job; what() says why, in the form of an error. */
class NoWorker : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Only the scheduler writes to standard error, so that lines stay whole. */
class Scheduler {
public:
    /** What a worker does, in a process of its own. @return its exit status */
    using Work = std::function<int(const WorkerChannel&)>;

    /** @param options,jobs,report,signals borrowed */
    Scheduler(const BatchOptions& options, const std::vector<BatchJob>& jobs, BatchReport& report,
              const BlockedSignals& signals, Work work);
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;

    /**
     * Has all jobs done. Each failure is printed at once. When a signal comes, the workers are
     * killed, a last line is printed, and the process ends by that signal.
     *
     * Where no more workers can be started, the rest is left undone, and the cause printed.
     *
     * @param workers how many, at least one; as many of these work as the system allows
     * @throws NoWorker
     */
    Tally run(std::size_t workers);

private:
    using Clock = ChildProcess::Clock;

    /** A worker, and the jobs that it has not finished, the current one first. */
    struct Slot {
        ChildProcess process;
        SchedulerChannel channel;
        bool hasStarted = false;
        /** How many processes in a row have ended before they could do a job. */
        int failedStarts = 0;
        /** It was late with a job that it has finished after all. */
        bool wasJustInTime = false;
        std::deque<std::uint32_t> jobs;
        /** When it began with the current one. */
        Clock::time_point begin;
    };

    void runAll();
    void start(Slot& slot);
    void wait();
    int millisecondsToWait() const;
    void receiveFrom(Slot& slot);
    void take(Slot& slot, const Report& report);
    void leaveOutUnchanged(const std::string& modules);
    void beginJob(Slot& slot);
    void endJob(Slot& slot);
    void giveJobs(Slot& slot);
    void takeEnd(Slot& slot);
    bool waitUntilWritable(int descriptor);
    void print(const std::string& text);
    void printMessage(const Slot& slot, const std::string& text);
    void fail(const Slot& slot, const std::string& text, const std::string& outcome);
    void endOnSignal();
    [[noreturn]] void interrupt(int signalNumber);
    void countLastReports(Slot& slot);

    bool isAnyRunning() const;
    std::size_t jobsLeft() const;
    std::uint32_t takeNextJob();
    const BatchJob& jobOf(const Slot& slot) const;
    const std::string& sourceOf(const Slot& slot) const;

    const BatchOptions& m_options;
    const std::vector<BatchJob>& m_jobs;
    BatchReport& m_report;
    const BlockedSignals& m_signals;
    Work m_work;
    Descriptor m_signalSource;
    /** A signal has come: nothing is waited for any more. */
    bool m_isEnding = false;
    std::vector<std::unique_ptr<Slot>> m_slots;
    /** What is to be done, where not all is. */
    std::optional<std::vector<std::uint32_t>> m_outdated;
    std::uint32_t m_nNextJob = 0;
    /** Given to a worker that ended before it came to them. */
    std::deque<std::uint32_t> m_returned;
    Tally m_tally;
    ProgressBar m_progress;
};

/** "9 of 12 sources done, 1 failed, 2 not done" */
std::string summary(const Tally& tally);
