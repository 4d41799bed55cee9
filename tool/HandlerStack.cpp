#include "HandlerStack.h"

#include <csignal>

namespace {

/** Gives back what the thread had before: a memory checker gives each thread a stack, too. */
class HandlerStack {
public:
    HandlerStack() {
        stack_t stack{};
        stack.ss_sp = m_memory;
        stack.ss_size = sizeof m_memory;
        sigaltstack(&stack, &m_before);
    }
    HandlerStack(const HandlerStack&) = delete;
    HandlerStack& operator=(const HandlerStack&) = delete;
    ~HandlerStack() { sigaltstack(&m_before, nullptr); }

private:
    char m_memory[64 * 1024];
    stack_t m_before{};
};

} // namespace

void giveHandlersAStack() {
    thread_local const HandlerStack stack;
    static_cast<void>(stack);
}
