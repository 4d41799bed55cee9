#include "FailingAllocations.h"

#include <cstdint>
#include <cstdlib>
#include <execinfo.h>
#include <new>

namespace {

constexpr int MOST_FRAMES = 48;
/** For a traced block; each frame costs time. */
constexpr int MOST_TRACED_FRAMES = 12;
constexpr std::size_t MOST_TRACED = 1 << 15;

struct TracedBlock {
    void* block;
    int depth;
    void* frames[MOST_TRACED_FRAMES];
};

// Plain data: memory is allocated before the first constructor of this program has run.
bool g_counting = false;
std::size_t g_counted = 0;
std::size_t g_failAt = 0;
Shortage g_shortage = Shortage::Once;
bool g_failed = false;
int g_failureDepth = 0;
void* g_failureFrames[MOST_FRAMES];
long g_live = 0;
/** A hash table with open addressing. */
TracedBlock* g_traced = nullptr;
/** Marks an entry whose block was freed. */
void* const FREED = &g_traced;

bool mustFail() {
    if (!g_counting) {
        return false;
    }
    ++g_counted;
    const bool fails = g_failAt != 0 && (g_shortage == Shortage::Once ? g_counted == g_failAt
                                                                      : g_counted >= g_failAt);
    if (fails && !g_failed) {
        g_failed = true;
        g_failureDepth = backtrace(g_failureFrames, MOST_FRAMES);
    }
    return fails;
}

std::size_t hash(void* block) {
    return reinterpret_cast<std::uintptr_t>(block) / alignof(std::max_align_t) % MOST_TRACED;
}

bool isUsed(const TracedBlock& traced) {
    return traced.block && traced.block != FREED;
}

void remember(void* block) {
    std::size_t place = hash(block);
    while (isUsed(g_traced[place])) {
        place = (place + 1) % MOST_TRACED;
    }
    g_traced[place].block = block;
    g_traced[place].depth = backtrace(g_traced[place].frames, MOST_TRACED_FRAMES);
}

void forget(void* block) {
    std::size_t place = hash(block);
    while (g_traced[place].block && g_traced[place].block != block) {
        place = (place + 1) % MOST_TRACED;
    }
    if (g_traced[place].block) {
        g_traced[place].block = FREED;
    }
}

void* allocateOrNull(std::size_t size, std::size_t alignment) {
    if (mustFail()) {
        return nullptr;
    }
    void* const block =
        alignment == 0
            ? std::malloc(size == 0 ? 1 : size)
            : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
    if (block) {
        ++g_live;
        if (g_traced) {
            remember(block);
        }
    }
    return block;
}

void* allocate(std::size_t size, std::size_t alignment = 0) {
    if (void* const block = allocateOrNull(size, alignment)) {
        return block;
    }
    throw std::bad_alloc();
}

void release(void* block) noexcept {
    if (block) {
        --g_live;
        if (g_traced) {
            forget(block);
        }
        std::free(block);
    }
}

} // namespace

namespace allocations {

void failAt(std::size_t n, Shortage shortage) {
    g_counted = 0;
    g_failAt = n;
    g_shortage = shortage;
    g_failed = false;
}

void resume() {
    g_counting = true;
}

void suspend() {
    g_counting = false;
}

bool hasFailed() {
    return g_failed;
}

Place placeOfFailure() {
    return g_failed ? Place(g_failureFrames, g_failureFrames + g_failureDepth) : Place();
}

long liveBlocks() {
    return g_live;
}

void trace() {
    g_traced = static_cast<TracedBlock*>(std::calloc(MOST_TRACED, sizeof(TracedBlock)));
}

std::vector<Place> tracedPlaces() {
    TracedBlock* const traced = g_traced;
    g_traced = nullptr;
    std::vector<Place> places;
    for (std::size_t i = 0; i < MOST_TRACED; ++i) {
        if (isUsed(traced[i])) {
            places.emplace_back(traced[i].frames, traced[i].frames + traced[i].depth);
        }
    }
    std::free(traced);
    return places;
}

} // namespace allocations

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size, 0);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size, 0);
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return allocateOrNull(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return allocateOrNull(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::align_val_t) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept {
    release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    release(block);
}
