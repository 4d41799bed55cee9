/**
 * @file
 * The document that the engine reads.
 */
#pragma once

#include <memory>

#include <xalanc/XalanDOM/XalanDocument.hpp>

/**
 * A document in the form in which the engine can read it.
 *
 * Where a document has no element (it is empty, or holds only comments and processing
 * instructions), the engine takes its nodes for parts of a result tree fragment. For "/" it goes up
 * from them to the fragment's root, finds none and crashes. It is given a copy of such a document,
 * which claims to have an element.
 */
class SourceDocument {
public:
    /** @param document null: there is none */
    explicit SourceDocument(xalanc::XalanDocument* document);

    xalanc::XalanDocument* get() const { return m_pDocument; }

private:
    /** Null where the document itself can be read. */
    std::unique_ptr<xalanc::XalanDocument> m_pCopy;
    xalanc::XalanDocument* m_pDocument;
};
