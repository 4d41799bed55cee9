#include "Allocations.h"

#include <cstddef>
#include <malloc.h>

namespace {

thread_local std::uint64_t t_allocations = 0;

} // namespace

// Replaces the allocation functions of the C library, which have a second name. operator new uses
// them too. The blocks are those of the C library, so free() needs no replacement.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size) {
    ++t_allocations;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    ++t_allocations;
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
    ++t_allocations;
    return __libc_realloc(block, size);
}
}

std::uint64_t allocations() {
    return t_allocations;
}

std::int64_t heapBytes() {
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<std::int64_t>(heap.uordblks + heap.hblkhd);
}
