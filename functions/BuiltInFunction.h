/**
 * @file
 * What the engine is given of the library's own functions.
 */
#pragma once

#include <vexa/TqXsltFunction.h>

#include <new>

#include <xalanc/Include/XalanMemoryManagement.hpp>

/**
 * Puts a function of a known size, without state, straight into the engine's memory. The engine
 * copies each function once or twice for each transform, and the adapter around a host's function
 * doubles what such a copy takes.
 */
template <typename Concrete>
class BuiltInFunction : public TqXsltFunction {
public:
    using TqXsltFunction::clone;

    xalanc::Function* clone(xercesc::MemoryManager& memoryManager) const final {
        xalanc::XalanAllocationGuard memory(memoryManager, sizeof(Concrete));
        auto* const copy = new (memory.get()) Concrete;
        memory.release();
        return copy;
    }
};
