#include <vexa/VEXAXslTransformer.h>

#include <vexa/Dom2Dom.h>
#include <vexa/TqXsltFunction.h>

#include "engine/EngineStrings.h"
#include "functions/BuiltInFunctions.h"
#include "functions/FunctionMap.h"
#include "transformer/StylesheetParams.h"

#include <ostream>

#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>
#include <xalanc/XalanTransformer/XalanTransformer.hpp>
#include <xercesc/sax/SAXException.hpp>

using xalanc::XalanDOMString;
using xalanc::XalanParsedSource;
using xalanc::XSLTInputSource;
using xalanc::XSLTResultTarget;

namespace {

/**
 * The source for an empty name: without a source the engine would crash. The engine stores the
 * error message, because a stream transform does not clear that of the transformer.
 */
class NamelessSource : public XSLTInputSource {
public:
    xercesc::BinInputStream* makeStream() const override {
        throw xercesc::SAXException(u"The source file name is empty.");
    }
};

} // namespace

bool VEXAXslTransformer::m_bUseXercesDOM = false;

VEXAXslTransformer::VEXAXslTransformer()
    : m_pTransformer(std::make_unique<xalanc::XalanTransformer>()) {
    installBuiltInFunctions([this](const I18NString& name, const TqXsltFunction& function) {
        installExternalFunction(name, function);
    });
}

VEXAXslTransformer::~VEXAXslTransformer() {
    // The engine is destroyed before the maps. The clones in m_mapFunctions are not freed: hosts
    // may keep pointers to them.
    m_pTransformer.reset();
}

void VEXAXslTransformer::installExternalFunction(const I18NString& name,
                                                 const TqXsltFunction& function) {
    std::unique_ptr<TqXsltFunction> copy(function.clone());
    TqXsltFunction*& entry = m_mapFunctions[name];
    // A replaced clone is not freed either.
    entry = copy.release();
}

void VEXAXslTransformer::setStylesheetParam(const I18NString& name, const I18NString& value) {
    const I18NString quoted = "'" + value + "'";
    try {
        // Set now, and again before each transform: both are guaranteed.
        m_pTransformer->setStylesheetParam(toEngineString(name), toEngineString(quoted));
        m_mapParams.insert_or_assign(name, quoted);
    } catch (...) {
        // The engine may be in an inconsistent state. Each transform sets all parameters again.
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

int VEXAXslTransformer::doTransform(const I18NString& sourceFile, const I18NString& stylesheetFile,
                                    const I18NString& outputFile) {
    m_strLastError = I18NString();
    const XalanParsedSource* source = nullptr;
    const auto parse = [&](const XSLTInputSource& input) {
        return m_pTransformer->parseSource(input, source, m_bUseXercesDOM);
    };
    if (const int result = sourceFile.empty() ? parse(NamelessSource())
                                              : parse(XSLTInputSource(toSystemId(sourceFile)))) {
        return result;
    }
    // The engine transformer keeps the source until it is destroyed: this is guaranteed.
    XSLTResultTarget target;
    target.setFileName(XalanDOMString(toSystemId(outputFile)));
    return transformParsedSource(*source, stylesheetFile, target);
}

int VEXAXslTransformer::doTransform(std::istream& source, const I18NString& stylesheetFile,
                                    std::ostream& output) {
    // m_strLastError is not cleared: hosts may read it after several transforms.
    const XalanParsedSource* parsedSource = nullptr;
    if (const int result =
            m_pTransformer->parseSource(XSLTInputSource(&source), parsedSource, m_bUseXercesDOM)) {
        return result;
    }
    XSLTResultTarget target(&output);
    const int result = transformParsedSource(*parsedSource, stylesheetFile, target);
    // The NUL lets hosts read the buffer of a memory stream as a C string, also after a failure.
    output << std::ends;
    return result;
}

int VEXAXslTransformer::transformParsedSource(const XalanParsedSource& source,
                                              const I18NString& stylesheetFile,
                                              XSLTResultTarget& target) {
    const XSLTInputSource stylesheet(toSystemId(stylesheetFile));
    setStylesheetParams(m_mapParams, *m_pTransformer);
    installFunctions(m_mapFunctions,
                     [this](const auto& namespaceUri, const auto& name, const auto& function) {
                         m_pTransformer->installExternalFunction(namespaceUri, name, function);
                     });
    return m_pTransformer->transform(source, stylesheet, target);
}
