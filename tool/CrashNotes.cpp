#include "CrashNotes.h"

#include "Failure.h"
#include "HandlerStack.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <new>
#include <sys/mman.h>
#include <system_error>
#include <ucontext.h>

namespace {

CrashNotes* g_pNotes;

std::uintptr_t stackPointer(const void* context) {
    const auto& registers = static_cast<const ucontext_t*>(context)->uc_mcontext.gregs;
#ifdef __x86_64__
    return static_cast<std::uintptr_t>(registers[REG_RSP]);
#else
    return static_cast<std::uintptr_t>(registers[REG_ESP]);
#endif
}

/** A fault next to the stack pointer is the stack's: memory that it may not grow into. */
extern "C" void noteFault(int signalNumber, siginfo_t* fault, void* context) {
    constexpr std::uintptr_t LARGEST_FRAME = std::uintptr_t{1024} * 1024;
    const auto address = reinterpret_cast<std::uintptr_t>(fault->si_addr);
    const std::uintptr_t pointer = stackPointer(context);
    const std::uintptr_t distance = address < pointer ? pointer - address : address - pointer;
    g_pNotes->overflowedStack = distance < LARGEST_FRAME;
    std::raise(signalNumber); // whose action is the default one again
}

void catchFaults() {
    giveHandlersAStack();
    struct sigaction noting {};
    noting.sa_sigaction = noteFault;
    noting.sa_flags = static_cast<int>(SA_SIGINFO | SA_RESETHAND | SA_ONSTACK | SA_NODEFER);
    sigaction(SIGSEGV, &noting, nullptr);
}

void noteLackOfMemory() {
    g_pNotes->lackedMemory = true;
    throw std::bad_alloc();
}

} // namespace

CrashNotes& shareCrashNotes() {
    void* const place = mmap(nullptr, sizeof(CrashNotes), PROT_READ | PROT_WRITE,
                             MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (place == MAP_FAILED) {
        throw std::system_error(errno, std::generic_category(), "memory for two processes");
    }
    return *new (place) CrashNotes{};
}

void keepCrashNotes(CrashNotes& notes) {
    g_pNotes = &notes;
    leaveUnfinishedFileTo(notes.unfinishedFile);
    catchFaults();
    std::set_new_handler(noteLackOfMemory);
    std::set_terminate(std::abort);
    silenceSystemLibraries();
}

bool hasLackedMemory() {
    return g_pNotes && g_pNotes->lackedMemory;
}
