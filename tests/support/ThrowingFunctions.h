/**
 * @file
 * Extension functions that throw any exception.
 */
#pragma once

#include <vexa/TqXsltFunction.h>

#include <functional>
#include <utility>

/** Calls `thrower`, which throws an exception. */
class ThrowingFunctionOf : public TqXsltFunction {
public:
    explicit ThrowingFunctionOf(std::function<void()> thrower) : m_thrower(std::move(thrower)) {}

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext&, xalanc::XalanNode*,
                               const XObjectArgVectorType&, const xalanc::Locator*) const override {
        m_thrower();
        return xalanc::XObjectPtr();
    }
    ThrowingFunctionOf* clone() const override { return new ThrowingFunctionOf(*this); }
    xalanc::XalanDOMString getError() const override { return xalanc::XalanDOMString("throws"); }

private:
    std::function<void()> m_thrower;
};
