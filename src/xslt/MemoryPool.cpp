#include "xslt/MemoryPool.h"

#include <algorithm>
#include <new>

#include <xercesc/util/PlatformUtils.hpp>

namespace {

constexpr std::size_t FIRST_BLOCK = std::size_t{16} * 1024;
constexpr std::size_t LARGEST_BLOCK = std::size_t{512} * 1024;
/** More is out of memory at once: sums with it would wrap around. */
constexpr std::size_t LARGEST_PIECE = static_cast<std::size_t>(-1) / 2;
/** In place of a size: where the piece came from. */
constexpr std::size_t LARGE = static_cast<std::size_t>(-1);
constexpr std::size_t SEPARATE = static_cast<std::size_t>(-2);

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

MemoryPool::MemoryPool() = default;

MemoryPool::~MemoryPool() {
    while (m_large) {
        LargeHeader* const next = m_large->next;
        ::operator delete(m_large);
        m_large = next;
    }
}

void* MemoryPool::allocate(XMLSize_t size) {
    if (size > LARGEST_PIECE) {
        throw std::bad_alloc();
    }
    if (m_isSealed) {
        auto* const header = static_cast<Header*>(::operator new(sizeof(Header) + size));
        header->sizeIndex = SEPARATE;
        return header + 1;
    }
    const std::size_t sizeIndex = (size + ALIGNMENT - 1) / ALIGNMENT;
    if (sizeIndex >= SIZES) {
        return allocateLarge(size);
    }
    if (Header* const header = m_returned[sizeIndex]) {
        m_returned[sizeIndex] = header->next;
        return header + 1;
    }
    auto* const header = reinterpret_cast<Header*>(carve(sizeof(Header) + sizeIndex * ALIGNMENT));
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
    auto* const large = static_cast<LargeHeader*>(::operator new(HEADERS + size));
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
        ::operator delete(large);
    } else {
        header->next = m_returned[header->sizeIndex];
        m_returned[header->sizeIndex] = header;
    }
}

xercesc::MemoryManager* MemoryPool::getExceptionMemoryManager() {
    return xercesc::XMLPlatformUtils::fgMemoryManager;
}
