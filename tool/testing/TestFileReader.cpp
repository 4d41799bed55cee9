#include "testing/TestFileReader.h"

#include "base/Errors.h"
#include "base/Suggestion.h"
#include "cli/Parameter.h"
#include "files/ErrorJson.h"
#include "files/InputArgument.h"

#include <vexa/xslt/Document.h>
#include <vexa/xslt/Records.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <utility>

namespace fs = std::filesystem;

using vexa::Node;

namespace {

constexpr const char* NAMESPACE = "http://vexa.example/xslt/test";

using Names = std::vector<std::string>;

bool contains(const Names& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

Names errorKinds() {
    Names names{"Crash"};
    for (int kind = 0; kind <= static_cast<int>(vexa::ErrorKind::Usage); ++kind) {
        names.emplace_back(nameOf(static_cast<vexa::ErrorKind>(kind)));
    }
    return names;
}

/** The content of an inline source is a document: it may say so by xmlns="" at <source>, too. */
bool isOurs(const Node& element) {
    return element.namespaceUri() == NAMESPACE ||
           (element.namespaceUri().empty() && element.localName() == "source");
}

class TestFileReader {
public:
    TestFileReader(const std::string& name, bool makesFiles, const vexa::Options& options)
        : m_name(name), m_makesFiles(makesFiles), m_options(options),
          m_document(vexa::Document::parse(vexa::Input::file(name), options)) {}

    TestFile read() {
        const Node tests = nodes(m_document.root(), "*").front();
        if (tests.namespaceUri() != NAMESPACE || tests.localName() != "tests") {
            fail(tests, "expected <tests xmlns=\"" + std::string(NAMESPACE) + "\">, got <" +
                            tests.name() + ">");
        }
        check(tests, {"stylesheet"}, {"case"});
        TestFile file{m_name, fileOf(tests, "stylesheet"), {}};
        requireFile(tests, file.stylesheet);
        const auto lines = linesOf("case");
        for (const Node& node : nodes(tests, "*")) {
            file.cases.push_back(readCase(node));
            file.cases.back().line = lines.at(file.cases.size() - 1);
        }
        return file;
    }

private:
    /** @param element is where the file is wrong */
    [[noreturn]] void fail(const Node& element, const std::string& text) {
        // Nodes have no lines. Those that are found as records do.
        const auto number = vexa::XPath::compile("count((preceding::* | ancestor-or-self::*)"
                                                 "[local-name() = $name]"
                                                 "[not(ancestor::*[local-name() = $name])])")
                                .evaluate(element, {}, {{"name", element.localName()}})
                                .number();
        const auto lines = linesOf(element.localName());
        throw vexa::Error(vexa::ErrorKind::Parse, text,
                          {m_document.uri(), lines.at(static_cast<std::size_t>(number) - 1), 0});
    }

    /** On which the outermost elements of this name begin. */
    std::vector<std::size_t> linesOf(const std::string& name) const {
        std::vector<std::size_t> lines;
        vexa::Records records(vexa::Input::file(m_name), name, m_options);
        while (records.next()) {
            lines.push_back(records.line());
        }
        return lines;
    }

    std::vector<Node> nodes(const Node& node, const std::string& path) {
        auto& compiled = m_paths[path];
        if (!compiled) {
            compiled = vexa::XPath::compile(path);
        }
        return compiled->evaluate(node).nodes();
    }

    std::optional<std::string> attribute(const Node& element, const std::string& name) {
        const auto found = nodes(element, "@" + name);
        return found.empty() ? std::nullopt : std::optional(found.front().string());
    }

    std::string required(const Node& element, const std::string& name) {
        const auto value = attribute(element, name);
        if (!value) {
            fail(element, "<" + element.localName() + "> needs the attribute '" + name + "'");
        }
        return *value;
    }

    /** The one of these attributes that is there. */
    std::string oneOf(const Node& element, const Names& names) {
        const auto isThere = [&](const std::string& name) { return attribute(element, name); };
        if (std::count_if(names.begin(), names.end(), isThere) != 1) {
            std::string list;
            for (const std::string& name : names) {
                list += (name == names.front()  ? "'"
                         : name == names.back() ? "' and '"
                                                : "', '") +
                        name;
            }
            fail(element, "<" + element.localName() + "> has one of the attributes " + list + "'");
        }
        return *std::find_if(names.begin(), names.end(), isThere);
    }

    void checkAttributes(const Node& element, const Names& attributes) {
        for (const Node& node : nodes(element, "@*[namespace-uri() = '']")) {
            if (!contains(attributes, node.name())) {
                fail(element, "<" + element.localName() + "> has no attribute '" + node.name() +
                                  "'" + didYouMean(nearestWord(node.name(), attributes)));
            }
        }
    }

    /** Refuses attributes, elements and text that do not belong there. */
    void check(const Node& element, const Names& attributes, const Names& children) {
        checkAttributes(element, attributes);
        const std::string name = "<" + element.localName() + ">";
        for (const Node& node : nodes(element, "*")) {
            const bool isKnown = isOurs(node);
            if (!isKnown || !contains(children, node.localName())) {
                fail(node, name + " has no element <" + node.name() + ">" +
                               (isKnown ? didYouMean(nearestWord(node.localName(), children))
                                        : " of the namespace '" + node.namespaceUri() + "'"));
            }
        }
        for (const Node& node : nodes(element, "text()[normalize-space()]")) {
            fail(element, name + " has no text, got '" + oneLine(node.string()) + "'");
        }
    }

    /** A file's name in an attribute. */
    std::string fileOf(const Node& element, const std::string& attributeName) {
        const std::string name = required(element, attributeName);
        if (name.empty()) {
            fail(element, "the attribute '" + attributeName + "' names no file");
        }
        const bool isUri = name != STANDARD_STREAM && InputArgument(name).uri() == name;
        const fs::path path = isUri ? fs::path(name) : fs::path(m_name).parent_path() / name;
        return path == STANDARD_STREAM ? "./-" : path.string();
    }

    void requireFile(const Node& element, const std::string& name) {
        const auto path = InputArgument(name).path();
        std::error_code ignored;
        if (path && !fs::exists(*path, ignored)) {
            fail(element, "there is no file '" + name + "'" + didYouMean(nearestFile(*path)));
        }
    }

    vexa::Namespaces namespacesOf(const Node& element) {
        vexa::Namespaces namespaces;
        for (const Node& node : nodes(element, "namespace::*[name() != '' and name() != 'xml']")) {
            namespaces.emplace(node.name(), node.string());
        }
        return namespaces;
    }

    vexa::XPath compile(const Node& element, const std::string& expression) {
        try {
            return vexa::XPath::compile(expression, namespacesOf(element));
        } catch (const vexa::Error& error) {
            fail(element, "wrong expression '" + expression + "': " + error.text());
        }
    }

    TestCase readCase(const Node& element) {
        check(element, {"name", "source"}, {"source", "param", "expect"});
        TestCase test;
        std::set<std::string> paramNames;
        test.name = required(element, "name");
        if (!m_caseNames.insert(test.name).second) {
            fail(element, "there are two cases '" + test.name + "'");
        }
        if (attribute(element, "source")) {
            test.source = fileOf(element, "source");
            requireFile(element, *test.source);
        }
        for (const Node& node : nodes(element, "*")) {
            if (node.localName() == "param") {
                test.params.push_back(readParam(node));
                const std::string& name = test.params.back().name;
                if (!paramNames.insert(name).second) {
                    fail(node, "there are two parameters '" + name + "'");
                }
            } else if (node.localName() == "expect") {
                test.expectations.push_back(readExpectation(node));
            } else {
                if (test.source || !test.inlineSource.empty()) {
                    fail(node, "the case '" + test.name + "' has two sources");
                }
                test.inlineSource = readSource(node);
            }
        }
        checkCase(element, test);
        return test;
    }

    void checkCase(const Node& element, const TestCase& test) {
        using Kind = Expectation::Kind;
        const std::string name = "the case '" + test.name + "' ";
        if (!test.source && test.inlineSource.empty()) {
            fail(element, name + "has no source: an attribute 'source', or an element <source>");
        }
        if (test.expectations.empty()) {
            fail(element, name + "has no <expect>");
        }
        if (test.expects(Kind::Error) &&
            (test.expects(Kind::File) || test.expects(Kind::Xml) || test.expects(Kind::XPath))) {
            fail(element, name + "expects an error and a result");
        }
    }

    /** The document in it, as text. */
    std::string readSource(const Node& element) {
        checkAttributes(element, {});
        std::string text;
        std::size_t elements = 0;
        for (const Node& node : nodes(element, "node()[not(self::text())]")) {
            if (node.type() == Node::Type::Element) {
                ++elements;
                if (node.namespaceUri() == NAMESPACE) {
                    fail(element, "<" + node.name() +
                                      "> is in the namespace of the test file: write <source "
                                      "xmlns=\"\">");
                }
            }
            text += node.xml();
        }
        if (elements != 1 || !nodes(element, "text()[normalize-space()]").empty()) {
            fail(element, "<source> has one element, which is the document");
        }
        return text;
    }

    TestCase::Param readParam(const Node& element) {
        check(element, {"name", "value", "number", "select"}, {});
        const std::string name = required(element, "name");
        const std::string kind = oneOf(element, {"value", "number", "select"});
        const std::string value = required(element, kind);
        try {
            if (name.find('=') != std::string::npos) {
                throw UsageError("<param> " + name, "a name has no =");
            }
            const auto parameter = parseParameter(
                "<param>", kind == "number" ? Parameter::Kind::Number : Parameter::Kind::String,
                name + "=" + value);
            if (kind == "select") {
                return {name, compile(element, value)};
            }
            return {name, kind == "number" ? vexa::Value(parameter.number) : vexa::Value(value)};
        } catch (const UsageError& error) {
            fail(element, error.what());
        }
    }

    Expectation readExpectation(const Node& element) {
        using Kind = Expectation::Kind;
        static const std::map<std::string, Kind> KINDS{{"file", Kind::File},
                                                       {"xpath", Kind::XPath},
                                                       {"message", Kind::Message},
                                                       {"error", Kind::Error}};
        check(element, {"file", "as", "xpath", "message", "error", "text"}, {});
        const std::string kind = oneOf(element, {"file", "xpath", "message", "error"});
        Expectation result{KINDS.at(kind), required(element, kind), "", {}, {}};
        for (const auto& [name, owner] : {std::pair("as", "file"), std::pair("text", "error")}) {
            if (attribute(element, name) && kind != owner) {
                fail(element, "the attribute '" + std::string(name) + "' belongs to '" + owner +
                                  "', and not to '" + kind + "'");
            }
        }
        if (kind == "file") {
            readFile(element, result);
        } else if (kind == "xpath") {
            result.expression = compile(element, result.text);
            result.namespaces = namespacesOf(element);
        } else if (kind == "error") {
            result.part = attribute(element, "text").value_or("");
            if (const Names kinds = errorKinds(); !contains(kinds, result.text)) {
                fail(element, "there is no error of kind '" + result.text + "'" +
                                  didYouMean(nearestWord(result.text, kinds)));
            }
        }
        return result;
    }

    void readFile(const Node& element, Expectation& result) {
        const std::string name = fileOf(element, "file");
        const auto path = InputArgument(name).path();
        std::error_code ignored;
        if (!path || (fs::exists(*path, ignored) && !fs::is_regular_file(*path, ignored))) {
            fail(element, "'" + name + "' is no regular file");
        }
        result.text = path->string();
        if (const auto as = attribute(element, "as")) {
            if (*as != "xml") {
                fail(element, "expected as=\"xml\", got as=\"" + *as + "\"");
            }
            result.kind = Expectation::Kind::Xml;
        }
        if (!m_makesFiles) {
            requireFile(element, result.text);
        }
    }

    const std::string m_name;
    const bool m_makesFiles;
    const vexa::Options& m_options;
    const vexa::Document m_document;
    std::map<std::string, std::optional<vexa::XPath>> m_paths;
    std::set<std::string> m_caseNames;
};

} // namespace

TestFile readTestFile(const std::string& name, bool makesFiles, const vexa::Options& options) {
    return TestFileReader(name, makesFiles, options).read();
}
