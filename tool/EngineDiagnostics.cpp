#include "EngineDiagnostics.h"

#include "ErrorRoute.h"

#include <algorithm>
#include <initializer_list>

namespace {

constexpr const char* BLANK_LINE = "\n";
constexpr const char* MESSAGE = "XSLT message: ";
constexpr const char* SOURCE_ERROR = "Fatal Error: ";
constexpr const char* STYLESHEET_ERROR = "XML warning: Fatal Error: ";
constexpr const char* EXPRESSION_ERROR = "XPath error: ";

bool begins(const std::string& text, const char* beginning) {
    return text.rfind(beginning, 0) == 0;
}

/** The text behind the first of the beginnings that it has; empty where it has none. */
std::string textBehind(const std::string& line, std::initializer_list<const char*> beginnings) {
    for (const char* beginning : beginnings) {
        if (begins(line, beginning)) {
            return line.substr(std::string(beginning).size());
        }
    }
    return "";
}

std::string errorText(const std::string& line) {
    return textBehind(line, {SOURCE_ERROR, STYLESHEET_ERROR, EXPRESSION_ERROR});
}

bool beginsReport(const std::string& line) {
    return begins(line, MESSAGE) || begins(line, "XSLT warning: ") || begins(line, "XML warning: ");
}

/** What a reason says behind the name of its exception, in both forms that the library has. */
std::string reasonText(const std::string& reason) {
    constexpr const char* MARK = "Message is: ";
    const auto mark = reason.find(MARK);
    if (begins(reason, "\nXSLException ") && mark != std::string::npos) {
        return reason.substr(mark + std::string(MARK).size());
    }
    const auto colon = reason.find(": ");
    return colon == std::string::npos ? reason : reason.substr(colon + 2);
}

} // namespace

EngineDiagnostics::EngineDiagnostics(bool quiet)
    : m_bQuiet(quiet), m_pStandardError(redirectErrors(this)) {}

EngineDiagnostics::~EngineDiagnostics() {
    redirectErrors(m_pStandardError);
    sortLine();
    printHeld();
}

bool EngineDiagnostics::dropReportOf(const std::string& reason) {
    sortLine();
    const std::string report = begins(m_strHeld, BLANK_LINE) ? m_strHeld.substr(1) : m_strHeld;
    std::string text = errorText(report);
    // The place may be told in other words, and the rest of an expression's report too.
    text.erase(std::min(text.find('\n'), text.size()));
    text.erase(std::min(text.find(" (Occurred in "), text.size()));
    if (!text.empty() && begins(reasonText(reason), text.c_str())) {
        m_strHeld.clear();
    }
    return begins(report, SOURCE_ERROR);
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
    const bool holdsBlankLine = m_strHeld == BLANK_LINE;
    const bool holdsError = !m_strHeld.empty() && !holdsBlankLine;
    if (!errorText(m_strLine).empty()) {
        if (!holdsBlankLine) {
            printHeld();
        }
        m_strHeld += m_strLine;
        m_bInMessage = false;
    } else if (holdsError && !beginsReport(m_strLine)) {
        m_strHeld += m_strLine;
    } else {
        printHeld();
        if (m_strLine == BLANK_LINE) {
            m_strHeld = m_strLine;
        } else {
            m_bInMessage = beginsReport(m_strLine) ? begins(m_strLine, MESSAGE) : m_bInMessage;
            print(m_strLine);
        }
    }
    m_strLine.clear();
}

void EngineDiagnostics::printHeld() {
    print(m_strHeld);
    m_strHeld.clear();
}

void EngineDiagnostics::print(const std::string& text) {
    if (!text.empty() && !(m_bQuiet && m_bInMessage)) {
        m_pStandardError->sputn(text.data(), static_cast<std::streamsize>(text.size()));
        m_pStandardError->pubsync();
    }
}
