#include <nrb/NRBThread.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

class RecordingResource : public NRBThreadLockableResource {
public:
    void lock() override { m_strCalls += "lock "; }
    void unlock() override { m_strCalls += "unlock "; }
    std::string m_strCalls;
};

} // namespace

TEST(NRBThreadGuard, HoldsTheLockUntilItIsDestroyed) {
    RecordingResource resource;
    {
        const NRBThreadGuard guard(resource);
        EXPECT_EQ(resource.m_strCalls, "lock ");
    }
    EXPECT_EQ(resource.m_strCalls, "lock unlock ");
}

TEST(NRBThreadGuard, ReleasesTheLockWhenAnExceptionPasses) {
    RecordingResource resource;
    try {
        const NRBThreadGuard guard(resource);
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(resource.m_strCalls, "lock unlock ");
}

TEST(NRBThreadCriticalSection, AllowsOneThreadAtATime) {
    NRBThreadCriticalSection section(1);
    int counter = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 10'000; ++k) {
                const NRBThreadGuard guard(section);
                ++counter;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counter, 40'000);
}

TEST(NRBThreadCriticalSection, CanBeLockedAgainByTheSameThread) {
    NRBThreadCriticalSection section(0);
    const NRBThreadGuard outer(section);
    const std::lock_guard<NRBThreadCriticalSection> inner(section);

    std::atomic<bool> entered{false};
    std::thread other([&] {
        const NRBThreadGuard guard(section);
        entered = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered);
    section.unlock();
    section.unlock();
    other.join();
    EXPECT_TRUE(entered);
    section.lock();
    section.lock();
}
