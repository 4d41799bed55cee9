/**
 * @file
 * Where a result goes.
 */
#pragma once

#include <vexa/xslt/Export.h>

#include <filesystem>
#include <iosfwd>
#include <memory>
#include <string>

namespace vexa {

/** Names the place of a result; nothing is opened before an operation writes. */
class VEXA_XSLT_EXPORT Output {
public:
    /**
     * A file, which appears or is replaced atomically when the operation has succeeded, and is left
     * as it was after a failure. An existing file keeps its permissions; a symbolic link is
     * followed. What is no regular file (a device, a FIFO) is written to directly.
     */
    static Output file(const std::filesystem::path& path);
    /** A stream, which must live until the operation ends. A failure may leave a part in it. */
    static Output stream(std::ostream& stream);
    /** A string, which is replaced after success only. It must live until the operation ends. */
    static Output text(std::string& text);

private:
    friend class OutputAccess;
    struct VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL explicit Output(std::shared_ptr<const Data> data) noexcept;
    std::shared_ptr<const Data> m_data;
};

} // namespace vexa
