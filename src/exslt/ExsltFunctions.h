/**
 * @file
 * The EXSLT functions that the engine does not have, or not as they are defined.
 */
#pragma once

#include "exslt/ExsltCall.h"

/** A function without state: one table serves all engines. */
struct ExsltFunction {
    std::u16string_view name;
    std::size_t fewestArguments;
    std::size_t mostArguments;
    ExsltCall::Result (*body)(const ExsltCall&);
};

/** @return null for an unknown function. @param uri the namespace */
const ExsltFunction* findExsltFunction(std::u16string_view uri, std::u16string_view name);

/** @throws xalanc::XSLException for a wrong number of arguments, and what the function throws */
ExsltCall::Result callExsltFunction(const ExsltFunction& function, const ExsltCall& call);
