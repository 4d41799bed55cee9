#include "TestingTest.h"

#include <regex>

/** The reports for programs. */
class TestReportTest : public TestingTest {
protected:
    TestReportTest() {
        writeTests("a.tests.xml", "copy.xsl",
                   caseOf("plain", "<a/>", "<expect xpath='a'/>") +
                       caseOf("# TODO \\ &lt;&amp;&quot;", "<a/>", "<expect xpath='b'/>") +
                       caseOf("&#10;two lines", "<a/>", "<expect xpath='a'/>"));
        writeTests("b.tests.xml", "copy.xsl", caseOf("plain", "<a/>", "<expect xpath='a'/>"));
        writeTests("empty.tests.xml", "copy.xsl", "");
    }

    /** What an expression gives over the report. */
    std::string inReport(const std::string& expression) {
        return tool("xpath '" + expression + "' report.xml").output;
    }

    void expectValidReport() {
        const Outcome valid = shell("xmllint --noout --schema '" +
                                    projectFile("tests/tool/testing/junit.xsd") + "' report.xml");
        EXPECT_EQ(valid.status, 0) << valid.error << file("report.xml");
    }
};

TEST_F(TestReportTest, ProveReadsIt) {
    const Outcome good = shell("prove -v -e 'vexa-xslt test' b.tests.xml");
    EXPECT_EQ(good.status, 0) << good.output << good.error;
    const Outcome bad = shell("prove -e 'vexa-xslt test' a.tests.xml b.tests.xml");
    EXPECT_EQ(bad.status, 1);
    EXPECT_NE(bad.output.find("Failed test:  2\n"), std::string::npos) << bad.output;
    EXPECT_NE(bad.output.find("Files=2, Tests=4,"), std::string::npos) << bad.output;
    EXPECT_EQ(bad.output.find("Parse errors"), std::string::npos) << bad.output;
    const Outcome none = shell("prove -e 'vexa-xslt test' empty.tests.xml");
    EXPECT_EQ(none.status, 0) << none.output << none.error;
}

TEST_F(TestReportTest, NamesAreNoDirectives) {
    EXPECT_EQ(tool("test a.tests.xml").output,
              "TAP version 13\n1..3\n"
              "ok 1 - a.tests.xml: plain\n"
              "not ok 2 - a.tests.xml: \\# TODO \\\\ <&\"\n# a.tests.xml:3\n"
              "# xpath b: it is an empty node-set\n"
              "ok 3 - a.tests.xml: two lines\n");
}

/** The first result is there while the second case waits. */
TEST_F(TestReportTest, LinesComeAtOnce) {
    writeTests("c.tests.xml", "copy.xsl",
               caseOf("one", "<a/>", "<expect xpath='a'/>") +
                   "<case name='two' source='pipe'><expect xpath='a'/></case>\n");
    const Outcome outcome =
        shell("mkfifo pipe; vexa-xslt test c.tests.xml >report & tool=$!; exec 3>pipe; cat report; "
              "echo; echo '<a/>' >&3; exec 3>&-; wait $tool; cat report");
    EXPECT_EQ(outcome.output, "TAP version 13\n1..2\nok 1 - c.tests.xml: one\n\nTAP version "
                              "13\n1..2\nok 1 - c.tests.xml: one\nok 2 - c.tests.xml: two\n");
}

TEST_F(TestReportTest, JUnitIsValid) {
    m_folder.write("odd.xsl", stylesheet("<xsl:output method='text'/><xsl:template match='/'>"
                                         "<xsl:message>&lt;]]&gt;&#13;&#x85;&#xFFFD;</xsl:message>"
                                         "</xsl:template>"));
    m_folder.write("odd.txt", "\x01\xFF\xEF\xBF\xBF\x1B[31m");
    writeTests("odd.tests.xml", "odd.xsl",
               caseOf("odd", "<a/>", "<expect file='odd.txt'/><expect message='x'/>"));
    EXPECT_EQ(tool("test . --junit report.xml").status, 1);
    EXPECT_EQ(permissions("report.xml") & 0600U, 0600U);
    expectValidReport();
    EXPECT_EQ(inReport("string(/testsuites/@tests)"), "5\n");
    EXPECT_EQ(inReport("string(/testsuites/@failures)"), "2\n");
    EXPECT_EQ(inReport("count(/testsuites/testsuite)"), "4\n");
    EXPECT_EQ(inReport("string(//testsuite[@name = \"a.tests.xml\"]/@failures)"), "1\n");
    EXPECT_EQ(inReport("string(//testsuite[@name = \"empty.tests.xml\"]/@tests)"), "0\n");
    EXPECT_EQ(inReport("string(//testsuite[@name = \"a.tests.xml\"]/testcase[failure]/@name)"),
              "# TODO \\ <&\"\n");
    EXPECT_EQ(inReport("string(//testsuite[@name = \"a.tests.xml\"]//failure/@message)"),
              "xpath b: it is an empty node-set\n");
    EXPECT_EQ(inReport("//testcase[@name = \"odd\"]/@classname"), "odd.tests.xml\n");
}

TEST_F(TestReportTest, JUnitAppearsAtomically) {
    m_folder.write("report.xml", "old");
    EXPECT_EQ(tool("test a.tests.xml --junit report.xml >/dev/full").status, 1);
    EXPECT_EQ(file("report.xml"), "old");
    const Outcome outcome = tool("test b.tests.xml --junit none/report.xml");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error,
              "vexa-xslt: none/report.xml: cannot create: No such file or directory\n");
    EXPECT_EQ(tool("test b.tests.xml --junit none/report.xml --coverage b.info").status, 1);
    EXPECT_NE(file("b.info").find("end_of_record\n"), std::string::npos)
        << "one report does not take the other with it";
}

TEST_F(TestReportTest, ALimitInAnExpressionIsAnError) {
    std::string items;
    for (int i = 0; i < 3000; ++i) {
        items += "<n/>";
    }
    writeTests("a.tests.xml", "copy.xsl",
               caseOf("slow", "<a>" + items + "</a>",
                      "<expect xpath='count(//n[count(//n[count(//n) = 1]) = 2]) = 3'/>"));
    EXPECT_EQ(tool("test a.tests.xml --max-seconds 1 --junit report.xml").status, 1);
    EXPECT_NE(file("report.xml").find("</error>"), std::string::npos) << file("report.xml");
}

TEST_F(TestReportTest, JUnitHasWrongTestFiles) {
    shell("echo '<tests/>' >'wrong<.tests.xml'");
    EXPECT_EQ(tool("test . none --junit report.xml").status, 2);
    expectValidReport();
    EXPECT_EQ(inReport("string(/*/@errors)"), "2\n");
    EXPECT_EQ(inReport("string(//testsuite[@name = \"wrong<.tests.xml\"]//error/@message)"),
              "wrong<.tests.xml:1: expected <tests xmlns=\"http://vexa.example/xslt/test\">, got "
              "<tests>\n");
    EXPECT_EQ(inReport("string(//testsuite[@name = \"none\"]//error/@message)"),
              "none: No such file or directory\n");
}

TEST_F(TestReportTest, CoverageKnowsAFileByAllOfItsNames) {
    shell("mkdir sub; ln -s copy.xsl link.xsl");
    const std::string one = caseOf("c", "<a/>", "<expect xpath='a'/>");
    writeTests("a.tests.xml", "copy.xsl", one);
    writeTests("b.tests.xml", "link.xsl", one);
    writeTests("sub/c.tests.xml", "../copy.xsl", one);
    EXPECT_EQ(tool("test . --coverage lines.info").status, 0);
    const std::string lines = file("lines.info");
    EXPECT_EQ(lines.rfind("TN:\nSF:" + m_folder.path("copy.xsl") + "\n", 0), 0U) << lines;
    EXPECT_EQ(lines.find("SF:"), lines.rfind("SF:")) << lines;
    EXPECT_NE(lines.find("FNDA:3,match=\"/\"\n"), std::string::npos) << lines;
}

TEST_F(TestReportTest, NothingIsReplacedThatIsReadOrWritten) {
    writeTests("c.tests.xml", "copy.xsl",
               "<case name='c' source='ok.xml'><expect file='want.xml' as='xml'/></case>");
    m_folder.write("want.xml", "<a/>");
    const std::string before = shell("cat *").output;
    for (const char* place : {"-", "/dev/stdout"}) {
        expectFailure(tool("test b.tests.xml --junit " + std::string(place)), 2,
                      std::string(place) + ": it is the place of another output");
    }
    expectFailure(tool("test b.tests.xml --junit report --coverage ./report"), 2,
                  "./report: it is the place of another output");
    shell("echo '<tests/>' >wrong.tests.xml");
    for (const char* input : {"b.tests.xml", "copy.xsl", "ok.xml", "want.xml", "wrong.tests.xml"}) {
        const Outcome outcome = tool("test . --coverage " + std::string(input));
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_NE(
            outcome.error.find("vexa-xslt: " + std::string(input) + ": the report would replace "),
            std::string::npos)
            << outcome.error;
    }
    shell("rm wrong.tests.xml");
    EXPECT_EQ(shell("cat *").output, before);
}

/** Of two files, in three processes; a run for bytes and one for the tree count once. */
TEST_F(TestReportTest, CoverageIsTheSumOfAllCases) {
    m_folder.write("part.xsl", stylesheet("\n<xsl:template match='b'>\n<xsl:value-of "
                                          "select='.'/></xsl:template>"));
    m_folder.write("lines.xsl",
                   stylesheet("<xsl:include href='part.xsl'/>\n<xsl:template match='a'>\n"
                              "<xsl:apply-templates/>\n<xsl:if test='@never'>\n<x/></xsl:if>\n"
                              "</xsl:template>\n<xsl:template match='stop'>\n<xsl:message "
                              "terminate='yes'>x</xsl:message></xsl:template>"));
    m_folder.write("out.txt", "");
    writeTests("a.tests.xml", "lines.xsl",
               caseOf("one", "<a/>", "<expect xpath='false()'/><expect file='out.txt'/>") +
                   caseOf("two", "<a><b/><b/></a>", "<expect xpath='true()'/>") +
                   caseOf("three", "<stop/>", "<expect error='Terminated'/>"));
    writeTests("b.tests.xml", "lines.xsl", caseOf("one", "<a><b/></a>", "<expect message='x'/>"));
    EXPECT_EQ(tool("test a.tests.xml b.tests.xml --coverage lines.info").status, 1);
    const std::string lines = file("lines.info");
    const std::string begin = "SF:" + m_folder.path("lines.xsl") + "\n";
    const std::string module =
        lines.substr(lines.find(begin), lines.find("end_of_record") - lines.find(begin));
    EXPECT_EQ(module.substr(module.find("\nDA:") + 1),
              "DA:2,3\nDA:3,3\nDA:4,3\nDA:5,0\nDA:7,1\nDA:8,1\nLF:6\nLH:5\n")
        << lines;
    const std::string part = lines.substr(lines.find("SF:" + m_folder.path("part.xsl")));
    EXPECT_EQ(part.substr(part.find("\nDA:") + 1), "DA:2,3\nDA:3,3\nLF:2\nLH:2\nend_of_record\n")
        << lines;
    const Outcome summary = shell("lcov --summary lines.info");
    EXPECT_EQ(summary.status, 0) << summary.error;
    EXPECT_NE(summary.output.find("87.5% (7 of 8 lines)"), std::string::npos) << summary.output;
}
