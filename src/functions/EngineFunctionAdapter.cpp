#include "functions/EngineFunctionAdapter.h"

#include <new>
#include <utility>

#include <xalanc/Include/XalanMemoryManagement.hpp>

xalanc::Function* EngineFunctionAdapter::create(const TqXsltFunction& function,
                                                xercesc::MemoryManager& memoryManager) {
    std::unique_ptr<const TqXsltFunction> copy(function.clone());
    xalanc::XalanAllocationGuard memory(memoryManager, sizeof(EngineFunctionAdapter));
    auto* const adapter = new (memory.get()) EngineFunctionAdapter(std::move(copy));
    memory.release();
    return adapter;
}

EngineFunctionAdapter::EngineFunctionAdapter(std::unique_ptr<const TqXsltFunction> function)
    : m_pFunction(std::move(function)) {}

EngineFunctionAdapter::~EngineFunctionAdapter() = default;

xalanc::XObjectPtr EngineFunctionAdapter::execute(xalanc::XPathExecutionContext& executionContext,
                                                  xalanc::XalanNode* context,
                                                  const XObjectArgVectorType& args,
                                                  const xalanc::Locator* locator) const {
    return m_pFunction->execute(executionContext, context, args, locator);
}

xalanc::Function* EngineFunctionAdapter::clone(xercesc::MemoryManager& memoryManager) const {
    return create(*m_pFunction, memoryManager);
}

const xalanc::XalanDOMString&
EngineFunctionAdapter::getError(xalanc::XalanDOMString& buffer) const {
    return buffer = m_pFunction->getError();
}
