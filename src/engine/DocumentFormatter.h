/**
 * @file
 * Builds a document from the output events of a transform.
 */
#pragma once

#include <xalanc/XalanSourceTree/FormatterToSourceTree.hpp>

/** The base class loses the text of CDATA sections. This class adds it to the document as text. */
class DocumentFormatter : public xalanc::FormatterToSourceTree {
public:
    using FormatterToSourceTree::FormatterToSourceTree;

    void cdata(const XMLCh* text, const size_type length) override { characters(text, length); }
};
