/**
 * @file
 * Nodes that functions make.
 */
#pragma once

#include "exslt/ExsltCall.h"

#include <memory>

#include <xalanc/PlatformSupport/AttributeListImpl.hpp>
#include <xalanc/XalanSourceTree/FormatterToSourceTree.hpp>

/**
 * Builds a tree without a document element. It lives until the evaluation ends, as a variable may
 * keep some of its nodes.
 */
class NewNodes {
public:
    explicit NewNodes(const ExsltCall& call);
    NewNodes(const NewNodes&) = delete;
    NewNodes& operator=(const NewNodes&) = delete;
    ~NewNodes();

    /** Adjacent texts are one node. */
    void addText(std::u16string_view text);
    /** Adds an element in no namespace. */
    void addElement(std::u16string_view name, std::u16string_view text);
    /** The same in the namespace of exsl:node-set(). */
    void addCommonElement(std::u16string_view localName, std::u16string_view text);
    /** Adds a copy of the node with what is in it. An attribute becomes an empty text. */
    void addCopy(const xalanc::XalanNode& node);

    /** Ends the tree. @return its topmost nodes, in document order */
    ExsltCall::Result nodes();

private:
    struct Nodes;
    class Prefixes;
    class Tree;

    void writeText();
    void startElement(const char16_t* name, xalanc::AttributeListImpl& attributes);
    void endElement(const char16_t* name);
    void start(const xalanc::XalanNode& node, const xalanc::XalanNode& top);
    void end(const xalanc::XalanNode& node);

    const ExsltCall& m_call;
    std::size_t m_length = 0;
    /** Not written yet. */
    std::u16string m_text;
    std::unique_ptr<Prefixes> m_prefixes;
    Tree* m_tree;
    /** Keeps the tree alive. */
    xalanc::XObjectPtr m_reference;
    xalanc::FormatterToSourceTree m_writer;
};
