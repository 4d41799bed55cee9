#include "CorpusCase.h"

#include "support/TestFiles.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

/** Every file ends its last line; that line end is the file's, not the result's. */
std::string withoutLastLineEnd(std::string text) {
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text;
}

[[noreturn]] void refuse(const fs::path& file, const std::string& reason) {
    throw std::runtime_error(file.string() + ": " + reason);
}

/** Takes a result, or "fails CODE TEXT" apart. */
void setExpected(CorpusCase& corpusCase, const std::string& text) {
    const std::string mark = "fails ";
    const auto end = text.rfind(mark, 0) == 0 ? text.find(' ', mark.size()) : std::string::npos;
    corpusCase.expected = text.substr(0, end);
    if (end != std::string::npos) {
        corpusCase.errorText = text.substr(end + 1);
    }
}

/** Adds what a heading "ROAD ROAD: REASON" says of a result. */
void addDifferences(CorpusCase& corpusCase, const fs::path& file, const std::string& heading,
                    const std::string& result) {
    const auto colon = heading.find(": ");
    if (colon == std::string::npos || colon + 2 == heading.size()) {
        refuse(file, "a difference without a reason: " + heading);
    }
    std::istringstream roads(heading.substr(0, colon));
    for (std::string road; roads >> road;) {
        corpusCase.differences[road] = {heading.substr(colon + 2), result};
    }
}

/** Headings that begin with "@ ", each followed by the lines of a result. */
void readDifferences(CorpusCase& corpusCase, const fs::path& file) {
    std::istringstream lines(readFile(file.string()));
    std::string heading, result;
    const auto close = [&] {
        if (!heading.empty()) {
            addDifferences(corpusCase, file, heading, withoutLastLineEnd(result));
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
        refuse(file, "no difference in it");
    }
    if (corpusCase.differences.count("engine") != 0 && !corpusCase.expected) {
        refuse(file, "nothing is expected that the engine could differ from");
    }
}

/** The nearest of the documents that may be meant. */
std::string sourceOf(const fs::path& file) {
    fs::path own = file;
    own.replace_extension(".xml");
    const fs::path familys = file.parent_path() / "source.xml";
    const fs::path everybodys = file.parent_path().parent_path() / "source.xml";
    return (fs::exists(own) ? own : fs::exists(familys) ? familys : everybodys).string();
}

std::string nameOf(const fs::path& file) {
    return file.parent_path().filename().string() + "/" + file.stem().string();
}

CorpusCase readStylesheetCase(const fs::path& stylesheet) {
    CorpusCase corpusCase;
    corpusCase.name = nameOf(stylesheet);
    corpusCase.source = sourceOf(stylesheet);
    corpusCase.stylesheet = stylesheet.string();
    fs::path beside = stylesheet;
    if (fs::exists(beside.replace_extension(".expected"))) {
        setExpected(corpusCase, withoutLastLineEnd(readFile(beside.string())));
    }
    if (fs::exists(beside.replace_extension(".differs"))) {
        readDifferences(corpusCase, beside);
    }
    return corpusCase;
}

/** Text on both sides of a mark; refused where there is none. */
std::pair<std::string, std::string> splitLine(const fs::path& file, const std::string& line,
                                              const std::string& mark) {
    const auto position = line.find(mark);
    if (position == std::string::npos) {
        refuse(file, "no \"" + mark + "\" in: " + line);
    }
    return {line.substr(0, position), line.substr(position + mark.size())};
}

/**
 * Lines "NAME: EXPRESSION => RESULT", each of which may be followed by indented lines
 * "ROAD ROAD: REASON => RESULT".
 */
void readExpressionCases(std::vector<CorpusCase>& cases, const fs::path& file) {
    std::istringstream lines(readFile(file.string()));
    bool begun = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const auto [left, result] = splitLine(file, line, " =>");
        const std::string wanted = result.empty() ? "" : result.substr(1);
        if (line[0] == ' ') {
            if (!begun) {
                refuse(file, "a difference before any case: " + line);
            }
            addDifferences(cases.back(), file, left.substr(left.find_first_not_of(' ')), wanted);
            continue;
        }
        const auto [name, expression] = splitLine(file, left, ": ");
        cases.emplace_back();
        cases.back().name = nameOf(file) + "-" + name;
        cases.back().source = sourceOf(file);
        cases.back().expression = expression;
        setExpected(cases.back(), wanted);
        begun = true;
    }
}

void refuseStrayFile(const fs::path& file) {
    fs::path stylesheet = file, expressions = file;
    stylesheet.replace_extension(".xsl");
    expressions.replace_extension(".txt");
    static const std::set<std::string> known{".xml", ".expected", ".differs"};
    const bool beside = known.count(file.extension().string()) != 0 &&
                        (fs::exists(stylesheet) || fs::exists(expressions));
    if (!beside && file.filename() != "source.xml") {
        refuse(file, "belongs to no case");
    }
}

void readFamily(std::vector<CorpusCase>& cases, const fs::path& family) {
    for (const auto& entry : fs::directory_iterator(family)) {
        const fs::path& file = entry.path();
        if (file.extension() == ".xsl") {
            cases.push_back(readStylesheetCase(file));
        } else if (file.extension() == ".txt") {
            readExpressionCases(cases, file);
        } else if (!entry.is_directory()) { // a folder has what the family's stylesheets read
            refuseStrayFile(file);
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
