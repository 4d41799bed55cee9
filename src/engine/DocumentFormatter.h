/**
 * @file
 * Builds a document from a transform's output events.
 */
#pragma once

#include <xalanc/XalanSourceTree/FormatterToSourceTree.hpp>

/** The engine's own formatter lets the text of CDATA sections fall: a document has it as text. */
class DocumentFormatter : public xalanc::FormatterToSourceTree {
public:
    using FormatterToSourceTree::FormatterToSourceTree;

    void cdata(const XMLCh* text, const size_type length) override { characters(text, length); }
};
