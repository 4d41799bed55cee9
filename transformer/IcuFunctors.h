/**
 * @file
 * Sorting and number formatting by ICU, as the engine transformer of the other transforms has them:
 * a stylesheet is to give one answer whichever way it is run.
 */
#pragma once

#include <optional>

#include <xalanc/ICUBridge/ICUBridgeCollationCompareFunctor.hpp>
#include <xalanc/ICUBridge/ICUFormatNumberFunctor.hpp>
#include <xalanc/XSLT/StylesheetExecutionContextDefault.hpp>

/** Built when a stylesheet first needs it: building it costs more than a whole small transform. */
template <typename Functor>
class BuiltOnFirstUse {
public:
    const Functor& get() const {
        if (!m_functor) {
            m_functor.emplace(xalanc::XalanMemMgrs::getDefaultXercesMemMgr());
        }
        return *m_functor;
    }

private:
    mutable std::optional<Functor> m_functor;
};

class IcuCollation : public xalanc::XalanCollationServices::CollationCompareFunctor {
public:
    using CaseOrder = xalanc::XalanCollationServices::eCaseOrder;

    int operator()(const char16_t* left, const char16_t* right,
                   CaseOrder caseOrder) const override {
        return m_functor.get()(left, right, caseOrder);
    }
    int operator()(const char16_t* left, const char16_t* right, const char16_t* locale,
                   CaseOrder caseOrder) const override {
        return m_functor.get()(left, right, locale, caseOrder);
    }

private:
    BuiltOnFirstUse<xalanc::ICUBridgeCollationCompareFunctor> m_functor;
};

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
