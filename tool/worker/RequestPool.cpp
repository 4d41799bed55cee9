#include "worker/RequestPool.h"

#include "base/Errors.h"
#include "worker/Request.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace {

/** A longer line is no request. */
constexpr std::size_t LONGEST_LINE = std::size_t{256} * 1024 * 1024;

/** One that a process works on, and one that waits, so that the process need not. */
constexpr std::size_t LINES_PER_PROCESS = 2;
/**
 * So many bytes fit into a connection whether the process reads or not: nobody may wait in writing
 * for somebody who waits in writing.
 */
constexpr std::size_t BYTES_AHEAD = std::size_t{32} * 1024;

/** Of answers that wait for those before them. */
constexpr std::size_t MOST_HELD_BYTES = std::size_t{16} * 1024 * 1024;
constexpr std::size_t MOST_HELD = 10'000;

void writeAll(const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = ::write(STDOUT_FILENO, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) {
            throw Failure("standard output", systemMessage(errno));
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

bool isBlank(const std::string& line) {
    return line.find_first_not_of(" \t\r") == std::string::npos;
}

} // namespace

RequestPool::RequestPool(Settings settings, Work work)
    : m_settings(std::move(settings)), m_work(std::move(work)) {}

void RequestPool::run() {
    m_slots.push_back(std::make_unique<Slot>());
    start(*m_slots.front()); // tells at once where it cannot start
    while (!isDone()) {
        wait();
        giveLines();
    }
    for (const auto& slot : m_slots) {
        slot->channel.close();
        if (slot->process.isRunning()) {
            slot->process.wait();
        }
    }
}

bool RequestPool::isDone() const {
    return m_isAtEnd && m_answered == m_lines && m_hasStarted;
}

/** While what was read is not given to a process, there is enough. */
bool RequestPool::wantsInput() const {
    return !m_isAtEnd && m_waiting.empty();
}

void RequestPool::readInput() {
    char bytes[64 * 1024];
    const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (count < 0 && errno == EINTR) {
        return;
    }
    if (count < 0) {
        throw Failure("standard input", systemMessage(errno));
    }
    const char* begin = bytes;
    const char* const end = bytes + count;
    while (begin != end) {
        const char* const newline = std::find(begin, end, '\n');
        if (!m_isSkipping) {
            m_begun.append(begin, newline);
        }
        if (m_begun.size() > LONGEST_LINE) {
            m_isSkipping = true;
            m_begun = std::string();
            answer(m_lines++, Answer("null").error("Usage", "the line is too long", 0));
        }
        if (newline != end && !std::exchange(m_isSkipping, false)) {
            takeLine(std::exchange(m_begun, std::string()));
        }
        begin = newline == end ? end : newline + 1;
    }
    m_isAtEnd = count == 0;
    if (m_isAtEnd) {
        takeLine(std::exchange(m_begun, std::string()));
    }
}

void RequestPool::takeLine(std::string line) {
    if (!isBlank(line)) {
        m_waiting.push_back({m_lines++, std::move(line)});
    }
}

void RequestPool::giveLines() {
    while (!m_waiting.empty()) {
        Slot* const slot = slotFor(m_waiting.front());
        if (!slot) {
            return;
        }
        slot->lines.push_back(std::move(m_waiting.front()));
        m_waiting.pop_front();
        slot->channel.send(slot->lines.back().text);
        if (slot->lines.size() == 1) {
            beginLine(*slot);
        }
    }
}

std::size_t RequestPool::bytesIn(const Slot& slot) {
    std::size_t bytes = 0;
    for (const Line& line : slot.lines) {
        bytes += line.text.size();
    }
    return bytes;
}

/** A process that can take it; nothing where they have enough to do. */
RequestPool::Slot* RequestPool::slotFor(const Line& line) {
    if (m_heldBytes > MOST_HELD_BYTES || m_held.size() > MOST_HELD) {
        return nullptr;
    }
    const auto least =
        std::min_element(m_slots.begin(), m_slots.end(), [](const auto& one, const auto& other) {
            return one->lines.size() < other->lines.size();
        });
    if (!(*least)->lines.empty() && m_slots.size() < m_settings.jobs) {
        m_slots.push_back(std::make_unique<Slot>());
        start(*m_slots.back());
        return nullptr; // when it has started
    }
    Slot& slot = **least;
    const bool hasRoom = slot.lines.empty() || (slot.lines.size() < LINES_PER_PROCESS &&
                                                bytesIn(slot) + line.text.size() <= BYTES_AHEAD);
    return slot.hasStarted && !slot.process.isLate() && hasRoom ? &slot : nullptr;
}

void RequestPool::start(Slot& slot) {
    slot.hasStarted = false;
    Connection connection = openConnection();
    slot.channel = std::move(connection.schedulersEnd);
    slot.process.start([&] { return m_work(connection.workersEnd, !m_hasStarted); });
}

void RequestPool::beginLine(Slot& slot) {
    slot.begin = Clock::now();
    slot.process.setTimeLimit(m_settings.limits.maxSeconds);
}

void RequestPool::endLine(Slot& slot) {
    slot.lines.pop_front();
    if (slot.lines.empty()) {
        slot.process.setTimeLimit(0);
    } else {
        beginLine(slot);
    }
}

void RequestPool::wait() {
    std::vector<pollfd> sources{{wantsInput() ? STDIN_FILENO : -1, POLLIN, 0}};
    for (const auto& slot : m_slots) {
        // Only here it is heard: for what it takes elsewhere it cannot help.
        slot->process.postponeDeadline(Clock::now() - m_lastHeard);
        sources.push_back({slot->process.isRunning() ? slot->channel.descriptor() : -1, POLLIN, 0});
    }
    poll(sources.data(), sources.size(), millisecondsToWait());
    m_lastHeard = Clock::now();
    for (std::size_t i = 1; i < sources.size(); ++i) {
        Slot& slot = *m_slots[i - 1];
        if (sources[i].revents != 0) {
            receiveFrom(slot);
        }
        slot.process.killIfLate();
    }
    if (sources.front().revents != 0) {
        readInput();
    }
}

int RequestPool::millisecondsToWait() const {
    Clock::duration left = std::chrono::minutes(1);
    for (const auto& slot : m_slots) {
        if (const auto& deadline = slot->process.deadline()) {
            left = std::clamp(*deadline - Clock::now(), Clock::duration::zero(), left);
        }
    }
    return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count());
}

void RequestPool::receiveFrom(Slot& slot) {
    std::vector<Report> reports;
    const bool isThere = slot.channel.receiveAll(reports);
    for (Report& report : reports) {
        take(slot, std::move(report));
    }
    if (!isThere) {
        takeEnd(slot);
    }
}

void RequestPool::take(Slot& slot, Report report) {
    if (report.kind == Report::Kind::GivenUp) {
        throw std::runtime_error(report.text);
    }
    if (report.kind == Report::Kind::Started) {
        m_hasStarted = true;
        slot.hasStarted = true;
        slot.failedStarts = 0;
        return;
    }
    answer(slot.lines.front().number, std::move(report.text));
    endLine(slot);
}

/** The process is gone, and with it the current request. Another takes its place. */
void RequestPool::takeEnd(Slot& slot) {
    constexpr int MOST_FAILED_STARTS = 3;
    const ChildProcess::End end = slot.process.wait();
    const std::string cause = end.cause(m_settings.limits);
    if (!slot.hasStarted && ++slot.failedStarts == MOST_FAILED_STARTS) {
        throw Failure(m_settings.name, cause);
    }
    if (!slot.lines.empty()) {
        const Line& line = slot.lines.front();
        const std::chrono::duration<double, std::milli> time = Clock::now() - slot.begin;
        answer(line.number, Answer(parseRequest(line.text).id)
                                .error(end.wasLate ? "Limit" : "Crash", cause, time.count()));
        slot.lines.pop_front();
    }
    for (; !slot.lines.empty(); slot.lines.pop_back()) {
        m_waiting.push_front(std::move(slot.lines.back()));
    }
    start(slot);
}

void RequestPool::answer(std::uint64_t number, std::string text) {
    if (!m_settings.isOrdered) {
        ++m_answered;
        writeAll(text);
        return;
    }
    m_heldBytes += text.size();
    m_held.emplace(number, std::move(text));
    while (!m_held.empty() && m_held.begin()->first == m_answered) {
        m_heldBytes -= m_held.begin()->second.size();
        writeAll(m_held.begin()->second);
        m_held.erase(m_held.begin());
        ++m_answered;
    }
}
