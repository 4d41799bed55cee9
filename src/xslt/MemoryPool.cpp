#include "xslt/MemoryPool.h"

#include <algorithm>
#include <new>
#include <sys/mman.h>
#include <utility>

#include <xercesc/util/PlatformUtils.hpp>

namespace {

/** The allocation sweep sets it to 0: then each piece is an allocation that can fail. */
#ifndef VEXA_LARGEST_POOLED_PIECE
#define VEXA_LARGEST_POOLED_PIECE ((SIZES - 1) * ALIGNMENT)
#endif

constexpr std::size_t FIRST_BLOCK = std::size_t{16} * 1024;
constexpr std::size_t LARGEST_BLOCK = std::size_t{512} * 1024;
constexpr std::size_t RESERVE = std::size_t{4} * 1024;
/** More is out of memory at once: sums with it would wrap around. */
constexpr std::size_t LARGEST_PIECE = static_cast<std::size_t>(-1) / 2;
/**
 * Pieces from this size on are mapped: what comes back goes to the system. The heap would keep the
 * holes that a growing piece leaves, and a process would have more memory than is counted.
 */
constexpr std::size_t MAPPED = std::size_t{1} * 1024 * 1024;
/** In place of a size: where the piece came from. */
constexpr std::size_t LARGE = static_cast<std::size_t>(-1);
constexpr std::size_t SEPARATE = static_cast<std::size_t>(-2);

void* takeFromSystem(std::size_t size) {
    if (size < MAPPED) {
        return ::operator new(size);
    }
    void* const memory =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::bad_alloc();
    }
    return memory;
}

void returnToSystem(void* memory, std::size_t size) {
    if (size < MAPPED) {
        ::operator delete(memory);
    } else {
        ::munmap(memory, size);
    }
}

} // namespace

/** In front of every piece. */
struct alignas(std::max_align_t) MemoryPool::Header {
    std::size_t sizeIndex;
    Header* next; // of returned pieces
};

/** In front of the header of a piece that is too large for the blocks: a list, so that all of them
 * can be freed. */
struct alignas(std::max_align_t) MemoryPool::LargeHeader {
    LargeHeader* previous;
    LargeHeader* next;
    std::size_t size;
};

MemoryPool::MemoryPool() : m_reserve(carve(RESERVE)), m_reserveEnd(m_free) {}

MemoryPool::~MemoryPool() {
    giveBack(m_counted);
    while (m_large) {
        LargeHeader* const next = m_large->next;
        returnToSystem(m_large, m_large->size);
        m_large = next;
    }
}

void* MemoryPool::allocate(XMLSize_t size) {
    if (size <= VEXA_LARGEST_POOLED_PIECE && !m_isSealed) {
        Header*& returned = m_returned[sizeIndexOf(size)];
        if (Header* const header = returned) {
            take(sizeof(Header) + header->sizeIndex * ALIGNMENT);
            returned = header->next;
            return header + 1;
        }
    }
    return allocateNew(size);
}

void* MemoryPool::allocateNew(std::size_t size) {
    if (size > LARGEST_PIECE) {
        throw std::bad_alloc();
    }
    if (m_isSealed) {
        auto* const header = static_cast<Header*>(::operator new(sizeof(Header) + size));
        header->sizeIndex = SEPARATE;
        return header + 1;
    }
    try {
        return size > VEXA_LARGEST_POOLED_PIECE ? allocateLarge(size) : allocateFromBlock(size);
    } catch (const std::bad_alloc&) {
        return allocateFromReserve(size);
    }
}

void* MemoryPool::allocateFromBlock(std::size_t size) {
    const std::size_t sizeIndex = sizeIndexOf(size);
    const std::size_t whole = sizeof(Header) + sizeIndex * ALIGNMENT;
    take(whole);
    auto* const header = reinterpret_cast<Header*>(carve(whole));
    header->sizeIndex = sizeIndex;
    return header + 1;
}

std::byte* MemoryPool::carve(std::size_t size) {
    if (static_cast<std::size_t>(m_end - m_free) < size) {
        const std::size_t blockSize = std::clamp(m_size, FIRST_BLOCK, LARGEST_BLOCK);
        m_blocks.push_back(std::unique_ptr<std::byte[]>(new std::byte[blockSize]));
        m_free = m_blocks.back().get();
        m_end = m_free + blockSize;
        m_size += blockSize;
    }
    std::byte* const memory = m_free;
    m_free += size;
    return memory;
}

void* MemoryPool::allocateLarge(std::size_t size) {
    constexpr std::size_t HEADERS = sizeof(LargeHeader) + sizeof(Header);
    take(HEADERS + size);
    auto* const large = static_cast<LargeHeader*>(takeFromSystem(HEADERS + size));
    *large = {nullptr, m_large, HEADERS + size};
    if (m_large) {
        m_large->previous = large;
    }
    m_large = large;
    m_size += large->size;
    auto* const header = reinterpret_cast<Header*>(large + 1);
    header->sizeIndex = LARGE;
    return header + 1;
}

/** Throws at the first failure; what follows it is the clean-up. */
void* MemoryPool::allocateFromReserve(std::size_t size) {
    const std::size_t sizeIndex = sizeIndexOf(size);
    const std::size_t whole = sizeof(Header) + sizeIndex * ALIGNMENT;
    const bool fits =
        sizeIndex < SIZES && whole <= static_cast<std::size_t>(m_reserveEnd - m_reserve);
    if (!std::exchange(m_isCleaningUp, true) || !fits) {
        throw std::bad_alloc();
    }
    auto* const header = reinterpret_cast<Header*>(m_reserve);
    m_reserve += whole;
    header->sizeIndex = sizeIndex;
    return header + 1;
}

void MemoryPool::deallocate(void* pointer) {
    if (!pointer) {
        return;
    }
    Header* const header = static_cast<Header*>(pointer) - 1;
    if (header->sizeIndex == SEPARATE) {
        ::operator delete(header);
    } else if (m_isSealed) {
        // Other threads may be at work: the piece comes back with the pool.
    } else if (header->sizeIndex == LARGE) {
        LargeHeader* const large = reinterpret_cast<LargeHeader*>(header) - 1;
        (large->previous ? large->previous->next : m_large) = large->next;
        if (large->next) {
            large->next->previous = large->previous;
        }
        m_size -= large->size;
        giveBack(large->size);
        returnToSystem(large, large->size);
    } else {
        giveBack(sizeof(Header) + header->sizeIndex * ALIGNMENT);
        header->next = m_returned[header->sizeIndex];
        m_returned[header->sizeIndex] = header;
    }
}

xercesc::MemoryManager* MemoryPool::getExceptionMemoryManager() {
    return xercesc::XMLPlatformUtils::fgMemoryManager;
}
