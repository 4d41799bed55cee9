#include "records/RecordOutput.h"

#include "files/InputArgument.h"
#include "files/OutputPlace.h"

#include <vexa/xslt/Error.h>

#include <utility>

namespace {

/** The length of the XML declaration; 0 without one. */
std::size_t declarationLength(const std::string& result) {
    const auto end = result.rfind("<?xml ", 0) == 0 ? result.find("?>") : std::string::npos;
    return end == std::string::npos ? 0 : end + 2;
}

bool hasByteOrderMark16(const std::string& result) {
    return result.rfind("\xFE\xFF", 0) == 0 || result.rfind("\xFF\xFE", 0) == 0;
}

} // namespace

RecordOutput::RecordOutput(const std::string& output, std::string wrap) : m_wrap(std::move(wrap)) {
    if (output != STANDARD_STREAM) {
        m_file.emplace(writablePath(output), [](std::string text, const vexa::Location& where) {
            throw vexa::Error(vexa::ErrorKind::Output, std::move(text), where);
        });
    }
}

void RecordOutput::add(const std::string& result) {
    if (m_wrap.empty()) {
        write(result);
        return;
    }
    if (hasByteOrderMark16(result)) {
        throw vexa::Error(vexa::ErrorKind::Output,
                          "--wrap cannot put an element around results in UTF-16");
    }
    const std::size_t declaration = declarationLength(result);
    begin(result.substr(0, declaration));
    write(result.data() + declaration, result.size() - declaration);
}

void RecordOutput::flush() {
    m_standardOutput.flush();
}

void RecordOutput::finish() {
    if (!m_wrap.empty()) {
        begin("");
        write("</" + m_wrap + ">\n");
    }
    if (m_file) {
        m_file->write(m_buffer.data(), m_buffer.size());
        m_file->commit();
    }
    m_standardOutput.flush();
}

void RecordOutput::begin(const std::string& declaration) {
    if (!m_isBegun) {
        m_isBegun = true;
        write(declaration + "<" + m_wrap + ">");
    }
}

void RecordOutput::write(const char* bytes, std::size_t size) {
    constexpr std::size_t BUFFER_SIZE = std::size_t{64} * 1024;
    if (!m_file) {
        m_standardOutput.write(bytes, static_cast<std::streamsize>(size));
        return;
    }
    m_buffer.append(bytes, size);
    if (m_buffer.size() >= BUFFER_SIZE) {
        m_file->write(m_buffer.data(), m_buffer.size());
        m_buffer.clear();
    }
}
