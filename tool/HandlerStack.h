/**
 * @file
 * A stack for signal handlers.
 */
#pragma once

/**
 * Gives handlers with SA_ONSTACK a stack in this thread: one that has overflowed cannot carry them.
 */
void giveHandlersAStack();
