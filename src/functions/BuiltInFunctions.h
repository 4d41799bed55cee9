/**
 * @file
 * The list of the built-in functions.
 */
#pragma once

#include <nrb/I18NString.h>
#include <vexa/TqXsltFunction.h>

#include <functional>

/** Calls `install` for each built-in function, with its name and the function. */
void installBuiltInFunctions(
    const std::function<void(const I18NString& name, const TqXsltFunction& function)>& install);
