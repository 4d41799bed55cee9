/**
 * @file
 * The engine used directly, as its own documentation shows it, by someone who has functions
 * too.
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

/** The engine's own function for node sets, and eight under the library's names. */
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

    /** Again: a host may change what its functions are before any transform, and the facade lets
     * it. */
    void installFunctions() { m_functions.installIn(*this); }

private:
    Functions m_functions;
};

/**
 * The facade keeps every source that it has parsed; so does this, or it would be busy with freeing
 * them in the meantime. The engine's transform() of everything at once does not keep it.
 */
inline void transformKept(xalanc::XalanTransformer& engine, const xalanc::XSLTInputSource& source,
                          const std::string& stylesheet, const xalanc::XSLTResultTarget& target) {
    const xalanc::XalanParsedSource* parsed = nullptr;
    require(engine.parseSource(source, parsed) == 0 &&
                engine.transform(*parsed, stylesheet.c_str(), target) == 0,
            engine.getLastError());
}
