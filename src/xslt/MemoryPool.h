/**
 * @file
 * Memory of the engine's objects that live and end together.
 */
#pragma once

#include "xslt/Operation.h"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include <xercesc/framework/MemoryManager.hpp>

/**
 * Hands out memory from large blocks, keeps what comes back for the next request of the same size,
 * and frees all of it together: what the engine loses after an error comes back too.
 *
 * The engine's destructors allocate, and an exception there would end the process: the pool keeps a
 * reserve, which is used during clean-ups and after the first failed allocation.
 *
 * One thread uses it. After seal() any number of threads may: what they allocate then is separate.
 */
class MemoryPool final : public xercesc::MemoryManager {
public:
    MemoryPool();
    MemoryPool(const MemoryPool&) = delete;
    MemoryPool& operator=(const MemoryPool&) = delete;
    ~MemoryPool() override;

    void* allocate(XMLSize_t size) override;
    void deallocate(void* pointer) override;
    /** Exceptions outlive the pool. */
    xercesc::MemoryManager* getExceptionMemoryManager() override;

    /** Opens the reserve while the engine destroys objects, and closes it again. */
    void setCleaningUp(bool isCleaningUp) { m_isCleaningUp = isCleaningUp; }

    /** Declared after objects in a pool: it opens the reserve for their destructors. */
    class CleanUp {
    public:
        explicit CleanUp(MemoryPool& pool) : m_pool(pool) {}
        CleanUp(const CleanUp&) = delete;
        CleanUp& operator=(const CleanUp&) = delete;
        ~CleanUp() { m_pool.setCleaningUp(true); }

    private:
        MemoryPool& m_pool;
    };

    /** Counts what is allocated against the limits of an operation, until it is null again. */
    void setOperation(Operation* operation) {
        m_operation = operation && operation->isBounded() ? operation : nullptr;
        m_counted = 0;
    }
    /** What is allocated from now on may come from any thread, and must be deallocated. */
    void seal() {
        m_isSealed = true;
        m_operation = nullptr;
    }
    /** Bytes that the pool has taken, not counting what came after seal(). */
    std::size_t size() const { return m_size; }

private:
    struct Header;
    struct LargeHeader;

    static constexpr std::size_t ALIGNMENT = alignof(std::max_align_t);
    static constexpr std::size_t SIZES = 64; // each ALIGNMENT bytes larger than the one before

    static std::size_t sizeIndexOf(std::size_t size) { return (size + ALIGNMENT - 1) / ALIGNMENT; }

    void* allocateNew(std::size_t size);
    void* allocateFromBlock(std::size_t size);
    void* allocateLarge(std::size_t size);
    void* allocateFromReserve(std::size_t size);
    std::byte* carve(std::size_t size);

    /** An exception in a clean-up would end the process. */
    void take(std::size_t size) {
        if (m_operation && !m_isCleaningUp) {
            m_operation->takeMemory(size);
            m_counted += size;
        }
    }
    void giveBack(std::size_t size) {
        if (m_operation && !m_isCleaningUp) {
            m_operation->returnMemory(size);
            m_counted -= size;
        }
    }

    Operation* m_operation = nullptr;
    /** What the operation counts of this pool. It wraps around where older memory came back. */
    std::size_t m_counted = 0;
    std::byte* m_free = nullptr;
    std::byte* m_end = nullptr;
    std::size_t m_size = 0;
    bool m_isSealed = false;
    /** By size: what came back, each piece pointing to the next. */
    std::array<Header*, SIZES> m_returned{};
    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
    LargeHeader* m_large = nullptr;
    bool m_isCleaningUp = false;
    std::byte* m_reserve;
    std::byte* m_reserveEnd;
};
