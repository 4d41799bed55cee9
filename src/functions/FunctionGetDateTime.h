/**
 * @file
 * GetDateTime(): the time of day.
 */
#pragma once

#include "functions/BuiltInFunction.h"

/** Returns the local time of day as hh:mm:ss.mmm. In spite of its name, the result has no date. */
class FunctionGetDateTime : public BuiltInFunction<FunctionGetDateTime> {
public:
    static constexpr const char* USAGE = "tqfunc:GetDateTime() function takes no arguments!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    I18NString GetDateTime() const;
};
