#include "FailurePoint.h"

#include "CallNames.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <execinfo.h>
#include <fcntl.h>
#include <new>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <xercesc/util/OutOfMemoryException.hpp>

namespace {

constexpr int MOST_FRAMES = 48;
constexpr int MOST_LOSSES = 200;
constexpr time_t MOST_SECONDS = 10;

struct RawPlace {
    int depth;
    void* frames[MOST_FRAMES];
};

/** What the process that tries the point leaves for the one that asked. */
struct Report {
    std::size_t allocation;
    bool done;
    bool failed;
    bool died;
    long lostBlocks;
    char complaint[200];
    RawPlace failure;
    RawPlace death;
    int lossCount;
    RawPlace losses[MOST_LOSSES];
};

Report* sharedReport() {
    static auto* const report = static_cast<Report*>(
        mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    return report;
}

void note(RawPlace& place, void* const* frames, std::size_t depth) {
    place.depth = std::min(static_cast<int>(depth), MOST_FRAMES);
    std::memcpy(place.frames, frames, static_cast<std::size_t>(place.depth) * sizeof(void*));
}

void noteFailure(Report& report) {
    const allocations::Place place = allocations::placeOfFailure();
    report.failed = !place.empty();
    note(report.failure, place.data(), place.size());
}

void noteLosses(Report& report) {
    for (const allocations::Place& place : allocations::tracedPlaces()) {
        if (report.lossCount < MOST_LOSSES) {
            note(report.losses[report.lossCount++], place.data(), place.size());
        }
    }
}

void complain(Report& report, const char* complaint) {
    std::snprintf(report.complaint, sizeof report.complaint, "%s", complaint);
}

/** Ends the process without the time that a core file takes, and without this program's files. */
[[noreturn]] void die(const char* how) {
    allocations::suspend();
    Report& report = *sharedReport();
    report.died = true;
    complain(report, how);
    void* frames[MOST_FRAMES];
    note(report.death, frames, static_cast<std::size_t>(backtrace(frames, MOST_FRAMES)));
    noteFailure(report);
    _exit(1);
}

void noteDeath(int signalNumber) {
    die(strsignal(signalNumber));
}

void noteDeaths() {
    static char stack[64 * 1024];
    const stack_t alternative{stack, 0, sizeof stack};
    sigaltstack(&alternative, nullptr);
    struct sigaction action {};
    action.sa_handler = noteDeath;
    action.sa_flags = SA_ONSTACK;
    std::atexit([] { die("the process ends"); });
    for (const int signalNumber : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGPROF}) {
        sigaction(signalNumber, &action, nullptr);
    }
}

/** Counts the process's own time: the machine may be busy. */
void allowTime() {
    const struct itimerval limit {
        {0, 0}, { MOST_SECONDS, 0 }
    };
    setitimer(ITIMER_PROF, &limit, nullptr);
}

/** What the engine prints when it fails does not belong into the test's output. */
void silence() {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
}

/** @return whether the operation returned */
bool operateInNeed(Trial& trial, Report& report) {
    bool returned = false;
    allocations::resume();
    try {
        trial.operate();
        returned = true;
    } catch (const std::bad_alloc&) {
    } catch (const xercesc::OutOfMemoryException&) {
    } catch (const std::exception& error) {
        allocations::suspend();
        complain(report, (std::string("throws ") + error.what()).c_str());
    } catch (...) {
        allocations::suspend();
        complain(report, "throws something else than lack of memory");
    }
    allocations::suspend();
    noteFailure(report);
    allocations::failAt(0, Shortage::Once);
    return returned;
}

void operateAndJudge(const Operation& operation, Shortage shortage, Report& report) {
    const auto trial = operation.prepare();
    allocations::failAt(report.allocation, shortage);
    const bool returned = operateInNeed(*trial, report);
    if (returned && !trial->succeeded() && !trial->toldItsFailure()) {
        complain(report, report.failed ? "returns a wrong result" : "does not work at all");
    }
    if (!returned && trial->reportsEverything() && shortage == Shortage::Once) {
        complain(report, "lets an exception pass");
    }
    if (!trial->servesOn() && !*report.complaint) {
        complain(report, "its objects do not work on");
    }
    report.lostBlocks -= trial->blocksKept();
}

long blocksLostByPreparation(const Operation& operation) {
    const long before = allocations::liveBlocks();
    operation.prepare();
    return allocations::liveBlocks() - before;
}

void tryOne(const Operation& operation, Shortage shortage, Report& report) {
    const long before = allocations::liveBlocks();
    try {
        operateAndJudge(operation, shortage, report);
    } catch (...) {
        complain(report, "its objects fail with plenty of memory");
    }
    report.lostBlocks += allocations::liveBlocks() - before;
}

enum class Tracing { Off, On };

[[noreturn]] void tryHere(const Operation& operation, std::size_t first, Shortage shortage,
                          Tracing tracing) {
    Report& report = *sharedReport();
    silence();
    noteDeaths();
    const long promised = blocksLostByPreparation(operation);
    if (tracing == Tracing::On) {
        allocations::trace();
    }
    for (std::size_t n = first;; ++n) {
        report = Report{};
        report.allocation = n;
        allowTime();
        tryOne(operation, shortage, report);
        report.lostBlocks -= promised;
        if (!report.failed || *report.complaint || report.lostBlocks > 0 ||
            operation.engine == Engine::StartedByTheTrial || tracing == Tracing::On) {
            break;
        }
    }
    if (tracing == Tracing::On) {
        noteLosses(report);
    }
    report.done = true;
    _exit(0);
}

void tryInAProcess(const Operation& operation, std::size_t first, Shortage shortage,
                   Tracing tracing) {
    *sharedReport() = Report{};
    sharedReport()->allocation = first;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("no process for a failure point");
    }
    if (child == 0) {
        tryHere(operation, first, shortage, tracing);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (!sharedReport()->done && !sharedReport()->died) {
        throw std::runtime_error("a failure point was lost without a trace");
    }
}

Calls named(const RawPlace& place) {
    return callNames(place.frames, place.depth);
}

Outcome outcomeOf(const Report& report) {
    Outcome outcome;
    outcome.allocation = report.allocation;
    outcome.beyondTheLast = report.done && !report.failed;
    outcome.complaint = report.complaint;
    outcome.failedIn = named(report.failure);
    outcome.diedIn = named(report.death);
    for (int i = 0; i < report.lossCount; ++i) {
        outcome.lostIn.push_back(named(report.losses[i]));
    }
    if (report.died) {
        outcome.trouble = Trouble::Death;
    } else if (*report.complaint) {
        outcome.trouble = Trouble::WrongBehaviour;
    } else if (report.lostBlocks > 0) {
        outcome.trouble = Trouble::Loss;
        outcome.complaint = "loses memory";
    }
    return outcome;
}

} // namespace

Outcome tryFailurePoints(const Operation& operation, std::size_t first, Shortage shortage) {
    tryInAProcess(operation, first, shortage, Tracing::Off);
    const Outcome seen = outcomeOf(*sharedReport());
    const bool isFresh = seen.allocation == first && seen.trouble == Trouble::Death;
    if (seen.trouble == Trouble::None || isFresh) {
        return seen;
    }
    // Again in a process that no earlier point has touched.
    tryInAProcess(operation, seen.allocation, shortage, Tracing::On);
    return outcomeOf(*sharedReport());
}
