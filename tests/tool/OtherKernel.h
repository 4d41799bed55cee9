/**
 * @file
 * A kernel that is older than this one, or that lacks what a program asks for.
 */
#pragma once

#include <cstdint>
#include <functional>

/** A system call, or only those calls of it where an argument has these bits. */
struct SystemCall {
    long number;
    unsigned argument = 0;
    std::uint32_t mask = 0;
    std::uint32_t bits = 0;
};

/**
 * Runs the work, and all programs that it starts, over a kernel that makes nothing of the call and
 * answers this: a result, or an error number below zero. Skips the test where that cannot be.
 */
void withAnsweredCall(const SystemCall& call, int answer, const std::function<void()>& work);
