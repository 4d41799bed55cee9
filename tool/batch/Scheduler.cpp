#include "batch/Scheduler.h"

#include "base/Errors.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <iostream>
#include <numeric>
#include <poll.h>
#include <sstream>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {

/** Not where the reader of a pipe waits, or a terminal is stopped. */
bool canPrintAtOnce() {
    pollfd standardError{STDERR_FILENO, POLLOUT, 0};
    return poll(&standardError, 1, 0) == 1;
}

/** To be polled for signals. */
Descriptor openSignalSource(const BlockedSignals& signals) {
    Descriptor source(signalfd(-1, &signals.set(), SFD_NONBLOCK | SFD_CLOEXEC));
    if (source.get() < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    }
    return source;
}

} // namespace

Scheduler::Scheduler(const BatchOptions& options, const std::vector<BatchJob>& jobs,
                     BatchReport& report, const BlockedSignals& signals, std::size_t workers,
                     WorkerPool::Work work)
    : m_options(options), m_jobs(jobs), m_report(report), m_signals(signals), m_workers(workers),
      m_signalSource(openSignalSource(signals)), m_isPlanned(!options.newer),
      m_progress(!options.run.quiet),
      m_pool({oneLine(options.stylesheet), options.run.limits, workers, 1, true}, std::move(work),
             {[this](const WorkerPool::Job& job, const Report& about) { take(jobOf(job), about); },
              [this](const WorkerPool::Job& job, const ChildProcess::End& end,
                     double milliseconds) { takeLoss(jobOf(job), end, milliseconds); },
              [](const WorkerPool::Job& /*job*/) { return true; }, [] {},
              [this](const Report& other) { takeOther(other); }}) {
    m_tally.total = jobs.size();
    m_report.setWait([this](int descriptor) { return waitUntilWritable(descriptor); });
}

Tally Scheduler::run() {
    try {
        runAll();
    } catch (const std::exception& error) {
        m_progress.clear();
        if (m_tally.finished() == 0) {
            throw;
        }
        print(errorLine(error.what()));
    }
    return m_tally;
}

void Scheduler::runAll() {
    if (m_jobs.empty()) {
        return;
    }
    if (m_isPlanned) {
        m_todo.resize(m_jobs.size());
        std::iota(m_todo.begin(), m_todo.end(), 0);
    }
    // The first one reports the modules; then the others may be needed.
    startWorkers(m_isPlanned ? m_workers : 1);
    while (jobsLeft() != 0 || !m_pool.isDone()) {
        if (m_progress.isShown() && canPrintAtOnce()) {
            m_progress.draw(m_tally);
        }
        giveJobs();
        if (m_pool.wait(m_signalSource.get(), m_progress.interval())) {
            endOnSignal();
        }
    }
    m_pool.finish();
    endOnSignal();
    m_progress.clear();
}

void Scheduler::startWorkers(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        m_pool.start();
    }
}

/** A few ahead, so that no worker has to wait; fewer near the end, so that all end together. */
void Scheduler::giveJobs() {
    constexpr std::size_t MOST_AHEAD = 8;
    while (jobsLeft() != 0 && m_pool.hasRoom()) {
        m_pool.setJobsAhead(std::clamp<std::size_t>(jobsLeft() / (2 * m_workers), 1, MOST_AHEAD));
        const std::uint32_t job = m_todo[m_nGiven++];
        m_pool.add({job, std::to_string(job)});
    }
}

void Scheduler::take(const BatchJob& job, const Report& report) {
    if (report.kind == Report::Kind::Message) {
        printMessage(namedLines(job.source, report.text));
    } else if (report.kind == Report::Kind::Failed) {
        fail(job, report.text, report.outcome);
    } else {
        ++m_tally.done;
        m_report.add(job, report.outcome);
    }
}

void Scheduler::takeOther(const Report& report) {
    if (report.kind == Report::Kind::Message) {
        printMessage(report.text + "\n");
    } else if (!m_isPlanned) {
        leaveOutUnchanged(report.text);
    }
}

void Scheduler::takeLoss(const BatchJob& job, const ChildProcess::End& end, double milliseconds) {
    endOnSignal(); // which may have ended the worker, too
    const std::string cause = end.cause(m_options.run.limits);
    fail(job, oneLine(job.source) + ": " + cause,
         lostOutcome(milliseconds, end.wasLate ? "Limit" : "Crash", cause));
}

void Scheduler::leaveOutUnchanged(const std::string& modules) {
    std::vector<std::string> uris;
    std::istringstream lines(modules);
    for (std::string uri; std::getline(lines, uri);) {
        uris.push_back(uri);
    }
    m_todo = outdatedJobs(m_jobs, uris);
    m_isPlanned = true;
    m_tally.skipped = m_jobs.size() - m_todo.size();
    auto next = m_todo.begin();
    for (std::uint32_t i = 0; i < m_jobs.size(); ++i) {
        if (next != m_todo.end() && *next == i) {
            ++next;
        } else {
            m_report.addSkipped(m_jobs[i]);
        }
    }
    startWorkers(std::max<std::size_t>(std::min(m_workers, m_todo.size()), 1) - 1);
}

/**
 * Signals are blocked: nobody could end a process that is stuck in writing to a pipe.
 *
 * @return false where it is not to be written
 */
bool Scheduler::waitUntilWritable(int descriptor) {
    pollfd either[] = {{m_signalSource.get(), POLLIN, 0}, {descriptor, POLLOUT, 0}};
    while (either[1].revents == 0) {
        poll(either, std::size(either), m_isEnding ? 0 : -1);
        if (m_isEnding) {
            return either[1].revents != 0;
        }
        endOnSignal();
    }
    return true;
}

/** In pieces for which a pipe has room when it has room at all. */
void Scheduler::print(const std::string& text) {
    for (std::size_t i = 0; i < text.size() && !m_isEnding; i += PIPE_BUF) {
        waitUntilWritable(STDERR_FILENO);
        std::cerr << text.substr(i, PIPE_BUF);
    }
}

void Scheduler::printMessage(const std::string& text) {
    if (!m_isEnding) {
        m_progress.clear();
        print(text);
    }
}

void Scheduler::fail(const BatchJob& job, const std::string& text, const std::string& outcome) {
    ++m_tally.failed;
    m_report.add(job, outcome);
    if (!m_isEnding) {
        waitUntilWritable(STDERR_FILENO);
        m_progress.clear();
        print(errorLine(text));
    }
}

void Scheduler::endOnSignal() {
    signalfd_siginfo signal{};
    while (read(m_signalSource.get(), &signal, sizeof signal) == sizeof signal) {
        const int signalNumber = static_cast<int>(signal.ssi_signo);
        if (isFromOutside(signalNumber)) {
            interrupt(signalNumber);
        }
    }
}

void Scheduler::interrupt(int signalNumber) {
    m_isEnding = true;
    const bool canPrint = canPrintAtOnce();
    try {
        m_pool.kill(); // what is in its place already counts
        m_report.commit();
    } catch (const std::exception&) {
        // The signal ends it anyway.
    }
    if (canPrint) {
        m_progress.clear();
        printError("interrupted: " + summary(m_tally));
    }
    m_signals.endBy(signalNumber);
}

std::string summary(const Tally& tally) {
    const std::size_t left = tally.total - tally.finished();
    std::string text = std::to_string(tally.done) + " of " + std::to_string(tally.total) +
                       (tally.total == 1 ? " source done" : " sources done");
    if (tally.skipped != 0) {
        text += ", " + std::to_string(tally.skipped) + " unchanged";
    }
    if (tally.failed != 0) {
        text += ", " + std::to_string(tally.failed) + " failed";
    }
    return left == 0 ? text : text + ", " + std::to_string(left) + " not done";
}
