#include "HandlerStack.h"

#include <csignal>

void giveHandlersAStack() {
    thread_local char handlerStack[64 * 1024];
    stack_t stack{};
    stack.ss_sp = handlerStack;
    stack.ss_size = sizeof handlerStack;
    sigaltstack(&stack, nullptr);
}
