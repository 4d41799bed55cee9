#include "BoundedMemory.h"

#include <malloc.h>
#include <new>

#include <xercesc/util/OutOfMemoryException.hpp>

namespace {

constexpr std::size_t MOST_FOR_ONE_INPUT = 64 * 1024 * 1024;

} // namespace

void* BoundedMemory::allocate(XMLSize_t size) {
    if (size > m_most || m_used > m_most - size) {
        throw xercesc::OutOfMemoryException();
    }
    void* const block = ::operator new(size);
    m_used += malloc_usable_size(block);
    return block;
}

void BoundedMemory::deallocate(void* block) {
    if (block) {
        m_used -= malloc_usable_size(block);
        ::operator delete(block);
    }
}

void BoundedMemory::allowForOneInput() {
    m_most = m_used + MOST_FOR_ONE_INPUT;
}
