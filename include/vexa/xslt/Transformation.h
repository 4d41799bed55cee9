/**
 * @file
 * Runs of a compiled stylesheet.
 */
#pragma once

#include <vexa/xslt/Document.h>
#include <vexa/xslt/Export.h>
#include <vexa/xslt/Input.h>
#include <vexa/xslt/Options.h>
#include <vexa/xslt/Output.h>
#include <vexa/xslt/Stylesheet.h>
#include <vexa/xslt/Tracer.h>
#include <vexa/xslt/Value.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace vexa {

/** One call of an extension function. It lives as long as the call. */
class VEXA_XSLT_EXPORT Call {
public:
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /** The number of arguments. */
    std::size_t size() const noexcept;
    /** An argument, counted from 0. A result tree fragment is a node-set of its root. @throws
     * Error: Usage where there are fewer */
    const Value& argument(std::size_t index) const;
    /** The context node. */
    Node context() const;

private:
    friend class CallAccess;
    struct VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL explicit Call(const Data& data) noexcept;
    const Data& m_data;
};

/** An extension function of a host. What it throws passes to the caller of the operation. */
using Function = std::function<Value(const Call&)>;

/** What a stylesheet says of a further result; a text is empty where it says nothing. */
struct DocumentSettings {
    std::string method;    ///< "xml", "html" or "text"
    std::string encoding;  ///< of the bytes
    std::string mediaType; ///< as the attribute media-type has it
};

/**
 * Says where a further result goes (exsl:document, xsl:document). What it throws passes to the
 * caller of the operation; it may throw Error: Denied, and gets the place of the instruction.
 *
 * @param href the reference, as the stylesheet gives it
 * @param base the URI of the result that it stands in; empty where that is no file
 */
using DocumentHandler = std::function<Output(const std::string& href, const std::string& base,
                                             const DocumentSettings& settings)>;

/**
 * Runs a stylesheet, again and again. It belongs to one thread at a time, and may be moved. After a
 * failure it is usable as before. A moved-from object answers with Error: Usage.
 *
 * The callbacks run on the thread that runs the operation, and must not use this object.
 */
class VEXA_XSLT_EXPORT Transformation {
public:
    /** Prepares runs with these options. @throws Error: Usage for an empty stylesheet */
    explicit Transformation(Stylesheet stylesheet, Options options = {});
    /** Moves the parameters, functions and handlers. */
    Transformation(Transformation&&) noexcept;
    /** Moves the parameters, functions and handlers. */
    Transformation& operator=(Transformation&&) noexcept;
    ~Transformation();

    /**
     * Sets a top-level parameter for all later runs. A parameter that the stylesheet does not
     * declare is ignored.
     *
     * @param name  "name" or "{uri}name"
     * @param value any text, a number, a boolean or a node-set; it keeps its type
     * @throws Error: Usage for a name that is none, and for a string with U+0000
     */
    Transformation& parameter(const std::string& name, Value value);
    /** Sets a parameter to a node-set of the document's root. */
    Transformation& parameter(const std::string& name, const Document& document);
    /** Removes a parameter: the default of the stylesheet applies again. */
    Transformation& removeParameter(const std::string& name);
    /**
     * Installs a function for all later runs, in place of an earlier one of this name.
     *
     * @param namespaceUri not empty
     * @param name         the name without prefix
     * @param function     is called on the thread that runs the transform
     * @throws Error: Usage for an empty namespace or function, and for a name that is none
     */
    Transformation& function(const std::string& namespaceUri, const std::string& name,
                             Function function);
    /** Replaces the handler of messages. */
    Transformation& onMessage(MessageHandler handler);
    /**
     * Allows further results. Without a handler each is an Error: Denied. They count for the limits
     * of the run, and appear when it has succeeded; after a failure none does. If the last step
     * fails, when complete results are put in their places, some of them may be there.
     */
    Transformation& onDocument(DocumentHandler handler);
    /**
     * Reports each step of later runs, in place of an earlier tracer.
     *
     * @param tracer must live as long as runs use it
     */
    Transformation& onTrace(Tracer& tracer);
    /** Reports no steps any more. */
    Transformation& onTrace(std::nullptr_t);

    /** Transforms a document and writes the result. @throws Error */
    void to(const Document& source, const Output& output);
    /** Parses and transforms a document and writes the result. @throws Error */
    void to(const Input& source, const Output& output);
    /** The result as bytes in the encoding that the stylesheet asks for. @throws Error */
    std::string toString(const Document& source);
    /** Parses a document, and returns the result as the function above. @throws Error */
    std::string toString(const Input& source);
    /**
     * The result as a document: the tree before serialisation, without indentation and escaping
     * marks, and with CDATA sections as text. It has its source's URI. @throws Error
     */
    Document toDocument(const Document& source);
    /** Parses a document, and returns the result as the function above. @throws Error */
    Document toDocument(const Input& source);

private:
    class VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL Data& data();
    std::unique_ptr<Data> m_data;
};

} // namespace vexa
