/**
 * @file
 * The one who gives out the jobs of a batch, and tells what comes of them.
 */
#pragma once

#include "BatchPlan.h"
#include "Channel.h"
#include "ProgressBar.h"
#include "Worker.h"

#include "../HeldSignals.h"

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

/**
 * Only this one writes to standard error, so that lines stay whole, and only in one thread.
 */
class Foreman {
public:
    /** @param batch,signals borrowed */
    Foreman(const Batch& batch, const HeldSignals& signals);
    Foreman(const Foreman&) = delete;
    Foreman& operator=(const Foreman&) = delete;

    /**
     * Has all jobs done. Each failure is told at once. When a signal comes, unfinished results are
     * removed, a last line is told, and the process ends by that signal.
     *
     * Where workers can no longer be made, the rest is left undone, and the reason told.
     *
     * @param workers at least one; of these, as many work as the system allows
     * @throws Failure where the workers cannot do any job
     */
    Tally run(std::vector<std::unique_ptr<Worker>> workers);

private:
    using Clock = HeldSignals::Clock;

    /** A worker, and what it does. */
    struct Post {
        std::unique_ptr<Worker> worker;
        ForemanChannel channel;
        bool isManned = false;
        bool wasReady = false;
        bool isLate = false;
        std::optional<std::uint32_t> job;
        std::optional<Clock::time_point> deadline;

        void endJob() {
            job.reset();
            deadline.reset();
        }
    };

    void haveAllDone();
    void man(Post& post);
    void wait();
    int millisecondsToWait() const;
    void takeReports(Post& post);
    void take(Post& post, const Report& report);
    void giveJob(Post& post);
    void takeEnd(Post& post);
    void stopLateWorkers();
    void waitForStandardError();
    void tellMessage(const Post& post, const std::string& text);
    void tellFailed(const std::string& text);
    void endOnSignal();
    [[noreturn]] void interrupt(int signalNumber);
    void countLastReports(Post& post);

    bool isAnyManned() const;
    const std::string& sourceOf(const Post& post) const;

    const Batch& m_batch;
    const HeldSignals& m_signals;
    Descriptor m_signalSource;
    std::vector<Post> m_posts;
    std::uint32_t m_nNextJob = 0;
    Tally m_tally;
    ProgressBar m_progress;
};

/** "9 of 12 sources done, 1 failed, 2 not done" */
std::string summary(const Tally& tally);
