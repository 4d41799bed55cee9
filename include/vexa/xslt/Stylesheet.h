/**
 * @file
 * Compiled stylesheets.
 */
#pragma once

#include <vexa/xslt/Error.h>
#include <vexa/xslt/Export.h>
#include <vexa/xslt/Input.h>
#include <vexa/xslt/Options.h>

#include <memory>
#include <string>
#include <vector>

namespace vexa {

/** A piece of a stylesheet that is executed: a template, or an instruction in it. */
struct Instruction {
    /** What it is. */
    enum class Kind {
        Template,     ///< xsl:template, and the built-in rules of the language
        Function,     ///< func:function
        Variable,     ///< a variable or parameter outside of templates
        AttributeSet, ///< xsl:attribute-set
        Element,      ///< an element of the result
        Instruction   ///< all others: xsl:value-of, a variable in a template, ...
    };

    Kind kind = Kind::Instruction; ///< what it is
    std::string name;              ///< with the usual prefix: "xsl:if", "func:result", "table"
    /**
     * What tells it from others of its kind: match="item" mode="toc" of a template, "name()" of a
     * function, "$name" of a variable, "name" of an attribute set; empty for other kinds.
     */
    std::string title;
    Location where; ///< of its "<"; empty for a built-in rule
};

/**
 * A compiled stylesheet. It is immutable; copies share it, and so do threads. A default-made
 * stylesheet answers with Error: Usage.
 */
class VEXA_XSLT_EXPORT Stylesheet {
public:
    /** An empty stylesheet. */
    Stylesheet() noexcept;

    /**
     * Reads and compiles a stylesheet with the modules that it includes and imports.
     *
     * @throws Error: Parse, Compile, Input, Denied, Limit, Cancelled, Usage
     */
    static Stylesheet compile(const Input& input, const Options& options = {});

    /** The stylesheet's URI; empty if it has none. */
    const std::string& uri() const;
    /** The URIs of all that was read to compile it, itself first: for caches. */
    std::vector<std::string> modules() const;
    /** "xml", "html", "text", or "" where the result decides. */
    std::string method() const;
    /** The encoding of the result; empty where the stylesheet names none (then it is UTF-8). */
    std::string encoding() const;
    /** The media type of the result; empty where the stylesheet names none. */
    std::string mediaType() const;
    /**
     * All that a run can execute, in the order in which it was read; text is none of it, nor is
     * xsl:text. It is listed at the first call, and lives as long as the last copy of the
     * stylesheet. Compiled from the same modules, a stylesheet has the same list.
     */
    const std::vector<Instruction>& instructions() const&;
    /** Of a temporary: a copy, so that a loop over it is safe. */
    std::vector<Instruction> instructions() &&;

private:
    friend class StylesheetAccess;
    class VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL explicit Stylesheet(std::shared_ptr<const Data> data) noexcept;
    std::shared_ptr<const Data> m_data;
};

} // namespace vexa
