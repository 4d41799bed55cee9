#include "process/WorkerPool.h"

#include "base/Errors.h"

#include <algorithm>
#include <csignal>
#include <poll.h>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace {

/**
 * So many bytes fit into a connection whether the process reads or not: nobody may wait in writing
 * for somebody who waits in writing.
 */
constexpr std::size_t BYTES_AHEAD = std::size_t{32} * 1024;

} // namespace

WorkerPool::WorkerPool(Settings settings, Work work, Events events)
    : m_settings(std::move(settings)), m_work(std::move(work)), m_events(std::move(events)) {}

void WorkerPool::start() {
    m_slots.push_back(std::make_unique<Slot>());
    start(*m_slots.back());
}

void WorkerPool::add(Job job) {
    m_waiting.push_back(std::move(job));
    giveJobs();
}

bool WorkerPool::isDone() const {
    return m_hasStarted && m_waiting.empty() &&
           std::all_of(m_slots.begin(), m_slots.end(),
                       [](const auto& slot) { return slot->jobs.empty(); });
}

void WorkerPool::giveJobs() {
    while (!m_waiting.empty()) {
        Slot* const slot = slotFor(m_waiting.front());
        if (!slot) {
            return;
        }
        slot->jobs.push_back(std::move(m_waiting.front()));
        m_waiting.pop_front();
        slot->channel.send(slot->jobs.back().text);
        if (slot->jobs.size() == 1) {
            beginJob(*slot);
        }
    }
}

std::size_t WorkerPool::bytesIn(const Slot& slot) {
    std::size_t bytes = 0;
    for (const Job& job : slot.jobs) {
        bytes += job.text.size();
    }
    return bytes;
}

/**
 * A process that can take it; nothing where they have enough to do. Jobs that come back do not
 * stand behind later ones, as these may have to wait for them.
 */
WorkerPool::Slot* WorkerPool::slotFor(const Job& job) {
    Slot* least = nullptr;
    for (const auto& slot : m_slots) {
        const bool isInOrder = slot->jobs.empty() || slot->jobs.back().number < job.number;
        const auto load = [](const Slot& of) { return std::pair(of.jobs.size(), !of.hasStarted); };
        if (slot->process.isRunning() && isInOrder && (!least || load(*slot) < load(*least))) {
            least = slot.get();
        }
    }
    if ((!least || !least->jobs.empty()) && m_slots.size() < m_settings.workers) {
        start();
        return nullptr; // when it has started
    }
    const bool hasRoom =
        least && (least->jobs.empty() || (least->jobs.size() < m_settings.jobsAhead &&
                                          bytesIn(*least) + job.text.size() <= BYTES_AHEAD));
    return hasRoom && least->hasStarted && !least->process.isLate() ? least : nullptr;
}

void WorkerPool::start(Slot& slot) {
    slot.hasStarted = false;
    slot.wasJustInTime = false;
    try {
        Connection connection = openConnection();
        slot.channel = std::move(connection.schedulersEnd);
        slot.process.start([&] { return m_work(connection.workersEnd, !m_hasStarted); });
    } catch (const std::system_error& error) {
        if (!m_settings.canShrink) {
            throw;
        }
        if (!canDoWithout()) {
            throw Failure(m_settings.name, error.what());
        }
    }
}

/** Whether a process that cannot start may be missing. */
bool WorkerPool::canDoWithout() const {
    return m_settings.canShrink &&
           std::any_of(m_slots.begin(), m_slots.end(),
                       [](const auto& slot) { return slot->process.isRunning(); });
}

void WorkerPool::beginJob(Slot& slot) {
    slot.begin = Clock::now();
    slot.process.setTimeLimit(m_settings.limits.maxSeconds);
}

void WorkerPool::endJob(Slot& slot) {
    slot.jobs.pop_front();
    slot.wasJustInTime = slot.process.isLate();
    if (slot.jobs.empty()) {
        slot.process.setTimeLimit(0);
    } else {
        beginJob(slot);
    }
}

bool WorkerPool::canReceive(const Slot& slot) const {
    return slot.process.isRunning() && (slot.jobs.empty() || m_events.canReport(slot.jobs.front()));
}

bool WorkerPool::wait(int source, Clock::duration longest) {
    std::vector<pollfd> sources{{source, POLLIN, 0}};
    for (const auto& slot : m_slots) {
        // Only here it is heard: for what it takes elsewhere it cannot help.
        slot->process.postponeDeadline(Clock::now() - m_lastHeard);
        sources.push_back({canReceive(*slot) ? slot->channel.descriptor() : -1, POLLIN, 0});
    }
    const Clock::time_point begin = Clock::now();
    if (poll(sources.data(), sources.size(), 0) == 0) {
        m_events.idle();
        poll(sources.data(), sources.size(), millisecondsToWait(longest));
    }
    m_lastHeard = Clock::now();
    for (std::size_t i = 1; i < sources.size(); ++i) {
        Slot& slot = *m_slots[i - 1];
        if (sources[i].revents != 0) {
            receiveFrom(slot);
        } else if (sources[i].fd < 0) {
            slot.process.postponeDeadline(m_lastHeard - begin);
        } else {
            killIfLate(slot);
        }
    }
    giveJobs();
    return sources.front().revents != 0;
}

int WorkerPool::millisecondsToWait(Clock::duration longest) const {
    constexpr std::chrono::milliseconds LONGEST = std::chrono::minutes(1);
    Clock::duration left = std::min<Clock::duration>(LONGEST, longest);
    for (const auto& slot : m_slots) {
        if (const auto& deadline = slot->process.deadline()) {
            left = std::clamp(*deadline - Clock::now(), Clock::duration::zero(), left);
        }
    }
    return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count());
}

/** As of when it was heard. What it has reported by now counts. */
void WorkerPool::killIfLate(Slot& slot) {
    if (slot.process.deadline() && *slot.process.deadline() <= m_lastHeard) {
        receiveFrom(slot);
        slot.process.killIfLate();
    }
}

void WorkerPool::receiveFrom(Slot& slot) {
    if (!takeReports(slot)) {
        takeEnd(slot);
    }
}

/** kill() may come in between. @return false when the process is gone */
bool WorkerPool::takeReports(Slot& slot) {
    const bool isThere = slot.channel.receiveAll(slot.reports);
    while (!slot.reports.empty()) {
        Report report = std::move(slot.reports.front());
        slot.reports.pop_front();
        take(slot, std::move(report));
    }
    return isThere;
}

void WorkerPool::take(Slot& slot, Report report) {
    switch (report.kind) {
    case Report::Kind::GivenUp:
        throw std::runtime_error(report.text);
    case Report::Kind::Started:
        m_hasStarted = true;
        slot.hasStarted = true;
        slot.failedStarts = 0;
        m_events.other(report);
        break;
    case Report::Kind::Message:
        if (slot.jobs.empty()) {
            m_events.other(report);
        } else {
            m_events.report(slot.jobs.front(), std::move(report));
        }
        break;
    default:
        if (!slot.jobs.empty()) {
            const Job job = std::move(slot.jobs.front());
            endJob(slot);
            m_events.report(job, std::move(report));
        }
    }
}

/** The process is gone, and with it the current job. Another takes its place. */
void WorkerPool::takeEnd(Slot& slot) {
    // Where one has started, the others may only have bad luck.
    const int mostFailedStarts = m_hasStarted ? 20 : 3;
    const ChildProcess::End end = slot.process.wait();
    if (!slot.hasStarted && ++slot.failedStarts == mostFailedStarts) {
        if (!canDoWithout()) {
            throw Failure(m_settings.name, end.cause(m_settings.limits));
        }
        return;
    }
    if (!slot.jobs.empty() && !slot.wasJustInTime) {
        const std::chrono::duration<double, std::milli> time = Clock::now() - slot.begin;
        m_events.lost(slot.jobs.front(), end, time.count());
        slot.jobs.pop_front();
    }
    for (; !slot.jobs.empty(); slot.jobs.pop_front()) {
        giveBack(std::move(slot.jobs.front()));
    }
    start(slot);
}

void WorkerPool::giveBack(Job job) {
    const auto place = std::find_if(m_waiting.begin(), m_waiting.end(), [&](const Job& waiting) {
        return waiting.number > job.number;
    });
    m_waiting.insert(place, std::move(job));
}

void WorkerPool::finish() {
    for (const auto& slot : m_slots) {
        slot->channel.close();
        if (!slot->hasStarted) {
            slot->process.send(SIGKILL); // it has nothing to do
        }
        if (slot->process.isRunning()) {
            slot->process.wait();
        }
    }
}

void WorkerPool::kill() {
    for (const auto& slot : m_slots) {
        if (slot->process.isRunning()) {
            slot->process.send(SIGKILL);
            slot->process.wait();
            takeReports(*slot);
        }
    }
}
