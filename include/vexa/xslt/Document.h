/**
 * @file
 * Parsed documents and their nodes.
 */
#pragma once

#include <vexa/xslt/Export.h>
#include <vexa/xslt/Input.h>
#include <vexa/xslt/Options.h>
#include <vexa/xslt/Output.h>

#include <memory>
#include <string>

namespace vexa {

/** A node of a document, which it keeps alive. A default-made node answers with Error: Usage. */
class VEXA_XSLT_EXPORT Node {
public:
    /** The seven types of nodes of XPath 1.0. */
    enum class Type {
        Root,                  ///< above the document element
        Element,               ///< an element
        Attribute,             ///< an attribute
        Text,                  ///< a text, also of a CDATA section
        Comment,               ///< a comment
        ProcessingInstruction, ///< a processing instruction
        Namespace              ///< a namespace that is in scope at an element
    };

    /** An empty node. */
    Node() noexcept;

    /** The type of the node. */
    Type type() const;
    /**
     * The qualified name of an element or an attribute, the target of a processing instruction, the
     * prefix of a namespace; empty for other nodes.
     */
    std::string name() const;
    /** The name without prefix. */
    std::string localName() const;
    /** The namespace of the name; empty if there is none. */
    std::string namespaceUri() const;
    /** The string value, as XPath defines it. */
    std::string string() const;
    /**
     * The node as XML in UTF-8, without a declaration; of an attribute or a namespace its value.
     * An element gets the namespace declarations of the elements around it, so that its text can be
     * parsed on its own.
     *
     * @throws Error: Output for a character that only XML 1.1 has
     */
    std::string xml() const;

private:
    friend class NodeAccess;
    VEXA_XSLT_LOCAL explicit Node(std::shared_ptr<const void> node) noexcept;
    std::shared_ptr<const void> m_node;
};

/**
 * A parsed document, or a result in memory. It is immutable; copies share it, and so do threads. A
 * default-made document answers with Error: Usage.
 */
class VEXA_XSLT_EXPORT Document {
public:
    /** An empty document. */
    Document() noexcept;

    /** Parses a document. @throws Error: Parse, Input, Denied, Limit, Cancelled, Usage */
    static Document parse(const Input& input, const Options& options = {});

    /** The document's URI; empty if it has none. */
    const std::string& uri() const;
    /** Writes the document as XML in UTF-8. @throws Error: Output */
    void write(const Output& output, bool declaration = true) const;
    /**
     * The document as XML in UTF-8, without a declaration.
     *
     * @throws Error: Output for a character that only XML 1.1 has
     */
    std::string xml() const;
    /** The root node, above the document element. */
    Node root() const;

private:
    friend class DocumentAccess;
    class VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL explicit Document(std::shared_ptr<const Data> data) noexcept;
    std::shared_ptr<const Data> m_data;
};

} // namespace vexa
