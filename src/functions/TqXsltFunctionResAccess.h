/**
 * @file
 * GetLocalizedString(number, language): a text of the message catalogue.
 */
#pragma once

#include "functions/BuiltInFunction.h"

/** Returns a message in the requested language; in English if that language has no text. */
class FunctionGetLocalizedString : public BuiltInFunction<FunctionGetLocalizedString> {
public:
    /** The number differs from that in the arity message on purpose: both texts are guaranteed. */
    static constexpr const char* USAGE = "tqfunc:GetLocalizedString() takes one argument";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    /** Returns the catalogue identifier of a message number; 0 for an unknown number. */
    unsigned long GetMappedResourceId(int number) const;
};
