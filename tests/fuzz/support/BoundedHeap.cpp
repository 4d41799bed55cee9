#include "BoundedHeap.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <malloc.h>
#include <new>

namespace {

constexpr std::size_t MOST_FOR_ONE_INPUT = 64 * 1024 * 1024;
constexpr std::size_t NO_BOUND = std::numeric_limits<std::size_t>::max();

std::atomic<std::size_t> g_used{0};
std::atomic<std::size_t> g_most{NO_BOUND};

void* allocate(std::size_t size) noexcept {
    if (size > g_most || g_used > g_most - size) {
        return nullptr;
    }
    void* const block = std::malloc(size);
    g_used += malloc_usable_size(block);
    return block;
}

void* allocateOrThrow(std::size_t size) {
    void* const block = allocate(size);
    return block ? block : throw std::bad_alloc();
}

void release(void* block) noexcept {
    g_used -= malloc_usable_size(block);
    std::free(block);
}

} // namespace

BoundedHeap::BoundedHeap() {
    g_most = g_used + MOST_FOR_ONE_INPUT;
}

BoundedHeap::~BoundedHeap() {
    g_most = NO_BOUND;
}

void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
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
void operator delete(void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    release(block);
}
