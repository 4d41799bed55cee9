/**
 * @file
 * A memory manager as a host may pass it to the engines.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <mutex>
#include <new>

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>

/**
 * Counts allocations, and fails on request. Each block begins with a mark, so that blocks of
 * another allocator are detected when they are deallocated.
 */
class CountingMemoryManager : public xercesc::MemoryManager {
public:
    void* allocate(XMLSize_t size) override {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_left == 0) {
            throw xercesc::OutOfMemoryException();
        }
        --m_left;
        ++m_allocations;
        ++m_blocks;
        auto* const block = static_cast<std::uintptr_t*>(::operator new(size + HEADER));
        *block = MARK;
        return reinterpret_cast<char*>(block) + HEADER;
    }

    void deallocate(void* memory) override {
        if (!memory) {
            return;
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        auto* const block = reinterpret_cast<std::uintptr_t*>(static_cast<char*>(memory) - HEADER);
        if (*block != MARK) {
            ++m_foreignBlocks;
            return;
        }
        *block = 0;
        --m_blocks;
        ::operator delete(block);
    }

    xercesc::MemoryManager* getExceptionMemoryManager() override { return this; }

    /** Allocated blocks that are not yet deallocated. */
    std::size_t blocks() const { return m_blocks; }
    std::size_t allocations() const { return m_allocations; }
    /** Deallocated blocks that were not allocated here. */
    std::size_t foreignBlocks() const { return m_foreignBlocks; }

    void failAfter(std::size_t allocations) { m_left = allocations; }
    void stopFailing() { m_left = UNLIMITED; }

private:
    static constexpr std::size_t HEADER = alignof(std::max_align_t);
    static constexpr std::uintptr_t MARK = 0x5EC4E700;
    static constexpr std::size_t UNLIMITED = std::numeric_limits<std::size_t>::max();

    std::mutex m_mutex;
    std::size_t m_left = UNLIMITED;
    std::size_t m_allocations = 0;
    std::size_t m_blocks = 0;
    std::size_t m_foreignBlocks = 0;
};
