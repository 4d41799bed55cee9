/**
 * @file
 * Memory of the engine's objects that live and end together.
 */
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include <xercesc/framework/MemoryManager.hpp>

/**
 * Hands out memory from large blocks, keeps what comes back for the next request of the same size,
 * and frees all of it together: what the engine loses after an error comes back too.
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

    /** What is allocated from now on may come from any thread, and must be deallocated. */
    void seal() { m_isSealed = true; }
    /** Bytes that the pool has taken, not counting what came after seal(). */
    std::size_t size() const { return m_size; }

private:
    struct Header;
    struct LargeHeader;

    static constexpr std::size_t ALIGNMENT = alignof(std::max_align_t);
    static constexpr std::size_t SIZES = 64; // each ALIGNMENT bytes larger than the one before

    void* allocateLarge(std::size_t size);
    std::byte* carve(std::size_t size);

    std::byte* m_free = nullptr;
    std::byte* m_end = nullptr;
    std::size_t m_size = 0;
    bool m_isSealed = false;
    /** By size: what came back, each piece pointing to the next. */
    std::array<Header*, SIZES> m_returned{};
    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
    LargeHeader* m_large = nullptr;
};
