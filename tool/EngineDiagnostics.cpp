#include "EngineDiagnostics.h"

#include <iostream>

namespace {

constexpr const char* FATAL_ERROR = "Fatal Error: ";

bool beginsFatalError(const std::string& line) {
    return line.rfind(FATAL_ERROR, 0) == 0 ||
           line.rfind(std::string("XML warning: ") + FATAL_ERROR, 0) == 0;
}

} // namespace

EngineDiagnostics::EngineDiagnostics(bool quiet)
    : m_bQuiet(quiet), m_pStandardError(std::cerr.rdbuf(this)) {}

EngineDiagnostics::~EngineDiagnostics() {
    std::cerr.rdbuf(m_pStandardError);
    sortLine();
    print(m_strHeld);
}

void EngineDiagnostics::dropReportOf(const std::string& reason) {
    sortLine();
    const auto begin = m_strHeld.find(FATAL_ERROR);
    if (begin == std::string::npos) {
        return;
    }
    // The library may tell the place in other words.
    const auto textBegin = begin + std::string(FATAL_ERROR).size();
    const auto textEnd = m_strHeld.find(" (Occurred in ", textBegin);
    if (reason.find(m_strHeld.substr(textBegin, textEnd - textBegin)) != std::string::npos) {
        m_strHeld.clear();
    }
}

EngineDiagnostics::int_type EngineDiagnostics::overflow(int_type character) {
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        const char c = traits_type::to_char_type(character);
        xsputn(&c, 1);
    }
    return traits_type::not_eof(character);
}

std::streamsize EngineDiagnostics::xsputn(const char* text, std::streamsize length) {
    for (std::streamsize i = 0; i < length; ++i) {
        m_strLine += text[i];
        if (text[i] == '\n') {
            sortLine();
        }
    }
    return length;
}

void EngineDiagnostics::sortLine() {
    const bool isBlank = m_strLine == "\n"; // the engine opens some reports with one
    if (!m_strHeld.empty() || beginsFatalError(m_strLine)) {
        m_strHeld += m_strLine;
    } else if (!isBlank) {
        print(m_strLine);
    }
    m_strLine.clear();
}

void EngineDiagnostics::print(const std::string& text) {
    if (!m_bQuiet && !text.empty()) {
        m_pStandardError->sputn(text.data(), static_cast<std::streamsize>(text.size()));
        m_pStandardError->pubsync();
    }
}
