#include "support/TestFunctions.h"
#include "support/TransformTest.h"
#include "support/VEXAXslTransformerInspector.h"

#include <fstream>

using Inspector = VEXAXslTransformerInspector;
using StreamTransformTest = TransformTest;

TEST_F(StreamTransformTest, WritesExactlyOneNulAfterTheResult) {
    const auto outcome =
        transformStream("<a>x</a>", sheetWithRootTemplate("<b><xsl:value-of select='a'/></b>"));
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.output, withNul("<b>x</b>"));
    EXPECT_EQ(outcome.error, "");
}

TEST_F(StreamTransformTest, ChangesNothingIfTheSourceIsNotWellFormed) {
    Inspector::ownError(m_transformer) = "left by an earlier operation";
    const auto outcome = transformStream("<a>", sheetWithRootTemplate("<b/>"));
    EXPECT_NE(outcome.result, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "left by an earlier operation");

    Inspector::ownError(m_transformer) = "";
    EXPECT_EQ(transformStream("<a>", sheetWithRootTemplate("<b/>")).error.rfind("SAXParse", 0), 0U);
}

TEST_F(StreamTransformTest, DoesNotClearAnEarlierErrorMessage) {
    Inspector::ownError(m_transformer) = "left by an earlier operation";
    const auto outcome = transformStream("<a/>", sheetWithRootTemplate("<b/>"));
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.error, "left by an earlier operation");
}

TEST_F(StreamTransformTest, WritesTheNulAfterAFailedTransform) {
    const auto outcome = transformStream("<a/>", sheetWithRootTemplate("<xsl:nonsense/>"));
    EXPECT_NE(outcome.result, 0);
    EXPECT_EQ(outcome.output, withNul(""));
}

TEST_F(StreamTransformTest, KeepsTheOutputWrittenBeforeAFailure) {
    // More than the output buffer of the engine.
    const std::string part(100'000, 'x');
    const auto outcome =
        transformStream("<a/>", sheetWithRootTemplate("<b>" + part +
                                                      "</b><xsl:message "
                                                      "terminate='yes'>no</xsl:message>"));
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.output.substr(0, 1003), "<b>" + part.substr(0, 1000));
    EXPECT_EQ(outcome.output.find('\0'), outcome.output.size() - 1);
}

TEST_F(StreamTransformTest, PassesParametersToEveryLaterTransform) {
    const std::string sheet = m_folder.write(
        "p.xsl", stylesheet("<xsl:output method='text'/><xsl:param name='p'/><xsl:template "
                            "match='/'><xsl:value-of select='$p'/></xsl:template>"));
    m_transformer.setStylesheetParam("p", "a/b");
    EXPECT_EQ(transformStream("<a/>", sheet).output, withNul("a/b"));
    EXPECT_EQ(transformStream("<a/>", sheet).output, withNul("a/b"));
    EXPECT_EQ(transformFile(source(), sheet).output, "a/b");
}

TEST_F(StreamTransformTest, CallsInstalledFunctionsAndNodeset) {
    m_transformer.installExternalFunction("B", BracketFunction());
    const std::string sheet = sheetWithRootTemplate(
        "<xsl:variable name='tree'><i>1</i><i>2</i></xsl:variable>"
        "<b><xsl:value-of select='vexa:B(count(xalan:nodeset($tree)/i))'/></b>");
    EXPECT_EQ(transformStream("<a/>", sheet).output, withNul("<b>[2]</b>"));
}

TEST_F(StreamTransformTest, ParsesAnEmptySourceToo) {
    const auto outcome = transformStream("", sheetWithRootTemplate("<b/>"));
    EXPECT_EQ(outcome.result, -2);
    EXPECT_EQ(outcome.output, "");
}

TEST_F(StreamTransformTest, WritesNoNulWhenAForeignExceptionPasses) {
    m_transformer.installExternalFunction("T", ThrowingFunction());
    const std::string sheet = sheetWithRootTemplate("<xsl:value-of select='vexa:T()'/>");
    std::istringstream input("<a/>");
    std::ostringstream output;
    EXPECT_THROW(m_transformer.doTransform(input, sheet.c_str(), output), std::runtime_error);
    EXPECT_EQ(output.str(), "");
    EXPECT_EQ(transformStream("<a/>", sheetWithRootTemplate("<b/>")).output, withNul("<b/>"));
}

TEST_F(StreamTransformTest, ReportsAStreamThatCannotBeWritten) {
    std::istringstream input("<a/>");
    std::ofstream full("/dev/full");
    const std::string sheet = sheetWithRootTemplate("<b>" + std::string(100'000, 'x') + "</b>");
    EXPECT_EQ(m_transformer.doTransform(input, sheet.c_str(), full), -1);
    EXPECT_STRNE(m_transformer.getLastError(), "");
}

TEST_F(StreamTransformTest, ReadsSourcesInOtherEncodings) {
    const std::string sheet = sheetWithRootTemplate("<b><xsl:value-of select='a'/></b>");
    EXPECT_EQ(
        transformStream("<?xml version='1.0' encoding='ISO-8859-7'?><a>\xE1\xE2</a>", sheet).output,
        withNul("<b>\xCE\xB1\xCE\xB2</b>"));
}
