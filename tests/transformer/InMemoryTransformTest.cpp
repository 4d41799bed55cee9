#include "support/InMemoryTest.h"
#include "support/TestFunctions.h"
#include "support/VEXAXslTransformerInspector.h"

#include <fstream>
#include <thread>
#include <vector>

using Inspector = VEXAXslTransformerInspector;
using InMemoryTransformTest = InMemoryTest;

TEST_P(InMemoryTransformTest, TransformsOneDocumentIntoAnother) {
    const Dom2DomPtr in = parsed("<a>x</a>");
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, sheet("<b><xsl:value-of select='a'/></b>"), *out), 0);
    EXPECT_EQ(queried(*out, "string(/b)"), "x");
    EXPECT_EQ(serialized(*out), asSerialized("<b>x</b>"));
    EXPECT_STREQ(m_transformer.getLastError(), "");
}

TEST_P(InMemoryTransformTest, WritesToAStreamWithTheOutputSettingsOfTheStylesheet) {
    const Dom2DomPtr in = parsed("<a>\xCE\xB1</a>");
    EXPECT_EQ(transformed(*in, m_folder.write("t.xsl",
                                              stylesheet("<xsl:output method='text'/><xsl:template "
                                                         "match='/'>[<xsl:value-of select='a'/>]"
                                                         "</xsl:template>"))),
              "[\xCE\xB1]");
    EXPECT_EQ(
        transformed(*in, m_folder.write("h.xsl",
                                        stylesheet("<xsl:output method='html' indent='no' "
                                                   "encoding='ISO-8859-7'/><xsl:template match='/'>"
                                                   "<p><br/><xsl:value-of select='a'/></p>"
                                                   "</xsl:template>"))),
        "<p><br>&#945;</p>");
}

TEST_P(InMemoryTransformTest, ChainsFiveStylesheets) {
    Dom2DomPtr current = parsed("<n>1</n>");
    const std::string doubling = sheet("<n><xsl:value-of select='2 * n'/></n>");
    for (int i = 0; i < 5; ++i) {
        Dom2DomPtr next = output();
        ASSERT_EQ(transform(*current, doubling, *next), 0) << m_transformer.getLastError();
        ASSERT_NE(next->GetDocument(), nullptr);
        current = std::move(next);
    }
    EXPECT_EQ(queried(*current, "string(/n)"), "32");
}

TEST_P(InMemoryTransformTest, ReadsOneInputAThousandTimes) {
    const Dom2DomPtr in = parsed("<a>x</a>");
    const std::string copying = sheet("<b><xsl:value-of select='a'/></b>");
    for (int i = 0; i < 1000; ++i) {
        const Dom2DomPtr out = output();
        ASSERT_EQ(transform(*in, copying, *out), 0);
    }
    EXPECT_EQ(transformed(*in, copying), "<b>x</b>");
}

TEST_P(InMemoryTransformTest, PassesParameters) {
    m_transformer.setStylesheetParam("z", "last");
    m_transformer.setStylesheetParam("a", "first");
    m_transformer.setStylesheetParam("empty", "");
    const Dom2DomPtr in = parsed("<a/>");
    const std::string file = m_folder.write(
        "p.xsl",
        stylesheet(
            "<xsl:output method='text'/><xsl:param name='a'/><xsl:param name='z'/><xsl:param "
            "name='empty' select='1'/><xsl:template match='/'><xsl:value-of select='concat($a, \" "
            "\", "
            "$z, $empty)'/></xsl:template>"));
    EXPECT_EQ(transformed(*in, file), "first last");
}

TEST_P(InMemoryTransformTest, PassesParametersInTheOrderOfTheirNames) {
    // The engine reports the first parameter that it gets.
    m_transformer.setStylesheetParam("1z", "set first");
    m_transformer.setStylesheetParam("1a", "set second");
    const Dom2DomPtr in = parsed("<a/>"), out = output();
    EXPECT_EQ(transform(*in, sheet("<b/>"), *out), -1);
    EXPECT_NE(std::string(m_transformer.getLastError()).find("'1a'"), std::string::npos)
        << m_transformer.getLastError();
}

TEST_P(InMemoryTransformTest, PassesNamesAndValuesInAnyScript) {
    m_transformer.setStylesheetParam("gr\xC3\xB6\xC3\x9F", "\xCE\xB1 \xF0\x9F\x98\x80");
    m_transformer.installExternalFunction("\xC3\x84", BracketFunction());
    const Dom2DomPtr in = parsed("<a/>");
    EXPECT_EQ(transformed(*in, m_folder.write("\xCE\xB2.xsl", sheetInAnyScript())),
              "[\xCE\xB1 \xF0\x9F\x98\x80]");
}

TEST_P(InMemoryTransformTest, CallsFunctionsAndNodeset) {
    m_transformer.installExternalFunction("B", BracketFunction());
    const Dom2DomPtr in = parsed("<a>x</a>");
    EXPECT_EQ(transformed(*in, sheet("<b><xsl:value-of select='vexa:B(a)'/></b>")), "<b>[x]</b>");
    EXPECT_EQ(transformed(*in, sheet("<xsl:variable name='t'><i>1</i><i>2</i></xsl:variable><b>"
                                     "<xsl:value-of select='sum(xalan:nodeset($t)/i)'/></b>")),
              "<b>3</b>");
    EXPECT_EQ(transformed(*in, sheet("<b><xsl:value-of select='vexa:GetLocalizedString(4,\"de\")'/>"
                                     "</b>")),
              "<b>Summe</b>");
    EXPECT_EQ(transformed(*in, sheet("<b><xsl:value-of select='string-length(vexa:GetDateTime())'/>"
                                     "</b>")),
              "<b>12</b>");
    // An installation between two calls takes effect in the second one.
    m_transformer.installExternalFunction("B", ConstantFunction("replaced"));
    EXPECT_EQ(transformed(*in, sheet("<b><xsl:value-of select='vexa:B(a)'/></b>")),
              "<b>replaced</b>");
}

/** The engine installs nodeset globally. Without that, the installation by the library is used. */
TEST_P(InMemoryTransformTest, InstallsNodesetItself) {
    xalanc::XalanTransformer::uninstallExternalFunctionGlobal(
        xalanc::XalanDOMString("http://xml.apache.org/xalan"), xalanc::XalanDOMString("nodeset"));
    const Dom2DomPtr in = parsed("<a/>");
    EXPECT_EQ(
        transformed(*in, sheet("<b><xsl:value-of select='count(xalan:nodeset(\"s\"))'/></b>")),
        "<b>1</b>");
}

TEST_P(InMemoryTransformTest, ResolvesReferencesAgainstTheStylesheet) {
    std::filesystem::create_directory(m_folder.path("sheets"));
    m_folder.write("sheets/base.xsl", stylesheet("<xsl:template match='a'><c/></xsl:template>"));
    m_folder.write("sheets/more.xsl", stylesheet("<xsl:template name='more'><m/></xsl:template>"));
    m_folder.write("sheets/data.xml", "<d>data</d>");
    const std::string file = m_folder.write(
        "sheets/main.xsl",
        stylesheet(
            "<xsl:import href='base.xsl'/><xsl:include href='more.xsl'/>"
            "<xsl:output omit-xml-declaration='yes'/><xsl:template "
            "match='/'><b><xsl:apply-templates/>"
            "<xsl:call-template name='more'/><xsl:value-of select='document(\"data.xml\")/d'/>"
            "<xsl:value-of select='count(document(\"\")/*)'/></b></xsl:template>"));
    EXPECT_EQ(transformed(*parsed("<a/>"), file), "<b><c/><m/>data1</b>");
}

TEST_P(InMemoryTransformTest, SupportsIdsKeysAndStrippedSpace) {
    const Dom2DomPtr in = parsed("<!DOCTYPE a [<!ATTLIST b i ID #IMPLIED>]>"
                                 "<a> <b i='one'>1</b> <b i='two'>2</b> </a>");
    const std::string file = m_folder.write(
        "k.xsl",
        stylesheet(
            "<xsl:output method='text'/><xsl:strip-space elements='*'/>"
            "<xsl:key name='k' match='b' use='.'/><xsl:template match='/'>"
            "<xsl:value-of select='concat(id(\"two\"), key(\"k\", \"1\")/@i, count(a/text()))'/>"
            "</xsl:template>"));
    EXPECT_EQ(transformed(*in, file), "2one0");
}

/** The other transforms print what the engine prints by itself. */
TEST_P(InMemoryTransformTest, PrintsNothingByItself) {
    const Dom2DomPtr in = parsed("<a/>");
    const std::string file = sheet("<b/><xsl:message>a message</xsl:message>");
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(transformed(*in, file), "<b/>");
    const std::string inMemory = ::testing::internal::GetCapturedStderr();

    std::istringstream source("<a/>");
    std::ostringstream output;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(m_transformer.doTransform(source, file.c_str(), output), 0);
    const std::string streamed = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(inMemory, "");
    EXPECT_EQ(streamed.rfind("XSLT message: a message", 0), 0U) << streamed;
}

TEST_P(InMemoryTransformTest, SortsAndFormatsNumbersLikeTheOtherTransforms) {
    const std::string text = "<a><i>b</i><i>C</i><i>a</i><i>A</i><i>\xC3\xA4</i></a>";
    const std::string file =
        sheet("<b><xsl:for-each select='a/i'><xsl:sort/><xsl:value-of select='.'/></xsl:for-each>"
              "<xsl:value-of select='format-number(1234.5, \"#,##0.00\")'/></b>");
    const std::string inMemory = transformed(*parsed(text), file);
    EXPECT_EQ(inMemory, "<b>aA\xC3\xA4"
                        "bC1,234.50</b>");
    std::istringstream source(text);
    std::ostringstream streamed;
    EXPECT_EQ(m_transformer.doTransform(source, file.c_str(), streamed), 0);
    EXPECT_EQ(streamed.str(), inMemory + '\0');
}

TEST_P(InMemoryTransformTest, ReturnsTheResultOfAFailedParse) {
    const Dom2DomPtr in = m_transformer.createDom2Dom();
    in->InitializeInputSource("<a>");
    const std::string message = m_transformer.getLastError();
    Inspector::ownError(m_transformer) = "left by an earlier operation";
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, m_folder.path("none.xsl"), *out), -2);
    EXPECT_EQ(m_transformer.getLastError(), message);
    EXPECT_TRUE(Inspector::ownError(m_transformer).empty());
}

TEST_P(InMemoryTransformTest, ReportsAStylesheetThatIsMissingOrMalformed) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, m_folder.path("none.xsl"), *out), -2);
    EXPECT_EQ(std::string(m_transformer.getLastError()).rfind("SAXParseException: ", 0), 0U)
        << m_transformer.getLastError();
    EXPECT_EQ(transform(*in, "", *out), -2);
    const std::string malformed = m_folder.write("bad.xsl", "<x>\n</y>");
    EXPECT_EQ(transform(*in, malformed, *out), -2);
    EXPECT_NE(std::string(m_transformer.getLastError()).find("bad.xsl, line 2, column "),
              std::string::npos)
        << m_transformer.getLastError();

    // Nothing was written: the document can still receive a result.
    EXPECT_EQ(transform(*in, sheet("<b/>"), *out), 0);
    EXPECT_EQ(serialized(*out), asSerialized("<b/>"));
}

TEST_P(InMemoryTransformTest, ADirectoryIsRejectedAsStylesheet) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, m_folder.path(""), *out), -2);
    EXPECT_STRNE(m_transformer.getLastError(), "");
}

TEST_P(InMemoryTransformTest, ReportsErrorsOfTheStylesheet) {
    struct Error {
        const char* content;
        int result;
        const char* part;
    };
    for (const Error& error : {
             Error{"<xsl:foo/>", -1, "Type is: XSLTProcessorException\n"},
             Error{"<xsl:value-of select='a['/>", -1, "XSLTProcessorException"},
             Error{"<xsl:value-of select='count(1,2)'/>", -1, "Exception"},
             Error{"<xsl:value-of select='vexa:none()'/>", -1, "Type is: XalanXPathException\n"},
             Error{"<xsl:value-of select='vexa:TimerStart()'/>", -1,
                   "tqfunc:TimerStart() function takes 1 argument!"},
             Error{"<xsl:message terminate='yes'>enough</xsl:message>", -1,
                   "Type is: ElemMessageTerminateExpression\nMessage is: enough ("},
             Error{"<xsl:call-template name='none'/>", -1, "XSLException"},
             Error{"only text", -4, "XalanDOMException[3] occured.\n"},
         }) {
        const Dom2DomPtr in = parsed("<a/>");
        const Dom2DomPtr out = output();
        EXPECT_EQ(transform(*in, sheet(error.content), *out), error.result) << error.content;
        EXPECT_NE(std::string(m_transformer.getLastError()).find(error.part), std::string::npos)
            << m_transformer.getLastError();
        EXPECT_EQ(transformed(*in, sheet("<b/>")), "<b/>");
    }
}

TEST_P(InMemoryTransformTest, ASecondResultFailsAndLeavesTheFirstUnchanged) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, sheet("<first/>"), *out), 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(transform(*in, sheet("<second/>"), *out), -4);
        EXPECT_STREQ(m_transformer.getLastError(), "XalanDOMException[3] occured.\n");
        EXPECT_EQ(serialized(*out), asSerialized("<first/>"));
    }
}

TEST_P(InMemoryTransformTest, ASecondResultWithoutElementsAndTextIsAdded) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, sheet("<first/>"), *out), 0);
    EXPECT_EQ(transform(*in, sheet(""), *out), 0);
    EXPECT_EQ(transform(*in, sheet(" "), *out), 0);
    EXPECT_EQ(transform(*in, sheet("<xsl:comment>c</xsl:comment>"), *out), 0);
    EXPECT_STREQ(m_transformer.getLastError(), "");
    EXPECT_EQ(transform(*in, sheet("<xsl:processing-instruction name='p'/>"), *out), 0);
    EXPECT_EQ(queried(*out, "string(count(/node()))"), "3");
    EXPECT_EQ(queried(*out, "/first/following::comment()"), "<!--c-->");

    // Nodes before the element that fails are added.
    EXPECT_EQ(transform(*in, sheet("<xsl:comment>d</xsl:comment><second/>"), *out), -4);
    EXPECT_EQ(transform(*in, sheet("<xsl:comment>e</xsl:comment>text"), *out), -4);
    EXPECT_EQ(queried(*out, "string(count(/node()))"), "5");
    EXPECT_EQ(queried(*out, "string(count(//*))"), "1");
    EXPECT_EQ(serialized(*out), asSerialized("<first/>"));
}

TEST_P(InMemoryTransformTest, ADocumentCanBeSourceAndOutputOfATransform) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, sheet("<xsl:comment>c</xsl:comment>"), *out), 0);
    const std::string adding = m_folder.write(
        "adding.xsl", stylesheet("<xsl:template match='comment()'><xsl:comment>"
                                 "<xsl:value-of select='count(//node())'/></xsl:comment>"
                                 "</xsl:template>"));
    for (const char* count : {"1", "2", "4"}) { // each transform doubles the comments
        EXPECT_EQ(transform(*out, adding, *out), 0);
        EXPECT_EQ(queried(*out, "string(comment()[last()])"), count);
    }
    EXPECT_EQ(transform(*out, sheet("<b><xsl:value-of select='count(//node())'/></b>"), *out), 0);
    EXPECT_EQ(serialized(*out), asSerialized("<b>8</b>"));
    EXPECT_EQ(transform(*out, adding, *out), -4); // the result has the text of the element
    EXPECT_EQ(serialized(*out), asSerialized("<b>8</b>"));
}

TEST_P(InMemoryTransformTest, AMissingStylesheetIsReportedFirst) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, sheet("<first/>"), *out), 0);
    EXPECT_EQ(transform(*in, m_folder.path("none.xsl"), *out), -2);
    EXPECT_EQ(transform(*output(), m_folder.path("none.xsl"), *output()), -2);
    EXPECT_EQ(transform(*output(), m_folder.path("none.xsl"), *out), -2);
    EXPECT_EQ(std::string(m_transformer.getLastError()).rfind("SAXParseException: ", 0), 0U)
        << m_transformer.getLastError();
}

TEST_P(InMemoryTransformTest, TransformsADocumentOfCommentsAndProcessingInstructions) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr withoutElement = output();
    EXPECT_EQ(transform(*in,
                        sheet("<xsl:comment>c</xsl:comment>"
                              "<xsl:processing-instruction name='p'>d</xsl:processing-instruction>"
                              "<xsl:comment>e</xsl:comment>"),
                        *withoutElement),
              0);
    const auto result = [&](const std::string& templates) {
        return transformed(*withoutElement,
                           m_folder.write("s.xsl", stylesheet("<xsl:output method='text'/>"
                                                              "<xsl:key name='k' match='comment()' "
                                                              "use='.'/>" +
                                                              templates)));
    };
    const auto value = [&](const std::string& expression) {
        return result("<xsl:template match='/'><xsl:value-of select=\"" + expression +
                      "\"/></xsl:template>");
    };
    EXPECT_EQ(result("<xsl:template match='comment()'>[<xsl:value-of select='.'/>]</xsl:template>"),
              "[c][e]");
    EXPECT_EQ(result("<xsl:template match='/comment()'>1</xsl:template>"
                     "<xsl:template match='//processing-instruction()'>2</xsl:template>"),
              "121");
    EXPECT_EQ(
        result("<xsl:template match=\"id('x') | key('k', 'c')/comment()\">never</xsl:template>"),
        "");
    EXPECT_EQ(result("<xsl:template match='/'><xsl:for-each select='//comment()'>"
                     "<xsl:sort select='.' order='descending'/><xsl:value-of select='.'/>"
                     "<xsl:number level='any' count='comment()'/></xsl:for-each></xsl:template>"),
              "e2c1");
    EXPECT_EQ(result("<xsl:variable name='t'><i/><i/></xsl:variable><xsl:template match='/'>"
                     "<xsl:value-of select='count(xalan:nodeset($t)//i | //node())'/>"
                     "</xsl:template>"),
              "5");
    EXPECT_EQ(value("count(/)"), "1");
    EXPECT_EQ(value("count(/*) + count(//*)"), "0");
    EXPECT_EQ(value("key('k', 'c')"), "c");
    EXPECT_EQ(value("count(//comment()[2]/preceding::node())"), "2");
    EXPECT_EQ(value("count(//comment()[. = 'c']/following::node()/..)"), "1");
    EXPECT_EQ(value("count(id('x'))"), "0");
    EXPECT_EQ(value("count(document('')/*)"), "1");
    EXPECT_EQ(value("generate-id(/) = generate-id(comment()/..)"), "true");
    EXPECT_EQ(value("string-length(unparsed-entity-uri('x'))"), "0");
    EXPECT_EQ(value("string(/)"), "");
    EXPECT_EQ(value("lang('en')"), "false");

    const Dom2DomPtr copy = output();
    EXPECT_EQ(transform(*withoutElement, sheet("<xsl:copy-of select='/'/>"), *copy), 0);
    EXPECT_EQ(queried(*copy, "/"), "<!--c--><?p d?><!--e-->");
    EXPECT_EQ(transformed(*output(), sheet("<b><xsl:value-of select='count(//node())'/></b>")),
              "<b>0</b>");
}

TEST_P(InMemoryTransformTest, KeepsTheTextOfCdataSections) {
    const Dom2DomPtr in = parsed("<a>k<![CDATA[<secret>]]>z</a>");
    const std::string copying = sheet("<b><xsl:copy-of select='a/node()'/></b>");
    const Dom2DomPtr copy = output();
    EXPECT_EQ(transform(*in, copying, *copy), 0);
    EXPECT_EQ(queried(*copy, "string(/b)"), "k<secret>z");

    const std::string sections = m_folder.write(
        "cdata.xsl", stylesheet("<xsl:output cdata-section-elements='c'/><xsl:template match='/'>"
                                "<r><c>text</c></r></xsl:template>"));
    const Dom2DomPtr result = output();
    EXPECT_EQ(transform(*in, sections, *result), 0);
    EXPECT_EQ(serialized(*result), asSerialized("<r><c>text</c></r>"));
}

TEST_P(InMemoryTransformTest, SortsAndFormatsForALanguageLikeTheOtherTransforms) {
    const std::string text = "<a><i>z</i><i>\xC3\xB6</i><i>o</i><i>O</i><i>\xC3\xA4</i></a>";
    for (const char* content :
         {"<xsl:for-each select='a/i'><xsl:sort lang='sv'/><xsl:value-of "
          "select='.'/></xsl:for-each>",
          "<xsl:for-each select='a/i'><xsl:sort lang='de'/><xsl:value-of "
          "select='.'/></xsl:for-each>",
          "<xsl:for-each select='a/i'><xsl:sort case-order='upper-first'/><xsl:value-of "
          "select='.'/></xsl:for-each>",
          "<xsl:for-each select='a/i'><xsl:sort case-order='lower-first'/><xsl:value-of "
          "select='.'/></xsl:for-each>",
          "<xsl:value-of select='format-number(-1234.5, \"#.##0,00\", \"d\")'/>"}) {
        const std::string file = m_folder.write(
            "sort.xsl", stylesheet("<xsl:decimal-format name='d' decimal-separator=',' "
                                   "grouping-separator='.' minus-sign='~'/><xsl:output "
                                   "omit-xml-declaration='yes'/><xsl:template match='/'><b>" +
                                   std::string(content) + "</b></xsl:template>"));
        std::istringstream source(text);
        std::ostringstream streamed;
        EXPECT_EQ(m_transformer.doTransform(source, file.c_str(), streamed), 0);
        EXPECT_EQ(transformed(*parsed(text), file) + '\0', streamed.str()) << content;
    }
    // In Swedish, letters with diacritics are after z. The decimal format has its own minus sign.
    EXPECT_EQ(transformed(*parsed(text), sheet("<b><xsl:for-each select='a/i'><xsl:sort lang='sv'/>"
                                               "<xsl:value-of select='.'/></xsl:for-each></b>")),
              "<b>oOz\xC3\xA4\xC3\xB6</b>");
    EXPECT_EQ(transformed(*parsed(text), m_folder.path("sort.xsl")), "<b>~1.234,50</b>");
}

TEST_P(InMemoryTransformTest, AnOutputSurvivesATransformThatFailedMidway) {
    const Dom2DomPtr in = parsed("<a/>");
    const std::string failing =
        sheet("<b><c><xsl:message terminate='yes'>enough</xsl:message></c></b>");
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, failing, *out), -1);
    // The document has the element that was begun, and so cannot receive a second result.
    EXPECT_EQ(transform(*in, failing, *out), -4);
    EXPECT_EQ(transform(*in, failing, *out), -4);
    std::string ignored;
    query(*out, "string(/)", ignored);
    std::ostringstream text;
    out->Serialize(text);
    EXPECT_EQ(transformed(*in, sheet("<b/>")), "<b/>");
}

TEST_P(InMemoryTransformTest, AStreamOutputReceivesSeveralResults) {
    const Dom2DomPtr in = parsed("<a/>");
    std::ostringstream text;
    const Dom2DomPtr out = output(text);
    EXPECT_EQ(transform(*in, sheet("<first/>"), *out), 0);
    EXPECT_EQ(transform(*in, sheet("<second/>"), *out), 0);
    EXPECT_EQ(text.str(), "<first/><second/>");
}

TEST_P(InMemoryTransformTest, ReportsAStreamThatCannotBeWritten) {
    const Dom2DomPtr in = parsed("<a/>");
    std::ofstream full("/dev/full");
    const Dom2DomPtr out = output(full);
    EXPECT_EQ(transform(*in, sheet("<b>" + std::string(100'000, 'x') + "</b>"), *out), -1);
    EXPECT_NE(std::string(m_transformer.getLastError()).find("XalanStdOutputStreamWriteException"),
              std::string::npos);
}

TEST_P(InMemoryTransformTest, NoStateOfADocumentCausesACrash) {
    std::ostringstream stream;
    const auto documents = [&] {
        std::vector<Dom2DomPtr> all;
        all.push_back(m_transformer.createDom2Dom()); // not initialized
        all.push_back(parsed("<a>x</a>"));
        all.push_back(m_transformer.createDom2Dom());
        all.back()->InitializeInputSource("<a>"); // failed
        all.push_back(output());                  // no result yet
        all.push_back(output());
        const Dom2DomPtr in = parsed("<r/>");
        EXPECT_EQ(transform(*in, sheet("<b>y</b>"), *all.back()), 0);
        all.push_back(output(stream));
        return all;
    };
    const std::string usesSlash = sheet("<c><xsl:value-of select='count(//*)'/></c>");
    for (std::size_t i = 0; i < 6; ++i) {
        for (std::size_t k = 0; k < 6; ++k) {
            const auto ins = documents();
            const auto outs = documents();
            const int result = transform(*ins[i], usesSlash, *outs[k]);
            const bool goodInput = i == 1 || i == 3 || i == 4;
            const bool goodOutput = k == 3 || k == 5;
            EXPECT_EQ(result == 0, goodInput && goodOutput) << i << " into " << k;
            // The engine replaces the message of a failed parse in its next parse.
            const bool hasMessage = i != 2 && result != 0;
            EXPECT_EQ(hasMessage, *m_transformer.getLastError() != '\0') << i << " into " << k;
        }
        // The same document as input and output: only an empty document can be both.
        const auto both = documents();
        EXPECT_EQ(transform(*both[i], usesSlash, *both[i]) == 0, i == 3) << i;
    }
    EXPECT_EQ(transformed(*parsed("<a/>"), sheet("<b/>")), "<b/>");
}

TEST_P(InMemoryTransformTest, ReportsAMissingDocumentOrMode) {
    const Dom2DomPtr in = parsed("<a/>");
    EXPECT_EQ(transform(*in, sheet("<b/>"), *m_transformer.createDom2Dom()), -1);
    EXPECT_NE(std::string(m_transformer.getLastError()).find("result target"), std::string::npos)
        << m_transformer.getLastError();
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*m_transformer.createDom2Dom(), sheet("<b/>"), *out), -2);
    EXPECT_STRNE(m_transformer.getLastError(), "");
}

TEST_P(InMemoryTransformTest, AStreamTransformDoesNotClearAnEarlierReportButTheOthersDo) {
    const Dom2DomPtr in = parsed("<a/>");
    const std::string good = sheet("<b/>");
    const std::string source = m_folder.write("a.xml", "<a/>");
    const auto fail = [&] {
        EXPECT_EQ(transform(*in, m_folder.path("none.xsl"), *output()), -2);
        EXPECT_STRNE(m_transformer.getLastError(), "");
    };
    fail();
    EXPECT_EQ(transformed(*in, good), "<b/>");
    EXPECT_STREQ(m_transformer.getLastError(), "");

    fail();
    EXPECT_EQ(m_transformer.doTransform(source.c_str(), good.c_str(), m_folder.path("o").c_str()),
              0);
    EXPECT_STREQ(m_transformer.getLastError(), "");

    fail();
    const std::string report = m_transformer.getLastError();
    std::istringstream stream("<a/>");
    std::ostringstream text;
    EXPECT_EQ(m_transformer.doTransform(stream, good.c_str(), text), 0);
    EXPECT_EQ(m_transformer.getLastError(), report);
    std::istringstream malformed("<a>");
    EXPECT_NE(m_transformer.doTransform(malformed, good.c_str(), text), 0);
    EXPECT_EQ(m_transformer.getLastError(), report);
}

TEST_P(InMemoryTransformTest, RunsInTwoThreadsWithOneTransformerEach) {
    const std::string file = sheet("<b><xsl:value-of select='count(//i)'/></b>");
    const auto work = [&file](int items) {
        VEXAXslTransformer transformer;
        std::string text = "<a>";
        for (int i = 0; i < items; ++i) {
            text += "<i/>";
        }
        text += "</a>";
        for (int i = 0; i < 50; ++i) {
            const Dom2DomPtr in = transformer.createDom2Dom();
            const Dom2DomPtr out = transformer.createDom2Dom();
            ASSERT_TRUE(in->InitializeInputSource(text.c_str()));
            ASSERT_TRUE(out->InitializeOutputTarget());
            ASSERT_EQ(transformer.doTransform(*in, file.c_str(), *out), 0);
            std::ostringstream result;
            ASSERT_EQ(transformer.doXPath(*out, "string(/b)", result), 0);
            ASSERT_EQ(result.str(), std::to_string(items));
        }
    };
    std::thread one(work, 1), two(work, 20);
    one.join();
    two.join();
}

INSTANTIATE_FOR_BOTH_TREES(InMemoryTransformTest);
