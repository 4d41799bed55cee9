/**
 * @file
 * A web server for one test, on this machine only.
 */
#pragma once

#include <atomic>
#include <map>
#include <string>
#include <thread>

class Listener {
public:
    /** @param pages what it answers with, by path */
    explicit Listener(std::map<std::string, std::string> pages);
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener();

    /** "http://127.0.0.1:PORT" */
    const std::string& address() const { return m_strAddress; }

    /** How many requests have come. */
    int requests() const { return m_requests; }

private:
    void serve();
    void answer(int connection);

    std::map<std::string, std::string> m_pages;
    int m_nSocket;
    std::string m_strAddress;
    std::atomic<int> m_requests{0};
    std::thread m_thread;
};
