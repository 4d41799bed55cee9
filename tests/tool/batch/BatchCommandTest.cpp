#include "BatchTest.h"

#include <algorithm>

class BatchCommandTest : public BatchTest {
protected:
    BatchCommandTest() {
        m_folder.write("message.xsl",
                       stylesheetWithRootTemplate(
                           "<xsl:message>note <xsl:value-of select='a'/></xsl:message><b/>"));
        m_folder.write("stop.xsl",
                       stylesheetWithRootTemplate("<b><xsl:if test='a = 2'><xsl:message "
                                                  "terminate='yes'>enough</xsl:message></xsl:if>"
                                                  "<xsl:value-of select='a'/></b>"));
    }

    /** Expects one line about wrong usage, and that nothing was done. */
    void expectRefused(const std::string& arguments, const std::string& begin,
                       const std::string& part = "") {
        SCOPED_TRACE(arguments);
        expectFailure(tool("batch " + arguments), 2, begin, part);
        EXPECT_EQ(m_folder.list().find("out"), std::string::npos);
    }
};

TEST_F(BatchCommandTest, WritesAResultForEachSource) {
    writeSources(3);
    const Outcome outcome =
        tool("batch ok.xsl sources/s1.xml sources/s2.xml sources/s3.xml -d out");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "vexa-xslt: 3 of 3 sources done\n");
    EXPECT_EQ(names(), "s1.out s2.out s3.out\n");
    EXPECT_EQ(rightResults(), 3);
    EXPECT_EQ(tool("batch ok.xsl sources/s1.xml -d out").error, "vexa-xslt: 1 of 1 source done\n");
}

TEST_F(BatchCommandTest, NamesTheResultsByTheirSources) {
    for (const char* name : {"plain", "two.parts.xml", ".hidden", "with blank.xml", "100%25.xml",
                             "\xCE\xB1\xCE\xB2.xml", "-dash.xml", "semi;colon?.xml"}) {
        m_folder.write("sources/" + std::string(name), "<a>x</a>");
    }
    EXPECT_EQ(tool("batch ok.xsl sources/* sources/.hidden -d out").status, 0);
    EXPECT_EQ(names(), "-dash.out .hidden.out 100%25.out plain.out semi;colon?.out two.parts.out "
                       "with blank.out \xCE\xB1\xCE\xB2.out\n");
    m_folder.write("a b%.xml", "<a>x</a>");
    EXPECT_EQ(
        tool("batch ok.xsl 'file://" + m_folder.path("a%20b%25.xml") + "' -d uris --suffix .html")
            .status,
        0);
    EXPECT_EQ(names("uris"), "a b%.html\n");
    EXPECT_EQ(tool("batch ok.xsl ok.xml -d plain --suffix ''").status, 0);
    EXPECT_EQ(names("plain"), "ok\n");
}

/** Brackets stand for a list, and ++ for an end, to the parser of the command line. */
TEST_F(BatchCommandTest, TakesBracketsAndPlusSignsLiterally) {
    for (const char* name : {"a", "b", "[a]", "[a,b]", "++"}) {
        m_folder.write(name, "<a>" + std::string(name) + "</a>");
    }
    EXPECT_EQ(tool("batch ok.xsl '[a]' '[a,b]' ++ -d out").error,
              "vexa-xslt: 3 of 3 sources done\n");
    EXPECT_EQ(names(), "++.out [a,b].out [a].out\n");
    EXPECT_EQ(file("out/[a].out"), "<b>[a]</b>");
    EXPECT_EQ(tool("transform ok.xsl ++").output, "<b>++</b>");
    shell("cp ok.xsl '[ok.xsl]'; sed -i 's/b>/c>/g' '[ok.xsl]'");
    EXPECT_EQ(tool("chain ok.xml '[ok.xsl]'").output, "<c>x</c>");
}

TEST_F(BatchCommandTest, ShowsTheLineOfAnError) {
    m_folder.write("bad.xsl", stylesheet("\n<xsl:foo/>"));
    writeSources(1);
    const std::string excerpt = "\n  2 | <xsl:foo/></xsl:stylesheet>\n    | ^\n";
    const std::string shown = tool("batch bad.xsl sources/* -d out --excerpt").error;
    EXPECT_EQ(shown.rfind("vexa-xslt: bad.xsl:2:1: ", 0), 0U) << shown;
    EXPECT_EQ(shown.substr(shown.find('\n')), excerpt);
    // A worker has another standard error than the program.
    m_folder.write("command", "vexa-xslt batch bad.xsl sources/* -d out\n"
                              "vexa-xslt transform bad.xsl ok.xml --isolate\n");
    const std::string terminal =
        shell("NO_COLOR=1 TERM=xterm script -qec 'bash command' /dev/null").output;
    const auto first = terminal.find("  2 | <xsl:foo/>");
    EXPECT_NE(first, std::string::npos) << terminal;
    EXPECT_NE(terminal.find("  2 | <xsl:foo/>", first + 1), std::string::npos) << terminal;
}

TEST_F(BatchCommandTest, GivesTheSameBytesAsTransform) {
    const std::string report = projectFile("samples/report.xsl");
    const std::string orders = projectFile("samples/orders.xml");
    const std::string arguments = " '" + report + "' '" + orders + "' -p title=May";
    EXPECT_EQ(tool("transform" + arguments + " -o one.html").status, 0);
    for (const char* options : {"", " --timing --quiet", " --max-seconds 60 --sandbox"}) {
        EXPECT_EQ(tool("batch" + arguments + " -d out" + options).status, 0);
        EXPECT_GT(file("out/orders.out").size(), 10'000U);
        EXPECT_TRUE(sameBytes(file("out/orders.out"), file("one.html"))) << options;
    }
}

TEST_F(BatchCommandTest, GivesEveryNumberOfJobsTheSameResults) {
    writeSources(60);
    for (const char* options : {"-j 1", "-j2", "-j 256", "-j 8 --max-seconds 60", ""}) {
        shell("rm -rf out");
        const Outcome outcome = tool("batch ok.xsl sources/* -d out " + std::string(options));
        EXPECT_EQ(outcome.error, "vexa-xslt: 60 of 60 sources done\n") << options;
        EXPECT_EQ(rightResults(), 60) << options;
    }
}

TEST_F(BatchCommandTest, GoesOnAfterABadSource) {
    writeSources(4);
    m_folder.write("sources/s2.xml", "<a>");
    shell("mkdir out; echo earlier >out/s2.out; rm sources/s3.xml");
    for (const char* options : {"", "--max-seconds 60"}) {
        SCOPED_TRACE(options);
        const Outcome outcome =
            tool("batch ok.xsl sources/s{1,2,3,4}.xml -d out -j 1 " + std::string(options));
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 3) << outcome.error;
        EXPECT_EQ(outcome.error.rfind("vexa-xslt: sources/s2.xml:1:4: ", 0), 0U) << outcome.error;
        EXPECT_NE(outcome.error.find("\nvexa-xslt: sources/s3.xml: cannot open: No such file or "
                                     "directory\n"),
                  std::string::npos);
        EXPECT_EQ(lastLine(outcome.error), "vexa-xslt: 2 of 4 sources done, 2 failed");
        EXPECT_EQ(names(), "s1.out s2.out s4.out\n");
        EXPECT_EQ(file("out/s2.out"), "earlier\n");
        EXPECT_EQ(rightResults(), 2);
        shell("rm out/s[14].out");
    }
}

TEST_F(BatchCommandTest, NamesTheSourceWhereTheStylesheetFails) {
    writeSources(3);
    const Outcome outcome = tool("batch stop.xsl sources/* -d out --quiet");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error.rfind("vexa-xslt: sources/s2.xml: stop.xsl:1:", 0), 0U)
        << outcome.error;
    EXPECT_NE(outcome.error.find(": enough\n"), std::string::npos) << outcome.error;
    EXPECT_EQ(lastLine(outcome.error), "vexa-xslt: 2 of 3 sources done, 1 failed");
    EXPECT_EQ(rightResults(), 2);
    m_folder.write("bad.xsl", "<xsl:stylesheet");
    expectFailure(tool("batch bad.xsl sources/* -d bad"), 1, "bad.xsl:1:16: ");
    EXPECT_EQ(names("bad"), "\n");
}

TEST_F(BatchCommandTest, NamesTheSourceThatAMessageIsAbout) {
    writeSources(2);
    EXPECT_EQ(tool("batch message.xsl sources/* -d out -j 1").error,
              "sources/s1.xml: note 1\nsources/s2.xml: note 2\nvexa-xslt: 2 of 2 sources done\n");
    EXPECT_EQ(tool("batch message.xsl sources/* -d out --quiet").error, "");
    m_folder.write("lines.xsl", stylesheetWithRootTemplate(
                                    "<xsl:message>one\n\ntwo</xsl:message><b><xsl:value-of "
                                    "select=\"document('none')\"/></b>"));
    const Outcome outcome = tool("batch lines.xsl sources/s1.xml -d out");
    EXPECT_EQ(outcome.error.rfind("sources/s1.xml: one\nsources/s1.xml: \nsources/s1.xml: two\n"
                                  "sources/s1.xml: lines.xsl:",
                                  0),
              0U)
        << outcome.error;
    EXPECT_NE(outcome.error.find(": warning: "), std::string::npos) << outcome.error;
}

TEST_F(BatchCommandTest, PassesOnMessagesOfAnyLength) {
    m_folder.write("long.xml", "<a>" + std::string(1'000'000, 'x') + "</a>");
    const Outcome outcome = tool("batch message.xsl long.xml -d out");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, "long.xml: note " + std::string(1'000'000, 'x') +
                                 "\nvexa-xslt: 1 of 1 source done\n");
}

TEST_F(BatchCommandTest, PassesParameters) {
    m_folder.write(
        "p.xsl",
        stylesheet("<xsl:output omit-xml-declaration='yes'/><xsl:param name='p'/>"
                   "<xsl:template match='/'><b><xsl:value-of select='$p'/></b></xsl:template>"));
    writeSources(50);
    EXPECT_EQ(tool("batch p.xsl sources/* -d out -p p=y -j 1").status, 0);
    EXPECT_EQ(shell("for f in out/*; do cat $f; echo; done | sort | uniq -c | tr -d ' '").output,
              "50<b>y</b>\n");
    EXPECT_EQ(tool("batch p.xsl sources/* -d out --expression p=/a*2 -j 2").status, 0);
    EXPECT_EQ(shell("for i in $(seq 50); do grep -q \"<b>$((2 * i))</b>\" out/s$i.out || echo $i; "
                    "done")
                  .output,
              "");
}

TEST_F(BatchCommandTest, TakesNamesFromAList) {
    writeSources(4);
    m_folder.write("list", "sources/s1.xml\n\nsources/s2.xml");
    EXPECT_EQ(tool("batch ok.xsl --files-from list -d out").status, 0);
    EXPECT_EQ(names(), "s1.out s2.out\n");
    m_folder.write("sources/two\nlines.xml", "<a>x</a>");
    EXPECT_EQ(shell("find sources -name '*.xml' -print0 | "
                    "vexa-xslt batch ok.xsl ok.xml -d found --files-from - -0")
                  .error,
              "vexa-xslt: 6 of 6 sources done\n");
    EXPECT_EQ(names("found"), "ok.out s1.out s2.out s3.out s4.out two lines.out\n");
    EXPECT_EQ(tool("batch ok.xsl --files-from /dev/null -d none").error,
              "vexa-xslt: 0 of 0 sources done\n");
    expectFailure(tool("batch ok.xsl --files-from lost -d out"), 1,
                  "lost: No such file or directory");
    expectFailure(tool("batch ok.xsl --files-from sources -d out"), 1,
                  "sources: Input/output error");
    expectFailure(tool("batch ok.xsl --files-from /proc/self/mem -d out"), 1,
                  "/proc/self/mem: Input/output error\n");
}

TEST_F(BatchCommandTest, RefusesTwoSourcesForOneResult) {
    writeSources(2);
    shell("mkdir other; cp sources/s1.xml other");
    expectRefused("ok.xsl sources/s1.xml sources/s2.xml other/s1.xml -d out", "other/s1.xml: ",
                  "its result would go to out/s1.out, as that of sources/s1.xml (see ");
    expectRefused("ok.xsl sources/s1.xml sources/s1.xml -d out", "sources/s1.xml: ");
    shell("mkdir linked; ln -s s1.out linked/s2.out");
    expectFailure(tool("batch ok.xsl sources/s1.xml sources/s2.xml -d linked"), 2,
                  "sources/s2.xml: ", "as that of sources/s1.xml");
    EXPECT_EQ(names("linked"), "s2.out\n");
}

TEST_F(BatchCommandTest, ALinkThatLeadsNowhereCostsItsSourceOnly) {
    writeSources(2);
    shell("mkdir out; ln -s s1.out out/s1.out");
    EXPECT_EQ(tool("batch ok.xsl sources/* -d out").error,
              "vexa-xslt: sources/s1.xml: out/s1.out: cannot open: Too many levels of "
              "symbolic links\n"
              "vexa-xslt: 1 of 2 sources done, 1 failed\n");
    EXPECT_EQ(file("out/s2.out"), "<b>2</b>");
}

TEST_F(BatchCommandTest, RefusesToReplaceWhatItReads) {
    writeSources(2);
    expectRefused("ok.xsl sources/s1.xml sources/s2.xml -d sources --suffix .xml",
                  "sources/s1.xml: the result of sources/s1.xml would replace it");
    m_folder.write("ok", "<a/>");
    expectFailure(tool("batch ok.xsl ok -d . --suffix .xsl"), 2,
                  "ok.xsl: the result of ok would replace it");
    EXPECT_EQ(file("sources/s1.xml"), "<a>1</a>\n");
}

TEST_F(BatchCommandTest, RefusesWrongUsageBeforeAnyWork) {
    expectRefused("ok.xsl ok.xml", "--directory: DIRECTORY is missing");
    expectRefused("ok.xsl -d out", "SOURCE: a source is missing, or --files-from");
    expectRefused("ok.xsl - -d out", "-: batch cannot read a source from standard input");
    expectRefused("ok.xsl http://host/ -d out", "http://host/: no file name");
    expectRefused("ok.xsl ok.xml -d out -0", "-0: ");
    expectRefused("ok.xsl ok.xml -d ''", "-d: empty folder name");
    expectRefused("ok.xsl ok.xml -d out --suffix /x", "--suffix: ");
    expectRefused("<(cat ok.xsl) ok.xml -d out", "/dev/fd/",
                  ": each worker reads it: it must be a regular file (see ");
    expectRefused("ok.xsl ok.xml -d out -j 0",
                  "--jobs: expected an integer from 1 to 256, got '0'");
    expectRefused("ok.xsl ok.xml -d out -j 257", "--jobs: ");
    expectRefused("ok.xsl ok.xml -d out -p x", "-p x: ");
    expectRefused("ok.xsl ok.xml -d out --number x=y", "--number x=y: ");
    expectRefused("- ok.xml -d out", "-: each worker reads it");
    const Outcome list = shell("printf 'a\\0b\\0' | vexa-xslt batch ok.xsl --files-from - -d out");
    expectFailure(list, 2, "-: the names are separated by NUL: give -0");
    expectFailure(tool("batch ok.xsl '' -d out"), 2, "'': empty file name");
    EXPECT_EQ(m_folder.list().find("out"), std::string::npos);
    expectFailure(tool("batch lost.xsl ok.xml -d out"), 1,
                  "lost.xsl: cannot open: No such file or directory");
}

TEST_F(BatchCommandTest, ReportsAFolderThatCannotBeWrittenTo) {
    expectFailure(tool("batch ok.xsl ok.xml -d ok.xsl"), 1, "ok.xsl: Not a directory\n");
    expectFailure(tool("batch ok.xsl ok.xml -d none/out"), 1,
                  "none/out: No such file or directory\n");
    const Outcome closed = shell("chmod 755 .; mkdir -m 555 closed; setpriv --reuid 65534 --regid "
                                 "65534 --clear-groups vexa-xslt batch ok.xsl ok.xml -d closed");
    expectFailure(closed, 1, "closed: Permission denied\n");
    shell("mkdir full; ln -s /dev/full full/ok.out");
    const Outcome full = tool("batch ok.xsl ok.xml -d full");
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.error.rfind("vexa-xslt: ok.xml: full/ok.out: cannot write: ", 0), 0U)
        << full.error;
}

/** The third source comes through a pipe, so that the worker waits for it. */
TEST_F(BatchCommandTest, ReportsAFolderThatGoesAway) {
    writeSources(4);
    const Outcome outcome =
        shell("rm sources/s3.xml; mkfifo sources/s3.xml; "
              "vexa-xslt batch ok.xsl sources/* -d out -j 1 & batch=$!; exec 3>sources/s3.xml; "
              "ls out; rm -r out; echo '<a/>' >&3; exec 3>&-; wait $batch");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "s1.out\ns2.out\n");
    const std::string cause = ".out: cannot create: No such file or directory\n";
    EXPECT_EQ(outcome.error, "vexa-xslt: sources/s3.xml: out/s3" + cause +
                                 "vexa-xslt: sources/s4.xml: out/s4" + cause +
                                 "vexa-xslt: 2 of 4 sources done, 2 failed\n");
}

TEST_F(BatchCommandTest, ReportsNamesThatAreTooLong) {
    const std::string name(252, 'x');
    m_folder.write(name, "<a/>");
    const Outcome outcome = tool("batch ok.xsl " + name + " -d out");
    EXPECT_EQ(outcome.error, "vexa-xslt: " + name + ": out/" + name +
                                 ".out: cannot open: File name too long\n"
                                 "vexa-xslt: 0 of 1 source done, 1 failed\n");
    expectFailure(tool("batch ok.xsl ok.xml -d " + name + name), 1,
                  name + name + ": File name too long\n");
}

TEST_F(BatchCommandTest, ReportsWhereTheTimeWent) {
    const std::string error = tool("batch ok.xsl ok.xml -d out --timing").error;
    EXPECT_EQ(error.rfind("transforms ", 0), 0U) << error;
    EXPECT_NE(error.find("\ntotal "), std::string::npos);
    EXPECT_EQ(lastLine(error), "vexa-xslt: 1 of 1 source done");
    EXPECT_EQ(tool("batch ok.xsl ok.xml -d out --timing --quiet").error, "");
}

TEST_F(BatchCommandTest, KeepsStrangeNamesOutOfTheTerminal) {
    m_folder.write("sources/a\033[31m\n.xml", "<a>");
    m_folder.write("sources/b\033[31m\n.xml", "<a>1</a>");
    const Outcome outcome = tool("batch message.xsl sources/* -d out -j 1");
    EXPECT_EQ(outcome.error.find('\033'), std::string::npos) << outcome.error;
    EXPECT_EQ(outcome.error.rfind("vexa-xslt: sources/a?[31m .xml:1:4: ", 0), 0U) << outcome.error;
    EXPECT_NE(outcome.error.find("\nsources/b?[31m .xml: note 1\n"), std::string::npos)
        << outcome.error;
}

TEST_F(BatchCommandTest, LeavesStandardInputAlone) {
    EXPECT_EQ(shell("echo text | (vexa-xslt batch ok.xsl ok.xml -d out --quiet; cat)").output,
              "text\n");
}

TEST_F(BatchCommandTest, FitsXargs) {
    writeSources(30);
    m_folder.write("sources/s 31.xml", "<a> 31</a>");
    const Outcome outcome = shell("find sources -name '*.xml' -print0 | "
                                  "xargs -0 -n 10 vexa-xslt batch ok.xsl -d out");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, "vexa-xslt: 10 of 10 sources done\nvexa-xslt: 10 of 10 sources done\n"
                             "vexa-xslt: 10 of 10 sources done\nvexa-xslt: 1 of 1 source done\n");
    EXPECT_EQ(rightResults(), 30);
    EXPECT_EQ(file("out/s 31.out"), "<b> 31</b>");
}

TEST_F(BatchCommandTest, FitsParallelWhichSpreadsOverHosts) {
    writeSources(40);
    // Stands in for ssh: every host is this one.
    m_folder.write("ssh-here", "#!/bin/sh\necho $1 >>hosts\nshift\n[ \"$1\" = -- ] && shift\n"
                               "exec sh -c \"$*\"\n");
    const Outcome outcome =
        shell("chmod +x ssh-here; export HOME=$PWD SHELL=/bin/sh; "
              "find sources -name '*.xml' -print0 | parallel -0 -n 10 -j 1 -S alpha,beta "
              "--ssh \"$PWD/ssh-here\" --workdir \"$PWD\" "
              "\"$(command -v vexa-xslt)\" batch ok.xsl -d out --quiet");
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(rightResults(), 40);
    EXPECT_EQ(shell("sort -u hosts").output, "alpha\nbeta\n");
}
