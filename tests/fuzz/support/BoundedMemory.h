/**
 * @file
 * The engine's memory: a host's own memory manager, which refuses more than one input may take.
 */
#pragma once

#include <cstddef>

#include <xercesc/framework/MemoryManager.hpp>

/**
 * Endless recursion ends here in the engine's own exception, as it does in a process with a memory
 * limit. Each block is a block of its own, so that the sanitizer sees its ends.
 */
class BoundedMemory : public xercesc::MemoryManager {
public:
    void* allocate(XMLSize_t size) override;
    void deallocate(void* block) override;
    xercesc::MemoryManager* getExceptionMemoryManager() override { return this; }

    /** From here on the engine gets so much more, and no more. What it has lost counts no longer.
     */
    void allowForOneInput();

private:
    std::size_t m_used = 0;
    std::size_t m_most = static_cast<std::size_t>(-1);
};
