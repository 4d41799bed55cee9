#include "batch/Scheduler.h"

#include "base/Errors.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <iostream>
#include <poll.h>
#include <sstream>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

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
                     BatchReport& report, const BlockedSignals& signals, Work work)
    : m_options(options), m_jobs(jobs), m_report(report), m_signals(signals),
      m_work(std::move(work)), m_signalSource(openSignalSource(signals)),
      m_progress(!options.run.quiet) {
    m_tally.total = jobs.size();
    m_report.setWait([this](int descriptor) { return waitUntilWritable(descriptor); });
}

Tally Scheduler::run(std::size_t workers) {
    for (std::size_t i = 0; i < workers; ++i) {
        m_slots.push_back(std::make_unique<Slot>());
    }
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
    // The first one reports the modules; then the others may be needed.
    const std::size_t count = std::min(m_slots.size(), m_options.newer ? 1 : m_slots.size());
    std::for_each_n(m_slots.begin(), count, [this](const auto& slot) { start(*slot); });
    while (isAnyRunning()) {
        if (canPrintAtOnce()) {
            m_progress.draw(m_tally);
        }
        wait();
    }
    m_progress.clear();
}

void Scheduler::start(Slot& slot) {
    slot.hasStarted = false;
    slot.wasJustInTime = false;
    try {
        Connection connection = openConnection();
        slot.channel = std::move(connection.schedulersEnd);
        slot.process.start([&] {
            m_signals.unblock();
            return m_work(connection.workersEnd);
        });
    } catch (const std::system_error& error) {
        if (!isAnyRunning()) {
            throw NoWorker(oneLine(m_options.stylesheet) + ": " + error.what());
        }
    }
}

void Scheduler::wait() {
    std::vector<pollfd> sources{{m_signalSource.get(), POLLIN, 0}};
    for (const auto& slot : m_slots) {
        sources.push_back({slot->process.isRunning() ? slot->channel.descriptor() : -1, POLLIN, 0});
    }
    if (poll(sources.data(), sources.size(), millisecondsToWait()) > 0) {
        if (sources.front().revents != 0) {
            endOnSignal();
        }
        for (std::size_t i = 0; i < m_slots.size(); ++i) {
            if (sources[i + 1].revents != 0) {
                receiveFrom(*m_slots[i]);
            }
        }
    }
    for (const auto& slot : m_slots) {
        // What it has reported by now counts.
        if (slot->process.deadline() && *slot->process.deadline() <= Clock::now()) {
            receiveFrom(*slot);
        }
        slot->process.killIfLate();
    }
}

/** Until something is to be done that nobody reports; -1 where there is no such thing. */
int Scheduler::millisecondsToWait() const {
    Clock::duration left = m_progress.interval();
    for (const auto& slot : m_slots) {
        if (const auto& deadline = slot->process.deadline()) {
            left = std::min(left, std::max(*deadline - Clock::now(), Clock::duration::zero()));
        }
    }
    const bool forever = left == Clock::duration::max();
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left);
    constexpr std::chrono::milliseconds LONGEST = std::chrono::minutes(1);
    return forever ? -1 : static_cast<int>(std::min(milliseconds, LONGEST).count());
}

void Scheduler::receiveFrom(Slot& slot) {
    std::vector<Report> reports;
    const bool isThere = slot.channel.receiveAll(reports);
    for (const Report& report : reports) {
        take(slot, report);
    }
    if (!isThere) {
        takeEnd(slot);
    }
}

void Scheduler::take(Slot& slot, const Report& report) {
    switch (report.kind) {
    case Report::Kind::Started:
        slot.hasStarted = true;
        slot.failedStarts = 0;
        if (m_options.newer && !m_outdated) {
            leaveOutUnchanged(report.text);
        }
        break;
    case Report::Kind::Message:
        printMessage(slot, report.text);
        return;
    case Report::Kind::Done:
        ++m_tally.done;
        m_report.add(jobOf(slot), report.outcome);
        endJob(slot);
        break;
    case Report::Kind::Failed:
        fail(slot, report.text, report.outcome);
        endJob(slot);
        break;
    case Report::Kind::GivenUp:
        throw NoWorker(report.text);
    }
    giveJobs(slot);
}

void Scheduler::leaveOutUnchanged(const std::string& modules) {
    std::vector<std::string> uris;
    std::istringstream lines(modules);
    for (std::string uri; std::getline(lines, uri);) {
        uris.push_back(uri);
    }
    m_outdated = outdatedJobs(m_jobs, uris);
    m_tally.skipped = m_jobs.size() - m_outdated->size();
    auto next = m_outdated->begin();
    for (std::uint32_t i = 0; i < m_jobs.size(); ++i) {
        if (next != m_outdated->end() && *next == i) {
            ++next;
        } else {
            m_report.addSkipped(m_jobs[i]);
        }
    }
    const std::size_t needed = std::min(m_slots.size(), m_outdated->size());
    for (std::size_t i = 1; i < needed; ++i) {
        start(*m_slots[i]);
    }
}

void Scheduler::beginJob(Slot& slot) {
    slot.begin = Clock::now();
    slot.process.setTimeLimit(m_options.run.limits.maxSeconds);
}

void Scheduler::endJob(Slot& slot) {
    slot.jobs.pop_front();
    slot.wasJustInTime = slot.process.isLate();
    if (slot.jobs.empty()) {
        slot.process.setTimeLimit(0);
    } else {
        beginJob(slot);
    }
}

/** A few ahead, so that no worker has to wait; fewer near the end, so that all end together. */
void Scheduler::giveJobs(Slot& slot) {
    if (slot.process.isLate()) {
        return; // it had finished just in time, but is no more
    }
    constexpr std::size_t MOST_AHEAD = 8;
    const std::size_t ahead =
        std::clamp<std::size_t>(jobsLeft() / (2 * m_slots.size()), 1, MOST_AHEAD);
    while (slot.jobs.size() < ahead && jobsLeft() != 0) {
        slot.jobs.push_back(takeNextJob());
        slot.channel.send(slot.jobs.back());
        if (slot.jobs.size() == 1) {
            beginJob(slot);
        }
    }
    if (slot.jobs.empty()) {
        slot.channel.close();
    }
}

/** The worker is gone. Another takes its place while there is work. */
void Scheduler::takeEnd(Slot& slot) {
    constexpr int MOST_FAILED_STARTS = 3;
    const ChildProcess::End end = slot.process.wait();
    const std::string cause = end.cause(m_options.run.limits);
    if (!slot.hasStarted && ++slot.failedStarts == MOST_FAILED_STARTS) {
        if (!isAnyRunning()) {
            throw NoWorker(oneLine(m_options.stylesheet) + ": " + cause);
        }
        return; // the others go on
    }
    if (!slot.jobs.empty() && !slot.wasJustInTime) {
        const std::chrono::duration<double, std::milli> time = Clock::now() - slot.begin;
        fail(slot, oneLine(sourceOf(slot)) + ": " + cause,
             lostOutcome(time.count(), end.wasLate ? "Limit" : "Crash", cause));
        slot.jobs.pop_front();
    }
    m_returned.insert(m_returned.end(), slot.jobs.begin(), slot.jobs.end());
    slot.jobs.clear();
    if (jobsLeft() != 0) {
        start(slot);
    }
}

/**
 * Signals are blocked: nobody could end a process that is stuck in writing to a pipe.
 *
 * @return false where it is not to be written
 */
bool Scheduler::waitUntilWritable(int descriptor) {
    const Clock::time_point begin = Clock::now();
    pollfd either[] = {{m_signalSource.get(), POLLIN, 0}, {descriptor, POLLOUT, 0}};
    while (either[1].revents == 0) {
        poll(either, std::size(either), m_isEnding ? 0 : -1);
        if (m_isEnding) {
            return either[1].revents != 0;
        }
        endOnSignal();
    }
    // Meanwhile no worker could report: that is not its fault.
    for (const auto& slot : m_slots) {
        slot->process.postponeDeadline(Clock::now() - begin);
    }
    return true;
}

/** In pieces for which a pipe has room when it has room at all. */
void Scheduler::print(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); i += PIPE_BUF) {
        waitUntilWritable(STDERR_FILENO);
        std::cerr << text.substr(i, PIPE_BUF);
    }
}

void Scheduler::printMessage(const Slot& slot, const std::string& text) {
    m_progress.clear();
    print(slot.jobs.empty() ? text + "\n" : namedLines(sourceOf(slot), text));
}

void Scheduler::fail(const Slot& slot, const std::string& text, const std::string& outcome) {
    ++m_tally.failed;
    m_report.add(jobOf(slot), outcome);
    waitUntilWritable(STDERR_FILENO);
    m_progress.clear();
    print(errorLine(text));
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
    for (const auto& slot : m_slots) {
        if (slot->process.isRunning()) {
            slot->process.send(SIGKILL);
            slot->process.wait();
            countLastReports(*slot);
        }
    }
    try {
        m_report.commit();
    } catch (const vexa::Error&) {
        // The signal ends it anyway.
    }
    if (canPrint) {
        m_progress.clear();
        printError("interrupted: " + summary(m_tally));
    }
    m_signals.endBy(signalNumber);
}

/** What was in its place already, but not counted. */
void Scheduler::countLastReports(Slot& slot) {
    std::vector<Report> reports;
    slot.channel.receiveAll(reports);
    for (const Report& report : reports) {
        const bool isDone = report.kind == Report::Kind::Done;
        if (isDone || report.kind == Report::Kind::Failed) {
            ++(isDone ? m_tally.done : m_tally.failed);
            m_report.add(jobOf(slot), report.outcome);
            slot.jobs.pop_front();
        }
    }
}

bool Scheduler::isAnyRunning() const {
    return std::any_of(m_slots.begin(), m_slots.end(),
                       [](const auto& slot) { return slot->process.isRunning(); });
}

std::size_t Scheduler::jobsLeft() const {
    return (m_outdated ? m_outdated->size() : m_jobs.size()) - m_nNextJob + m_returned.size();
}

std::uint32_t Scheduler::takeNextJob() {
    if (m_returned.empty()) {
        const std::uint32_t next = m_nNextJob++;
        return m_outdated ? (*m_outdated)[next] : next;
    }
    const std::uint32_t job = m_returned.front();
    m_returned.pop_front();
    return job;
}

const BatchJob& Scheduler::jobOf(const Slot& slot) const {
    return m_jobs[slot.jobs.front()];
}

const std::string& Scheduler::sourceOf(const Slot& slot) const {
    return jobOf(slot).source;
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
