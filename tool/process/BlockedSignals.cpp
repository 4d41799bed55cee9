#include "process/BlockedSignals.h"

#include "base/Errors.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <unistd.h>

namespace {

constexpr int OUTER_SIGNALS[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGTERM,   SIGPIPE, SIGALRM,
                                 SIGUSR1, SIGUSR2, SIGXCPU, SIGVTALRM, SIGPROF};

} // namespace

bool isFromOutside(int signalNumber) {
    return std::find(std::begin(OUTER_SIGNALS), std::end(OUTER_SIGNALS), signalNumber) !=
           std::end(OUTER_SIGNALS);
}

BlockedSignals::BlockedSignals() {
    // A child whose end nobody wants to know of could not be waited for.
    std::signal(SIGCHLD, SIG_DFL);
    sigemptyset(&m_blocked);
    sigaddset(&m_blocked, SIGCHLD);
    for (const int signalNumber : OUTER_SIGNALS) {
        struct sigaction before {};
        sigaction(signalNumber, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {
            sigaddset(&m_blocked, signalNumber);
        }
    }
    sigprocmask(SIG_BLOCK, &m_blocked, &m_before);
}

void BlockedSignals::unblock() const {
    sigprocmask(SIG_SETMASK, &m_before, nullptr);
}

std::optional<int> BlockedSignals::next(const std::optional<Clock::time_point>& time) const {
    int signalNumber = 0;
    do {
        signalNumber = time ? waitUntil(*time) : sigwaitinfo(&m_blocked, nullptr);
    } while (signalNumber < 0 && errno == EINTR);
    return signalNumber > 0 ? std::optional<int>(signalNumber) : std::nullopt;
}

void BlockedSignals::endBy(int signalNumber) const {
    std::signal(signalNumber, SIG_DFL);
    unblock();
    std::raise(signalNumber);
    _exit(EXIT_FAILED);
}

int BlockedSignals::waitUntil(Clock::time_point time) const {
    const auto left = std::max(time - Clock::now(), Clock::duration::zero());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    timespec interval{};
    interval.tv_sec = static_cast<time_t>(seconds.count());
    interval.tv_nsec = static_cast<long>(std::chrono::nanoseconds(left - seconds).count());
    return sigtimedwait(&m_blocked, nullptr, &interval);
}
