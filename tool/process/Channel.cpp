#include "process/Channel.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <system_error>

namespace {

/** Stands before the texts of a report. */
struct Head {
    Report::Kind kind;
    std::uint32_t length;
    std::uint32_t outcomeLength;
};

/** What cannot be sent is dropped: the other process is gone, and the next receipt shows it. */
void sendAll(int socket, const char* bytes, std::size_t length) {
    while (length > 0) {
        const ssize_t sent = send(socket, bytes, length, MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR) {
            return;
        }
        bytes += sent > 0 ? sent : 0;
        length -= sent > 0 ? static_cast<std::size_t>(sent) : 0;
    }
}

/** Takes the complete reports from the bytes received. */
void takeReports(std::string& received, std::deque<Report>& reports) {
    Head head{};
    std::size_t taken = 0;
    while (received.size() - taken >= sizeof head) {
        std::memcpy(&head, received.data() + taken, sizeof head);
        const std::size_t length = std::size_t{head.length} + head.outcomeLength;
        if (received.size() - taken - sizeof head < length) {
            break;
        }
        const std::size_t text = taken + sizeof head;
        reports.push_back({head.kind, received.substr(text, head.length),
                           received.substr(text + head.length, head.outcomeLength)});
        taken = text + length;
    }
    received.erase(0, taken);
}

} // namespace

void WorkerChannel::send(Report::Kind kind, const std::string& text,
                         const std::string& outcome) const {
    const Head head{kind, static_cast<std::uint32_t>(text.size()),
                    static_cast<std::uint32_t>(outcome.size())};
    std::string bytes(reinterpret_cast<const char*>(&head), sizeof head);
    bytes += text;
    bytes += outcome;
    sendAll(m_socket.get(), bytes.data(), bytes.size());
}

std::optional<std::string> WorkerChannel::nextJob() const {
    std::uint32_t length = 0;
    if (!receive(reinterpret_cast<char*>(&length), sizeof length)) {
        return std::nullopt;
    }
    std::optional<std::string> job(std::in_place, length, '\0');
    return receive(job->data(), length) ? std::move(job) : std::nullopt;
}

bool WorkerChannel::receive(char* bytes, std::size_t length) const {
    while (length > 0) {
        const ssize_t received = recv(m_socket.get(), bytes, length, MSG_WAITALL);
        if (received == 0 || (received < 0 && errno != EINTR)) {
            return false;
        }
        bytes += received > 0 ? received : 0;
        length -= received > 0 ? static_cast<std::size_t>(received) : 0;
    }
    return true;
}

SchedulerChannel::~SchedulerChannel() {
    close();
}

void SchedulerChannel::send(const std::string& job) const {
    // A small one with its length: the worker need not wake twice. A large one is not copied.
    const std::size_t begin = std::min<std::size_t>(job.size(), 4096);
    const auto length = static_cast<std::uint32_t>(job.size());
    std::string bytes(reinterpret_cast<const char*>(&length), sizeof length);
    bytes.append(job, 0, begin);
    sendAll(m_socket.get(), bytes.data(), bytes.size());
    sendAll(m_socket.get(), job.data() + begin, job.size() - begin);
}

void SchedulerChannel::close() const {
    // Not by closing: other workers may have inherited this end.
    shutdown(m_socket.get(), SHUT_WR);
}

bool SchedulerChannel::receiveAll(std::deque<Report>& reports) {
    constexpr std::size_t MOST_AT_ONCE = std::size_t{1024} * 1024;
    char bytes[16 * 1024];
    ssize_t received = 0;
    do {
        received = recv(m_socket.get(), bytes, sizeof bytes, MSG_DONTWAIT);
        if (received > 0) {
            m_strReceived.append(bytes, static_cast<std::size_t>(received));
        }
    } while ((received > 0 && m_strReceived.size() < MOST_AT_ONCE) ||
             (received < 0 && errno == EINTR));
    const bool isThere = received > 0 || (received < 0 && errno == EAGAIN);
    takeReports(m_strReceived, reports);
    return isThere;
}

Connection openConnection() {
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot connect to a worker");
    }
    return {SchedulerChannel(Descriptor(sockets[0])), WorkerChannel(Descriptor(sockets[1]))};
}
