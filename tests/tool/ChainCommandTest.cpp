#include "ToolTest.h"

class ChainCommandTest : public ToolTest {
protected:
    ChainCommandTest() {
        m_folder.write("one.xsl", stylesheetWithRootTemplate(
                                      "<b><i><xsl:value-of select='a'/></i><i>2</i></b>"));
        m_folder.write("two.xsl", stylesheetWithRootTemplate(
                                      "<c n='{count(b/i)}'><xsl:value-of select='b/i[1]'/></c>"));
        m_folder.write("three.xsl",
                       stylesheet("<xsl:output method='text' encoding='UTF-8'/>"
                                  "<xsl:template match='/'>[<xsl:value-of select='c'/> \xCE\xB1]"
                                  "</xsl:template>"));
    }
};

TEST_F(ChainCommandTest, RunsStylesheetAfterStylesheet) {
    EXPECT_EQ(tool("chain ok.xml ok.xsl").output, "<b>x</b>");
    EXPECT_EQ(tool("chain ok.xml one.xsl two.xsl").output, "<c n=\"2\">x</c>");
    EXPECT_EQ(tool("chain ok.xml one.xsl two.xsl three.xsl").output, "[x \xCE\xB1]");
    EXPECT_EQ(tool("chain - one.xsl two.xsl <ok.xml").output, "<c n=\"2\">x</c>");
    EXPECT_EQ(tool("chain file://" + m_folder.path("ok.xml") + " one.xsl two.xsl").output,
              "<c n=\"2\">x</c>");
}

TEST_F(ChainCommandTest, EqualsTheStepsDoneThroughFiles) {
    const std::string sample = projectFile("samples/");
    m_folder.write("copy.xsl",
                   stylesheet("<xsl:template match='@*|node()'><xsl:copy><xsl:apply-templates "
                              "select='@*|node()'/></xsl:copy></xsl:template>"));
    EXPECT_EQ(
        tool("chain '" + sample + "orders.xml' copy.xsl '" + sample + "report.xsl' -o chained.html")
            .status,
        0);
    EXPECT_EQ(tool("transform copy.xsl '" + sample + "orders.xml' -o step.xml").status, 0);
    EXPECT_EQ(tool("transform '" + sample + "report.xsl' step.xml -o stepped.html").status, 0);
    EXPECT_GT(file("chained.html").size(), 10'000U);
    EXPECT_TRUE(sameBytes(file("chained.html"), file("stepped.html")));
}

TEST_F(ChainCommandTest, ReportsAFailureWithALongText) {
    m_folder.write("long.xml", "<a>(" + std::string(200'000, 'x') + "</a>");
    m_folder.write("end.xsl",
                   stylesheetWithRootTemplate("<xsl:message terminate='yes'>"
                                              "<xsl:value-of select='a'/></xsl:message>"));
    const Outcome outcome = tool("chain long.xml end.xsl");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("xxxxxxxxxx"), std::string::npos);
}

TEST_F(ChainCommandTest, WritesAFileWholeOrNotAtAll) {
    EXPECT_EQ(tool("chain ok.xml one.xsl two.xsl -o out").status, 0);
    EXPECT_EQ(file("out"), "<c n=\"2\">x</c>");

    m_folder.write("stop.xsl", stylesheetWithRootTemplate(
                                   "<c>part</c><xsl:message terminate='yes'>enough</xsl:message>"));
    EXPECT_EQ(tool("chain ok.xml one.xsl stop.xsl -o out").status, 1);
    EXPECT_EQ(file("out"), "<c n=\"2\">x</c>");
    EXPECT_EQ(tool("chain ok.xml stop.xsl one.xsl -o new").status, 1);
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl one.xsl out stop.xsl three.xsl two.xsl");
    expectFailure(tool("chain ok.xml one.xsl -o /dev/full"), 1, "/dev/full: ");
    expectFailure(tool("chain ok.xml one.xsl >/dev/full"), 1, "standard output: ");
}

TEST_F(ChainCommandTest, PassesParametersToEveryStylesheet) {
    m_folder.write("p.xsl",
                   stylesheet("<xsl:output omit-xml-declaration='yes'/>"
                              "<xsl:param name='p'/><xsl:template match='/'><a>"
                              "<xsl:value-of select='concat(a, $p)'/></a></xsl:template>"));
    EXPECT_EQ(tool("chain ok.xml p.xsl p.xsl p.xsl -p p=y").output, "<a>xyyy</a>");
}

/** The parameters are those of the source, whatever a stylesheet has made of it. */
TEST_F(ChainCommandTest, EvaluatesExpressionsOverTheSource) {
    m_folder.write("p.xsl",
                   stylesheet("<xsl:output omit-xml-declaration='yes'/>"
                              "<xsl:param name='p'/><xsl:template match='/'><c>"
                              "<xsl:value-of select='concat(name(*), $p)'/></c></xsl:template>"));
    EXPECT_EQ(tool("chain ok.xml p.xsl p.xsl --expression 'p=name(/*)'").output, "<c>ca</c>");
}

TEST_F(ChainCommandTest, NamesTheFileThatFailed) {
    m_folder.write("bad.xml", "<a>");
    m_folder.write("bad.xsl", "<x>\n</y>");
    m_folder.write("fault.xsl", stylesheetWithRootTemplate("<xsl:value-of select='a['/>"));
    m_folder.write("text.xsl", stylesheetWithRootTemplate("only text"));
    expectFailure(tool("chain bad.xml one.xsl two.xsl"), 1, "bad.xml:1:4: ");
    expectFailure(tool("chain - one.xsl <bad.xml"), 1, "-:1:4: ");
    expectFailure(tool("chain ok.xml one.xsl bad.xsl"), 1, "bad.xsl:2:");
    expectFailure(tool("chain ok.xml fault.xsl one.xsl"), 1, "fault.xsl:1:", "a[");
    expectFailure(tool("chain ok.xml one.xsl fault.xsl"), 1, "fault.xsl:1:", "a[");
    expectFailure(tool("chain none.xml one.xsl"), 1,
                  "none.xml: cannot open: No such file or directory\n");
    expectFailure(tool("chain ok.xml one.xsl none.xsl"), 1,
                  "none.xsl: cannot open: No such file or directory, did you mean 'one.xsl'?\n");
    expectFailure(tool("chain ok.xml"), 2, "", "STYLESHEET");
    expectFailure(tool("chain ok.xml text.xsl three.xsl"), 1,
                  "text.xsl: the result has no document element\n");
    EXPECT_NE(tool("chain ok.xml text.xsl").output.find("only text"), std::string::npos);
}

TEST_F(ChainCommandTest, PrintsMessages) {
    m_folder.write("m.xsl", stylesheetWithRootTemplate("<a/><xsl:message>a message</xsl:message>"));
    const auto outcome = tool("chain ok.xml m.xsl m.xsl");
    EXPECT_EQ(outcome.output, "<a/>");
    EXPECT_EQ(outcome.error, "a message\na message\n");
    EXPECT_EQ(tool("chain ok.xml m.xsl m.xsl --quiet").error, "");
}
