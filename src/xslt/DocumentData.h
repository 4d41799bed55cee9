/**
 * @file
 * The inside of a Document.
 */
#pragma once

#include "xslt/EngineUse.h"
#include "xslt/MemoryPool.h"

#include <vexa/xslt/Document.h>

#include <memory>
#include <string>

#include <xalanc/XalanSourceTree/XalanSourceTreeDocument.hpp>

namespace vexa {

/** A tree with all of its memory. Whoever builds it seals it; from then on threads may share it. */
class Document::Data : public std::enable_shared_from_this<Document::Data> {
public:
    /** The tree, which knows whose it is. */
    class Tree : public xalanc::XalanSourceTreeDocument {
    public:
        explicit Tree(Data& data) : XalanSourceTreeDocument(data.m_memory, false), m_data(data) {}
        const Data& data() const { return m_data; }

    private:
        Data& m_data;
    };

    explicit Data(std::string uri);
    Data(const Data&) = delete;
    Data& operator=(const Data&) = delete;
    ~Data();

    const std::string& uri() const { return m_uri; }
    /** The engine takes nodes that it does not change without `const`. */
    Tree* tree() const { return m_tree; }
    /** The tree, or a fragment of it where it is a result that is no document. */
    xalanc::XalanNode* root() const { return m_root; }
    void setRoot(xalanc::XalanNode* root) { m_root = root; }
    MemoryPool& memory() { return m_memory; }
    void seal();

private:
    Tree* makeTree();

    EngineUse m_engines = useEngines();
    std::string m_uri;
    MemoryPool m_memory;
    /** In the pool, and never destroyed: the pool takes back all that belongs to it. */
    Tree* m_tree;
    xalanc::XalanNode* m_root;
};

class DocumentAccess {
public:
    using Data = Document::Data;
    using Ptr = std::shared_ptr<const Document::Data>;

    static Document make(Ptr data) { return Document(std::move(data)); }
    /** @throws Error: Usage for an empty document */
    static const Ptr& data(const Document& document);
};

using DocumentData = DocumentAccess::Data;

class NodeAccess {
public:
    static Node make(const DocumentAccess::Ptr& owner, const xalanc::XalanNode* node) {
        return Node(std::shared_ptr<const void>(owner, node));
    }
    /** @throws Error: Usage for an empty node */
    static xalanc::XalanNode* node(const Node& node);
    /** What keeps the node alive. */
    static DocumentAccess::Ptr owner(const Node& node);
};

} // namespace vexa
