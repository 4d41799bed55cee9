/**
 * @file
 * Where the bytes of a result go.
 */
#pragma once

#include "xslt/AtomicFile.h"
#include "xslt/Operation.h"

#include <vexa/xslt/Output.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <streambuf>
#include <string>

namespace vexa {

struct Output::Data {
    enum class Kind { File, Stream, Text };

    Kind kind;
    /** Absolute. */
    std::filesystem::path path;
    std::ostream* stream = nullptr;
    std::string* text = nullptr;
};

class OutputAccess {
public:
    using Data = Output::Data;

    /** @throws Error: Usage for an output that was moved from */
    static const Output::Data& data(const Output& output);
};

using OutputData = OutputAccess::Data;

} // namespace vexa

/** Takes the bytes of one result. What is not committed leaves files and strings as they were. */
class OutputWriter {
public:
    /** @throws vexa::Error: Output where a file cannot be written */
    OutputWriter(const vexa::Output& output, Operation& operation);
    OutputWriter(const OutputWriter&) = delete;
    OutputWriter& operator=(const OutputWriter&) = delete;

    /** Takes bytes. @throws vexa::Error: Output */
    void write(const char* bytes, std::size_t size);
    /** The same as a stream, which lets the error pass. */
    std::ostream& stream() { return m_stream; }
    /** Puts the result in its place. @throws vexa::Error: Output */
    void commit();

private:
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(OutputWriter& writer) : m_writer(writer) {}

    protected:
        std::streamsize xsputn(const char* bytes, std::streamsize size) override;

    private:
        OutputWriter& m_writer;
    };

    Operation& m_operation;
    const vexa::Output m_output;
    std::optional<AtomicFile> m_file;
    std::string m_text;
    Buffer m_buffer{*this};
    std::ostream m_stream{&m_buffer};
};
