/**
 * @file
 * The engine used directly, as its own documentation shows it, by someone who has eight functions
 * too: installed once, for all transforms, which the engine allows.
 */
#pragma once

#include "FixedFunction.h"
#include "Work.h"

#include <vexa/VEXAXslTransformer.h>

#include <string>
#include <vector>

#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>
#include <xalanc/XalanTransformer/XalanTransformer.hpp>

/** What eight functions are installed under: the library's own names. */
class FunctionNames {
public:
    FunctionNames() {
        for (const char* const name :
             {"GetLocalizedString", "GetDateTime", "TimerCreate", "TimerStart", "TimerStop",
              "TimerTotal", "TimerReset", "TimerDestroy"}) {
            m_names.emplace_back(name);
        }
    }

    void installIn(xalanc::XalanTransformer& engine) const {
        const FixedFunction function("x");
        for (const xalanc::XalanDOMString& name : m_names) {
            engine.installExternalFunction(m_namespace, name, function);
        }
    }

private:
    xalanc::XalanDOMString m_namespace{VEXA_XSL_EXTENSION_NAMESPACE};
    std::vector<xalanc::XalanDOMString> m_names;
};

class BareEngine : public xalanc::XalanTransformer {
public:
    BareEngine() { FunctionNames().installIn(*this); }
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
