#include "process/IsolatedRun.h"

#include "base/Errors.h"
#include "process/BlockedSignals.h"
#include "process/ChildProcess.h"

#include <csignal>

int runIsolated(const std::string& name, const Limits& limits, const std::function<int()>& work) {
    const BlockedSignals signals;
    ChildProcess child;
    child.start([&] {
        signals.unblock();
        return work();
    });
    child.setTimeLimit(limits.maxSeconds);
    auto end = child.poll();
    while (!end) {
        const auto signalNumber = signals.next(child.deadline());
        child.killIfLate();
        if (signalNumber && *signalNumber != SIGCHLD) {
            child.send(*signalNumber);
        }
        end = child.poll();
    }
    if (const auto status = end->exitStatus()) {
        return *status;
    }
    if (const auto signalNumber = end->outerSignal()) {
        signals.endBy(*signalNumber);
    }
    printError(name + ": " + end->cause(limits));
    return EXIT_FAILED;
}
