#include "xslt/MemoryPool.h"

#include "support/MemoryChecker.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <set>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

bool isAligned(const void* pointer) {
    // The operator new of a memory checker aligns less on 32 bits.
    const std::size_t alignment =
        isUnderAMemoryChecker() ? alignof(void*) * 2 : alignof(std::max_align_t);
    return reinterpret_cast<std::uintptr_t>(pointer) % alignment == 0;
}

constexpr std::size_t LARGE = std::size_t{1} << 20;

/** The process gets no more memory from the system. */
class NoMoreMemory {
public:
    NoMoreMemory() {
        ::getrlimit(RLIMIT_AS, &m_before);
        const rlimit none{0, m_before.rlim_max};
        ::setrlimit(RLIMIT_AS, &none);
    }
    NoMoreMemory(const NoMoreMemory&) = delete;
    NoMoreMemory& operator=(const NoMoreMemory&) = delete;
    ~NoMoreMemory() { ::setrlimit(RLIMIT_AS, &m_before); }

private:
    rlimit m_before{};
};

void allocateWithoutEnd(MemoryPool& pool, std::size_t size) {
    for (;;) {
        std::memset(pool.allocate(size), 0, size);
    }
}

} // namespace

TEST(MemoryPoolTest, PiecesOfEverySizeAreAlignedAndApart) {
    MemoryPool pool;
    std::vector<std::pair<unsigned char*, std::size_t>> pieces;
    for (std::size_t size = 0; size < 3000; size += 7) {
        auto* const piece = static_cast<unsigned char*>(pool.allocate(size));
        ASSERT_TRUE(isAligned(piece));
        std::memset(piece, static_cast<int>(size % 251), size);
        pieces.emplace_back(piece, size);
    }
    for (const auto& [piece, size] : pieces) {
        for (std::size_t i = 0; i < size; ++i) {
            ASSERT_EQ(piece[i], size % 251);
        }
        pool.deallocate(piece);
    }
}

/** Destructors of the engine allocate: the pool has a reserve for them after a failure. */
TEST(MemoryPoolTest, ServesSmallPiecesAfterMemoryHasEnded) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker needs all of the address space";
    }
    MemoryPool pool;
    std::size_t served = 0;
    {
        const NoMoreMemory noMoreMemory;
        EXPECT_THROW(allocateWithoutEnd(pool, 500), std::bad_alloc);
        EXPECT_THROW(pool.allocate(LARGE), std::bad_alloc);
        for (; served < 50; ++served) {
            std::memset(pool.allocate(10), 0, 10);
        }
        EXPECT_THROW(allocateWithoutEnd(pool, 10), std::bad_alloc); // the reserve is small
    }
    EXPECT_EQ(served, 50U);
    std::memset(pool.allocate(LARGE), 0, LARGE);
}

TEST(MemoryPoolTest, WhatComesBackIsHandedOutAgain) {
    MemoryPool pool;
    for (const std::size_t size : {0U, 1U, 16U, 100U, 1000U}) {
        void* const first = pool.allocate(size);
        pool.deallocate(first);
        EXPECT_EQ(pool.allocate(size), first) << size;
    }
}

TEST(MemoryPoolTest, DoesNotGrowWhereAllComesBack) {
    MemoryPool pool;
    const auto use = [&] {
        std::vector<void*> pieces;
        for (std::size_t size = 1; size < 20'000; size = size * 3 / 2 + 1) {
            pieces.push_back(pool.allocate(size));
        }
        for (void* const piece : pieces) {
            pool.deallocate(piece);
        }
    };
    use();
    const std::size_t size = pool.size();
    for (int i = 0; i < 1000; ++i) {
        use();
    }
    EXPECT_EQ(pool.size(), size);
}

TEST(MemoryPoolTest, ALargePieceIsGivenBackAtOnce) {
    MemoryPool pool;
    const std::size_t before = pool.size();
    void* const first = pool.allocate(LARGE);
    void* const second = pool.allocate(LARGE);
    void* const third = pool.allocate(LARGE);
    EXPECT_GE(pool.size(), 3 * LARGE);
    for (void* const piece : {second, first, third}) { // from the middle of the list too
        std::memset(piece, 1, LARGE);
        pool.deallocate(piece);
    }
    EXPECT_EQ(pool.size(), before);
}

TEST(MemoryPoolTest, AllIsFreedWithThePool) {
    MemoryPool pool; // a memory checker sees what is not
    for (const std::size_t size : {1U, 100U, 10'000U, 1'000'000U}) {
        std::memset(pool.allocate(size), 1, size);
    }
}

TEST(MemoryPoolTest, NullComesBackAsNothing) {
    MemoryPool pool;
    pool.deallocate(nullptr);
    pool.seal();
    pool.deallocate(nullptr);
}

TEST(MemoryPoolTest, ASizeThatCannotBeIsOutOfMemory) {
    for (const std::size_t size :
         {std::numeric_limits<std::size_t>::max(), std::numeric_limits<std::size_t>::max() - 15,
          std::numeric_limits<std::size_t>::max() / 2 + 1}) {
        MemoryPool pool;
        const std::size_t before = pool.size();
        EXPECT_THROW(pool.allocate(size), std::bad_alloc) << size;
        EXPECT_EQ(pool.size(), before);
        EXPECT_NE(pool.allocate(1), nullptr);
        pool.seal();
        EXPECT_THROW(pool.allocate(size), std::bad_alloc) << size;
    }
}

TEST(MemoryPoolTest, ExceptionsOutliveThePool) {
    MemoryPool pool;
    EXPECT_NE(pool.getExceptionMemoryManager(), &pool);
}

TEST(MemoryPoolTest, SealedItIsUsedByThreads) {
    MemoryPool pool;
    std::vector<void*> before;
    for (std::size_t size = 1; size < 2000; size *= 2) {
        before.push_back(pool.allocate(size));
    }
    before.push_back(pool.allocate(LARGE));
    const std::size_t size = pool.size();
    pool.seal();
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            for (std::size_t pieceSize = 1; pieceSize < 5000; pieceSize += 100) {
                void* const piece = pool.allocate(pieceSize);
                EXPECT_TRUE(isAligned(piece));
                std::memset(piece, 1, pieceSize);
                pool.deallocate(piece);
            }
        });
    }
    // What was allocated before may come back, and is freed with the pool.
    for (void* const piece : before) {
        pool.deallocate(piece);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(pool.size(), size);
}
