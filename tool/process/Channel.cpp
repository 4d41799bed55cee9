#include "process/Channel.h"

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
void takeReports(std::string& received, std::vector<Report>& reports) {
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

std::optional<std::uint32_t> WorkerChannel::nextJob() const {
    std::uint32_t job = 0;
    return receive(reinterpret_cast<char*>(&job), sizeof job) ? std::optional<std::uint32_t>(job)
                                                              : std::nullopt;
}

std::optional<std::string> WorkerChannel::nextText() const {
    const auto length = nextJob();
    std::string text(length.value_or(0), '\0');
    return length && receive(text.data(), text.size()) ? std::optional<std::string>(std::move(text))
                                                       : std::nullopt;
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

void SchedulerChannel::send(std::uint32_t job) const {
    sendAll(m_socket.get(), reinterpret_cast<const char*>(&job), sizeof job);
}

void SchedulerChannel::send(const std::string& text) const {
    send(static_cast<std::uint32_t>(text.size()));
    sendAll(m_socket.get(), text.data(), text.size());
}

void SchedulerChannel::close() const {
    // Not by closing: other workers may have inherited this end.
    shutdown(m_socket.get(), SHUT_WR);
}

bool SchedulerChannel::receiveAll(std::vector<Report>& reports) {
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
