/**
 * @file
 * GetDateTime(): the time of day.
 */
#pragma once

#include "functions/BuiltInFunction.h"

/** Gives the local time of day as hh:mm:ss.mmm. In spite of its name it gives no date. */
class FunctionGetDateTime : public BuiltInFunction<FunctionGetDateTime> {
public:
    static constexpr const char* USAGE = "tqfunc:GetDateTime() function takes no arguments!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    I18NString GetDateTime() const;
};
