#include "testing/CaseCheck.h"

#include "base/Errors.h"
#include "testing/ComparisonSides.h"
#include "testing/TextDifference.h"
#include "testing/TreeDifference.h"
#include "testing/VisibleText.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <iterator>

namespace {

std::string quoted(const std::string& text) {
    return "'" + textAround(visibleText(text), 0) + "'";
}

std::string valueText(const vexa::Value& value) {
    constexpr std::size_t MOST_NODES = 5;
    if (value.type() != vexa::Value::Type::NodeSet) {
        return value.type() == vexa::Value::Type::String ? quoted(value.string()) : value.string();
    }
    const auto& nodes = value.nodes();
    if (nodes.empty()) {
        return "an empty node-set";
    }
    std::string text;
    for (std::size_t i = 0; i < std::min(nodes.size(), MOST_NODES); ++i) {
        text += (i == 0 ? "" : ", ") + quoted(nodes[i].string());
    }
    return "{" + text + (nodes.size() > MOST_NODES ? ", ...}" : "}");
}

/**
 * A DTD for a document whose own is not read: each entity that the text may refer to is "&name;",
 * so that it is part of a comparison.
 */
std::string declarationsOf(const std::string& text) {
    constexpr const char* LETTERS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_";
    constexpr const char* OTHERS = "0123456789.-";
    static const std::string IN_NAMES = std::string(LETTERS) + OTHERS;
    std::set<std::string> names;
    for (std::size_t begin = 0; (begin = text.find('&', begin)) != std::string::npos;) {
        ++begin;
        const std::size_t end = text.find_first_not_of(IN_NAMES, begin);
        if (end != std::string::npos && text[end] == ';' &&
            text.find_first_of(LETTERS, begin) == begin) {
            names.insert(text.substr(begin, end - begin));
        }
    }
    for (const char* name : {"lt", "gt", "amp", "apos", "quot"}) {
        names.erase(name);
    }
    std::string declarations;
    for (const std::string& name : names) {
        declarations.append("<!ENTITY ").append(name).append(" \"&#38;#38;").append(name);
        declarations += ";\">";
    }
    return declarations;
}

class CaseCheck {
public:
    CaseCheck(const TestCase& test, const CaseOutcome& outcome,
              const std::optional<std::set<FileId>>& keptFiles, const vexa::Options& options)
        : m_test(test), m_outcome(outcome), m_keptFiles(keptFiles), m_options(options) {
        m_options.onMessage = [this](const vexa::Diagnostic& warning) {
            m_warnings.push_back("warning: " + oneLine(warning.text));
        };
    }

    CaseResult check() {
        const auto& error = m_outcome.error;
        if (error && !m_test.expects(Expectation::Kind::Error)) {
            m_result.failures.push_back(error->description);
            m_result.isError = error->kind == "Crash" || error->kind == "Limit";
        }
        for (std::size_t i = 0; i < m_test.expectations.size(); ++i) {
            check(i);
        }
        keepFiles();
        if (!m_result.isPassed()) {
            for (const auto& warnings : {m_outcome.warnings, m_warnings}) {
                m_result.failures.insert(m_result.failures.end(), warnings.begin(), warnings.end());
            }
        }
        return m_result;
    }

private:
    void check(std::size_t index) {
        const Expectation& expectation = m_test.expectations[index];
        const auto fail = [&](const std::string& text) {
            m_result.failures.push_back(expectation.title() + ": " + text);
        };
        try {
            const std::string failure = failureOf(expectation);
            if (!failure.empty() && m_keptFiles && expectation.isFile()) {
                m_result.outdated.push_back(index);
            } else if (!failure.empty()) {
                fail(failure);
            }
        } catch (const vexa::Error& error) {
            m_result.isError = m_result.isError || error.kind() == vexa::ErrorKind::Limit;
            fail(error.text());
        }
    }

    /** None of the files that differ is written anew where one may not be, or the case failed. */
    void keepFiles() {
        const auto causeToKeep = [this](const Expectation& expectation) {
            const auto id = fileId(expectation.text);
            return !id                            ? ""
                   : m_keptFiles->count(*id) != 0 ? "the case reads it"
                   : expectation.isShared         ? "several cases expect it"
                                                  : "";
        };
        std::vector<std::string> failures;
        bool mayUpdate = m_result.isPassed();
        for (const std::size_t index : m_result.outdated) {
            const Expectation& expectation = m_test.expectations[index];
            const std::string cause = causeToKeep(expectation);
            mayUpdate = mayUpdate && cause.empty();
            failures.push_back(expectation.title() + ": the result differs; not updated, as " +
                               (cause.empty() ? "the case failed" : cause));
        }
        if (!mayUpdate) {
            m_result.failures.insert(m_result.failures.end(), failures.begin(), failures.end());
            m_result.outdated.clear();
        }
    }

    /** Empty where it is as expected. @throws vexa::Error where that cannot be said */
    std::string failureOf(const Expectation& expectation) const {
        switch (expectation.kind) {
        case Expectation::Kind::Message:
            return messageFailure(expectation.text);
        case Expectation::Kind::Error:
            return errorFailure(expectation);
        default:
            break;
        }
        if (m_outcome.error) {
            return ""; // which is the failure
        }
        if (expectation.kind == Expectation::Kind::XPath) {
            return xpathFailure(expectation);
        }
        return fileFailure(expectation);
    }

    std::string messageFailure(const std::string& text) const {
        constexpr std::size_t MOST_MESSAGES = 20;
        const auto& messages = m_outcome.messages;
        const auto contains = [&](const std::string& message) {
            return message.find(text) != std::string::npos;
        };
        if (std::any_of(messages.begin(), messages.end(), contains)) {
            return "";
        }
        std::string failure = messages.empty() ? "there was no message" : "the messages were";
        for (std::size_t i = 0; i < std::min(messages.size(), MOST_MESSAGES); ++i) {
            failure += "\n  " + quoted(messages[i]);
        }
        return failure + (messages.size() > MOST_MESSAGES ? "\n  ..." : "");
    }

    std::string errorFailure(const Expectation& expectation) const {
        const auto& error = m_outcome.error;
        if (!error) {
            return "the transform ended without an error";
        }
        const bool isSame = error->kind == expectation.text &&
                            error->text.find(expectation.part) != std::string::npos;
        return isSame ? "" : "the error was " + error->kind + "\n" + error->description;
    }

    std::string xpathFailure(const Expectation& expectation) const {
        const auto evaluate = [&](const vexa::XPath& expression) {
            return expression.evaluate(m_outcome.tree, m_options);
        };
        const vexa::Value value = evaluate(expectation.expression);
        if (value.boolean()) {
            return "";
        }
        if (const auto sides = comparisonSides(expectation.text)) {
            const auto side = [&](const std::string& expression) {
                return valueText(
                    evaluate(vexa::XPath::compile(expression, expectation.namespaces)));
            };
            return side(sides->left) + " " + sides->sign + " " + side(sides->right) + " is false";
        }
        return "it is " + valueText(value);
    }

    std::string fileFailure(const Expectation& expectation) const {
        std::optional<vexa::Document> actual;
        if (expectation.kind == Expectation::Kind::Xml) {
            actual = parse(m_outcome.result, "the result");
        }
        std::ifstream file(expectation.text, std::ios::binary);
        const std::string expected{std::istreambuf_iterator<char>(file), {}};
        if (!file) {
            return systemMessage(errno);
        }
        if (!actual) {
            return expected == m_outcome.result
                       ? ""
                       : "the result differs\n" +
                             textDifference(expectation.text, expected, m_outcome.result);
        }
        try {
            const std::string difference = treeDifference(parse(expected, "the file"), *actual);
            return difference.empty() ? "" : "the result differs\n" + difference;
        } catch (const vexa::Error& error) {
            if (error.kind() == vexa::ErrorKind::Limit) {
                throw;
            }
            return error.text();
        }
    }

    /** Without what its DTD refers to, which may be anywhere. */
    vexa::Document parse(const std::string& text, const std::string& name) const {
        vexa::Options options = m_options;
        options.access.externalEntities = true;
        options.resolver = [&](const std::string& uri, const std::string& /*base*/) {
            return vexa::Input::text(declarationsOf(text), uri);
        };
        try {
            return vexa::Document::parse(vexa::Input::view(text), options);
        } catch (const vexa::Error& error) {
            throw vexa::Error(error.kind(), name + " cannot be read as XML: line " +
                                                std::to_string(error.where().line) + ": " +
                                                error.text());
        }
    }

    const TestCase& m_test;
    const CaseOutcome& m_outcome;
    const std::optional<std::set<FileId>>& m_keptFiles;
    vexa::Options m_options;
    std::vector<std::string> m_warnings;
    CaseResult m_result;
};

} // namespace

CaseResult checkCase(const TestCase& test, const CaseOutcome& outcome,
                     const std::optional<std::set<FileId>>& keptFiles,
                     const vexa::Options& options) {
    return CaseCheck(test, outcome, keptFiles, options).check();
}
