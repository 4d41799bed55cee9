#include "Foreman.h"

#include "../ChildProcess.h"
#include "../Failure.h"
#include "../UnfinishedFile.h"

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <poll.h>
#include <sstream>
#include <sys/signalfd.h>
#include <system_error>

namespace {

/** Not where the reader of a pipe waits, or a terminal is stopped. */
bool canTellAtOnce() {
    pollfd standardError{STDERR_FILENO, POLLOUT, 0};
    return poll(&standardError, 1, 0) == 1;
}

/** To be polled for signals. */
Descriptor openSignalSource(const HeldSignals& signals) {
    Descriptor source(signalfd(-1, &signals.set(), SFD_NONBLOCK | SFD_CLOEXEC));
    if (source.get() < 0) {
        throw std::system_error(errno, std::generic_category(), "signals");
    }
    return source;
}

} // namespace

Foreman::Foreman(const Batch& batch, const HeldSignals& signals)
    : m_batch(batch), m_signals(signals), m_signalSource(openSignalSource(signals)),
      m_progress(!batch.options.common.quiet) {
    m_tally.total = batch.jobs.size();
}

Tally Foreman::run(std::vector<std::unique_ptr<Worker>> workers) {
    for (auto& worker : workers) {
        Post& post = m_posts.emplace_back();
        post.worker = std::move(worker);
    }
    try {
        haveAllDone();
    } catch (const std::exception& failure) {
        m_progress.clear();
        if (m_tally.finished() == 0) {
            throw;
        }
        waitForStandardError();
        tellFailure(failure.what());
    }
    return m_tally;
}

void Foreman::haveAllDone() {
    std::for_each(m_posts.begin(), m_posts.end(), [this](Post& post) { man(post); });
    while (isAnyManned()) {
        if (canTellAtOnce()) {
            m_progress.draw(m_tally);
        }
        wait();
    }
    m_progress.clear();
}

void Foreman::man(Post& post) {
    Connection connection = openConnection();
    post.channel = std::move(connection.foremansEnd);
    post.wasReady = false;
    post.isLate = false;
    try {
        post.worker->start(std::move(connection.workersEnd));
        post.isManned = true;
    } catch (const Failure&) {
        if (!isAnyManned()) {
            throw;
        }
    }
}

void Foreman::wait() {
    std::vector<pollfd> sources{{m_signalSource.get(), POLLIN, 0}};
    for (const Post& post : m_posts) {
        sources.push_back({post.isManned ? post.channel.descriptor() : -1, POLLIN, 0});
    }
    if (poll(sources.data(), sources.size(), millisecondsToWait()) > 0) {
        if (sources.front().revents != 0) {
            endOnSignal();
        }
        for (std::size_t i = 0; i < m_posts.size(); ++i) {
            if (sources[i + 1].revents != 0) {
                takeReports(m_posts[i]);
            }
        }
    }
    stopLateWorkers();
}

/** Until something is to be done that nobody reports; -1 where there is no such thing. */
int Foreman::millisecondsToWait() const {
    Clock::duration left = m_progress.interval();
    for (const Post& post : m_posts) {
        if (post.deadline) {
            left = std::min(left, std::max(*post.deadline - Clock::now(), Clock::duration::zero()));
        }
    }
    const bool forever = left == Clock::duration::max();
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left);
    constexpr std::chrono::milliseconds LONGEST = std::chrono::minutes(1);
    return forever ? -1 : static_cast<int>(std::min(milliseconds, LONGEST).count());
}

void Foreman::takeReports(Post& post) {
    std::vector<Report> reports;
    const bool isThere = post.channel.receive(reports);
    for (const Report& report : reports) {
        take(post, report);
    }
    if (!isThere) {
        takeEnd(post);
    }
}

void Foreman::take(Post& post, const Report& report) {
    switch (report.kind) {
    case Report::Kind::Ready:
        giveJob(post);
        break;
    case Report::Kind::Message:
        tellMessage(post, report.text);
        break;
    case Report::Kind::Done:
        ++m_tally.done;
        post.endJob();
        break;
    case Report::Kind::Failed:
        tellFailed(report.text);
        post.endJob();
        break;
    case Report::Kind::GivenUp:
        throw std::runtime_error(report.text);
    }
}

void Foreman::giveJob(Post& post) {
    post.wasReady = true;
    if (post.isLate) {
        return; // it had finished just in time, but is no more
    }
    if (m_nNextJob == m_batch.jobs.size()) {
        post.channel.hangUp();
        return;
    }
    post.job = m_nNextJob++;
    const unsigned maxSeconds = m_batch.options.common.limits.maxSeconds;
    if (maxSeconds != 0) {
        post.deadline = Clock::now() + std::chrono::seconds(maxSeconds);
    }
    post.channel.handOver(*post.job);
}

/** The worker is gone. Another takes its place while there is work. */
void Foreman::takeEnd(Post& post) {
    std::string reason = post.worker->end();
    if (post.isLate) {
        reason = lackOfTime(m_batch.options.common.limits);
    } else if (reason.empty()) {
        reason = "the engine gave up without a reason";
    }
    post.isManned = false;
    if (!post.wasReady) {
        throw Failure(m_batch.options.stylesheet, reason);
    }
    if (post.job) {
        tellFailed(sourceOf(post) + ": " + reason);
        post.endJob();
    }
    if (m_nNextJob < m_batch.jobs.size()) {
        man(post);
    }
}

void Foreman::stopLateWorkers() {
    for (Post& post : m_posts) {
        if (post.deadline && *post.deadline <= Clock::now()) {
            post.isLate = true;
            post.deadline.reset();
            post.worker->stop();
        }
    }
}

/** Signals are held: nobody could end a process that is stuck in writing to a reader who waits. */
void Foreman::waitForStandardError() {
    pollfd either[] = {{m_signalSource.get(), POLLIN, 0}, {STDERR_FILENO, POLLOUT, 0}};
    while (either[1].revents == 0) {
        poll(either, std::size(either), -1);
        endOnSignal();
    }
}

void Foreman::tellMessage(const Post& post, const std::string& text) {
    waitForStandardError();
    m_progress.clear();
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) {
            waitForStandardError();
            std::cerr << (post.job ? printable(sourceOf(post)) + ": " : "") + line + "\n";
        }
    }
    std::cerr.flush();
}

void Foreman::tellFailed(const std::string& text) {
    ++m_tally.failed;
    waitForStandardError();
    m_progress.clear();
    tellFailure(text);
}

void Foreman::endOnSignal() {
    signalfd_siginfo signal{};
    while (read(m_signalSource.get(), &signal, sizeof signal) == sizeof signal) {
        const int signalNumber = static_cast<int>(signal.ssi_signo);
        if (isOuterSignal(signalNumber)) {
            interrupt(signalNumber);
        }
    }
}

void Foreman::interrupt(int signalNumber) {
    const bool canTell = canTellAtOnce();
    // Kept to the end, so that no thread finishes anything, or makes another file.
    const auto lock = lockUnfinishedFiles();
    for (Post& post : m_posts) {
        post.worker->stop();
        countLastReports(post);
    }
    if (canTell) {
        m_progress.clear();
        tellFailure("interrupted: " + summary(m_tally));
    }
    removeUnfinishedFiles(lock); // last, as nothing can be opened after it
    m_signals.endBy(signalNumber);
}

/** What was in its place already, but not taken note of. */
void Foreman::countLastReports(Post& post) {
    std::vector<Report> reports;
    if (post.isManned) {
        post.channel.receive(reports);
    }
    for (const Report& report : reports) {
        m_tally.done += report.kind == Report::Kind::Done ? 1 : 0;
        m_tally.failed += report.kind == Report::Kind::Failed ? 1 : 0;
    }
}

bool Foreman::isAnyManned() const {
    return std::any_of(m_posts.begin(), m_posts.end(),
                       [](const Post& post) { return post.isManned; });
}

const std::string& Foreman::sourceOf(const Post& post) const {
    return m_batch.jobs[*post.job].source;
}

std::string summary(const Tally& tally) {
    const std::size_t left = tally.total - tally.finished();
    std::string text = std::to_string(tally.done) + " of " + std::to_string(tally.total) +
                       (tally.total == 1 ? " source done" : " sources done");
    if (tally.failed != 0) {
        text += ", " + std::to_string(tally.failed) + " failed";
    }
    return left == 0 ? text : text + ", " + std::to_string(left) + " not done";
}
