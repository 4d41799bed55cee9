/**
 * @file
 * The extension functions of one transformer, and their installation in an engine.
 */
#pragma once

#include "engine/EngineStrings.h"

#include <vexa/TqXsltFunction.h>
#include <vexa/VEXAConfig.h>

#include <map>

#include <xalanc/XSLT/XSLTEngineImpl.hpp>
#include <xalanc/XalanExtensions/FunctionNodeSet.hpp>

/** Maps a local name to a function. */
using FunctionMap = std::map<I18NString, TqXsltFunction*>;

/**
 * Calls `install` with namespace URI, local name and function: first for the engine's nodeset
 * function, then for each function of the map in the order of the names.
 */
template <typename Install>
void installFunctions(const FunctionMap& functions, Install install) {
    install(xalanc::XSLTEngineImpl::getXalanXSLNameSpaceURL(), xalanc::XalanDOMString(u"nodeset"),
            xalanc::FunctionNodeSet(true));
    const xalanc::XalanDOMString extensionNamespace(u"" VEXA_XSL_EXTENSION_NAMESPACE);
    for (const auto& [name, function] : functions) {
        install(extensionNamespace, toEngineString(name), *function);
    }
}
