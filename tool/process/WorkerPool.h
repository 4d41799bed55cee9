/**
 * @file
 * Processes that do jobs for another one.
 */
#pragma once

#include "base/Limits.h"
#include "process/Channel.h"
#include "process/ChildProcess.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/**
 * Gives jobs to processes, and passes on what they report. A process that ends takes its current
 * job with it; another process takes its place, and its other jobs.
 */
class WorkerPool {
public:
    using Clock = ChildProcess::Clock;

    struct Settings {
        /** What is at fault where no process can start. */
        std::string name;
        /** For each job. */
        Limits limits;
        /** How many processes there are at most. */
        std::size_t workers;
        /** How many jobs a process is given at most: one, and others so that it need not wait. */
        std::size_t jobsAhead;
        /** Whether fewer processes will do where the system allows no more. */
        bool canShrink = false;
    };
    struct Job {
        /** Each job has a higher one than those before it. */
        std::uint64_t number;
        std::string text;
    };
    /** What the user of the pool does. */
    struct Events {
        /** Takes a Message, or Done or Failed, which end the job. */
        std::function<void(const Job&, Report)> report;
        /** Takes the news that the process of a job has ended. @param milliseconds that it took */
        std::function<void(const Job&, const ChildProcess::End&, double milliseconds)> lost;
        /** Whether reports about the job can be taken now: otherwise its process waits. */
        std::function<bool(const Job&)> canReport;
        /** Is called before all wait. */
        std::function<void()> idle = [] {};
        /** Takes Started, or a Message about no job. */
        std::function<void(const Report&)> other = [](const Report& /*report*/) {};
    };
    /**
     * What a process does: it sends Started, and Done or Failed for each text that it gets. Only
     * the first one may send GivenUp, which ends all. @return its exit status
     */
    using Work = std::function<int(const WorkerChannel&, bool isFirst)>;

    WorkerPool(Settings settings, Work work, Events events);

    /** Starts a process, of those that there are at most. @throws std::system_error, Failure */
    void start();
    /** @param jobs how many a process is given at most from now on */
    void setJobsAhead(std::size_t jobs) { m_settings.jobsAhead = jobs; }
    /** Whether the processes may need another job soon. */
    bool hasRoom() const { return m_waiting.empty(); }
    /** Gives a job to a process, or keeps it until one has room. */
    void add(Job job);
    /** Whether all jobs are done, and a process has started. */
    bool isDone() const;

    /**
     * Waits until something happens, and passes it on.
     *
     * @param source  a descriptor that may become readable meanwhile, or -1
     * @param longest how long to wait at most
     * @return whether the source is readable
     * @throws Failure where no process can start; std::runtime_error with the text of GivenUp
     */
    bool wait(int source, Clock::duration longest);
    /** Lets the processes end. */
    void finish();
    /** Ends them at once. What they have reported is passed on. */
    void kill();

private:
    struct Slot {
        ChildProcess process;
        SchedulerChannel channel;
        bool hasStarted = false;
        /** How many processes in a row have ended before they could do anything. */
        int failedStarts = 0;
        /** It was late with a job that it has finished after all. */
        bool wasJustInTime = false;
        /** Given to the process, the current one first. */
        std::deque<Job> jobs;
        /** Received, and not passed on. */
        std::deque<Report> reports;
        /** When it began with the current one. */
        Clock::time_point begin;
    };

    void giveJobs();
    Slot* slotFor(const Job& job);
    static std::size_t bytesIn(const Slot& slot);
    bool canReceive(const Slot& slot) const;
    bool canDoWithout() const;
    void start(Slot& slot);
    void beginJob(Slot& slot);
    void endJob(Slot& slot);
    int millisecondsToWait(Clock::duration longest) const;
    void killIfLate(Slot& slot);
    void receiveFrom(Slot& slot);
    bool takeReports(Slot& slot);
    void take(Slot& slot, Report report);
    void takeEnd(Slot& slot);
    void giveBack(Job job);

    Settings m_settings;
    const Work m_work;
    const Events m_events;
    std::vector<std::unique_ptr<Slot>> m_slots;
    bool m_hasStarted = false;
    /** Not given to a process, by number. */
    std::deque<Job> m_waiting;
    /** When the processes were last heard. */
    Clock::time_point m_lastHeard = Clock::now();
};
