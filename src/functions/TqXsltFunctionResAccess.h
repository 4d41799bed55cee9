/**
 * @file
 * GetLocalizedString(number, language): a fixed text in the language of the reader.
 */
#pragma once

#include "functions/BuiltInFunction.h"

/** Gives a message of the catalogue in the language asked for, or else in English. */
class FunctionGetLocalizedString : public BuiltInFunction<FunctionGetLocalizedString> {
public:
    static constexpr const char* USAGE = "tqfunc:GetLocalizedString() takes one argument";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    /** The catalogue's identifier for a stylesheet's number; 0 for a number that has none. */
    unsigned long GetMappedResourceId(int number) const;
};
