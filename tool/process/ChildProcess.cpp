#include "ChildProcess.h"

#include "CrashNotes.h"
#include "Failure.h"
#include "HeldSignals.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = HeldSignals::Clock;

void lowerLimit(__rlimit_resource resource, rlim_t value) {
    rlimit limit{};
    getrlimit(resource, &limit);
    limit.rlim_cur = limit.rlim_max = std::min(value, limit.rlim_max);
    setrlimit(resource, &limit);
}

void limitMemory(unsigned mebibytes) {
    constexpr rlim_t MEBIBYTE = rlim_t{1024} * 1024;
    // On 32-bit systems a limit may be larger than what there can be.
    if (mebibytes != 0 && mebibytes <= RLIM_INFINITY / MEBIBYTE) {
        lowerLimit(RLIMIT_AS, mebibytes * MEBIBYTE);
    }
}

/** The process that waits. */
class Watch {
public:
    Watch(pid_t child, const Limits& limits, const std::string& sourceName, const CrashNotes& notes,
          const HeldSignals& signals)
        : m_nChild(child), m_limits(limits), m_strSourceName(sourceName), m_notes(notes),
          m_signals(signals) {
        if (limits.maxSeconds != 0) {
            m_deadline = Clock::now() + std::chrono::seconds(limits.maxSeconds);
        }
    }

    /** Waits for the child's end. @return the exit status that it stands for */
    int wait() {
        const int status = waitForEnd();
        removeUnfinishedFile(m_notes.unfinishedFile);
        if (WIFEXITED(status) && WEXITSTATUS(status) <= EXIT_USAGE) {
            return WEXITSTATUS(status);
        }
        if (WIFSIGNALED(status) && isOuterSignal(WTERMSIG(status))) {
            m_signals.endBy(WTERMSIG(status));
        }
        tellFailure(m_strSourceName + ": " + reason(status));
        return EXIT_FAILED;
    }

private:
    int waitForEnd() {
        int status = 0;
        while (waitpid(m_nChild, &status, WNOHANG) != m_nChild) {
            const std::optional<int> signalNumber = m_signals.next(m_deadline);
            if (!signalNumber) {
                m_deadline.reset();
                m_bLate = true;
                kill(m_nChild, SIGKILL);
            } else if (*signalNumber != SIGCHLD) {
                kill(m_nChild, *signalNumber);
            }
        }
        return status;
    }

    std::string reason(int status) const {
        return m_bLate ? lackOfTime(m_limits) : endReason(status, m_notes, m_limits);
    }

    pid_t m_nChild;
    const Limits& m_limits;
    const std::string& m_strSourceName;
    const CrashNotes& m_notes;
    const HeldSignals& m_signals;
    std::optional<Clock::time_point> m_deadline;
    bool m_bLate = false;
};

} // namespace

void goOnInChild(const Limits& limits, const std::string& sourceName) {
    CrashNotes& notes = shareCrashNotes();
    const HeldSignals signals;
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) {
        throw Failure(sourceName, "no process can be made for it: " + systemReason(errno));
    }
    if (child > 0) {
        std::exit(Watch(child, limits, sourceName, notes, signals).wait());
    }
    signals.release();
    becomeChild(limits, notes, parent);
}

void becomeChild(const Limits& limits, CrashNotes& notes, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(EXIT_FAILED);
    }
    lowerLimit(RLIMIT_CORE, 0);
    keepCrashNotes(notes);
    limitMemory(limits.maxMemory);
}

std::string endReason(int status, const CrashNotes& notes, const Limits& limits) {
    if (notes.lackedMemory) {
        return lackOfMemory(limits);
    }
    if (notes.overflowedStack) {
        return "the engine overflowed its stack";
    }
    if (WIFEXITED(status)) {
        return "the engine gave up without a reason";
    }
    const std::string signalText = strsignal(WTERMSIG(status));
    return WTERMSIG(status) == SIGKILL ? "the engine was ended from outside (" + signalText +
                                             "), perhaps because the system has no memory left"
                                       : "the engine crashed (" + signalText + ")";
}

std::string lackOfTime(const Limits& limits) {
    return "it takes longer than the " + std::to_string(limits.maxSeconds) +
           " s that --max-seconds allows";
}

std::string lackOfMemory(const Limits& limits) {
    const std::string reason = "there is not enough memory";
    return limits.maxMemory == 0
               ? reason
               : reason + ": --max-memory allows " + std::to_string(limits.maxMemory) + " MiB";
}
