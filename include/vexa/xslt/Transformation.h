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
