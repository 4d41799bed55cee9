/**
 * @file
 * Extension functions as a host would write them.
 */
#pragma once

#include <vexa/TqXsltFunction.h>

#include <stdexcept>
#include <string>

/** Returns the same text in every call, and counts its objects. */
class ConstantFunction : public TqXsltFunction {
public:
    explicit ConstantFunction(const char* text) : m_strText(text) { ++s_alive; }
    ConstantFunction(const ConstantFunction& other)
        : TqXsltFunction(other), m_strText(other.m_strText) {
        ++s_alive;
    }
    ~ConstantFunction() override { --s_alive; }

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode*,
                               const XObjectArgVectorType&, const xalanc::Locator*) const override {
        return context.getXObjectFactory().createString(I18NStringToXalanDOMString(m_strText));
    }
    ConstantFunction* clone() const override { return new ConstantFunction(*this); }
    xalanc::XalanDOMString getError() const override {
        return xalanc::XalanDOMString("takes no arguments");
    }

    static int s_alive;

private:
    I18NString m_strText;
};

inline int ConstantFunction::s_alive = 0;

/** Returns the text of its first argument in brackets. */
class BracketFunction : public TqXsltFunction {
public:
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode*,
                               const XObjectArgVectorType& args,
                               const xalanc::Locator*) const override {
        const I18NString text = "[" + XalanDOMStringToI18NString(args[0]->str(context)) + "]";
        return context.getXObjectFactory().createString(I18NStringToXalanDOMString(text));
    }
    BracketFunction* clone() const override { return new BracketFunction(*this); }
    xalanc::XalanDOMString getError() const override {
        return xalanc::XalanDOMString("takes one argument");
    }
};

/** Throws an exception that is not one of the engine. */
class ThrowingFunction : public TqXsltFunction {
public:
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext&, xalanc::XalanNode*,
                               const XObjectArgVectorType&, const xalanc::Locator*) const override {
        throw std::runtime_error("thrown by a function");
    }
    ThrowingFunction* clone() const override { return new ThrowingFunction(*this); }
    xalanc::XalanDOMString getError() const override { return xalanc::XalanDOMString("throws"); }
};
