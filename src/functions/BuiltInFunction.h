/**
 * @file
 * What the built-in functions have in common.
 */
#pragma once

#include <vexa/TqXsltFunction.h>

#include <new>

#include <xalanc/Include/XalanMemoryManagement.hpp>

/**
 * Base of a function of the library's own, without state. `Concrete` has a text `USAGE`, which
 * getError() returns.
 *
 * The engine's copies are placed directly into the engine's memory: it copies each function once or
 * twice for each transform, and the adapter around a host's function doubles the cost of a copy.
 */
template <typename Concrete>
class BuiltInFunction : public TqXsltFunction {
public:
    TqXsltFunction* clone() const final { return new Concrete; }

    xalanc::Function* clone(xercesc::MemoryManager& memoryManager) const final {
        xalanc::XalanAllocationGuard memory(memoryManager, sizeof(Concrete));
        auto* const copy = new (memory.get()) Concrete;
        memory.release();
        return copy;
    }

    xalanc::XalanDOMString getError() const final {
        return xalanc::XalanDOMString(Concrete::USAGE);
    }
};
