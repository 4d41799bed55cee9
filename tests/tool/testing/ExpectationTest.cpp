#include "TestingTest.h"

#include <algorithm>
#include <utility>

/** What a case can expect, and how it is reported that it is not so. */
class ExpectationTest : public TestingTest {
protected:
    ExpectationTest() {
        m_folder.write("talk.xsl",
                       stylesheet("<xsl:template match='/'><xsl:message>one</xsl:message>"
                                  "<xsl:message>two\n words</xsl:message><b/></xsl:template>"));
        m_folder.write("stop.xsl",
                       stylesheet("\n<xsl:template match='/'>\n<xsl:message "
                                  "terminate='yes'>stop here</xsl:message></xsl:template>"));
    }
};

TEST_F(ExpectationTest, AFileIsComparedByteByByte) {
    m_folder.write("a.xml", "<a b=\"1\"/>");
    EXPECT_EQ(report("copy.xsl", "<a b='1'/>", "<expect file='a.xml'/>"), PASSED);
    m_folder.write("a.xml", "<a b='1'/>");
    EXPECT_EQ(report("copy.xsl", "<a b='1'/>", "<expect file='a.xml'/>"),
              "# file a.xml: the result differs\n"
              "# --- a.xml\n# +++ result\n# @@ -1,1 +1,1 @@\n"
              "# -<a b='1'/>\n# \\ No newline at end of file\n"
              "# +<a b=\"1\"/>\n# \\ No newline at end of file\n");
}

TEST_F(ExpectationTest, AFileMayBeInAnyEncoding) {
    m_folder.write("latin.xsl", stylesheet("<xsl:output method='text' encoding='ISO-8859-1'/>"));
    m_folder.write("a.txt", "\xE4\n");
    EXPECT_EQ(report("latin.xsl", "<a>&#228;&#10;</a>", "<expect file='a.txt'/>"), PASSED);
    m_folder.write("a.txt", "\xC3\xA4\n");
    EXPECT_EQ(report("latin.xsl", "<a>&#228;&#10;</a>", "<expect file='a.txt'/>"),
              "# file a.txt: the result differs\n"
              "# --- a.txt\n# +++ result\n# @@ -1,1 +1,1 @@\n# -\xC3\xA4\n# +\\xE4\n");
}

TEST_F(ExpectationTest, AFileCanBeComparedAsATree) {
    m_folder.write("a.xml", "<!DOCTYPE p:a SYSTEM 'http://host.invalid/a.dtd'>\n"
                            "<p:a c='2' xmlns:p='urn:x' b='1'>x<![CDATA[y]]></p:a>\n");
    const char* const expectation = "<expect file='a.xml' as='xml'/>";
    EXPECT_EQ(report("copy.xsl", "<a xmlns='urn:x' b='1' c='2'>xy</a>", expectation), PASSED);
    EXPECT_EQ(report("copy.xsl", "<a xmlns='urn:x' b='1'><i/>xy</a>", expectation),
              "# file a.xml as xml: the result differs\n"
              "# /p:a[1]/@c: missing, expected '2'\n"
              "# /p:a[1]/i[1]: unexpected <i>\n");
    m_folder.write("a.xml", "<a>\n<b></a>");
    EXPECT_EQ(report("copy.xsl", "<a/>", expectation)
                  .rfind("# file a.xml as xml: the file cannot "
                         "be read as XML: line 2: ",
                         0),
              0U);
}

/** Their texts are not known, but what refers to them is compared. */
TEST_F(ExpectationTest, EntitiesOfADtdThatIsNotReadAreNotLost) {
    const char* const expectation = "<expect file='a.xml' as='xml'/>";
    const auto write = [&](const std::string& content) {
        m_folder.write("a.xml", "<!DOCTYPE a SYSTEM 'none.dtd' [<!ENTITY own 'z'>]>" + content);
    };
    write("<a>x&nbsp;y</a>");
    EXPECT_EQ(report("copy.xsl", "<a>xy</a>", expectation),
              "# file a.xml as xml: the result differs\n"
              "# /a[1]/text()[1]: expected 'x&nbsp;y', got 'xy'\n");
    write("<a b='&u;'/>");
    EXPECT_EQ(report("copy.xsl", "<a b=''/>", expectation),
              "# file a.xml as xml: the result differs\n"
              "# /a[1]/@b: expected '&u;', got ''\n");
    write("<a b='&lt;'>&own;&amp;<!--&x;--><![CDATA[&y;]]></a>");
    EXPECT_EQ(report("copy.xsl", "<a b='&lt;'>z&amp;<!--&x;-->&amp;y;</a>", expectation), PASSED);
    const std::string longName(100'000, 'n');
    write("<a>&" + longName + ";</a>");
    EXPECT_EQ(report("copy.xsl", "<a>&amp;" + longName + ";</a>", expectation), PASSED);
    write("<a><![CDATA[&1; &; & &#1; &a:b; &c]]></a>");
    EXPECT_EQ(report("copy.xsl", "<a><![CDATA[&1; &; & &#1; &a:b; &c]]></a>", expectation), PASSED);
    m_folder.write("a.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'e.xml'>]><a>&e;</a>");
    m_folder.write("e.xml", "x");
    EXPECT_EQ(report("copy.xsl", "<a/>", expectation)
                  .rfind("# file a.xml as xml: the file cannot be read as XML: line 1: ", 0),
              0U);
}

TEST_F(ExpectationTest, AFileMayBeAUri) {
    m_folder.write("a b.txt", "<a/>");
    const std::string uri = "file://" + m_folder.path("a%20b.txt");
    EXPECT_EQ(report("copy.xsl", "<a/>", "<expect file='" + uri + "'/>"), PASSED);
    m_folder.write("a b.txt", "");
    EXPECT_EQ(report("copy.xsl", "<a/>", "<expect file='" + uri + "'/>", "--update"),
              PASSED + ("# updated " + m_folder.path("a b.txt") + "\n"));
}

TEST_F(ExpectationTest, WarningsOfExpressionsAreShown) {
    EXPECT_NE(report("copy.xsl", "<a/>", "<expect xpath=\"document('none.xml')\"/>")
                  .find("it is an empty node-set\n# warning: "),
              std::string::npos);
}

TEST_F(ExpectationTest, AnExpressionIsTrueOverTheResultTree) {
    m_folder.write("page.xsl", stylesheet("<xsl:output method='html'/><xsl:template match='/'>"
                                          "<html><br/><xsl:copy-of select='*'/></html>"
                                          "</xsl:template>"));
    EXPECT_EQ(report("page.xsl", "<a>1</a>", "<expect xpath='/html/br and /html/a = 1'/>"), PASSED);
    EXPECT_EQ(report("copy.xsl", "<a xmlns='urn:x'/>", "<expect xpath='/x:a' xmlns:x='urn:x'/>"),
              PASSED);
}

TEST_F(ExpectationTest, AnExpressionThatIsNotTrueIsToldWithItsValue) {
    const std::pair<const char*, const char*> expressions[] = {
        {"count(//b) = 3", "2 = 3 is false"},
        {"//b != //b[. &gt; 5]", "{'1', '2'} != an empty node-set is false"},
        {"'a=b' &gt;= string(/a)", "'a=b' >= '12' is false"},
        {"//b[. = 3]", "it is an empty node-set"},
        {"count(//c)", "it is 0"},
        {"string(//c)", "it is ''"},
        {"//b = 3 or //b = 4", "it is false"},
        {"not(//b = 1)", "it is false"},
    };
    for (const auto& [expression, value] : expressions) {
        const std::string shown = report("copy.xsl", "<a><b>1</b><b>2</b></a>",
                                         "<expect xpath=\"" + std::string(expression) + "\"/>");
        EXPECT_EQ(shown.substr(std::min(shown.size(), shown.rfind(": ") + 2)),
                  value + std::string("\n"))
            << shown;
    }
    EXPECT_EQ(report("copy.xsl", "<a/>", "<expect xpath='//b'/>"),
              "# xpath //b: it is an empty node-set\n");
}

TEST_F(ExpectationTest, AMessageContainsAText) {
    EXPECT_EQ(report("talk.xsl", "<a/>", "<expect message='wo'/><expect message='one'/>"), PASSED);
    EXPECT_EQ(report("talk.xsl", "<a/>", "<expect message='wo'/>", "--quiet"), PASSED);
    EXPECT_EQ(report("talk.xsl", "<a/>", "<expect message='three'/>"),
              "# message 'three': the messages were\n#   'one'\n#   'two\\n words'\n");
    EXPECT_EQ(report("copy.xsl", "<a/>", "<expect message='three'/>"),
              "# message 'three': there was no message\n");
}

TEST_F(ExpectationTest, AnErrorIsOfAKindAndContainsAText) {
    EXPECT_EQ(report("stop.xsl", "<a/>", "<expect error='Terminated'/>"), PASSED);
    EXPECT_EQ(report("stop.xsl", "<a/>", "<expect error='Terminated' text='here'/>"), PASSED);
    EXPECT_EQ(report("stop.xsl", "<a/>", "<expect error='Terminated' text='there'/>"),
              "# error Terminated 'there': the error was Terminated\n"
              "# stop.xsl:3:1: stop here\n");
    EXPECT_EQ(report("stop.xsl", "<a/>", "<expect error='Transform'/>"),
              "# error Transform: the error was Terminated\n# stop.xsl:3:1: stop here\n");
    EXPECT_EQ(report("copy.xsl", "<a/>", "<expect error='Limit'/>"),
              "# error Limit: the transform ended without an error\n");
}

TEST_F(ExpectationTest, AnErrorThatIsNotExpectedIsReportedOnce) {
    m_folder.write("none.xml", "");
    EXPECT_EQ(report("stop.xsl", "<a/>", "<expect file='none.xml'/><expect xpath='a'/>"),
              "# stop.xsl:3:1: stop here\n");
    EXPECT_EQ(report("stop.xsl", "<a/>", "<expect xpath='a'/>", "--excerpt")
                  .rfind("# stop.xsl:3:1: stop here\n#   3 | <xsl:message terminate=", 0),
              0U);
}

TEST_F(ExpectationTest, WarningsAreToldWhereACaseFails) {
    m_folder.write("read.xsl", stylesheet("\n<xsl:template match='/'><b><xsl:copy-of "
                                          "select=\"document('none.xml')\"/></b></xsl:template>"));
    EXPECT_EQ(report("read.xsl", "<a/>", "<expect xpath='not(/b/node())'/>"), PASSED);
    const std::string failed = report("read.xsl", "<a/>", "<expect xpath='/b/node()'/>");
    EXPECT_EQ(failed.rfind("# xpath /b/node(): it is an empty node-set\n# read.xsl:2:", 0), 0U)
        << failed;
    EXPECT_NE(failed.find("warning: "), std::string::npos) << failed;
    EXPECT_EQ(std::count(failed.begin(), failed.end(), '\n'), 2) << failed;
}

TEST_F(ExpectationTest, OfManyMessagesTheFirstAreTold) {
    m_folder.write("talk.xsl", stylesheet("<xsl:template match='b'><xsl:message><xsl:value-of "
                                          "select='position()'/></xsl:message></xsl:template>"));
    std::string source = "<a>";
    for (int i = 0; i < 30; ++i) {
        source += "<b/>";
    }
    const std::string text = report("talk.xsl", source + "</a>", "<expect message='x'/>");
    EXPECT_NE(text.find("#   '20'\n#   ...\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("'21'"), std::string::npos);
}

TEST_F(ExpectationTest, AllOfThemAreChecked) {
    EXPECT_EQ(report("talk.xsl", "<a/>",
                     "<expect message='one'/><expect xpath='c'/><expect message='x'/>"
                     "<expect xpath='b'/>"),
              "# xpath c: it is an empty node-set\n"
              "# message 'x': the messages were\n#   'one'\n#   'two\\n words'\n");
}

TEST_F(ExpectationTest, AStylesheetThatDoesNotCompileIsAnErrorOfEachCase) {
    m_folder.write("wrong.xsl", stylesheet("\n<xsl:nonsense/>"));
    writeTests("a.tests.xml", "wrong.xsl",
               caseOf("one", "<a/>", "<expect error='Compile'/>") +
                   caseOf("two", "<a/>", "<expect xpath='a'/>"));
    const Outcome outcome = tool("test a.tests.xml");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.output.rfind("TAP version 13\n1..2\nok 1 - a.tests.xml: one\nnot ok 2 - "
                                   "a.tests.xml: two\n# a.tests.xml:3\n# wrong.xsl:2:1: ",
                                   0),
              0U)
        << outcome.output;
}
