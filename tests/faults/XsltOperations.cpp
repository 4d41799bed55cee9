/**
 * @file
 * The operations of the second interface.
 */
#include "SweepFiles.h"
#include "Trial.h"

#include <vexa/xslt.h>

#include <optional>
#include <utility>
#include <vector>

using vexa::Document;
using vexa::Error;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Node;
using vexa::Options;
using vexa::Output;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::Value;
using vexa::XPath;

namespace {

// Longer than the internal buffer of a standard string.
const std::string LONG_TEXT = "a text that is kept in memory of its own";

/** The same path in each run, as in SweepFiles. */
std::string pathOf(const std::string& name) {
    return "/proc/self/cwd/" + name;
}

Document source() {
    return Document::parse(Input::view(SOURCE_TEXT, "urn:source"));
}

Stylesheet compiled(const std::string& content) {
    return Stylesheet::compile(Input::text(stylesheet(content), "urn:sheet"));
}

Stylesheet compiledRootTemplate(const std::string& content) {
    return Stylesheet::compile(Input::text(stylesheetWithRootTemplate(content), "urn:sheet"));
}

/** Gives a value of its own each time. */
template <typename Result>
class ResultTrial : public Trial {
public:
    void operate() override {
        m_result.reset();
        m_result.emplace(work());
    }
    bool succeeded() override { return m_result && isRight(*m_result); }

protected:
    virtual Result work() = 0;
    virtual bool isRight(const Result& result) = 0;

private:
    std::optional<Result> m_result;
};

class TextTrial : public ResultTrial<std::string> {
protected:
    explicit TextTrial(std::string expected) : m_expected(std::move(expected)) {}
    bool isRight(const std::string& result) override { return result == m_expected; }

private:
    const std::string m_expected;
};

/** An operation that fails in any case. */
class FailingTrial : public Trial {
public:
    void operate() override {
        m_error.reset();
        try {
            work();
        } catch (const Error& error) {
            m_error = error;
        }
    }
    bool succeeded() override {
        return m_error && m_error->kind() == m_kind && m_error->text() == m_text;
    }

protected:
    FailingTrial(ErrorKind kind, std::string text) : m_kind(kind), m_text(std::move(text)) {}
    virtual void work() = 0;

private:
    const ErrorKind m_kind;
    const std::string m_text;
    std::optional<Error> m_error;
};

// Values, inputs, outputs and errors.

class PlainObjects : public Trial {
public:
    void operate() override {
        m_values.clear();
        m_values.reserve(4);
        m_values.emplace_back(LONG_TEXT);
        m_values.emplace_back(1.5);
        m_values.emplace_back(true);
        m_values.emplace_back(std::vector<Node>());
        m_input.emplace(Input::text(LONG_TEXT, LONG_TEXT));
        m_output.emplace(Output::stream(m_stream));
        m_token = vexa::CancelSource().token();
        m_error.emplace(ErrorKind::Input, LONG_TEXT, vexa::Location{LONG_TEXT, 1, 2});
    }
    bool succeeded() override {
        return m_values.size() == 4 && m_values[0].string() == LONG_TEXT && m_error &&
               m_error->text() == LONG_TEXT && m_error->what() == LONG_TEXT + ":1:2: " + LONG_TEXT;
    }

private:
    ArrayOutput m_stream;
    std::vector<Value> m_values;
    std::optional<Input> m_input;
    std::optional<Output> m_output;
    vexa::CancelToken m_token;
    std::optional<Error> m_error;
};

class FilePaths : public Trial {
public:
    void operate() override {
        m_input.emplace(Input::file(m_path));
        m_output.emplace(Output::file(m_path));
    }
    bool succeeded() override {
        m_document.write(*m_output);
        return Document::parse(*m_input).uri() == "file://" + m_path;
    }

private:
    const std::string m_path = pathOf("a-document-with-a-long-name.xml");
    const Document m_document = source();
    std::optional<Input> m_input;
    std::optional<Output> m_output;
};

class ValueConversions : public TextTrial {
public:
    ValueConversions() : TextTrial("0.1 NaN true 2") {}

protected:
    std::string work() override {
        return m_number.string() + " " + Value(m_text.number()).string() + " " +
               Value(m_nodes.boolean()).string() + " " + m_nodes.string();
    }

private:
    const Value m_number = 0.1;
    const Value m_text = LONG_TEXT;
    const Value m_nodes = XPath::compile("//i").evaluate(source());
};

// Documents.

class ParseTrial : public ResultTrial<Document> {
protected:
    bool isRight(const Document& document) override { return document.xml() == SOURCE_TEXT; }
};

class XsltParseOfAText : public ParseTrial {
    Document work() override { return Document::parse(m_input); }
    const Input m_input = Input::view(SOURCE_TEXT, "urn:source");
};

class XsltParseOfAFile : public ParseTrial {
    Document work() override { return Document::parse(m_input); }
    const Input m_input = Input::file(pathOf("source.xml"));
};

class XsltParseOfAStream : public ParseTrial {
    Document work() override {
        m_stream.rewind();
        return Document::parse(Input::stream(m_stream));
    }
    ArrayInput m_stream{SOURCE_TEXT};
};

class ParseOfAMalformedText : public FailingTrial {
public:
    ParseOfAMalformedText() : FailingTrial(ErrorKind::Parse, "expected end of tag 'a'") {}
    void work() override { Document::parse(m_input); }

private:
    const Input m_input = Input::view("<a>\n</b>", "urn:source");
};

class XmlOfADocument : public TextTrial {
public:
    XmlOfADocument() : TextTrial(SOURCE_TEXT) {}

protected:
    std::string work() override { return m_document.xml(); }

private:
    const Document m_document = source();
};

/** Writes to a file that is there: after a failure it is as before, and nothing is next to it. */
class FileTrial : public Trial {
public:
    FileTrial() {
        // An engine that dies leaves its temporary file.
        for (const auto& file : temporaryFiles()) {
            std::filesystem::remove(file);
        }
    }
    bool stillWorks() override {
        if (!temporaryFiles().empty() || (content() != OLD && !succeeded())) {
            return false;
        }
        operate();
        return succeeded() && temporaryFiles().empty();
    }

protected:
    std::string content() const { return readFile(NAME); }

    const Output m_output = Output::file(pathOf(NAME));

private:
    static constexpr const char* OLD = "old content";
    /** Long: how often a name with a process number allocates is not to depend on the number. */
    static constexpr const char* NAME = "a-result-with-a-long-name.xml";

    static std::vector<std::filesystem::path> temporaryFiles() {
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(".")) {
            if (entry.path().filename().native().front() == '.') {
                files.push_back(entry.path());
            }
        }
        return files;
    }

    const std::string m_written = sweepFiles().write(NAME, OLD);
};

class WriteToAFile : public FileTrial {
public:
    void operate() override { m_document.write(m_output, false); }
    bool succeeded() override { return content() == SOURCE_TEXT; }

private:
    const Document m_document = source();
};

class WriteToAStream : public Trial {
public:
    void operate() override {
        m_stream.reset();
        m_document.write(Output::stream(m_stream), false);
    }
    bool succeeded() override { return m_stream.text() == SOURCE_TEXT; }

private:
    const Document m_document = source();
    ArrayOutput m_stream;
};

class NodeTexts : public TextTrial {
public:
    NodeTexts()
        : TextTrial(LONG_TEXT +
                    " p:long-name-of-an-element long-name-of-an-element "
                    "urn:namespace-with-a-long-name <p:long-name-of-an-element "
                    "xmlns:p=\"urn:namespace-with-a-long-name\">" +
                    LONG_TEXT + "</p:long-name-of-an-element>") {}

protected:
    std::string work() override {
        return m_node.string() + " " + m_node.name() + " " + m_node.localName() + " " +
               m_node.namespaceUri() + " " + m_node.xml();
    }

private:
    const Node m_node =
        XPath::compile("/*")
            .evaluate(Document::parse(Input::text("<p:long-name-of-an-element xmlns:p="
                                                  "'urn:namespace-with-a-long-name'>" +
                                                  LONG_TEXT + "</p:long-name-of-an-element>")))
            .nodes()
            .front();
};

// Expressions.

class XPathCompilation : public ResultTrial<XPath> {
protected:
    XPath work() override { return XPath::compile(m_expression, m_namespaces); }
    bool isRight(const XPath& xpath) override { return xpath.evaluate(m_document).number() == 2; }

private:
    const Document m_document = source();
    const std::string m_expression = "count(/a/i[not(self::prefix:i)])";
    const vexa::Namespaces m_namespaces{{"prefix", "urn:namespace-with-a-long-name"}};
};

class WrongXPath : public FailingTrial {
public:
    WrongXPath()
        : FailingTrial(ErrorKind::Compile,
                       "Expected ']', but found '' instead. expression = '/a/i[' "
                       "Remaining tokens are: ( '[')") {}
    void work() override { XPath::compile("/a/i["); }
};

class Evaluation : public ResultTrial<Value> {
protected:
    Evaluation(const char* expression, const char* expected)
        : m_xpath(XPath::compile(expression)), m_expected(expected) {}
    Value work() override { return m_xpath.evaluate(m_document, {}, m_variables); }
    bool isRight(const Value& value) override { return value.string() == m_expected; }

private:
    const Document m_document = source();
    const vexa::Variables m_variables{{"text", LONG_TEXT},
                                      {"nodes", std::vector<Node>{source().root()}}};
    const XPath m_xpath;
    const std::string m_expected;
};

struct EvaluationToAString : Evaluation {
    EvaluationToAString() : Evaluation("concat(/a/i[. = 1], count($nodes//i))", "12") {}
};

struct EvaluationToNodes : Evaluation {
    EvaluationToNodes() : Evaluation("/a/i[string-length($text) > 1]", "2") {}
};

class FailingEvaluation : public FailingTrial {
public:
    FailingEvaluation()
        : FailingTrial(ErrorKind::Transform, "the variable 'none' is not declared") {}
    void work() override { m_xpath.evaluate(m_document); }

private:
    const Document m_document = source();
    const XPath m_xpath = XPath::compile("/a/i[$none]");
};

// Stylesheets.

class Compilation : public ResultTrial<Stylesheet> {
protected:
    Stylesheet work() override { return Stylesheet::compile(m_input, m_options); }
    bool isRight(const Stylesheet& sheet) override {
        return sheet.modules().size() == m_modules && sheet.encoding() == "UTF-8" &&
               Transformation(sheet).toString(m_document) == "<b><c>1</c><c>2</c></b>";
    }

    explicit Compilation(const std::string& topLevel, std::size_t modules = 1)
        : m_input(Input::text(stylesheet(topLevel), "urn:sheet")), m_modules(modules) {}

    Options m_options;

private:
    const Input m_input;
    const std::size_t m_modules;
    const Document m_document = source();
};

const std::string OUTPUT = "<xsl:output omit-xml-declaration='yes' encoding='UTF-8'/>";
const std::string TEMPLATES = "<xsl:template match='/'><b><xsl:apply-templates select='//i'>"
                              "<xsl:sort/></xsl:apply-templates></b></xsl:template>"
                              "<xsl:template match='i'><c><xsl:value-of select='.'/></c>"
                              "</xsl:template>";

struct CompilationOfAText : Compilation {
    CompilationOfAText() : Compilation(OUTPUT + TEMPLATES) {}
};

struct CompilationThroughAResolver : Compilation {
    CompilationThroughAResolver()
        : Compilation("<xsl:include href='mem:/module-with-a-long-name'/>" + OUTPUT, 2) {
        m_options.resolver = [module = Input::text(stylesheet(TEMPLATES))](
                                 const std::string&, const std::string&) { return module; };
    }
};

class FailingCompilation : public FailingTrial {
public:
    void work() override { Stylesheet::compile(m_input); }

protected:
    FailingCompilation(ErrorKind kind, const char* text, const std::string& sheet)
        : FailingTrial(kind, text), m_input(Input::text(sheet, "urn:sheet")) {}

private:
    const Input m_input;
};

struct CompilationOfAWrongSheet : FailingCompilation {
    CompilationOfAWrongSheet()
        : FailingCompilation(ErrorKind::Compile,
                             "The element 'xsl:if' must have a 'test' attribute.",
                             stylesheet("<xsl:template match='/'><xsl:if/></xsl:template>")) {}
};

struct CompilationOfAMalformedSheet : FailingCompilation {
    CompilationOfAMalformedSheet()
        : FailingCompilation(ErrorKind::Parse, "expected end of tag 'a'", "<a>\n</b>") {}
};

// Transformations.

class TransformationConstruction : public ResultTrial<Transformation> {
protected:
    Transformation work() override { return Transformation(m_sheet); }
    bool isRight(const Transformation& /*run*/) override { return true; }

private:
    const Stylesheet m_sheet = compiledRootTemplate("<b/>");
};

Stylesheet sheetWithParameters() {
    std::string names;
    std::string values;
    for (const char* name : {"t", "n", "b", "s", "d"}) {
        names += std::string("<xsl:param name='") + name + "' select='0'/>";
        values += std::string("<xsl:value-of select='$") + name + "'/>;";
    }
    return compiled("<xsl:output method='text'/>" + names + "<xsl:template match='/'>" + values +
                    "</xsl:template>");
}

/** Sets a parameter of each type. */
class ParameterTrial : public Trial {
protected:
    void setAll() {
        m_run.parameter("t", m_text);
        m_run.parameter("n", 1.5);
        m_run.parameter("b", true);
        m_run.parameter("s", m_nodes);
        m_run.parameter("d", m_document);
    }
    std::string shown() { return m_run.toString(m_document); }

    const std::string m_expected = LONG_TEXT + ";1.5;true;2;21;";

private:
    const Document m_document = source();
    const Value m_text = LONG_TEXT;
    const Value m_nodes = XPath::compile("//i").evaluate(source());
    Transformation m_run{sheetWithParameters()};
};

class XsltParameters : public ParameterTrial {
public:
    void operate() override { setAll(); }
    bool stillWorks() override {
        // Each parameter is either set or not.
        const std::string now = shown();
        std::size_t same = 0;
        while (same < now.size() && now[same] == m_expected[same]) {
            ++same;
        }
        operate();
        return std::string("0;0;0;0;0;").find(now.substr(same)) != std::string::npos && succeeded();
    }
    bool succeeded() override { return shown() == m_expected; }
};

class RunWithParameters : public ParameterTrial {
public:
    RunWithParameters() { setAll(); }
    void operate() override { m_shown = shown(); }
    bool succeeded() override { return m_shown == m_expected; }

private:
    std::string m_shown;
};

class RunTrial : public Trial {
protected:
    explicit RunTrial(const std::string& content) : m_run(compiledRootTemplate(content)) {}

    const Document m_document = source();
    Transformation m_run;
};

const std::string CALL =
    "<b xmlns:f='urn:functions'><xsl:value-of select='f:function-with-a-long-name(//i)'/></b>";

Value joinedArguments(const vexa::Call& call) {
    std::string text = call.context().name();
    for (const Node& node : call.argument(0).nodes()) {
        text += node.string() + LONG_TEXT;
    }
    return text;
}

class XsltInstallation : public RunTrial {
public:
    XsltInstallation() : RunTrial(CALL) { install(); }
    void operate() override { install(); }
    bool succeeded() override {
        return m_run.toDocument(m_document).root().string() == "2" + LONG_TEXT + "1" + LONG_TEXT;
    }

private:
    void install() {
        m_run.function("urn:functions", "function-with-a-long-name", joinedArguments);
    }
};

class CallOfAHostFunction : public XsltInstallation {
public:
    void operate() override { m_result = m_run.toDocument(m_document); }
    bool succeeded() override {
        return m_result.root().string() == "2" + LONG_TEXT + "1" + LONG_TEXT;
    }

private:
    Document m_result;
};

constexpr const char* CONTENT =
    "<b><xsl:variable name='v'><x/></xsl:variable><xsl:for-each select='//i'><xsl:sort/><c>"
    "<xsl:copy-of select='$v'/><xsl:value-of select='.'/></c></xsl:for-each></b>";
constexpr const char* RESULT = "<b><c><x/>1</c><c><x/>2</c></b>";

class RunToAFile : public FileTrial {
public:
    void operate() override { m_run.to(m_source, m_output); }
    bool succeeded() override { return content() == RESULT; }

private:
    const Input m_source = Input::file(pathOf("source.xml"));
    Transformation m_run{compiledRootTemplate(CONTENT)};
};

class RunToAStream : public RunTrial {
public:
    RunToAStream() : RunTrial(CONTENT) {}
    void operate() override {
        m_stream.reset();
        m_run.to(m_document, Output::stream(m_stream));
    }
    bool succeeded() override { return m_stream.text() == RESULT; }

private:
    ArrayOutput m_stream;
};

/** A text is replaced after success only. */
class RunToAText : public RunTrial {
public:
    RunToAText() : RunTrial(CONTENT) {}
    void operate() override { m_run.to(m_document, Output::text(m_text)); }
    bool stillWorks() override {
        return (m_text == "old" || succeeded()) && RunTrial::stillWorks();
    }
    bool succeeded() override { return m_text == RESULT; }

private:
    std::string m_text = "old";
};

class RunToAString : public RunTrial {
public:
    RunToAString() : RunTrial(CONTENT) { m_run.toString(m_document); }
    void operate() override { m_text = m_run.toString(m_document); }
    bool succeeded() override { return m_text == RESULT; }

private:
    std::string m_text;
};

class RunToADocument : public RunTrial {
public:
    RunToADocument() : RunTrial(CONTENT) {}
    void operate() override { m_result = m_run.toDocument(m_document); }
    bool succeeded() override { return m_result.xml() == RESULT; }

private:
    Document m_result;
};

/** The engine goes on after each failure of document(). */
class RunWithDocuments : public TextTrial {
public:
    RunWithDocuments() : TextTrial("212121") {}

protected:
    std::string work() override { return m_run.toString(m_document); }

private:
    const Document m_document = source();
    Transformation m_run{compiled("<xsl:output method='text'/><xsl:template match='/'>"
                                  "<xsl:variable name='f'><x><xsl:copy-of select='/a'/></x>"
                                  "</xsl:variable><xsl:value-of select='.'/><xsl:value-of "
                                  "select=\"document('file:///proc/self/cwd/source.xml')\"/"
                                  "><xsl:value-of select='exsl:node-set($f)/x'/>"
                                  "</xsl:template>")};
};

class RunWithAMessage : public RunTrial {
public:
    RunWithAMessage() : RunTrial("<b/><xsl:message>" + LONG_TEXT + "</xsl:message>") {
        m_run.onMessage([this](const vexa::Diagnostic& message) { m_message = message.text; });
    }
    void operate() override {
        m_message.clear();
        m_run.toString(m_document);
    }
    bool succeeded() override { return m_message == LONG_TEXT; }

private:
    std::string m_message;
};

class TracedRun : public RunTrial {
public:
    TracedRun()
        : RunTrial("<b/><xsl:if test='//stop'><c/></xsl:if><xsl:for-each select='//i'><d/>"
                   "</xsl:for-each>") {
        m_run.onTrace(m_steps);
    }
    void operate() override {
        m_steps.ended = 0;
        m_run.toString(m_document);
    }
    // The rule, b, xsl:if, xsl:for-each and two times d.
    bool succeeded() override { return m_steps.open == 0 && m_steps.ended == 6; }

private:
    struct Counter : vexa::Tracer {
        void enter(const vexa::Step& /*step*/) override { ++open; }
        void leave(const vexa::Step& /*step*/) noexcept override {
            --open;
            ++ended;
        }
        int open = 0;
        int ended = 0;
    } m_steps;
};

/** Fails over a source with a "stop", and gives its result over others. */
class FailingRun : public FailingTrial {
public:
    void work() override { m_run.toString(m_failing); }
    bool stillWorks() override {
        operate();
        return succeeded() && m_run.toString(m_good) == RESULT;
    }

protected:
    FailingRun(ErrorKind kind, const char* text, const std::string& failure)
        : FailingTrial(kind, text),
          m_run(compiledRootTemplate("<xsl:if test='//stop'>" + failure + "</xsl:if>" + CONTENT)) {}

    Transformation m_run;

private:
    const Document m_good = source();
    const Document m_failing = Document::parse(Input::view("<a><stop/><i/></a>"));
};

struct RunEndedByAMessage : FailingRun {
    RunEndedByAMessage()
        : FailingRun(ErrorKind::Terminated, "enough of it",
                     "<b/><xsl:message terminate='yes'>enough of it</xsl:message>") {}
};

/** What the host throws passes. */
struct RunEndedByAFunction : FailingRun {
    RunEndedByAFunction()
        : FailingRun(ErrorKind::Usage, "an error of the host itself",
                     "<b xmlns:f='urn:f'><xsl:value-of select='f:throw()'/></b>") {
        m_run.function("urn:f", "throw", [](const vexa::Call&) -> Value {
            throw Error(ErrorKind::Usage, "an error of the host itself");
        });
    }
};

} // namespace

std::vector<Operation> xsltOperations() {
    return {
        {"Value, Input::text, Output::stream, CancelSource and Error", Engine::Unused,
         prepared<PlainObjects>},
        {"Input::file and Output::file", Engine::Started, prepared<FilePaths>},
        {"Value::string, number and boolean", Engine::Started, prepared<ValueConversions>},
        {"Document::parse of a text", Engine::Started, prepared<XsltParseOfAText>},
        {"Document::parse of a file", Engine::Started, prepared<XsltParseOfAFile>},
        {"Document::parse of a stream", Engine::Started, prepared<XsltParseOfAStream>},
        {"Document::parse of a malformed text", Engine::Started, prepared<ParseOfAMalformedText>},
        {"Document::xml", Engine::Started, prepared<XmlOfADocument>},
        {"Document::write to a file", Engine::Started, prepared<WriteToAFile>},
        {"Document::write to a stream", Engine::Started, prepared<WriteToAStream>},
        {"Node::string, name, namespaceUri and xml", Engine::Started, prepared<NodeTexts>},
        {"XPath::compile", Engine::Started, prepared<XPathCompilation>},
        {"XPath::compile, a wrong expression", Engine::Started, prepared<WrongXPath>},
        {"XPath::evaluate, a string", Engine::Started, prepared<EvaluationToAString>},
        {"XPath::evaluate, a node-set", Engine::Started, prepared<EvaluationToNodes>},
        {"XPath::evaluate, an undeclared variable", Engine::Started, prepared<FailingEvaluation>},
        {"Stylesheet::compile", Engine::Started, prepared<CompilationOfAText>},
        {"Stylesheet::compile with a resolver", Engine::Started,
         prepared<CompilationThroughAResolver>},
        {"Stylesheet::compile, a wrong stylesheet", Engine::Started,
         prepared<CompilationOfAWrongSheet>},
        {"Stylesheet::compile, a malformed stylesheet", Engine::Started,
         prepared<CompilationOfAMalformedSheet>},
        {"Transformation()", Engine::Started, prepared<TransformationConstruction>},
        {"Transformation::parameter", Engine::Started, prepared<XsltParameters>},
        {"Transformation::function", Engine::Started, prepared<XsltInstallation>},
        {"Transformation::to a text, with parameters", Engine::Started,
         prepared<RunWithParameters>},
        {"Transformation::to a text", Engine::Started, prepared<RunToAText>},
        {"Transformation::to a file", Engine::Started, prepared<RunToAFile>},
        {"Transformation::to a stream", Engine::Started, prepared<RunToAStream>},
        {"Transformation::toString, the second time", Engine::Started, prepared<RunToAString>},
        {"Transformation::toString with document()", Engine::Started, prepared<RunWithDocuments>},
        {"Transformation::toString with a message", Engine::Started, prepared<RunWithAMessage>},
        {"Transformation::toString, ended by a message", Engine::Started,
         prepared<RunEndedByAMessage>},
        {"Transformation::toString, ended by a function", Engine::Started,
         prepared<RunEndedByAFunction>},
        {"Transformation::toString with a tracer", Engine::Started, prepared<TracedRun>},
        {"Transformation::toDocument", Engine::Started, prepared<RunToADocument>},
        {"Transformation::toDocument with a function", Engine::Started,
         prepared<CallOfAHostFunction>},
    };
}
