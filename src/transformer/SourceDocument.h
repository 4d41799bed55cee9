/**
 * @file
 * The source document of the engine.
 */
#pragma once

#include <memory>

#include <xalanc/XalanDOM/XalanDocument.hpp>

/**
 * A document that the engine can read without a crash.
 *
 * If a document has no document element, the engine treats its nodes as parts of a result tree
 * fragment. For "/" it looks for the root of the fragment, finds none and crashes. Therefore the
 * engine gets a copy of such a document, whose getDocumentElement() does not return null.
 */
class SourceDocument {
public:
    /** @param document null: there is no document */
    explicit SourceDocument(xalanc::XalanDocument* document);

    xalanc::XalanDocument* get() const { return m_pDocument; }

private:
    /** Null if the engine can read the document itself. */
    std::unique_ptr<xalanc::XalanDocument> m_pCopy;
    xalanc::XalanDocument* m_pDocument;
};
