#include "worker/RequestPool.h"

#include "base/Errors.h"
#include "worker/Request.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <unistd.h>
#include <utility>

namespace {

/** A longer line is no request. */
constexpr std::size_t LONGEST_LINE = std::size_t{256} * 1024 * 1024;

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

RequestPool::RequestPool(WorkerPool::Settings settings, bool isOrdered, WorkerPool::Work work)
    : m_isOrdered(isOrdered), m_limits(settings.limits),
      m_pool(std::move(settings), std::move(work),
             {[this](const WorkerPool::Job& request, Report report) {
                  answer(request.number, std::move(report.text));
              },
              [this](const WorkerPool::Job& request, const ChildProcess::End& end,
                     double milliseconds) { answerLost(request, end, milliseconds); },
              [](const WorkerPool::Job& /*request*/) { return true; }}) {}

void RequestPool::run() {
    m_pool.start(); // tells at once where it cannot start
    while (!m_isAtEnd || !m_pool.isDone()) {
        if (m_pool.wait(wantsInput() ? STDIN_FILENO : -1, std::chrono::hours(1))) {
            readInput();
        }
    }
    m_pool.finish();
}

/** While what was read is not given to a process, or not written, there is enough. */
bool RequestPool::wantsInput() const {
    return !m_isAtEnd && m_pool.hasRoom() && m_heldBytes <= MOST_HELD_BYTES &&
           m_held.size() <= MOST_HELD;
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
        m_pool.add({m_lines++, std::move(line)});
    }
}

void RequestPool::answerLost(const WorkerPool::Job& request, const ChildProcess::End& end,
                             double milliseconds) {
    answer(request.number,
           Answer(parseRequest(request.text).id)
               .error(end.wasLate ? "Limit" : "Crash", end.cause(m_limits), milliseconds));
}

void RequestPool::answer(std::uint64_t number, std::string text) {
    if (!m_isOrdered) {
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
