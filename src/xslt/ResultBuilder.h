/**
 * @file
 * Results and copies as documents.
 */
#pragma once

#include "xslt/DocumentData.h"

#include "engine/DocumentFormatter.h"

#include <memory>
#include <optional>

#include <xalanc/PlatformSupport/FormatterListener.hpp>

/**
 * Builds a document from output events. A result that has text or several elements below its root,
 * or no element, is no document for the engine: it is built below a fragment instead.
 */
class ResultBuilder : public xalanc::FormatterListener {
public:
    /** Only a result counts as output. */
    enum class Purpose { Result, Copy };

    ResultBuilder(std::string uri, Operation& operation, Purpose purpose);

    /** The document, when all events have come. */
    vexa::DocumentAccess::Ptr finish();

    void setDocumentLocator(const xercesc::Locator* locator) override;
    void startDocument() override;
    void endDocument() override;
    void startElement(const XMLCh* name, xalanc::AttributeListType& attributes) override;
    void endElement(const XMLCh* name) override;
    void characters(const XMLCh* text, size_type length) override;
    void charactersRaw(const XMLCh* text, size_type length) override;
    void cdata(const XMLCh* text, size_type length) override;
    void ignorableWhitespace(const XMLCh* text, size_type length) override;
    void comment(const XMLCh* text) override;
    void entityReference(const XMLCh* name) override;
    void processingInstruction(const XMLCh* target, const XMLCh* data) override;
    void resetDocument() override;

private:
    DocumentFormatter& formatter();
    void startTopElement(const XMLCh* name, const xalanc::AttributeListType& attributes);
    /** Counts what becomes a part of the document. */
    void take(size_type characters);
    /** Before what a document cannot have. */
    void continueBelowFragment();

    Operation& m_operation;
    const Purpose m_purpose;
    std::shared_ptr<vexa::DocumentData> m_document;
    std::optional<DocumentFormatter> m_formatter;
    unsigned m_depth = 0;
    bool m_hasElement = false;
};

/** A copy of a node of a run, with its subtree, that outlives the run. */
vexa::DocumentAccess::Ptr copyTree(const xalanc::XalanNode& root, Operation& operation);
