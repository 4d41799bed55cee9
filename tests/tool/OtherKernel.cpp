#include "OtherKernel.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

/** From now on this thread's calls, and those of its children, come to a descriptor. */
int listenToCalls(const SystemCall& call) {
    const auto number = static_cast<std::uint32_t>(call.number);
    const auto argument =
        static_cast<std::uint32_t>(offsetof(seccomp_data, args) + call.argument * 8);
    std::array<sock_filter, 7> filter{{
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 4, number},
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, argument},
        {BPF_ALU | BPF_AND | BPF_K, 0, 0, call.mask},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, call.bits},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_USER_NOTIF},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
    }};
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
        return -1;
    }
    return static_cast<int>(
        syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program));
}

void answerNextCall(int listener, int answer) {
    seccomp_notif asked{};
    if (ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &asked) != 0) {
        return;
    }
    seccomp_notif_resp response{};
    response.id = asked.id;
    response.val = answer < 0 ? 0 : answer;
    response.error = answer < 0 ? answer : 0;
    ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &response);
}

} // namespace

void withAnsweredCall(const SystemCall& call, int answer, const std::function<void()>& work) {
    constexpr int STARTING = -2;
    std::atomic<int> listener{STARTING};
    std::atomic<bool> isDone{false};
    // The filter stays with its thread for good.
    std::thread thread([&] {
        listener = listenToCalls(call);
        if (listener >= 0) {
            work();
        }
        isDone = true;
    });
    while (!isDone) {
        pollfd event{listener, POLLIN, 0};
        if (poll(&event, 1, 10) == 1 && (event.revents & POLLIN) != 0) {
            answerNextCall(listener, answer);
        }
    }
    thread.join();
    if (listener < 0) {
        GTEST_SKIP() << "this system lets nobody answer for its kernel";
    }
    close(listener);
}
