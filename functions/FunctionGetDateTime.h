/**
 * @file
 * GetDateTime(): the time of day.
 */
#pragma once

#include "BuiltInFunction.h"

/** Gives the local time of day as hh:mm:ss.mmm. In spite of its name it gives no date. */
class FunctionGetDateTime : public BuiltInFunction<FunctionGetDateTime> {
public:
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;
    FunctionGetDateTime* clone() const override;
    xalanc::XalanDOMString getError() const override;

    I18NString GetDateTime() const;
};
