#include "xslt/OutputWriter.h"

#include <vexa/xslt/Error.h>

#include <system_error>
#include <utility>

using vexa::ErrorKind;
using vexa::Output;
using vexa::OutputAccess;
using vexa::OutputData;

namespace vexa {

const Output::Data& OutputAccess::data(const Output& output) {
    if (!output.m_data) {
        throw Error(ErrorKind::Usage, "the output is empty");
    }
    return *output.m_data;
}

Output::Output(std::shared_ptr<const Data> data) noexcept : m_data(std::move(data)) {}

Output Output::file(const std::filesystem::path& path) {
    // Without a working directory the path stays empty, and is refused when it is opened.
    std::error_code ignored;
    return Output(std::make_shared<const Data>(
        Data{Data::Kind::File, std::filesystem::absolute(path, ignored)}));
}

Output Output::stream(std::ostream& stream) {
    return Output(std::make_shared<const Data>(Data{Data::Kind::Stream, {}, &stream}));
}

Output Output::text(std::string& text) {
    return Output(std::make_shared<const Data>(Data{Data::Kind::Text, {}, nullptr, &text}));
}

} // namespace vexa

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{64} * 1024;

} // namespace

OutputWriter::OutputWriter(const Output& output, Operation& operation)
    : m_operation(operation), m_output(output) {
    const OutputData& data = OutputAccess::data(m_output);
    if (data.kind == OutputData::Kind::File) {
        m_file.emplace(data.path, [this](std::string text, const vexa::Location& where) {
            m_operation.fail(ErrorKind::Output, std::move(text), where);
        });
    }
    // What write() throws is to pass, and not to become a state of the stream.
    m_stream.exceptions(std::ios_base::badbit);
}

void OutputWriter::write(const char* bytes, std::size_t size) {
    m_operation.poll();
    m_operation.takeOutput(size);
    const OutputData& data = OutputAccess::data(m_output);
    if (data.kind == OutputData::Kind::Stream) {
        data.stream->write(bytes, static_cast<std::streamsize>(size));
        if (!*data.stream) {
            m_operation.fail(ErrorKind::Output, "the stream does not take the result");
        }
        return;
    }
    m_operation.append(m_text, bytes, size);
    if (m_file && m_text.size() >= BUFFER_SIZE) {
        m_file->write(m_text.data(), m_text.size());
        m_text.clear();
    }
}

void OutputWriter::commit() {
    const OutputData& data = OutputAccess::data(m_output);
    if (m_file) {
        m_file->write(m_text.data(), m_text.size());
        m_file->commit();
    } else if (data.kind == OutputData::Kind::Text) {
        *data.text = std::move(m_text);
    } else {
        data.stream->flush();
        if (!*data.stream) {
            m_operation.fail(ErrorKind::Output, "the stream does not take the result");
        }
    }
}

std::streamsize OutputWriter::Buffer::xsputn(const char* bytes, std::streamsize size) {
    m_writer.write(bytes, static_cast<std::size_t>(size));
    return size;
}
