/**
 * @file
 * What the engine is given when it clones a function of a host's.
 */
#pragma once

#include <vexa/TqXsltFunction.h>

#include <memory>

/**
 * Holds a function made with plain `new` inside an object from the engine's memory.
 *
 * The engine frees a clone by calling its destructor and handing its memory to the memory manager.
 * A function made with plain `new` would so be freed by the wrong allocator, and a function that
 * never knew its own size could not be placed into the manager's memory. The adapter has a known
 * size, and its destructor frees the function as it was made.
 */
class EngineFunctionAdapter final : public xalanc::Function {
public:
    /** Clones `function` into an adapter that the engine frees. */
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
