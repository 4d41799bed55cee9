/**
 * @file
 * Adapter for the engine's copies of extension functions.
 */
#pragma once

#include <vexa/TqXsltFunction.h>

#include <memory>

/**
 * Owns a function created with plain `new`, and is itself created in the engine's memory.
 *
 * The engine frees a clone by a call of its destructor, and then returns the memory to the memory
 * manager. For a function created with plain `new` that is the wrong allocator, and the size of a
 * host's function is not known, so it cannot be created in the memory manager's memory. The adapter
 * has a known size, and its destructor deletes the function.
 */
class EngineFunctionAdapter final : public xalanc::Function {
public:
    /** Clones `function` into an adapter. The engine owns the adapter. */
    static Function* create(const TqXsltFunction& function, xercesc::MemoryManager& memoryManager);

    explicit EngineFunctionAdapter(std::unique_ptr<const TqXsltFunction> function);
    ~EngineFunctionAdapter() override;

    using Function::execute;
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    Function* clone(xercesc::MemoryManager& memoryManager) const override;

protected:
    const xalanc::XalanDOMString& getError(xalanc::XalanDOMString& buffer) const override;

private:
    std::unique_ptr<const TqXsltFunction> m_pFunction;
};
