#include "testing/JUnitReport.h"

#include <cstdio>
#include <sys/utsname.h>

#include <unicode/unistr.h>

namespace {

/** As XML: what cannot stand there, or is not UTF-8, becomes U+FFFD. */
std::string xmlText(const std::string& text) {
    const auto source = icu::UnicodeString::fromUTF8(text);
    icu::UnicodeString result;
    for (std::int32_t i = 0; i < source.length(); i = source.moveIndex32(i, 1)) {
        const UChar32 c = source.char32At(i);
        const bool isControl = c < ' ' && c != '\t' && c != '\n';
        if (c == '&' || c == '<' || c == '>' || c == '"') {
            result += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : "&quot;";
        } else {
            result += isControl || c == 0xFFFE || c == 0xFFFF ? UChar32(0xFFFD) : c;
        }
    }
    std::string utf8;
    return result.toUTF8String(utf8);
}

std::string attribute(const char* name, const std::string& value) {
    return " " + std::string(name) + "=\"" + xmlText(value) + "\"";
}

std::string timeAttribute(double milliseconds) {
    constexpr double MILLISECONDS = 1000;
    char text[64];
    std::snprintf(text, sizeof text, "%.6f", milliseconds / MILLISECONDS);
    return attribute("time", text);
}

std::string hostName() {
    utsname system{};
    return uname(&system) == 0 ? system.nodename : "";
}

std::string timestamp(std::time_t time) {
    std::tm parts{};
    gmtime_r(&time, &parts);
    char text[64];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts)};
}

} // namespace

std::string JUnitReport::Counts::attributes() const {
    return attribute("tests", std::to_string(tests)) +
           attribute("failures", std::to_string(failures)) +
           attribute("errors", std::to_string(errors)) + timeAttribute(milliseconds);
}

void JUnitReport::begin(const TestFile& file) {
    m_name = file.name;
    m_time = std::time(nullptr);
    m_cases.clear();
    m_counts = {};
}

void JUnitReport::add(const TestCase& test, const CaseResult& result) {
    const char* const kind = result.isError ? "error" : "failure";
    m_cases += "    <testcase" + attribute("name", test.name) + attribute("classname", m_name) +
               timeAttribute(result.milliseconds) + (result.isPassed() ? "/>\n" : ">\n");
    std::string text;
    for (const std::string& failure : result.failures) {
        text += failure + "\n";
    }
    if (!result.isPassed()) {
        m_cases += "      <" + std::string(kind) +
                   attribute("message", text.substr(0, text.find('\n'))) + attribute("type", kind) +
                   ">" + xmlText(text) + "</" + kind + ">\n    </testcase>\n";
    }
    for (Counts* counts : {&m_counts, &m_all}) {
        ++counts->tests;
        counts->failures += result.isPassed() || result.isError ? 0 : 1;
        counts->errors += result.isError ? 1 : 0;
        counts->milliseconds += result.milliseconds;
    }
}

void JUnitReport::end() {
    m_suites += "  <testsuite" + attribute("name", m_name) + m_counts.attributes() +
                attribute("skipped", "0") + attribute("timestamp", timestamp(m_time)) +
                attribute("hostname", hostName()) + ">\n" + m_cases + "  </testsuite>\n";
}

void JUnitReport::addWrong(const std::string& name, const std::string& error) {
    TestCase test;
    test.name = "the test file";
    CaseResult result;
    result.failures = {error};
    result.isError = true;
    begin({name, {}, {}});
    add(test, result);
    end();
}

std::string JUnitReport::text() const {
    return R"(<?xml version="1.0" encoding="UTF-8"?>)"
           "\n<testsuites" +
           m_all.attributes() + ">\n" + m_suites + "</testsuites>\n";
}
