#include <vexa/Dom2Dom.h>

#include "engine/DocumentFormatter.h"
#include "engine/EngineMemory.h"
#include "engine/XmlWriter.h"
#include "transformer/ExceptionReport.h"
#include "transformer/TextViewBuffer.h"

#include <vexa/VEXAXslTransformer.h>

#include <istream>
#include <ostream>

#include <xalanc/PlatformSupport/XSLException.hpp>
#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>
#include <xalanc/XalanDOM/XalanElement.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDocument.hpp>
#include <xalanc/XalanTransformer/XalanDocumentBuilder.hpp>
#include <xalanc/XalanTransformer/XalanParsedSource.hpp>
#include <xalanc/XalanTransformer/XalanTransformer.hpp>

using xalanc::XalanDOMString;

void Dom2Dom::EngineRelease::operator()(const xalanc::XalanParsedSource* source) const {
    engine->destroyParsedSource(source);
}

void Dom2Dom::EngineRelease::operator()(xalanc::XalanDocumentBuilder* builder) const {
    engine->destroyDocumentBuilder(builder);
}

Dom2Dom::Dom2Dom(VEXAXslTransformer* transformer)
    : m_pTransformer(transformer->m_pTransformer.get()),
      m_pParsedSource(nullptr, EngineRelease{m_pTransformer}),
      m_pDocumentBuilder(nullptr, EngineRelease{m_pTransformer}) {}

Dom2Dom::~Dom2Dom() = default;

bool Dom2Dom::InitializeInputSource(const char* text) {
    TextViewBuffer buffer(text ? text : "");
    std::istream stream(&buffer);
    return parse(stream, nullptr);
}

bool Dom2Dom::InitializeInputSource(std::istream& stream, const char* systemId) {
    return parse(stream, systemId ? systemId : "");
}

/** @param systemId null: the source has no system id */
bool Dom2Dom::parse(std::istream& stream, const char* systemId) {
    if (hasMode()) {
        return false;
    }
    xalanc::XSLTInputSource source(&stream);
    if (systemId) {
        source.setSystemId(XalanDOMString(systemId).c_str());
    }
    const xalanc::XalanParsedSource* parsed = nullptr;
    m_nParseResult =
        m_pTransformer->parseSource(source, parsed, VEXAXslTransformer::m_bUseXercesDOM);
    m_pParsedSource.reset(parsed);
    // The error message of a failed parse is that of the engine: a text here would hide it.
    m_strLastError = I18NString();
    m_bInputInitialized = true;
    if (parsed) {
        m_pDocument = parsed->getDocument();
    }
    return m_pDocument != nullptr;
}

bool Dom2Dom::InitializeOutputTarget() {
    if (hasMode()) {
        return false;
    }
    m_bOutputInitialized = true;
    m_strLastError = I18NString();
    // Local objects first: if memory runs out, none of them becomes a member.
    decltype(m_pDocumentBuilder) builder(m_pTransformer->createDocumentBuilder(XalanDOMString()),
                                         m_pDocumentBuilder.get_deleter());
    auto formatter = std::make_unique<DocumentFormatter>(
        engineMemory(), static_cast<xalanc::XalanSourceTreeDocument*>(builder->getDocument()));
    m_pResultTarget = std::make_unique<xalanc::XSLTResultTarget>(*formatter);
    m_pFormatter = std::move(formatter);
    m_pDocumentBuilder = std::move(builder);
    m_pDocument = m_pDocumentBuilder->getDocument();
    return true;
}

bool Dom2Dom::InitializeOutputTarget(std::ostream& stream) {
    if (hasMode()) {
        return false;
    }
    m_bOutputInitialized = true;
    m_strLastError = I18NString();
    m_pResultTarget = std::make_unique<xalanc::XSLTResultTarget>(stream);
    return true;
}

int Dom2Dom::Serialize(std::ostream& os) {
    // A success does not clear m_strLastError.
    try {
        os.clear();
        // A stream output has no document.
        if (m_bOutputInitialized && m_pDocument) {
            writeXml(os, m_pDocument->getDocumentElement(), XmlDeclaration::Written);
        }
        // The NUL lets hosts read the buffer of a memory stream as a C string.
        os << std::endl << std::ends;
        return 0;
    } catch (const xalanc::XSLException& exception) {
        return reportXslException(SERIALIZATION, exception, m_strLastError);
    }
}

const char* Dom2Dom::getLastError() const {
    return m_strLastError.empty() ? m_pTransformer->getLastError() : m_strLastError.c_str();
}
