// How long an operation goes on after a limit is reached or it is cancelled, and how much more
// memory it takes than it may. Prints a line of JSON for each work.
#include "support/HostileWork.h"
#include "support/ProcessMemory.h"

#include <vexa/xslt.h>

#include <chrono>
#include <cstdio>
#include <malloc.h>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds BEFORE{50};
constexpr std::size_t MEMORY = std::size_t{64} << 20;

/** The kind of the error that ends the work, or Usage if it succeeds. */
vexa::ErrorKind endOf(const HostileWork& work, const vexa::Options& options) {
    try {
        work.run(options);
        return vexa::ErrorKind::Usage;
    } catch (const vexa::Error& error) {
        return error.kind();
    }
}

void print(const char* name, const char* what, double value) {
    std::printf("{\"work\": \"%s\", \"what\": \"%s\", \"value\": %.3f}\n", name, what, value);
}

double millisecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

void measureTimeLimit(const HostileWork& work) {
    vexa::Options options;
    options.limits.memory = MEMORY;
    options.limits.time = BEFORE;
    const auto begin = Clock::now();
    const auto kind = endOf(work, options);
    const double late = millisecondsSince(begin + BEFORE);
    if (kind == vexa::ErrorKind::Limit && late >= 0) { // not at the memory limit before
        print(work.name, "time", late);
    }
}

void measureCancellation(const HostileWork& work) {
    vexa::CancelSource source;
    vexa::Options options;
    options.limits.memory = MEMORY;
    options.cancel = source.token();
    Clock::time_point cancelled;
    std::thread other([&] {
        std::this_thread::sleep_for(BEFORE);
        cancelled = Clock::now();
        source.cancel();
    });
    const auto kind = endOf(work, options);
    const auto end = Clock::now();
    other.join();
    if (kind == vexa::ErrorKind::Cancelled) {
        print(work.name, "cancel",
              std::chrono::duration<double, std::milli>(end - cancelled).count());
    }
}

/** By what the system counts: in percent of the limit. */
void measureMemoryLimit(const HostileWork& work) {
    vexa::Options options;
    options.limits.memory = MEMORY / 64;
    endOf(work, options); // loads what stays
    ::malloc_trim(0);
    beginNewPeak();
    const double before = statusKiB("VmRSS:");
    options.limits.memory = MEMORY;
    if (endOf(work, options) == vexa::ErrorKind::Limit) {
        const double taken = (statusKiB("VmHWM:") - before) * 1024;
        print(work.name, "memory", 100 * (taken / static_cast<double>(MEMORY) - 1));
    }
}

} // namespace

int main() {
    const vexa::Document document = vexa::Document::parse(vexa::Input::text("<a/>"));
    for (const auto* const works : {&endlessWork(), &workThatFillsMemory()}) {
        for (const HostileWork& work : *works) {
            measureTimeLimit(work);
            measureCancellation(work);
        }
    }
    for (const HostileWork& work : workThatFillsMemory()) {
        measureMemoryLimit(work);
    }
    return 0;
}
