#include "Listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

Listener::Listener(std::map<std::string, std::string> pages)
    : m_pages(std::move(pages)), m_nSocket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const place = reinterpret_cast<sockaddr*>(&address);
    if (bind(m_nSocket, place, size) != 0 || listen(m_nSocket, 8) != 0 ||
        getsockname(m_nSocket, place, &size) != 0) {
        throw std::runtime_error("no server can be started on this machine");
    }
    m_strAddress = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    m_thread = std::thread([this] { serve(); });
}

Listener::~Listener() {
    shutdown(m_nSocket, SHUT_RDWR); // ends the wait for a connection
    m_thread.join();
    close(m_nSocket);
}

void Listener::serve() {
    for (;;) {
        const int connection = accept4(m_nSocket, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) {
            return;
        }
        ++m_requests;
        answer(connection);
        close(connection);
    }
}

void Listener::answer(int connection) {
    std::string request;
    char piece[4096];
    while (request.find("\r\n\r\n") == std::string::npos) {
        const ssize_t length = recv(connection, piece, sizeof piece, 0);
        if (length <= 0) {
            return;
        }
        request.append(piece, static_cast<std::size_t>(length));
    }
    const auto begin = request.find(' ') + 1;
    const std::string& page = m_pages[request.substr(begin, request.find(' ', begin) - begin)];
    const std::string answer =
        "HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(page.size()) + "\r\n\r\n" + page;
    send(connection, answer.data(), answer.size(), MSG_NOSIGNAL);
}
