/**
 * @file
 * Part of a build for coverage only, where the linker puts it in the place of raise: counters are
 * written when a process ends by itself, and would be lost where it ends by a signal.
 */
#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" {
#include <gcov.h> // which knows nothing of C++
}

extern "C" int __real_raise(int signalNumber);
extern "C" int __wrap_raise(int signalNumber);

namespace {

/** In a handler what the signal has interrupted may hold what writing needs. */
bool isInHandler() {
    stack_t stack{};
    sigaltstack(nullptr, &stack);
    return (stack.ss_flags & SS_ONSTACK) != 0;
}

/** Whoever removes unfinished files lets nothing be opened any more. */
void letFilesBeOpened() {
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max;
    setrlimit(RLIMIT_NOFILE, &files);
}

} // namespace

int __wrap_raise(int signalNumber) {
    if (!isInHandler()) {
        // By a copy: the other threads of this process are to open nothing.
        const pid_t copy = fork();
        if (copy == 0) {
            letFilesBeOpened();
            __gcov_dump();
            _exit(0);
        }
        waitpid(copy, nullptr, 0);
    }
    return __real_raise(signalNumber);
}
