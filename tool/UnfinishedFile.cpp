#include "UnfinishedFile.h"

#include "HandlerStack.h"

#include <csignal>
#include <cstring>
#include <unistd.h>

namespace {

/** Read in a signal handler, hence no std::string. */
UnfinishedFileName g_ownName;
UnfinishedFileName* g_pName = &g_ownName;

extern "C" void removeAndEnd(int signalNumber) {
    removeUnfinishedFile(*g_pName);
    std::raise(signalNumber); // whose action is the default one again
}

/** Everything that ends a process, a crash of the engine included. */
constexpr int ENDING_SIGNALS[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGTERM,   SIGPIPE, SIGALRM,
                                  SIGUSR1, SIGUSR2, SIGXCPU, SIGVTALRM, SIGPROF, SIGABRT,
                                  SIGSEGV, SIGBUS,  SIGFPE,  SIGILL};

void catchEndingSignals() {
    giveHandlersAStack();
    struct sigaction removing {};
    removing.sa_handler = removeAndEnd;
    removing.sa_flags = static_cast<int>(SA_RESETHAND | SA_ONSTACK | SA_NODEFER);
    for (const int signalNumber : ENDING_SIGNALS) {
        struct sigaction before {};
        sigaction(signalNumber, nullptr, &before);
        // A signal that is ignored from outside (nohup) stays ignored.
        if (before.sa_handler != SIG_IGN) {
            sigaction(signalNumber, &removing, nullptr);
        }
    }
}

} // namespace

void setUnfinishedFile(const std::string& path) {
    if (path.size() >= sizeof g_pName->text) {
        return;
    }
    std::memcpy(g_pName->text, path.c_str(), path.size() + 1);
    if (!path.empty() && g_pName == &g_ownName) {
        catchEndingSignals();
    }
}

void leaveUnfinishedFileTo(UnfinishedFileName& place) {
    g_pName = &place;
}

void removeUnfinishedFile(const UnfinishedFileName& name) {
    if (name.text[0]) {
        unlink(name.text);
    }
}
