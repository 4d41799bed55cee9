/**
 * @file
 * format-number() with ICU.
 */
#pragma once

#include "engine/BuiltOnFirstUse.h"

#include <xalanc/ICUBridge/ICUFormatNumberFunctor.hpp>
#include <xalanc/XSLT/StylesheetExecutionContextDefault.hpp>

/**
 * Formats as the engine does in file and stream transforms, so that a stylesheet gives the same
 * result in memory.
 */
class IcuNumberFormat : public xalanc::StylesheetExecutionContextDefault::FormatNumberFunctor {
public:
    void operator()(xalanc::XPathExecutionContext& executionContext, double number,
                    const xalanc::XalanDOMString& pattern,
                    const xalanc::XalanDecimalFormatSymbols* symbols,
                    xalanc::XalanDOMString& result, const xalanc::XalanNode* context,
                    const xalanc::Locator* locator) const override {
        m_functor.get()(executionContext, number, pattern, symbols, result, context, locator);
    }

private:
    BuiltOnFirstUse<xalanc::ICUFormatNumberFunctor> m_functor;
};
