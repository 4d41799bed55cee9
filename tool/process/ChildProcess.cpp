#include "process/ChildProcess.h"

#include "base/Errors.h"
#include "process/BlockedSignals.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <ucontext.h>
#include <unistd.h>

/** What a crashing process leaves to its parent. */
struct ChildProcess::CrashRecord {
    volatile bool hasStackOverflow = false;

    static CrashRecord& share() {
        void* const place = mmap(nullptr, sizeof(CrashRecord), PROT_READ | PROT_WRITE,
                                 MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (place == MAP_FAILED) {
            throw std::system_error(errno, std::generic_category(), "shared memory");
        }
        return *new (place) CrashRecord;
    }

    /** From now on this process keeps the record. */
    void keep() {
        s_own = this;
        // The handler has to work where the stack has no room left.
        static char handlerStack[64 * 1024];
        stack_t stack{};
        stack.ss_sp = handlerStack;
        stack.ss_size = sizeof handlerStack;
        sigaltstack(&stack, nullptr);
        struct sigaction action {};
        action.sa_sigaction = onFault;
        action.sa_flags = static_cast<int>(SA_SIGINFO | SA_RESETHAND | SA_ONSTACK | SA_NODEFER);
        sigaction(SIGSEGV, &action, nullptr);
    }

private:
    static std::uintptr_t stackPointer(const void* context) {
        const auto& registers = static_cast<const ucontext_t*>(context)->uc_mcontext.gregs;
#ifdef __x86_64__
        return static_cast<std::uintptr_t>(registers[REG_RSP]);
#else
        return static_cast<std::uintptr_t>(registers[REG_ESP]);
#endif
    }

    /** A fault next to the stack pointer is the stack's: memory that it may not grow into. */
    static void onFault(int signalNumber, siginfo_t* fault, void* context) {
        constexpr std::uintptr_t LARGEST_FRAME = std::uintptr_t{1024} * 1024;
        const auto address = reinterpret_cast<std::uintptr_t>(fault->si_addr);
        const std::uintptr_t pointer = stackPointer(context);
        const std::uintptr_t distance = address < pointer ? pointer - address : address - pointer;
        s_own->hasStackOverflow = distance < LARGEST_FRAME;
        std::raise(signalNumber); // whose action is the default one again
    }

    static CrashRecord* s_own;
};

ChildProcess::CrashRecord* ChildProcess::CrashRecord::s_own;

std::optional<int> ChildProcess::End::exitStatus() const {
    const bool endedByItself = WIFEXITED(status) && WEXITSTATUS(status) <= EXIT_USAGE;
    return endedByItself ? std::optional<int>(WEXITSTATUS(status)) : std::nullopt;
}

std::optional<int> ChildProcess::End::outerSignal() const {
    const bool endedFromOutside = WIFSIGNALED(status) && isFromOutside(WTERMSIG(status));
    return endedFromOutside ? std::optional<int>(WTERMSIG(status)) : std::nullopt;
}

std::string ChildProcess::End::cause(const Limits& limits) const {
    if (wasLate) {
        return timeLimitText(limits);
    }
    if (hadStackOverflow) {
        return "stack overflow in the engine";
    }
    if (WIFEXITED(status)) {
        return "the engine failed without an error message";
    }
    const std::string signalName = std::string("SIG") + sigabbrev_np(WTERMSIG(status));
    return WTERMSIG(status) == SIGKILL
               ? "killed from outside (" + signalName + "), perhaps because memory ran out"
               : "the engine crashed (" + signalName + ")";
}

ChildProcess::ChildProcess() : m_crash(CrashRecord::share()) {}

ChildProcess::~ChildProcess() {
    if (isRunning()) {
        send(SIGKILL);
        wait();
    }
    munmap(&m_crash, sizeof m_crash);
}

void ChildProcess::start(const std::function<int()>& work) {
    m_crash.hasStackOverflow = false;
    m_bLate = false;
    const pid_t parent = getpid();
    m_nProcess = fork();
    if (m_nProcess < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot start a process");
    }
    if (m_nProcess == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) {
            _exit(EXIT_FAILED);
        }
        const rlimit noCore{};
        setrlimit(RLIMIT_CORE, &noCore);
        m_crash.keep();
        std::set_terminate(std::abort);
        silenceSystemLibraries();
        // No exception may reach what the parent has on the stack.
        std::exit([&]() noexcept { return work(); }());
    }
}

void ChildProcess::setTimeLimit(unsigned seconds) {
    // By itself the work stops sooner, and can say more.
    constexpr auto MORE = std::chrono::seconds(1);
    m_deadline.reset();
    if (seconds != 0) {
        m_deadline = Clock::now() + std::chrono::seconds(seconds) + MORE;
    }
}

void ChildProcess::postponeDeadline(Clock::duration time) {
    if (m_deadline) {
        *m_deadline += time;
    }
}

void ChildProcess::killIfLate() {
    if (m_deadline && *m_deadline <= Clock::now()) {
        m_deadline.reset();
        m_bLate = true;
        send(SIGKILL);
    }
}

void ChildProcess::send(int signalNumber) const {
    if (isRunning()) {
        ::kill(m_nProcess, signalNumber);
    }
}

std::optional<ChildProcess::End> ChildProcess::reap(bool wait) {
    int status = 0;
    pid_t ended = 0;
    do {
        ended = waitpid(m_nProcess, &status, wait ? 0 : WNOHANG);
    } while (ended < 0 && errno == EINTR);
    if (ended != m_nProcess) {
        return std::nullopt;
    }
    m_nProcess = 0;
    m_deadline.reset();
    return End{status, m_bLate, m_crash.hasStackOverflow};
}
