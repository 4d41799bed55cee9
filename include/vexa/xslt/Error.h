/**
 * @file
 * What goes wrong, as values that a program can act on.
 */
#pragma once

#include <vexa/xslt/Export.h>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace vexa {

/** What failed. */
enum class ErrorKind {
    Parse,      ///< a document, a stylesheet or a module is not well-formed
    Compile,    ///< a stylesheet or an expression is wrong
    Transform,  ///< the stylesheet or the expression failed while it ran
    Terminated, ///< xsl:message terminate="yes"
    Input,      ///< something cannot be read
    Output,     ///< the result cannot be written
    Denied,     ///< the access policy says no
    Limit,      ///< a limit was reached
    Cancelled,  ///< a CancelSource asked for it
    Usage       ///< this interface was used wrongly; nothing was done
};

/** A place in a document or stylesheet. Lines and columns count from 1; 0 means unknown. */
struct Location {
    /** An absolute URI for a file; what the host gave for a text or a stream; empty if unknown. */
    std::string uri;
    std::size_t line = 0;   ///< 0: unknown
    std::size_t column = 0; ///< 0: unknown
};

/** How serious a diagnostic is. */
enum class Severity {
    Message, ///< text of xsl:message
    Warning, ///< the operation goes on
    Error    ///< an error that the operation went on after
};

/** One message of an operation. */
struct Diagnostic {
    Severity severity = Severity::Message; ///< what kind of message it is
    std::string text;                      ///< without its location
    Location where;                        ///< where it comes from, as far as known
};

/**
 * The only exception of this library, apart from std::bad_alloc and what the host's own callbacks
 * throw. The objects that took part stay usable.
 *
 * what() is "URI:LINE:COLUMN: TEXT", as far as these are known.
 */
class VEXA_XSLT_EXPORT Error : public std::runtime_error {
public:
    /** Made by the library; a host may throw its own. */
    Error(ErrorKind kind, std::string text, Location where = {},
          std::vector<Diagnostic> diagnostics = {});
    ~Error() override;

    /** What failed: for programs. */
    ErrorKind kind() const noexcept;
    /** The cause alone, without its location. */
    const std::string& text() const noexcept;
    /** Where it happened, as far as known. */
    const Location& where() const noexcept;
    /** What the operation reported before the error, in order; not the error itself. */
    const std::vector<Diagnostic>& diagnostics() const noexcept;

private:
    struct VEXA_XSLT_LOCAL Data;
    std::shared_ptr<const Data> m_data;
};

} // namespace vexa
