/**
 * @file
 * The engine alone, used as its documentation shows, with as many functions as the library.
 */
#pragma once

#include "FixedFunction.h"
#include "Work.h"

#include <vexa/VEXAXslTransformer.h>

#include <string>

#include <xalanc/XSLT/XSLTEngineImpl.hpp>
#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>
#include <xalanc/XalanExtensions/FunctionNodeSet.hpp>
#include <xalanc/XalanTransformer/XalanTransformer.hpp>

/** The nodeset function of the engine, and eight functions with the names of the built-in ones. */
class Functions {
public:
    void installIn(xalanc::XalanTransformer& engine) const {
        engine.installExternalFunction(xalanc::XSLTEngineImpl::getXalanXSLNameSpaceURL(),
                                       xalanc::XalanDOMString("nodeset"),
                                       xalanc::FunctionNodeSet(true));
        const FixedFunction function("x");
        for (const char* const name :
             {"GetLocalizedString", "GetDateTime", "TimerCreate", "TimerStart", "TimerStop",
              "TimerTotal", "TimerReset", "TimerDestroy"}) {
            engine.installExternalFunction(m_namespace, xalanc::XalanDOMString(name), function);
        }
    }

private:
    xalanc::XalanDOMString m_namespace{VEXA_XSL_EXTENSION_NAMESPACE};
};

class BareEngine : public xalanc::XalanTransformer {
public:
    BareEngine() { installFunctions(); }

    /** Installs the functions again, as the library does before each transform. */
    void installFunctions() { m_functions.installIn(*this); }

private:
    Functions m_functions;
};

/**
 * Runs a transform and keeps the parsed source, as the library does. Otherwise the engine would
 * also spend time on freeing sources.
 */
inline void transformKept(xalanc::XalanTransformer& engine, const xalanc::XSLTInputSource& source,
                          const std::string& stylesheet, const xalanc::XSLTResultTarget& target) {
    const xalanc::XalanParsedSource* parsed = nullptr;
    require(engine.parseSource(source, parsed) == 0 &&
                engine.transform(*parsed, stylesheet.c_str(), target) == 0,
            engine.getLastError());
}
