#include "process/ChildProcess.h"

#include "base/Errors.h"
#include "support/MemoryChecker.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

Limits ofSeconds(unsigned seconds) {
    Limits limits;
    limits.maxSeconds = seconds;
    return limits;
}

/** Ends without the handlers of the test program. */
int endWith(int status) {
    _exit(status);
}

/** Each level takes 4 KiB of the stack. */
int useStack(int levels, const volatile char* above) {
    volatile char frame[4096];
    frame[0] = *above;
    return levels == 0 ? 0 : useStack(levels - 1, frame) + frame[0];
}

int readForbiddenMemory() {
    const void* const page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return *static_cast<const volatile char*>(page);
}

/** How a child ends that does this. */
ChildProcess::End endOf(const std::function<int()>& work) {
    ChildProcess child;
    child.start(work);
    return child.wait();
}

} // namespace

TEST(ChildProcessTest, ExitsWithTheStatusOfItsWork) {
    for (const int status : {EXIT_DONE, EXIT_FAILED, EXIT_USAGE}) {
        EXPECT_EQ(endOf([&] { return endWith(status); }).exitStatus(), status);
    }
    const auto other = endOf([] { return endWith(77); });
    EXPECT_FALSE(other.exitStatus());
    EXPECT_EQ(other.cause({}), "the engine failed without an error message");
}

TEST(ChildProcessTest, ReportsTheSignalThatEndsIt) {
    const auto crash = endOf([] { return std::raise(SIGABRT); });
    EXPECT_EQ(crash.cause({}), "the engine crashed (SIGABRT)");
    EXPECT_FALSE(crash.exitStatus());
    EXPECT_FALSE(crash.outerSignal());
    const auto killed = endOf([] { return std::raise(SIGKILL); });
    EXPECT_EQ(killed.cause({}), "killed from outside (SIGKILL), perhaps because memory ran out");
    EXPECT_EQ(endOf([] { return std::raise(SIGTERM); }).outerSignal(), SIGTERM);
}

TEST(ChildProcessTest, TellsAStackOverflowFromOtherFaults) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker ends the process in its own way";
    }
    const char first = 0;
    EXPECT_EQ(endOf([&] { return useStack(1'000'000, &first); }).cause({}),
              "stack overflow in the engine");
    EXPECT_EQ(endOf(readForbiddenMemory).cause({}), "the engine crashed (SIGSEGV)");
}

TEST(ChildProcessTest, IsKilledWhenItIsLate) {
    ChildProcess child;
    child.start([] { return pause(); });
    child.setTimeLimit(0);
    EXPECT_FALSE(child.deadline());
    child.killIfLate();
    EXPECT_FALSE(child.poll());
    child.setTimeLimit(1);
    ASSERT_TRUE(child.deadline());
    while (ChildProcess::Clock::now() < *child.deadline()) {
        child.killIfLate();
        EXPECT_FALSE(child.isLate());
        usleep(100'000);
    }
    child.killIfLate();
    EXPECT_TRUE(child.isLate());
    EXPECT_EQ(child.wait().cause(ofSeconds(1)), "time limit of 1 s exceeded (--max-seconds)");
    EXPECT_FALSE(child.isRunning());
}

TEST(ChildProcessTest, CanBeStartedAgain) {
    ChildProcess child;
    for (const int status : {2, 1, 0}) {
        child.start([&] { return endWith(status); });
        EXPECT_TRUE(child.isRunning());
        EXPECT_EQ(child.wait().exitStatus(), status);
    }
}

TEST(ChildProcessTest, EndsWithItsOwner) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    {
        ChildProcess child;
        child.start([] { return pause(); });
    }
    close(ends[1]);
    char byte = 0;
    EXPECT_EQ(read(ends[0], &byte, 1), 0) << "the other end is open in the child no more";
    close(ends[0]);
}
