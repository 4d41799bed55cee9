#include "xslt/ResultBuilder.h"

#include "xslt/TreeWalker.h"

#include "engine/EngineMemory.h"

#include <new>
#include <string_view>
#include <utility>

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xalanc/PlatformSupport/AttributeListImpl.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDocumentFragment.hpp>

using xalanc::DOMServices;
using xalanc::XalanNode;

ResultBuilder::ResultBuilder(std::string uri, Operation& operation, Purpose purpose)
    : FormatterListener(OUTPUT_METHOD_DOM), m_operation(operation), m_purpose(purpose),
      m_document(std::make_shared<vexa::DocumentData>(std::move(uri))) {
    m_document->memory().setOperation(&operation);
    m_formatter.emplace(engineMemory(), m_document->tree());
}

vexa::DocumentAccess::Ptr ResultBuilder::finish() {
    m_formatter.reset();
    m_document->seal();
    return m_document;
}

void ResultBuilder::take(size_type characters) {
    m_operation.poll();
    if (m_purpose == Purpose::Result) {
        m_operation.takeOutput(characters);
    }
}

DocumentFormatter& ResultBuilder::formatter() {
    m_formatter->setPrefixResolver(getPrefixResolver());
    return *m_formatter;
}

void ResultBuilder::continueBelowFragment() {
    if (m_document->root() != m_document->tree()) {
        return;
    }
    m_formatter->endDocument();
    const auto begun = std::exchange(
        m_document, std::make_shared<vexa::DocumentData>(std::string(m_document->uri())));
    m_document->memory().setOperation(&m_operation);
    auto* const fragment =
        new (m_document->memory().allocate(sizeof(xalanc::XalanSourceTreeDocumentFragment)))
            xalanc::XalanSourceTreeDocumentFragment(m_document->memory(), *m_document->tree());
    m_document->setRoot(fragment);
    m_formatter.emplace(m_document->tree(), fragment, engineMemory());
    m_formatter->startDocument();
    TreeWalker(*this).traverseSubtree(begun->tree());
}

void ResultBuilder::setDocumentLocator(const xercesc::Locator* /*locator*/) {}

void ResultBuilder::startDocument() {
    formatter().startDocument();
}

void ResultBuilder::endDocument() {
    if (!m_hasElement) {
        continueBelowFragment();
    }
    formatter().endDocument();
}

void ResultBuilder::startElement(const XMLCh* name, xalanc::AttributeListType& attributes) {
    size_type size = std::u16string_view(name).size();
    for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
        size += std::u16string_view(attributes.getName(i)).size() +
                std::u16string_view(attributes.getValue(i)).size();
    }
    take(size);
    if (m_depth == 0) {
        startTopElement(name, attributes);
    } else {
        formatter().startElement(name, attributes);
    }
    ++m_depth;
}

void ResultBuilder::startTopElement(const XMLCh* name,
                                    const xalanc::AttributeListType& attributes) {
    if (std::exchange(m_hasElement, true)) {
        continueBelowFragment();
    }
    // The parser adds this declaration, for the namespace axis.
    const XMLCh* const xmlPrefix = DOMServices::s_XMLNamespacePrefix.c_str();
    xalanc::AttributeListImpl all(engineMemory());
    all.addAttribute(xmlPrefix, u"CDATA", DOMServices::s_XMLNamespaceURI.c_str());
    for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
        all.addAttribute(attributes.getName(i), attributes.getType(i), attributes.getValue(i));
    }
    formatter().startElement(name, all);
    all.clear(); // may allocate, and must not do so in the destructor
}

void ResultBuilder::endElement(const XMLCh* name) {
    --m_depth;
    formatter().endElement(name);
}

void ResultBuilder::characters(const XMLCh* text, size_type length) {
    take(length);
    if (m_depth == 0) {
        continueBelowFragment();
    }
    formatter().characters(text, length);
}

void ResultBuilder::charactersRaw(const XMLCh* text, size_type length) {
    characters(text, length);
}

void ResultBuilder::cdata(const XMLCh* text, size_type length) {
    characters(text, length);
}

void ResultBuilder::ignorableWhitespace(const XMLCh* text, size_type length) {
    characters(text, length);
}

void ResultBuilder::comment(const XMLCh* text) {
    take(std::u16string_view(text).size());
    formatter().comment(text);
}

void ResultBuilder::entityReference(const XMLCh* name) {
    formatter().entityReference(name);
}

void ResultBuilder::processingInstruction(const XMLCh* target, const XMLCh* data) {
    take(std::u16string_view(target).size() + std::u16string_view(data).size());
    formatter().processingInstruction(target, data);
}

void ResultBuilder::resetDocument() {}

vexa::DocumentAccess::Ptr copyTree(const XalanNode& root, Operation& operation) {
    ResultBuilder builder({}, operation, ResultBuilder::Purpose::Copy);
    builder.startDocument();
    TreeWalker(builder).traverseSubtree(&root);
    builder.endDocument();
    return builder.finish();
}
