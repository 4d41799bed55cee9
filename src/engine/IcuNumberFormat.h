/**
 * @file
 * format-number by ICU.
 */
#pragma once

#include "engine/BuiltOnFirstUse.h"

#include <xalanc/ICUBridge/ICUFormatNumberFunctor.hpp>
#include <xalanc/XSLT/StylesheetExecutionContextDefault.hpp>

/**
 * Formats as the engine transformer of the file transform does, so that a stylesheet gives one
 * result whichever way it is run.
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
