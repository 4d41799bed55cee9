#include "xslt/ResultBuilder.h"

#include "xslt/TreeReplay.h"

#include "engine/EngineMemory.h"

#include <new>
#include <utility>

#include <xalanc/XalanSourceTree/XalanSourceTreeDocumentFragment.hpp>

using xalanc::XalanNode;

namespace {

/** Without the root itself, which the formatter has already. */
void replayContent(const XalanNode& root, xalanc::FormatterListener& formatter) {
    for (const XalanNode* child = root.getFirstChild(); child; child = child->getNextSibling()) {
        replayTree(*child, formatter);
    }
}

} // namespace

ResultBuilder::ResultBuilder(std::string uri)
    : FormatterListener(OUTPUT_METHOD_DOM),
      m_document(std::make_shared<vexa::DocumentData>(std::move(uri))) {
    m_formatter.emplace(engineMemory(), m_document->tree());
}

vexa::DocumentAccess::Ptr ResultBuilder::finish() {
    m_formatter.reset();
    m_document->seal();
    return m_document;
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
    auto* const fragment =
        new (m_document->memory().allocate(sizeof(xalanc::XalanSourceTreeDocumentFragment)))
            xalanc::XalanSourceTreeDocumentFragment(m_document->memory(), *m_document->tree());
    m_document->setRoot(fragment);
    m_formatter.emplace(m_document->tree(), fragment, engineMemory());
    m_formatter->startDocument();
    replayContent(*begun->tree(), *m_formatter);
}

void ResultBuilder::setDocumentLocator(const xercesc::Locator* /*locator*/) {}

void ResultBuilder::startDocument() {
    formatter().startDocument();
}

void ResultBuilder::endDocument() {
    formatter().endDocument();
}

void ResultBuilder::startElement(const XMLCh* name, xalanc::AttributeListType& attributes) {
    if (m_depth++ == 0 && std::exchange(m_hasElement, true)) {
        continueBelowFragment();
    }
    formatter().startElement(name, attributes);
}

void ResultBuilder::endElement(const XMLCh* name) {
    --m_depth;
    formatter().endElement(name);
}

void ResultBuilder::characters(const XMLCh* text, size_type length) {
    if (length == 0) {
        return;
    }
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
    formatter().comment(text);
}

void ResultBuilder::entityReference(const XMLCh* name) {
    formatter().entityReference(name);
}

void ResultBuilder::processingInstruction(const XMLCh* target, const XMLCh* data) {
    formatter().processingInstruction(target, data);
}

void ResultBuilder::resetDocument() {}

vexa::DocumentAccess::Ptr copyTree(const XalanNode& root, const std::string& uri) {
    ResultBuilder builder(uri);
    builder.startDocument();
    replayContent(root, builder);
    builder.endDocument();
    return builder.finish();
}
