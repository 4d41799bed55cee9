#include "CorpusCase.h"

#include "support/TestFiles.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

/** The newline at the end of a file is not part of the result. */
std::string withoutLastNewline(std::string text) {
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text;
}

[[noreturn]] void throwInvalid(const fs::path& file, const std::string& message) {
    throw std::runtime_error(file.string() + ": " + message);
}

/** Parses a result, which may be "fails CODE TEXT". */
void setExpected(CorpusCase& corpusCase, const std::string& text) {
    const std::string prefix = "fails ";
    const auto end = text.rfind(prefix, 0) == 0 ? text.find(' ', prefix.size()) : std::string::npos;
    corpusCase.expected = text.substr(0, end);
    if (end != std::string::npos) {
        corpusCase.errorText = text.substr(end + 1);
    }
}

/** Adds a result with the heading "KIND KIND: EXPLANATION". */
void addDifferences(CorpusCase& corpusCase, const fs::path& file, const std::string& heading,
                    const std::string& result) {
    const auto colon = heading.find(": ");
    if (colon == std::string::npos || colon + 2 == heading.size()) {
        throwInvalid(file, "difference without an explanation: " + heading);
    }
    std::istringstream kinds(heading.substr(0, colon));
    for (std::string kind; kinds >> kind;) {
        corpusCase.differences[kind] = {heading.substr(colon + 2), result};
    }
}

/** Reads headings that begin with "@ ", each followed by the lines of a result. */
void readDifferences(CorpusCase& corpusCase, const fs::path& file) {
    std::istringstream lines(readFile(file.string()));
    std::string heading, result;
    const auto close = [&] {
        if (!heading.empty()) {
            addDifferences(corpusCase, file, heading, withoutLastNewline(result));
        }
        result.clear();
    };
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("@ ", 0) == 0) {
            close();
            heading = line.substr(2);
        } else {
            result += line + "\n";
        }
    }
    close();
    if (corpusCase.differences.empty()) {
        throwInvalid(file, "no differences");
    }
    if (corpusCase.differences.count("engine") != 0 && !corpusCase.expected) {
        throwInvalid(file, "a difference of the engine, but no expected result");
    }
}

/** The source of a case: its own, that of its family, or the common one. */
std::string sourceOf(const fs::path& file) {
    fs::path own = file;
    own.replace_extension(".xml");
    const fs::path ofFamily = file.parent_path() / "source.xml";
    const fs::path common = file.parent_path().parent_path() / "source.xml";
    return (fs::exists(own) ? own : fs::exists(ofFamily) ? ofFamily : common).string();
}

std::string nameOf(const fs::path& file) {
    return file.parent_path().filename().string() + "/" + file.stem().string();
}

CorpusCase readStylesheetCase(const fs::path& stylesheet) {
    CorpusCase corpusCase;
    corpusCase.name = nameOf(stylesheet);
    corpusCase.source = sourceOf(stylesheet);
    corpusCase.stylesheet = stylesheet.string();
    fs::path file = stylesheet;
    if (fs::exists(file.replace_extension(".expected"))) {
        setExpected(corpusCase, withoutLastNewline(readFile(file.string())));
    }
    if (fs::exists(file.replace_extension(".differs"))) {
        readDifferences(corpusCase, file);
    }
    return corpusCase;
}

/** Splits a line at a separator. */
std::pair<std::string, std::string> splitLine(const fs::path& file, const std::string& line,
                                              const std::string& separator) {
    const auto position = line.find(separator);
    if (position == std::string::npos) {
        throwInvalid(file, "no \"" + separator + "\" in: " + line);
    }
    return {line.substr(0, position), line.substr(position + separator.size())};
}

/**
 * Reads lines "NAME: EXPRESSION => RESULT", each optionally followed by indented lines
 * "KIND KIND: EXPLANATION => RESULT".
 */
void readExpressionCases(std::vector<CorpusCase>& cases, const fs::path& file) {
    std::istringstream lines(readFile(file.string()));
    bool hasCase = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const auto [left, result] = splitLine(file, line, " =>");
        const std::string expected = result.empty() ? "" : result.substr(1);
        if (line[0] == ' ') {
            if (!hasCase) {
                throwInvalid(file, "difference before the first case: " + line);
            }
            addDifferences(cases.back(), file, left.substr(left.find_first_not_of(' ')), expected);
            continue;
        }
        const auto [name, expression] = splitLine(file, left, ": ");
        cases.emplace_back();
        cases.back().name = nameOf(file) + "-" + name;
        cases.back().source = sourceOf(file);
        cases.back().expression = expression;
        setExpected(cases.back(), expected);
        hasCase = true;
    }
}

void checkBelongsToCase(const fs::path& file) {
    fs::path stylesheet = file, expressions = file;
    stylesheet.replace_extension(".xsl");
    expressions.replace_extension(".txt");
    static const std::set<std::string> known{".xml", ".expected", ".differs"};
    const bool belongsToCase = known.count(file.extension().string()) != 0 &&
                               (fs::exists(stylesheet) || fs::exists(expressions));
    if (!belongsToCase && file.filename() != "source.xml") {
        throwInvalid(file, "belongs to no case");
    }
}

void readFamily(std::vector<CorpusCase>& cases, const fs::path& family) {
    for (const auto& entry : fs::directory_iterator(family)) {
        const fs::path& file = entry.path();
        if (file.extension() == ".xsl") {
            cases.push_back(readStylesheetCase(file));
        } else if (file.extension() == ".txt") {
            readExpressionCases(cases, file);
        } else if (!entry.is_directory()) { // folders have files that the stylesheets read
            checkBelongsToCase(file);
        }
    }
}

} // namespace

std::vector<CorpusCase> readCorpus(const std::string& folder) {
    std::vector<CorpusCase> cases;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.is_directory()) {
            readFamily(cases, entry.path());
        }
    }
    std::sort(cases.begin(), cases.end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    return cases;
}
