#include "testing/TapReport.h"

#include "base/Errors.h"

#include <cerrno>
#include <iostream>
#include <sstream>

namespace {

/** A # would begin a directive. */
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : oneLine(text)) {
        result += c == '#' || c == '\\' ? "\\" : "";
        result += c;
    }
    return result;
}

std::string comment(const std::string& text) {
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        result += "# " + line + "\n";
    }
    return result;
}

} // namespace

TapReport::TapReport(std::size_t count) {
    write("TAP version 13\n1.." + std::to_string(count) + "\n");
}

void TapReport::add(const TestFile& file, const TestCase& test, const CaseResult& result) {
    std::string text = (result.isPassed() ? "ok " : "not ok ") + std::to_string(++m_number) +
                       " - " + escaped(file.name + ": " + test.name) + "\n";
    if (!result.isPassed()) {
        m_hasFailed = true;
        text += comment(oneLine(file.name) + ":" + std::to_string(test.line));
    }
    for (const std::string& failure : result.failures) {
        text += comment(failure);
    }
    for (const std::size_t index : result.outdated) {
        text += comment("updated " + oneLine(test.expectations.at(index).text));
    }
    write(text);
}

void TapReport::write(const std::string& text) {
    if (!(std::cout << text).flush()) {
        throw Failure("standard output", systemMessage(errno));
    }
}
