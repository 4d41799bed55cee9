/**
 * @file
 * Sorting with ICU.
 */
#pragma once

#include "engine/BuiltOnFirstUse.h"

#include <xalanc/ICUBridge/ICUBridgeCollationCompareFunctor.hpp>

/**
 * Compares as the engine does in file and stream transforms, so that a stylesheet sorts the same
 * way in memory.
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
