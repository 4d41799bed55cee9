#include <vexa/VEXAXslTransformer.h>

#include <vexa/TqXsltFunction.h>

#include "EngineStrings.h"

#include <ostream>

#include <xalanc/XSLT/XSLTEngineImpl.hpp>
#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>
#include <xalanc/XalanExtensions/FunctionNodeSet.hpp>
#include <xalanc/XalanTransformer/XalanTransformer.hpp>

using xalanc::XalanDOMString;
using xalanc::XalanParsedSource;
using xalanc::XSLTInputSource;
using xalanc::XSLTResultTarget;

namespace {

/** What the engine itself reports for a document that it cannot find or parse. */
constexpr int PARSE_FAILED = -2;

} // namespace

int VEXAXslTransformer::doTransform(const I18NString& sourceFile, const I18NString& stylesheetFile,
                                    const I18NString& outputFile) {
    m_strLastError = I18NString();
    if (sourceFile.empty()) {
        // The engine would go on without a document and crash.
        m_strLastError = "The name of the source file is empty.";
        return PARSE_FAILED;
    }
    const XalanParsedSource* source = nullptr;
    if (const int result = m_pTransformer->parseSource(XSLTInputSource(toSystemId(sourceFile)),
                                                       source, m_bUseXercesDOM)) {
        return result;
    }
    // The source stays the engine transformer's, until that is destroyed: hosts count on it.
    XSLTResultTarget target;
    target.setFileName(XalanDOMString(toSystemId(outputFile)));
    return transformParsedSource(*source, stylesheetFile, target);
}

int VEXAXslTransformer::doTransform(std::istream& source, const I18NString& stylesheetFile,
                                    std::ostream& output) {
    // m_strLastError stays as it was: hosts read it after a run of several transforms.
    const XalanParsedSource* parsedSource = nullptr;
    if (const int result =
            m_pTransformer->parseSource(XSLTInputSource(&source), parsedSource, m_bUseXercesDOM)) {
        return result;
    }
    XSLTResultTarget target(&output);
    const int result = transformParsedSource(*parsedSource, stylesheetFile, target);
    // Hosts read the result as C text out of a memory stream, after a failure too.
    output << std::ends;
    return result;
}

int VEXAXslTransformer::transformParsedSource(const XalanParsedSource& source,
                                              const I18NString& stylesheetFile,
                                              XSLTResultTarget& target) {
    const XSLTInputSource stylesheet(toSystemId(stylesheetFile));
    applyParams();
    applyFunctions();
    return m_pTransformer->transform(source, stylesheet, target);
}

void VEXAXslTransformer::applyParams() {
    for (const auto& [name, value] : m_mapParams) {
        m_pTransformer->setStylesheetParam(toEngineString(name), toEngineString(value));
    }
}

void VEXAXslTransformer::applyFunctions() {
    m_pTransformer->installExternalFunction(xalanc::XSLTEngineImpl::getXalanXSLNameSpaceURL(),
                                            XalanDOMString(u"nodeset"),
                                            xalanc::FunctionNodeSet(true));
    const XalanDOMString extensionNamespace(u"" VEXA_XSL_EXTENSION_NAMESPACE);
    for (const auto& [name, function] : m_mapFunctions) {
        m_pTransformer->installExternalFunction(extensionNamespace, toEngineString(name),
                                                *function);
    }
}
