/**
 * @file
 * Which functions every stylesheet can call.
 */
#pragma once

#include <nrb/I18NString.h>
#include <vexa/TqXsltFunction.h>

#include <functional>

/** Calls `install` with the name and the function for each of the eight built-in functions. */
void installBuiltInFunctions(
    const std::function<void(const I18NString& name, const TqXsltFunction& function)>& install);
