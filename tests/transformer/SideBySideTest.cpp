/**
 * @file
 * File and stream transforms give the same bytes as the engine alone.
 */
#include "support/BareEngine.h"
#include "support/TestDocuments.h"
#include "support/TransformTest.h"

class SideBySideTest : public TransformTest, public ::testing::WithParamInterface<TestDocument> {};

TEST_P(SideBySideTest, FileAndStreamTransformsGiveTheResultOfTheEngine) {
    const auto& [name, source, sheet] = GetParam();
    const std::string expected = bareEngineTransform(source, sheet);
    ASSERT_GT(expected.size(), 1000U);

    const auto files = transformFile(source, sheet);
    EXPECT_EQ(files.result, 0) << files.error;
    EXPECT_TRUE(sameBytes(files.output, expected));

    const auto streams = transformStream(readFile(source), sheet);
    EXPECT_EQ(streams.result, 0) << streams.error;
    EXPECT_TRUE(sameBytes(streams.output, withNul(expected)));
}

TEST_P(SideBySideTest, AXercesDomGivesTheSameBytes) {
    const auto& [name, source, sheet] = GetParam();
    VEXAXslTransformer::m_bUseXercesDOM = true;
    const auto files = transformFile(source, sheet);
    VEXAXslTransformer::m_bUseXercesDOM = false;
    EXPECT_EQ(files.result, 0) << files.error;
    EXPECT_TRUE(sameBytes(files.output, bareEngineTransform(source, sheet)));
}

INSTANTIATE_TEST_SUITE_P(, SideBySideTest, ::testing::ValuesIn(testDocuments()),
                         [](const auto& test) { return test.param.name; });

TEST_F(TransformTest, ParametersReachTheStylesheetAsInTheEngineAlone) {
    const std::string source = projectFile("samples/orders-small.xml");
    const std::string sheet = projectFile("samples/report.xsl");
    m_transformer.setStylesheetParam("title",
                                     "\xCE\xA4\xCE\xAF\xCF\x84\xCE\xBB\xCE\xBF\xCF\x82 <&>");
    const auto files = transformFile(source, sheet);
    EXPECT_TRUE(sameBytes(
        files.output,
        bareEngineTransform(source, sheet,
                            {{"title", "\xCE\xA4\xCE\xAF\xCF\x84\xCE\xBB\xCE\xBF\xCF\x82 <&>"}})));
    EXPECT_NE(files.output.find("\xCE\xA4\xCE\xAF\xCF\x84\xCE\xBB\xCE\xBF\xCF\x82 &lt;&amp;&gt;"),
              std::string::npos);
}

/** Expected parts of the page, independent of any engine. */
TEST_F(TransformTest, DocBookSectionsAndCrossReferencesAreInTheHtml) {
    const auto outcome = transformFile(projectFile("tests/data/handbook.xml"), DOCBOOK_XSL);
    ASSERT_EQ(outcome.result, 0) << outcome.error;
    for (const char* part : {
             "<title>The Keeper's Handbook</title>", "<a href=\"#lamp\">The lamp</a>",
             "<a href=\"#lens\">Cleaning the lens</a>", "<a href=\"#logbook\">The logbook</a>",
             "<a href=\"#stairs\">A. The stairs</a>", "<b>Table&nbsp;1.&nbsp;Signals</b>",
             "href=\"#fog\" title=\"Fog\">the section called &ldquo;Fog&rdquo;</a>",
             "<pre class=\"programlisting\">04:12  brig, N C, bearing 210\n04:15  light and gun\n",
             "spirit &amp; patience. Never water &lt; 5 &deg;C.",
             "&#934;&#940;&#961;&#959;&#962;", // Greek: not in the page's encoding, Latin-1
             "&#28783;&#21488;",               // CJK
             "&#127754;",                      // outside the Basic Multilingual Plane
         }) {
        EXPECT_NE(outcome.output.find(part), std::string::npos) << part;
    }
}
