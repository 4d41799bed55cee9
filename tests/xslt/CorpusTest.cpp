/**
 * @file
 * Each case of the corpus gives through the second interface what the file transform of the classic
 * one gives, byte for byte, in whatever way it is run.
 */
#include "corpus/CorpusCase.h"
#include "corpus/ExpressionStylesheet.h"
#include "support/EngineTest.h"
#include "support/TestFiles.h"

#include <vexa/VEXAXslTransformer.h>
#include <vexa/xslt.h>

#include <cctype>
#include <functional>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <thread>

using vexa::Document;
using vexa::Input;
using vexa::Options;
using vexa::Output;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::XPath;

namespace {

/** What the engine prints by itself in the classic transform. */
class SilencedErrorStream {
public:
    SilencedErrorStream() : m_previous(std::cerr.rdbuf(m_text.rdbuf())) {}
    SilencedErrorStream(const SilencedErrorStream&) = delete;
    SilencedErrorStream& operator=(const SilencedErrorStream&) = delete;
    ~SilencedErrorStream() { std::cerr.rdbuf(m_previous); }

private:
    std::ostringstream m_text;
    std::streambuf* m_previous;
};

/** Cases that differ on purpose, with the text of the error. */
const std::map<std::string, std::string> DIFFERENCES{
    // The engine alone writes its warning into the result, or goes on with an empty value.
    {"errors/an-unknown-variable", "the variable 'nobody' is not declared"},
    {"errors/an-unknown-variable-in-a-test", "the variable 'nobody' is not declared"},
    {"expressions/errors-an-unknown-variable", "the variable 'nobody' is not declared"},
};

/** What the engine alone refuses, and the second interface does with a warning. */
const std::map<std::string, std::string> RESULTS_OF_ITS_OWN{
    {"errors/a-global-variable-twice", "x"},
    {"errors/a-variable-twice", "x"},
    {"errors/an-unknown-attribute-of-an-instruction", "1"},
};

/** Indentation, escaping marks and escaped links are not part of the tree. */
const std::set<std::string> CHANGED_BY_SERIALISATION{
    "output/html-links-are-escaped",
    "output/value-of-not-escaped",
    "output/xml-indented",
    "output/xml-indented-by-four",
};

class CorpusTest : public EngineTest, public ::testing::WithParamInterface<CorpusCase> {
protected:
    CorpusTest() {
        if (m_case.stylesheet.empty()) {
            m_case.stylesheet =
                m_folder.write("expression.xsl", stylesheetForExpression(m_case.expression));
        }
        m_options.access.externalEntities = true;
    }

    /** The result of the classic file transform; "fails" if it fails. */
    std::string classic() {
        const SilencedErrorStream silence;
        const std::string path = m_folder.path("classic");
        VEXAXslTransformer transformer;
        return transformer.doTransform(m_case.source.c_str(), m_case.stylesheet.c_str(),
                                       path.c_str()) == 0
                   ? readFile(path)
                   : "fails";
    }

    std::string toFile() {
        const std::string path = m_folder.path("second");
        Transformation run = makeRun();
        run.to(source(), Output::file(path));
        return readFile(path);
    }

    /** With one Transformation, over a parsed document and over its input. */
    std::string runTwice() {
        Transformation run = makeRun();
        const Document document = Document::parse(source(), m_options);
        const std::string result = run.toString(document);
        EXPECT_TRUE(sameBytes(run.toString(document), result)) << "in the second run";
        EXPECT_TRUE(sameBytes(run.toString(source()), result)) << "over the input";
        std::ostringstream stream;
        run.to(document, Output::stream(stream));
        EXPECT_TRUE(sameBytes(stream.str(), result)) << "into a stream";
        return result;
    }

    /** After a run into a document, which is the same again. */
    std::string runAfterToDocument() {
        Transformation run = makeRun();
        const std::string xml = run.toDocument(source()).xml();
        EXPECT_TRUE(sameBytes(run.toDocument(source()).xml(), xml)) << "in the second run";
        return run.toString(source());
    }

    /** With its steps reported. */
    std::string runTraced() {
        class Balance : public vexa::Tracer {
        public:
            ~Balance() override { EXPECT_EQ(m_steps, 0) << "steps have not ended"; }
            void enter(const vexa::Step& /*step*/) override { ++m_steps; }
            void leave(const vexa::Step& /*step*/) noexcept override { --m_steps; }

        private:
            long m_steps = 0;
        };
        Balance balance;
        Transformation run = makeRun();
        run.onTrace(balance);
        return run.toString(source());
    }

    Input source() const { return Input::file(m_case.source); }
    Transformation makeRun() const {
        return Transformation(Stylesheet::compile(Input::file(m_case.stylesheet), m_options),
                              m_options);
    }

    CorpusCase m_case = GetParam();
    TemporaryFolder m_folder;
    Options m_options;
};

/** A result, or "fails". */
std::string outcome(const std::function<std::string()>& operation, std::string& error) {
    try {
        return operation();
    } catch (const vexa::Error& failure) {
        error = failure.what();
        return "fails";
    }
}

Stylesheet copyingSheet() {
    return Stylesheet::compile(
        Input::text(stylesheetWithRootTemplate("<xsl:copy-of select='.'/>")));
}

std::string copied(const Document& document) {
    return Transformation(copyingSheet()).toString(document);
}

/** Whether a result is a document: one element, and no text next to it. */
bool isDocument(const Document& result) {
    return XPath::compile("count(*) = 1 and not(text())").evaluate(result).boolean();
}

Document parsedText(const std::string& text, const std::string& uri = {}) {
    return Document::parse(Input::text(text, uri));
}

std::string asTestName(const std::string& name) {
    std::string result;
    for (const char c : name) {
        result += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    }
    return result;
}

} // namespace

TEST_P(CorpusTest, GivesWhatTheFileTransformGives) {
    const auto own = RESULTS_OF_ITS_OWN.find(m_case.name);
    const std::string classicResult = classic();
    const std::string& expected = own == RESULTS_OF_ITS_OWN.end() ? classicResult : own->second;
    EXPECT_EQ(classicResult != expected, own != RESULTS_OF_ITS_OWN.end());
    const auto difference = DIFFERENCES.find(m_case.name);
    for (const auto& operation :
         {&CorpusTest_GivesWhatTheFileTransformGives_Test::toFile,
          &CorpusTest_GivesWhatTheFileTransformGives_Test::runTwice,
          &CorpusTest_GivesWhatTheFileTransformGives_Test::runAfterToDocument,
          &CorpusTest_GivesWhatTheFileTransformGives_Test::runTraced}) {
        std::string error;
        const std::string result = outcome([&] { return (this->*operation)(); }, error);
        if (difference == DIFFERENCES.end()) {
            EXPECT_TRUE(sameBytes(result, expected)) << error;
        } else {
            EXPECT_NE(result, expected);
            EXPECT_NE(error.find(difference->second), std::string::npos) << error;
        }
    }
}

/** A document that a transform has built is the same tree as its text. */
TEST_P(CorpusTest, ToDocumentGivesTheTreeOfItsText) {
    std::string error;
    if (outcome([&] { return makeRun().toString(source()); }, error) == "fails") {
        return;
    }
    const Document built = makeRun().toDocument(source());
    const std::string xml = built.xml();
    if (!isDocument(built)) {
        const std::string wrapped = "<w>." + xml + "</w>";
        EXPECT_TRUE(sameBytes(parsedText(wrapped).xml(), wrapped));
        return;
    }
    const Document reparsed = parsedText(xml, built.uri());
    EXPECT_TRUE(sameBytes(copied(built), copied(reparsed)));
    EXPECT_TRUE(sameBytes(reparsed.xml(), xml));
    // And of what `to` writes, where that is XML.
    const std::string written =
        outcome([&] { return parsedText(makeRun().toString(source())).xml(); }, error);
    if (written != "fails" && CHANGED_BY_SERIALISATION.count(m_case.name) == 0) {
        EXPECT_TRUE(sameBytes(written, xml));
    }
}

/** As a source too. */
TEST_P(CorpusTest, ADocumentFromToDocumentIsASourceAsItsTextIs) {
    Document built;
    try {
        built = Transformation(copyingSheet()).toDocument(Document::parse(source(), m_options));
    } catch (const vexa::Error& error) {
        EXPECT_EQ(error.kind(), vexa::ErrorKind::Parse); // of cases with such a source
        return;
    }
    std::string error;
    std::string errorOfText;
    const Document reparsed = parsedText(built.xml(), built.uri());
    const std::string result = outcome([&] { return makeRun().toString(built); }, error);
    EXPECT_TRUE(
        sameBytes(result, outcome([&] { return makeRun().toString(reparsed); }, errorOfText)));
    EXPECT_EQ(error, errorOfText);
}

/** Of objects that nobody has used before: what is made on first use is made by both at once. */
TEST_P(CorpusTest, ThreadsThatShareStylesheetAndDocumentGiveTheSame) {
    Stylesheet sheet;
    Document document;
    try {
        sheet = Stylesheet::compile(Input::file(m_case.stylesheet), m_options);
        document = Document::parse(source(), m_options);
    } catch (const vexa::Error&) {
        return;
    }
    std::string results[2];
    std::string errors[2];
    const auto work = [&](int thread) {
        results[thread] = outcome(
            [&] { return Transformation(sheet, m_options).toString(document); }, errors[thread]);
    };
    std::thread other(work, 1);
    work(0);
    other.join();
    EXPECT_TRUE(sameBytes(results[0], results[1]));
    EXPECT_EQ(errors[0], errors[1]);
}

/** An expression by itself gives what it gives in a stylesheet, or what is right. */
TEST_P(CorpusTest, AnExpressionGivesWhatItGivesInAStylesheet) {
    if (m_case.expression.empty()) {
        return;
    }
    std::string error;
    std::string errorAlone;
    const std::string expected = outcome([&] { return makeRun().toString(source()); }, error);
    const std::string result = outcome(
        [&] {
            return XPath::compile(m_case.expression, {{"p", "urn:p"}, {"q", "urn:q"}})
                .evaluate(Document::parse(source(), m_options))
                .string();
        },
        errorAlone);
    // Where the engine is wrong in a stylesheet only, an expression is right.
    EXPECT_TRUE(result == expected || result == m_case.expected)
        << '"' << result << "\" " << errorAlone << "; in a stylesheet: \"" << expected << "\" "
        << error;
}

INSTANTIATE_TEST_SUITE_P(, CorpusTest, ::testing::ValuesIn(readCorpus(projectFile("tests/corpus"))),
                         [](const auto& test) { return asTestName(test.param.name); });
