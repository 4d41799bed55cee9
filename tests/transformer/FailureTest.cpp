/**
 * @file
 * The result code and the error message of each kind of failure in file and stream transforms.
 */
#include "support/TestFunctions.h"
#include "support/ThrowingFunctions.h"
#include "support/TransformTest.h"

#include <nrb/NRBAssertError.h>

#include <ostream>
#include <stdexcept>

#include <xalanc/XalanDOM/XalanDOMException.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/RuntimeException.hpp>

namespace {

struct FailureCase {
    const char* name;
    int result;
    /** The beginning of the error message. */
    const char* text;
    /** Another part of the error message. */
    const char* detail;
    /** The source; null: a well-formed one. */
    const char* source;
    /** The stylesheet; null: the file does not exist. */
    const char* stylesheet;
};

std::ostream& operator<<(std::ostream& stream, const FailureCase& failure) {
    return stream << failure.name;
}

#define ROOT(content)                                                                              \
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "              \
    "xmlns:vexa='" VEXA_XSL_EXTENSION_NAMESPACE "' xmlns:other='urn:other'>"                       \
    "<xsl:param name='p'/><xsl:template match='/'>" content "</xsl:template></xsl:stylesheet>"

const FailureCase CASES[] = {
    {"MissingStylesheet", -2, "SAXParseException: unable to determine file base pathname",
     "at line 0, column 0.", nullptr, nullptr},
    {"MalformedStylesheet", -2, "SAXParseException: ", "sheet.xsl', at line 2, ", nullptr,
     "<x>\n</y>"},
    {"EmptyStylesheet", -2, "SAXParseException: invalid document structure", "line 1", nullptr, ""},
    {"MalformedSource", -2, "SAXParseException: ", "at line 3, ", "<a>\n\n</b>", ROOT("<b/>")},
    {"EmptySource", -2, "SAXParseException: invalid document structure", "line 1", "",
     ROOT("<b/>")},
    {"UnknownXslElement", -1, "XSLT error: The element xsl:foo is an unknown XSLT element.",
     "sheet.xsl", nullptr, ROOT("<xsl:foo/>")},
    {"WrongXPath", -1, "XPath error: ", "a[", nullptr, ROOT("<xsl:value-of select='a['/>")},
    {"WrongArity", -1, "XPath error: The", "count", nullptr,
     ROOT("<xsl:value-of select='count(1,2,3)'/>")},
    {"UnknownCoreFunction", -1, "XPath error: ", "nonsense", nullptr,
     ROOT("<xsl:value-of select='nonsense()'/>")},
    {"UnknownExtensionFunction", -1, "XalanXPathException: The function number 'urn:other:f'",
     "sheet.xsl", nullptr, ROOT("<xsl:value-of select='other:f()'/>")},
    {"MessageThatTerminates", -1, "ElemMessageTerminateExpression: enough", "sheet.xsl", nullptr,
     ROOT("<xsl:message terminate='yes'>enough</xsl:message>")},
};

class FailureTest : public TransformTest, public ::testing::WithParamInterface<FailureCase> {};

void expectFailure(const FailureCase& expected, int result, const std::string& error) {
    EXPECT_EQ(result, expected.result);
    EXPECT_EQ(error.rfind(expected.text, 0), 0U) << error;
    EXPECT_NE(error.find(expected.detail), std::string::npos) << error;
}

} // namespace

TEST_P(FailureTest, IsReportedAndLeavesTheTransformerUsable) {
    const FailureCase& failure = GetParam();
    const std::string text = failure.source ? failure.source : "<a/>";
    const std::string sheet = failure.stylesheet ? m_folder.write("sheet.xsl", failure.stylesheet)
                                                 : m_folder.path("sheet.xsl");

    const auto files = transformFile(source(text), sheet);
    expectFailure(failure, files.result, files.error);
    const auto streams = transformStream(text, sheet);
    expectFailure(failure, streams.result, streams.error);

    EXPECT_EQ(transformFile(source(), sheetWithRootTemplate("<b/>")).output, "<b/>");
    EXPECT_EQ(transformStream("<a/>", sheetWithRootTemplate("<b/>")).output, withNul("<b/>"));
}

INSTANTIATE_TEST_SUITE_P(, FailureTest, ::testing::ValuesIn(CASES),
                         [](const auto& test) { return test.param.name; });

class FileNameFailureTest : public TransformTest {
protected:
    void expectFailureOfFiles(const std::string& sourceName, const std::string& sheet,
                              const std::string& output, int result, const std::string& text) {
        EXPECT_EQ(m_transformer.doTransform(sourceName.c_str(), sheet.c_str(), output.c_str()),
                  result);
        EXPECT_NE(std::string(m_transformer.getLastError()).find(text), std::string::npos)
            << m_transformer.getLastError();
    }

    std::string m_sheet = sheetWithRootTemplate("<b/>");
    std::string m_output = m_folder.path("out");
};

TEST_F(FileNameFailureTest, AMissingSourceIsReported) {
    expectFailureOfFiles(m_folder.path("none.xml"), m_sheet, m_output, -2, "SAXParseException");
}

TEST_F(FileNameFailureTest, ADirectoryIsRejectedAsSourceAndAsStylesheet) {
    expectFailureOfFiles(m_folder.path(""), m_sheet, m_output, -2, "unable to");
    expectFailureOfFiles(source(), m_folder.path(""), m_output, -2, "unable to");
}

TEST_F(FileNameFailureTest, AnEmptyStylesheetNameIsReported) {
    expectFailureOfFiles(source(), "", m_output, -2, "missing protocol prefix");
}

TEST_F(FileNameFailureTest, AnOutputThatCannotBeOpenedIsReported) {
    expectFailureOfFiles(source(), m_sheet, m_folder.path("none/out"), -1, "none/out");
    expectFailureOfFiles(source(), m_sheet, m_folder.path(""), -1, "Error opening file");
    expectFailureOfFiles(source(), m_sheet, "", -1, "There is no valid result target");
}

TEST_F(FileNameFailureTest, APercentSignInANameIsReadAsAnEscape) {
    const std::string odd = m_folder.write("100%.xml", "<a/>");
    expectFailureOfFiles(odd, m_sheet, m_output, -2, "invalid escape sequence");
}

namespace {

using xalanc::XalanDOMString;

/** Reports a problem like a built-in function. */
void reportProblem(xalanc::XPathExecutionContext& context, xalanc::XalanNode* node) {
    context.problem(xalanc::XPathExecutionContext::eXPATH, xalanc::XPathExecutionContext::eError,
                    XalanDOMString("a problem"), static_cast<const xalanc::Locator*>(nullptr),
                    node);
}

class ProblemFunction : public BracketFunction {
public:
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode* node,
                               const XObjectArgVectorType&, const xalanc::Locator*) const override {
        reportProblem(context, node);
        return xalanc::XObjectPtr();
    }
    ProblemFunction* clone() const override { return new ProblemFunction(*this); }
};

} // namespace

class FunctionFailureTest : public TransformTest {
protected:
    void expectFailureOfFunction(const TqXsltFunction& function, int result,
                                 const std::string& text) {
        m_transformer.installExternalFunction("F", function);
        const std::string sheet = sheetWithRootTemplate("<b><xsl:value-of select='vexa:F()'/></b>");
        const auto files = transformFile(source(), sheet);
        EXPECT_EQ(files.result, result);
        EXPECT_NE(files.error.find(text), std::string::npos) << files.error;
        const auto streams = transformStream("<a/>", sheet);
        EXPECT_EQ(streams.result, result);
        EXPECT_EQ(streams.output.back(), '\0');
        EXPECT_EQ(transformFile(source(), sheetWithRootTemplate("<b/>")).output, "<b/>");
    }
};

TEST_F(FunctionFailureTest, AProblemOfAFunctionIsReported) {
    expectFailureOfFunction(ProblemFunction(), -1, "a problem");
}

TEST_F(FunctionFailureTest, ExceptionsOfTheEngineAreReported) {
    expectFailureOfFunction(ThrowingFunctionOf([] { throw xercesc::SAXException(u"sax"); }), -2,
                            "sax");
    expectFailureOfFunction(ThrowingFunctionOf([] {
                                throw xercesc::RuntimeException(
                                    "file", 1, xercesc::XMLExcepts::CPtr_PointerIsZero);
                            }),
                            -3, "NULL pointer");
    expectFailureOfFunction(
        ThrowingFunctionOf(
            [] { throw xalanc::XalanDOMException(xalanc::XalanDOMException::NOT_FOUND_ERR); }),
        -4, "8");
}

TEST_F(FunctionFailureTest, AnAssertionPassesToTheCaller) {
    m_transformer.installExternalFunction(
        "F", ThrowingFunctionOf([] {
            NRBAssertError(0, "it must hold").hurl(NRBFileLocation("f", 1), nullptr, "o");
        }));
    const std::string sheet = sheetWithRootTemplate("<b><xsl:value-of select='vexa:F()'/></b>");
    EXPECT_THROW(transformFile(source(), sheet), NRBAssertError);
    EXPECT_EQ(transformFile(source(), sheetWithRootTemplate("<b/>")).output, "<b/>");
}

TEST_F(FunctionFailureTest, AnExceptionOfACloneOperationPassesToTheCaller) {
    class CloneableOnce : public BracketFunction {
    public:
        explicit CloneableOnce(int clones) : m_nClones(clones) {}
        CloneableOnce* clone() const override {
            if (m_nClones == 0) {
                throw std::runtime_error("no more clones");
            }
            return new CloneableOnce(m_nClones - 1);
        }

    private:
        int m_nClones;
    };
    for (int clones = 1; clones <= 2; ++clones) {
        m_transformer.installExternalFunction("F", CloneableOnce(clones));
        const std::string sheet = sheetWithRootTemplate("<b/>");
        EXPECT_THROW(transformFile(source(), sheet), std::runtime_error) << clones;
        m_transformer.installExternalFunction("F", BracketFunction());
        EXPECT_EQ(transformFile(source(), sheet).output, "<b/>");
    }
}

class ParameterFailureTest : public TransformTest {};

TEST_F(ParameterFailureTest, AnApostropheInAValueMakesTheNextTransformsFail) {
    const std::string sheet = m_folder.write(
        "p.xsl", stylesheet("<xsl:output omit-xml-declaration='yes'/><xsl:param name='p'/>"
                            "<xsl:template match='/'><b/></xsl:template>"));
    m_transformer.setStylesheetParam("p", "it's");
    for (int i = 0; i < 2; ++i) {
        const auto outcome = transformFile(source(), sheet);
        EXPECT_EQ(outcome.result, -1);
        EXPECT_EQ(
            outcome.error.rfind("XPathParserException: A string literal is not terminated", 0), 0U)
            << outcome.error;
    }
    m_transformer.setStylesheetParam("p", "its");
    EXPECT_EQ(transformFile(source(), sheet).output, "<b/>");
}
