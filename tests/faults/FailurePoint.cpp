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

/** What the child process that tries a failure point reports to the test. */
struct Report {
    std::size_t allocation;
    bool done;
    bool failed;
    bool died;
    long lostBlocks;
    char message[200];
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

void record(RawPlace& place, void* const* frames, std::size_t depth) {
    place.depth = std::min(static_cast<int>(depth), MOST_FRAMES);
    std::memcpy(place.frames, frames, static_cast<std::size_t>(place.depth) * sizeof(void*));
}

void recordFailure(Report& report) {
    const allocations::Place place = allocations::placeOfFailure();
    report.failed = !place.empty();
    record(report.failure, place.data(), place.size());
}

void recordLosses(Report& report) {
    for (const allocations::Place& place : allocations::tracedPlaces()) {
        if (report.lossCount < MOST_LOSSES) {
            record(report.losses[report.lossCount++], place.data(), place.size());
        }
    }
}

void setMessage(Report& report, const char* message) {
    std::snprintf(report.message, sizeof report.message, "%s", message);
}

/** Ends the process without writing a core file and without deleting this program's files. */
[[noreturn]] void die(const char* how) {
    allocations::suspend();
    Report& report = *sharedReport();
    report.died = true;
    setMessage(report, how);
    void* frames[MOST_FRAMES];
    record(report.death, frames, static_cast<std::size_t>(backtrace(frames, MOST_FRAMES)));
    recordFailure(report);
    _exit(1);
}

void recordDeath(int signalNumber) {
    die(strsignal(signalNumber));
}

void recordDeaths() {
    static char stack[64 * 1024];
    const stack_t alternative{stack, 0, sizeof stack};
    sigaltstack(&alternative, nullptr);
    struct sigaction action {};
    action.sa_handler = recordDeath;
    action.sa_flags = SA_ONSTACK;
    std::atexit([] { die("the process ends"); });
    for (const int signalNumber : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGPROF}) {
        sigaction(signalNumber, &action, nullptr);
    }
}

/** Limits the CPU time of the process: on a busy machine, elapsed time would be too strict. */
void limitTime() {
    const struct itimerval limit {
        {0, 0}, { MOST_SECONDS, 0 }
    };
    setitimer(ITIMER_PROF, &limit, nullptr);
}

/** Keeps the engine's messages out of the output of the test. */
void silence() {
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDERR_FILENO);
    close(null);
}

/** @return whether the operation returned */
bool operateWithShortage(Trial& trial, Report& report) {
    bool returned = false;
    allocations::resume();
    try {
        trial.operate();
        returned = true;
    } catch (const std::bad_alloc&) {
    } catch (const xercesc::OutOfMemoryException&) {
    } catch (const std::exception& error) {
        allocations::suspend();
        setMessage(report, (std::string("throws ") + error.what()).c_str());
    } catch (...) {
        allocations::suspend();
        setMessage(report, "throws another exception than one for out of memory");
    }
    allocations::suspend();
    recordFailure(report);
    allocations::failAt(0, Shortage::Once);
    return returned;
}

void operateAndCheck(const Operation& operation, Shortage shortage, Report& report) {
    const auto trial = operation.prepare();
    allocations::failAt(report.allocation, shortage);
    const bool returned = operateWithShortage(*trial, report);
    if (returned && !trial->succeeded() && !trial->reportedItsFailure()) {
        setMessage(report, report.failed ? "returns a wrong result" : "does not work at all");
    }
    if (!returned && trial->reportsEverything() && shortage == Shortage::Once) {
        setMessage(report, "lets an exception pass");
    }
    if (!trial->stillWorks() && !*report.message) {
        setMessage(report, "its objects cannot be used any more");
    }
    report.lostBlocks -= trial->blocksKept();
}

long blocksKeptByPreparation(const Operation& operation) {
    const long before = allocations::liveBlocks();
    operation.prepare();
    return allocations::liveBlocks() - before;
}

/** The number that the next file would be opened with. */
int nextFile() {
    const int file = dup(STDERR_FILENO);
    close(file);
    return file;
}

void tryOne(const Operation& operation, Shortage shortage, Report& report) {
    const long before = allocations::liveBlocks();
    try {
        operateAndCheck(operation, shortage, report);
    } catch (...) {
        setMessage(report, "its objects fail after the failure");
    }
    report.lostBlocks += allocations::liveBlocks() - before;
}

enum class Tracing { Off, On };

[[noreturn]] void tryHere(const Operation& operation, std::size_t first, Shortage shortage,
                          Tracing tracing) {
    Report& report = *sharedReport();
    silence();
    recordDeaths();
    const long kept = blocksKeptByPreparation(operation);
    if (tracing == Tracing::On) {
        allocations::trace();
    }
    for (std::size_t n = first;; ++n) {
        report = Report{};
        report.allocation = n;
        limitTime();
        const int file = nextFile();
        tryOne(operation, shortage, report);
        report.lostBlocks -= kept;
        if (nextFile() != file && report.lostBlocks <= 0 && !*report.message) {
            setMessage(report, "leaves a file open");
        }
        if (!report.failed || *report.message || report.lostBlocks > 0 ||
            operation.engine == Engine::StartedByTheTrial || tracing == Tracing::On) {
            break;
        }
    }
    if (tracing == Tracing::On) {
        recordLosses(report);
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
        throw std::runtime_error("cannot start a process for a failure point");
    }
    if (child == 0) {
        tryHere(operation, first, shortage, tracing);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (!sharedReport()->done && !sharedReport()->died) {
        throw std::runtime_error("a failure point ended without a report");
    }
}

Calls named(const RawPlace& place) {
    return callNames(place.frames, place.depth);
}

Outcome outcomeOf(const Report& report) {
    Outcome outcome;
    outcome.allocation = report.allocation;
    outcome.beyondTheLast = report.done && !report.failed;
    outcome.message = report.message;
    outcome.failedIn = named(report.failure);
    outcome.diedIn = named(report.death);
    for (int i = 0; i < report.lossCount; ++i) {
        outcome.lostIn.push_back(named(report.losses[i]));
    }
    if (report.died) {
        outcome.problem = Problem::Death;
    } else if (*report.message) {
        outcome.problem = Problem::WrongBehaviour;
    } else if (report.lostBlocks > 0) {
        outcome.problem = Problem::Loss;
        outcome.message = "loses memory";
    }
    return outcome;
}

} // namespace

Outcome tryFailurePoints(const Operation& operation, std::size_t first, Shortage shortage) {
    tryInAProcess(operation, first, shortage, Tracing::Off);
    const Outcome seen = outcomeOf(*sharedReport());
    const bool isFresh = seen.allocation == first && seen.problem == Problem::Death;
    if (seen.problem == Problem::None || isFresh) {
        return seen;
    }
    // Again in a new process, without the effects of earlier points.
    tryInAProcess(operation, seen.allocation, shortage, Tracing::On);
    return outcomeOf(*sharedReport());
}
