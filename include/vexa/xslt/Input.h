/**
 * @file
 * Where a document or a stylesheet comes from.
 */
#pragma once

#include <vexa/xslt/Export.h>

#include <filesystem>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace vexa {

/**
 * Names a document; nothing is read before an operation needs it.
 *
 * The `uri` of a text, a view or a stream is the base of what the document refers to, and appears
 * in errors, both word for word. Where it is empty, relative references are resolved against the
 * working directory.
 *
 * Copies name the same source. Any thread may use an input, but a stream only one at a time.
 */
class VEXA_XSLT_EXPORT Input {
public:
    /** A file. The path is taken literally: "%" and spaces are part of the name. */
    static Input file(const std::filesystem::path& path);
    /** A text in memory, which the input keeps. */
    static Input text(std::string text, std::string uri = {});
    /** A text in memory that is not copied: it must live as long as the input and its copies. */
    static Input view(std::string_view text, std::string uri = {});
    /**
     * A stream, read to its end by the first operation; a second one is an Error of kind Usage. The
     * stream must live until then.
     */
    static Input stream(std::istream& stream, std::string uri = {});
    /** What a URI names, through the resolver and the access policy of the operation. */
    static Input uri(std::string uri);

private:
    friend class InputAccess;
    struct VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL explicit Input(std::shared_ptr<Data> data) noexcept;
    std::shared_ptr<Data> m_data;
};

} // namespace vexa
