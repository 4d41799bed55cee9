/**
 * @file
 * The list of the built-in functions.
 */
#pragma once

#include <nrb/I18NString.h>
#include <vexa/TqXsltFunction.h>
#include <vexa/VEXAExport.h>

#include <functional>

/**
 * Calls `install` with the name and the function for each of the eight built-in functions.
 *
 * Exported for libVEXA_XSLT only, so that both libraries share the functions and their timers.
 */
VEXA_EXPORT void installBuiltInFunctions(
    const std::function<void(const I18NString& name, const TqXsltFunction& function)>& install);
