/**
 * @file
 * A host's own memory manager for the engines.
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
 * Counts what it hands out, and refuses on request. Its blocks cannot be mistaken for those of
 * plain `new`: each begins with a mark of its own, which is looked for when the block comes back.
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

    /** Blocks handed out and not yet given back. */
    std::size_t blocks() const { return m_blocks; }
    std::size_t allocations() const { return m_allocations; }
    /** Blocks that came back without ever having been handed out. */
    std::size_t foreignBlocks() const { return m_foreignBlocks; }

    void refuseAfter(std::size_t allocations) { m_left = allocations; }
    void refuseNoMore() { m_left = UNLIMITED; }

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
