/**
 * @file
 * Compiled stylesheets.
 */
#pragma once

#include <vexa/xslt/Export.h>
#include <vexa/xslt/Input.h>
#include <vexa/xslt/Options.h>

#include <memory>
#include <string>
#include <vector>

namespace vexa {

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

private:
    friend class StylesheetAccess;
    class VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL explicit Stylesheet(std::shared_ptr<const Data> data) noexcept;
    std::shared_ptr<const Data> m_data;
};

} // namespace vexa
