/**
 * @file
 * format-number by ICU.
 */
#pragma once

#include "engine/BuiltOnFirstUse.h"

#include <map>
#include <memory>
#include <string>
#include <utility>

#include <unicode/decimfmt.h>
#include <xalanc/ICUBridge/ICUFormatNumberFunctor.hpp>
#include <xalanc/XSLT/StylesheetExecutionContextDefault.hpp>

/**
 * Formats as the engine transformer of the file transform does, so that a stylesheet gives one
 * result whichever way it is run. The engine's own functor parses the pattern at each call: this
 * one keeps a format for each pattern.
 */
class IcuNumberFormat : public xalanc::StylesheetExecutionContextDefault::FormatNumberFunctor {
public:
    void operator()(xalanc::XPathExecutionContext& executionContext, double number,
                    const xalanc::XalanDOMString& pattern,
                    const xalanc::XalanDecimalFormatSymbols* symbols,
                    xalanc::XalanDOMString& result, const xalanc::XalanNode* context,
                    const xalanc::Locator* locator) const override;

private:
    /** The symbols belong to the stylesheet, which outlives its formats. */
    using Key = std::pair<const xalanc::XalanDecimalFormatSymbols*, std::u16string>;

    const icu::DecimalFormat* find(const xalanc::XalanDOMString& pattern,
                                   const xalanc::XalanDecimalFormatSymbols* symbols) const;

    BuiltOnFirstUse<xalanc::ICUFormatNumberFunctor> m_functor;
    /** A null format stands for a pattern that ICU refuses. */
    mutable std::map<Key, std::unique_ptr<icu::DecimalFormat>> m_formats;
};
