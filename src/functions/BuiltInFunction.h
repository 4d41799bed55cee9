/**
 * @file
 * Base class of the built-in functions.
 */
#pragma once

#include <vexa/TqXsltFunction.h>

#include <new>

#include <xalanc/Include/XalanMemoryManagement.hpp>

/**
 * Base class of a built-in function, which has no state. `Concrete` defines the text `USAGE`, which
 * getError() returns.
 *
 * The engine copies each function once or twice in each transform. The copies are created directly
 * in the engine's memory, because an EngineFunctionAdapter doubles the cost of a copy.
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
