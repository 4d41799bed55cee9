/**
 * @file
 * Compiled XPath expressions.
 */
#pragma once

#include <vexa/xslt/Document.h>
#include <vexa/xslt/Export.h>
#include <vexa/xslt/Options.h>
#include <vexa/xslt/Value.h>

#include <map>
#include <memory>
#include <string>

namespace vexa {

/** Prefix to URI. */
using Namespaces = std::map<std::string, std::string>;
/** "name" or "{uri}name" to value. */
using Variables = std::map<std::string, Value>;

/**
 * A compiled expression. It is immutable; copies share it, and so do threads. A default-made
 * expression answers with Error: Usage.
 *
 * Outside of a stylesheet key(), current() and the library's own functions are unknown; document()
 * is under the access policy.
 */
class VEXA_XSLT_EXPORT XPath {
public:
    /** An empty expression. */
    XPath() noexcept;

    /**
     * Compiles an expression.
     *
     * @param expression an expression of XPath 1.0
     * @param namespaces the prefixes of the expression; "xml" is known
     * @throws Error: Compile
     */
    static XPath compile(std::string expression, Namespaces namespaces = {});

    /** Evaluates over the root node of a document. @throws Error */
    Value evaluate(const Document& document, const Options& options = {}) const;
    /** Evaluates over a node. @throws Error */
    Value evaluate(const Node& node, const Options& options = {}) const;
    /** The same with variables. A variable without a value is an Error: Transform. @throws Error */
    Value evaluate(const Document& document, const Options& options,
                   const Variables& variables) const;
    /** The same with variables. @throws Error */
    Value evaluate(const Node& node, const Options& options, const Variables& variables) const;

private:
    class VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL explicit XPath(std::shared_ptr<const Data> data) noexcept;
    std::shared_ptr<const Data> m_data;
};

} // namespace vexa
