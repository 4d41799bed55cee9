/**
 * @file
 * Functions that return a fixed text. A call costs nearly only the work of the engine.
 */
#pragma once

#include <vexa/TqXsltFunction.h>

#include <string>

/** An extension function of the engine. It reads its arguments and returns a fixed text. */
class FixedFunction : public xalanc::Function {
public:
    explicit FixedFunction(std::string text) : m_text(std::move(text)) {}

    using Function::execute;
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode*,
                               const XObjectArgVectorType& args,
                               const xalanc::Locator*) const override {
        for (const xalanc::XObjectPtr& argument : args) {
            argument->str(context);
        }
        return context.getXObjectFactory().createString(xalanc::XalanDOMString(m_text.c_str()));
    }

    Function* clone(xercesc::MemoryManager& memoryManager) const override {
        return xalanc::XalanCopyConstruct(memoryManager, *this);
    }

protected:
    const xalanc::XalanDOMString& getError(xalanc::XalanDOMString& buffer) const override {
        return buffer;
    }

private:
    std::string m_text;
};

/** An extension function of the library that returns a fixed text. */
class FixedTqFunction : public TqXsltFunction {
public:
    using TqXsltFunction::execute;
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode*,
                               const XObjectArgVectorType&, const xalanc::Locator*) const override {
        return context.getXObjectFactory().createString(xalanc::XalanDOMString("x"));
    }
    TqXsltFunction* clone() const override { return new FixedTqFunction(*this); }
    xalanc::XalanDOMString getError() const override { return xalanc::XalanDOMString("x"); }
};
