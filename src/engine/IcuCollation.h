/**
 * @file
 * Sorting by ICU.
 */
#pragma once

#include "engine/BuiltOnFirstUse.h"

#include <xalanc/ICUBridge/ICUBridgeCollationCompareFunctor.hpp>

/**
 * Compares as the engine transformer of the file transform does, so that a stylesheet sorts in one
 * order whichever way it is run.
 */
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
