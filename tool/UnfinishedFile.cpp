#include "UnfinishedFile.h"

#include "HandlerStack.h"

#include <atomic>
#include <csignal>
#include <cstring>
#include <sys/resource.h>
#include <unistd.h>

namespace {

/** Read in a signal handler, hence no std::string. */
UnfinishedFileName g_names[MOST_WRITING_THREADS];
std::atomic<std::size_t> g_nTaken{0};
/** One of these, or a place that another process reads. */
thread_local UnfinishedFileName* t_pName = nullptr;

std::mutex g_lock;

UnfinishedFileName& nameOfThread() {
    if (!t_pName) {
        t_pName = &g_names[g_nTaken++];
    }
    return *t_pName;
}

bool isOwn(const UnfinishedFileName& name) {
    return &name >= std::begin(g_names) && &name < std::end(g_names);
}

/** For good: a thread whose file the engine is about to open would make it anew. */
void removeAll() {
    rlimit noMoreFiles{};
    getrlimit(RLIMIT_NOFILE, &noMoreFiles);
    noMoreFiles.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &noMoreFiles);
    for (const UnfinishedFileName& name : g_names) {
        removeUnfinishedFile(name);
    }
}

extern "C" void removeAndEnd(int signalNumber) {
    removeAll();
    std::raise(signalNumber); // whose action is the default one again
}

/** Everything that ends a process, a crash of the engine included. */
constexpr int ENDING_SIGNALS[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGTERM,   SIGPIPE, SIGALRM,
                                  SIGUSR1, SIGUSR2, SIGXCPU, SIGVTALRM, SIGPROF, SIGABRT,
                                  SIGSEGV, SIGBUS,  SIGFPE,  SIGILL};

void installHandlers() {
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

void catchEndingSignals() {
    giveHandlersAStack();
    static std::once_flag once;
    std::call_once(once, installHandlers);
}

} // namespace

void setUnfinishedFile(const std::string& path) {
    UnfinishedFileName& name = nameOfThread();
    if (path.size() >= sizeof name.text) {
        return;
    }
    std::memcpy(name.text, path.c_str(), path.size() + 1);
    if (!path.empty() && isOwn(name)) {
        catchEndingSignals();
    }
}

void leaveUnfinishedFileTo(UnfinishedFileName& place) {
    t_pName = &place;
}

void removeUnfinishedFile(const UnfinishedFileName& name) {
    const std::size_t length = strnlen(name.text, sizeof name.text);
    const char* const slash = static_cast<const char*>(memrchr(name.text, '/', length));
    const char* const fileName = slash ? slash + 1 : name.text;
    // A process that a stranger's input may have taken over can name any file here.
    if (length < sizeof name.text &&
        std::strncmp(fileName, UNFINISHED_FILE_NAME, std::strlen(UNFINISHED_FILE_NAME)) == 0) {
        unlink(name.text);
    }
}

std::unique_lock<std::mutex> lockUnfinishedFiles() {
    return std::unique_lock(g_lock);
}

void removeUnfinishedFiles(const std::unique_lock<std::mutex>& /*lock*/) {
    removeAll();
}
