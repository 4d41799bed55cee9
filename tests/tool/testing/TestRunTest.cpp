#include "TestingTest.h"
#include "support/MemoryChecker.h"

#include <tuple>

/** Cases that end their process, and what a run writes. */
class TestRunTest : public TestingTest {
protected:
    /** Three cases. What is in the second is done where the source is <bad/>. */
    void writeCases(const std::string& sheet, const std::string& second) {
        writeTests("a.tests.xml", sheet,
                   caseOf("one", "<a/>", "<expect xpath='true()'/>") + second +
                       caseOf("three", "<a/>", "<expect xpath='true()'/>"));
    }

    static std::string reportWith(const std::string& second) {
        return "TAP version 13\n1..3\nok 1 - a.tests.xml: one\n" + second +
               "ok 3 - a.tests.xml: three\n";
    }
};

/** The second case waits for a pipe, so that its process can be caught there. */
TEST_F(TestRunTest, ACrashCostsOneCase) {
    writeCases("copy.xsl", "<case name='two' source='pipe'><expect xpath='a'/></case>\n");
    const std::string run =
        "mkfifo pipe; vexa-xslt test a.tests.xml --junit report.xml & tool=$!; exec 3>pipe; "
        "kill -SEGV $(cat /proc/$tool/task/$tool/children); exec 3>&-; wait $tool; status=$?; rm "
        "pipe; exit $status";
    const Outcome outcome = shell(run);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.output, reportWith("not ok 2 - a.tests.xml: two\n# a.tests.xml:3\n"
                                         "# copy.xsl: the engine crashed (SIGSEGV)\n"));
    EXPECT_NE(
        file("report.xml")
            .find("<error message=\"copy.xsl: the engine crashed (SIGSEGV)\" type=\"error\">"),
        std::string::npos);
    writeCases("copy.xsl", "<case name='two' source='pipe'><expect error='Crash' text='SEGV'/>"
                           "</case>\n");
    EXPECT_EQ(shell(run).output, reportWith("ok 2 - a.tests.xml: two\n"));
}

TEST_F(TestRunTest, ALimitHoldsForEachCase) {
    m_folder.write("deep.xsl",
                   stylesheet("\n<xsl:template match='a'/><xsl:template match='bad' name='deep'>\n"
                              "<xsl:call-template name='deep'/></xsl:template>"));
    writeCases("deep.xsl", caseOf("two", "<bad/>", "<expect xpath='a'/>"));
    const Outcome outcome = tool("test a.tests.xml --max-depth 1000");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output,
              reportWith("not ok 2 - a.tests.xml: two\n# a.tests.xml:3\n# deep.xsl:2:26: the depth "
                         "limit of 1000 was reached (--max-depth)\n"));
    writeCases("deep.xsl", caseOf("two", "<bad/>", "<expect error='Limit' text='depth'/>"));
    EXPECT_EQ(tool("test a.tests.xml --max-depth 1000").output,
              reportWith("ok 2 - a.tests.xml: two\n"));
}

/** Nobody writes to the pipe that the second case reads. */
TEST_F(TestRunTest, ACaseThatIsLateIsEnded) {
    writeCases("copy.xsl", "<case name='two' source='pipe'><expect xpath='a'/></case>\n");
    const Outcome outcome = shell("mkfifo pipe; sleep 30 <>pipe & vexa-xslt test a.tests.xml "
                                  "--max-seconds 1; status=$?; kill %1; rm pipe; exit $status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output,
              reportWith("not ok 2 - a.tests.xml: two\n# a.tests.xml:3\n# copy.xsl: "
                         "time limit of 1 s exceeded (--max-seconds)\n"));
}

TEST_F(TestRunTest, UpdatesWhatDiffersOrIsMissing) {
    m_folder.write("same.xml", "<a>1</a>");
    m_folder.write("tree.xml", "<a >1</a >");
    m_folder.write("old.xml", "<a>0</a>");
    shell("chmod 640 old.xml; touch -d 2001-01-01 same.xml tree.xml");
    writeTests("a.tests.xml", "copy.xsl",
               caseOf("c", "<a>1</a>",
                      "<expect file='same.xml'/><expect file='tree.xml' as='xml'/>"
                      "<expect file='old.xml'/><expect file='new.xml' as='xml'/>"));
    EXPECT_EQ(tool("test a.tests.xml").status, 2) << "new.xml is not there";
    const Outcome outcome = tool("test a.tests.xml --update");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.output, "TAP version 13\n1..1\nok 1 - a.tests.xml: c\n# updated old.xml\n"
                              "# updated new.xml\n");
    EXPECT_EQ(file("old.xml"), "<a>1</a>");
    EXPECT_EQ(file("new.xml"), "<a>1</a>");
    EXPECT_EQ(file("tree.xml"), "<a >1</a >");
    EXPECT_EQ(permissions("old.xml"), 0640U);
    EXPECT_EQ(shell("find . -newermt 2002-01-01 -name same.xml").output, "");
    EXPECT_EQ(tool("test a.tests.xml --update").output,
              "TAP version 13\n1..1\nok 1 - a.tests.xml: c\n");
}

TEST_F(TestRunTest, UpdatesReplaceNothingThatTheCaseReads) {
    shell("echo '<b/>' >in.xml; ln -s in.xml link.xml");
    m_folder.write("wrap.xsl", stylesheet("<xsl:import href='copy.xsl'/><xsl:template match='b'>"
                                          "<c/></xsl:template>"));
    for (const char* name : {"link.xml", "wrap.xsl", "copy.xsl", "a.tests.xml"}) {
        m_folder.write("wrap.xsl",
                       stylesheet("<xsl:import href='copy.xsl'/><xsl:template match='/'>"
                                  "<c/></xsl:template>"));
        const std::string title = "file " + std::string(name) + " as xml: the result differs";
        writeTests("a.tests.xml", "wrap.xsl",
                   "<case name='c' source='in.xml'><expect file='" + std::string(name) +
                       "' as='xml'/><expect file='new.xml'/></case>\n");
        const std::string before = shell("cat in.xml *.xsl *.tests.xml").output;
        const Outcome outcome = tool("test a.tests.xml --update");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output,
                  "TAP version 13\n1..1\nnot ok 1 - a.tests.xml: c\n# a.tests.xml:2\n# " + title +
                      "; not updated, as the case reads it\n"
                      "# file new.xml: the result differs; not updated, as the case failed\n");
        EXPECT_EQ(shell("cat in.xml *.xsl *.tests.xml").output, before);
    }
    EXPECT_EQ(shell("test ! -e new.xml").status, 0);
    writeTests("a.tests.xml", "copy.xsl",
               "<case name='c' source='in.xml'><expect file='in.xml' as='xml'/></case>");
    EXPECT_EQ(tool("test a.tests.xml --update").status, 0) << "it is right";
}

TEST_F(TestRunTest, UpdatesKeepWhatSeveralCasesExpect) {
    shell("mkdir sub; ln -s out.xml link.xml");
    const auto write = [&](const std::string& first, const std::string& second) {
        m_folder.write("out.xml", "<a>2</a>");
        writeTests("a.tests.xml", "copy.xsl",
                   caseOf("c1", "<a>" + first + "</a>", "\n<expect file='out.xml'/>"));
        writeTests("sub/b.tests.xml", "../copy.xsl",
                   caseOf("c2", "<a>" + second + "</a>", "\n<expect file='../link.xml'/>"));
    };
    for (const auto& [first, second, result] :
         {std::tuple("1", "2", "not ok 1 - a.tests.xml: c1"),
          std::tuple("2", "1", "not ok 2 - sub/b.tests.xml: c2")}) {
        write(first, second);
        const Outcome outcome = tool("test . --update");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.output.find(result), std::string::npos) << outcome.output;
        EXPECT_NE(outcome.output.find("not updated, as several cases expect it\n"),
                  std::string::npos)
            << outcome.output;
        EXPECT_EQ(file("out.xml"), "<a>2</a>");
    }
    write("1", "1");
    shell("rm out.xml");
    EXPECT_EQ(tool("test . --update").status, 0) << "written for the first one";
    EXPECT_EQ(file("out.xml"), "<a>1</a>");
}

TEST_F(TestRunTest, UpdatesKeepTheBytesOfTheResult) {
    m_folder.write("wide.xsl", stylesheet("<xsl:output method='text' encoding='UTF-16LE'/>"));
    writeTests("a.tests.xml", "wide.xsl", caseOf("c", "<a>\xC3\xA4</a>", "<expect file='out'/>"));
    EXPECT_EQ(tool("test a.tests.xml --update").status, 0);
    EXPECT_EQ(shell("vexa-xslt transform wide.xsl <<<'<a>\xC3\xA4</a>' | cmp - out").error, "");
    EXPECT_EQ(tool("test a.tests.xml").status, 0);
}

TEST_F(TestRunTest, UpdatesInFoldersOfAnyName) {
    const Outcome outcome =
        shell("name=$(printf 'f\\344'); mkdir \"$name\"; cat >\"$name/a.tests.xml\" <<'END'\n"
              "<tests stylesheet='../copy.xsl' xmlns='http://vexa.example/xslt/test'>" +
              caseOf("c", "<a/>", "<expect file='out.xml'/>") +
              "</tests>\nEND\nvexa-xslt test . --update >/dev/null && cat \"$name/out.xml\"");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "<a/>");
    EXPECT_EQ(outcome.error, "");
}

TEST_F(TestRunTest, AFailedCaseUpdatesNothing) {
    m_folder.write("stop.xsl", stylesheet("<xsl:template match='/'><xsl:message "
                                          "terminate='yes'>x</xsl:message></xsl:template>"));
    m_folder.write("old.xml", "old");
    EXPECT_EQ(report("stop.xsl", "<a/>", "<expect file='old.xml'/>", "--update").find("updated"),
              std::string::npos);
    EXPECT_EQ(file("old.xml"), "old");
    m_folder.write("text.xsl", stylesheet("<xsl:output method='text'/>"));
    EXPECT_EQ(report("text.xsl", "<a>x</a>", "<expect file='old.xml' as='xml'/>", "--update")
                  .rfind("# file old.xml as xml: the result cannot be read as XML: line 1: ", 0),
              0U);
    EXPECT_EQ(file("old.xml"), "old");
    EXPECT_EQ(report("text.xsl", "<a>x</a>", "<expect file='new.xml' as='xml'/>", "--update")
                  .rfind("# file new.xml as xml: the result cannot be read as XML: line 1: ", 0),
              0U);
    EXPECT_EQ(report("copy.xsl", "<a/>", "<expect file='old.xml'/><expect xpath='b'/>", "--update"),
              "# xpath b: it is an empty node-set\n"
              "# file old.xml: the result differs; not updated, as the case failed\n");
    EXPECT_EQ(file("old.xml"), "old");
    EXPECT_EQ(report("copy.xsl", "<a/>", "<expect file='none/a.xml'/>", "--update"),
              "# none/a.xml: cannot create: No such file or directory\n");
}

TEST_F(TestRunTest, FurtherResultsNeedAFolder) {
    m_folder.write("further.xsl",
                   stylesheet("<xsl:template match='/'><exsl:document href='b.xml' "
                              "xsl:extension-element-prefixes='exsl'><b/></exsl:document><a/>"
                              "</xsl:template>"));
    EXPECT_NE(report("further.xsl", "<a/>", "<expect xpath='a'/>").find("--documents"),
              std::string::npos);
    EXPECT_EQ(report("further.xsl", "<a/>", "<expect xpath='a'/>", "--documents pages"), PASSED);
    EXPECT_NE(file("pages/b.xml").find("<b"), std::string::npos);
}

TEST_F(TestRunTest, ASandboxKeepsCasesToTheFilesThatAreNamed) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a leak checker reads the system's files when the process ends";
    }
    shell("mkdir tests other; echo '<b/>' >other/b.xml; mv copy.xsl other; printf '<a/>' "
          ">tests/a.xml");
    m_folder.write("other/read.xsl", stylesheet("<xsl:template match='/'><xsl:copy-of "
                                                "select='document(string(a))'/></xsl:template>"));
    writeTests("tests/a.tests.xml", "../other/read.xsl",
               caseOf("beside the stylesheet", "<a>b.xml</a>", "<expect xpath='b'/>") +
                   caseOf("elsewhere", "<a>" + m_folder.path("ok.xml") + "</a>",
                          "<expect error='Denied'/>"));
    writeTests("tests/b.tests.xml", "../other/copy.xsl",
               "<case name='c' source='a.xml'><expect file='a.xml'/></case>\n");
    const Outcome outcome = tool("test tests --sandbox");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.output, "TAP version 13\n1..3\nok 1 - tests/a.tests.xml: beside the "
                              "stylesheet\nok 2 - tests/a.tests.xml: elsewhere\nok 3 - "
                              "tests/b.tests.xml: c\n");
}

TEST_F(TestRunTest, TellsWhereTheTimeWent) {
    writeCases("copy.xsl", "");
    EXPECT_NE(tool("test a.tests.xml --timing").error.find("\ncases "), std::string::npos);
    EXPECT_EQ(tool("test a.tests.xml --timing --quiet").error, "");
}

TEST_F(TestRunTest, StandardOutputThatCannotBeWrittenIsAnError) {
    writeCases("copy.xsl", "");
    const Outcome outcome = tool("test a.tests.xml >/dev/full");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, "vexa-xslt: standard output: No space left on device\n");
}
