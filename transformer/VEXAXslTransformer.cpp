#include <vexa/VEXAXslTransformer.h>

#include <vexa/Dom2Dom.h>
#include <vexa/TqXsltFunction.h>

#include "EngineStrings.h"

#include <xalanc/XalanTransformer/XalanTransformer.hpp>

bool VEXAXslTransformer::m_bUseXercesDOM = false;

VEXAXslTransformer::VEXAXslTransformer()
    : m_pTransformer(std::make_unique<xalanc::XalanTransformer>()) {
    installBuiltInFunctions();
}

VEXAXslTransformer::~VEXAXslTransformer() {
    // The engine goes before the maps; the clones in m_mapFunctions stay allocated on purpose.
    m_pTransformer.reset();
}

void VEXAXslTransformer::installExternalFunction(const I18NString& name,
                                                 const TqXsltFunction& function) {
    std::unique_ptr<TqXsltFunction> copy(function.clone());
    TqXsltFunction*& entry = m_mapFunctions[name];
    // A clone that is replaced here stays allocated, like every clone that was ever registered.
    entry = copy.release();
}

void VEXAXslTransformer::setStylesheetParam(const I18NString& name, const I18NString& value) {
    const I18NString quoted = "'" + value + "'";
    try {
        // At once, and with all others before each transform: each of the two is promised to hosts.
        m_pTransformer->setStylesheetParam(toEngineString(name), toEngineString(quoted));
        m_mapParams.insert_or_assign(name, quoted);
    } catch (...) {
        // The engine may have half of it. All that was set before is set again at each transform.
        m_pTransformer->clearStylesheetParams();
        throw;
    }
}

std::unique_ptr<Dom2Dom> VEXAXslTransformer::createDom2Dom() {
    return std::make_unique<Dom2Dom>(this);
}

const char* VEXAXslTransformer::getLastError() const {
    return m_strLastError.empty() ? m_pTransformer->getLastError() : m_strLastError.c_str();
}
