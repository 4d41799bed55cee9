#include "ToolTest.h"

#include "support/BareEngine.h"
#include "support/EngineTest.h"

#include <sys/stat.h>
#include <unistd.h>

class TransformCommandTest : public ToolTest {
protected:
    void writeSheet(const std::string& content) {
        m_folder.write("sheet.xsl", stylesheetWithRootTemplate(content));
    }

    std::string file(const std::string& name) const { return readFile(m_folder.path(name)); }

    unsigned permissions(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(stat(m_folder.path(name).c_str(), &status), 0);
        return status.st_mode & 07777;
    }
};

TEST_F(TransformCommandTest, WritesTheResultAndNothingElseToStandardOutput) {
    for (const char* arguments :
         {"transform ok.xsl ok.xml", "transform ok.xsl ok.xml -o -", "transform ok.xsl <ok.xml",
          "transform ok.xsl - <ok.xml", "transform ok.xsl ok.xml --xerces-dom",
          "transform -o - -- ok.xsl ok.xml"}) {
        const auto outcome = tool(arguments);
        EXPECT_EQ(outcome.status, 0) << arguments;
        EXPECT_EQ(outcome.output, "<b>x</b>") << arguments;
        EXPECT_EQ(outcome.error, "") << arguments;
    }
}

TEST_F(TransformCommandTest, WritesTheResultToAFile) {
    for (const char* arguments :
         {"transform ok.xsl ok.xml -o out", "transform -o out ok.xsl <ok.xml",
          "transform ok.xsl ok.xml --output=out"}) {
        const auto outcome = tool(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(file("out"), "<b>x</b>");
        EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl out");
        shell("rm out");
    }
}

TEST_F(TransformCommandTest, WritesTheSameBytesAsTheBareEngine) {
    const std::string source = projectFile("samples/orders.xml");
    const std::string sheet = projectFile("samples/report.xsl");
    EXPECT_EQ(tool("transform '" + sheet + "' '" + source + "' -o out.html").status, 0);
    const auto streamed = tool("transform '" + sheet + "' '" + source + "'");

    TQXslTransformer_Initialize(nullptr);
    const std::string expected = bareEngineTransform(source, sheet);
    TQXslTransformer_Terminate(nullptr);
    EXPECT_TRUE(sameBytes(file("out.html"), expected));
    EXPECT_TRUE(sameBytes(streamed.output, expected));
}

TEST_F(TransformCommandTest, LeavesTheNulsOfAUtf16ResultInPlace) {
    m_folder.write("utf16.xsl", stylesheet("<xsl:output method='text' encoding='UTF-16LE'/>"
                                           "<xsl:template match='/'>ab</xsl:template>"));
    const auto outcome = tool("transform utf16.xsl ok.xml");
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output.substr(outcome.output.size() - 4), std::string("a\0b\0", 4));
    tool("transform utf16.xsl ok.xml -o out");
    EXPECT_EQ(file("out"), outcome.output);
}

TEST_F(TransformCommandTest, PassesParameters) {
    m_folder.write("p.xsl",
                   stylesheet("<xsl:output method='text'/>"
                              "<xsl:param name='p'/><xsl:param name='q' select='\"none\"'/>"
                              "<xsl:template match='/'><xsl:value-of "
                              "select='concat($p,\"|\",$q)'/></xsl:template>"));
    EXPECT_EQ(tool("transform p.xsl ok.xml -p p=1+1").output, "1+1|none");
    EXPECT_EQ(tool("transform p.xsl ok.xml -p p=a=b --param q=").output, "a=b|");
    EXPECT_EQ(tool("transform -p p='\xCE\xB1 \"b' -p q=-x p.xsl ok.xml").output, "\xCE\xB1 \"b|-x");
    EXPECT_EQ(tool("transform p.xsl ok.xml -p p=1 -p p=2").output, "2|none");
}

TEST_F(TransformCommandTest, RefusesParametersThatCannotBe) {
    expectFailure(tool("transform ok.xsl ok.xml -p novalue"), 2, "-p novalue: ", "NAME=VALUE");
    expectFailure(tool("transform ok.xsl ok.xml -p =x"), 2, "-p =x: ", "NAME=VALUE");
    expectFailure(tool("transform ok.xsl ok.xml -p \"p=it's\""), 2, "-p p=it's: ", "apostrophe");
    expectFailure(tool("transform ok.xsl ok.xml -p p=$'\\xFF'"), 2, "", "not valid UTF-8");
    for (const char* name : {"1", "a b", "q:x", "{u}x", ""}) {
        expectFailure(tool("transform ok.xsl ok.xml -p '" + std::string(name) + "=x'"), 2,
                      "-p " + std::string(name) + "=x: a parameter");
    }
}

TEST_F(TransformCommandTest, TellsOfWrongUsageInOneLine) {
    expectFailure(tool(""), 2, "", "vexa-xslt --help");
    expectFailure(tool("nonsense"), 2, "nonsense: ", "vexa-xslt --help");
    expectFailure(tool("--nonsense"), 2, "--nonsense: ", "vexa-xslt --help");
    expectFailure(tool("transform"), 2, "STYLESHEET", "vexa-xslt transform --help");
    expectFailure(tool("transform ok.xsl ok.xml more"), 2, "", "more");
    expectFailure(tool("transform ok.xsl --nonsense"), 2, "", "--nonsense");
    expectFailure(tool("transform ok.xsl ok.xml -o"), 2, "", "-o");
}

TEST_F(TransformCommandTest, HelpsOnStandardOutput) {
    for (const char* arguments : {"--help", "-h", "transform --help"}) {
        const auto outcome = tool(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_NE(outcome.output.find("Examples:\n  vexa-xslt transform"), std::string::npos);
        EXPECT_EQ(outcome.error, "");
    }
}

TEST_F(TransformCommandTest, TellsItsVersion) {
    const auto outcome = tool("--version");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output.rfind("vexa-xslt (VEXA XSL Transformer) ", 0), 0U) << outcome.output;
    EXPECT_NE(outcome.output.find(PROJECT_VERSION_TEXT), std::string::npos);
}

TEST_F(TransformCommandTest, TellsOfFilesThatCannotBeRead) {
    m_folder.write("empty", "");
    shell("mkdir folder");
    expectFailure(tool("transform ok.xsl none.xml"), 1, "none.xml: No such file or directory\n");
    expectFailure(tool("transform none.xsl ok.xml"), 1, "none.xsl: No such file or directory\n");
    expectFailure(tool("transform ok.xsl folder"), 1, "folder: Is a directory\n");
    expectFailure(tool("transform folder ok.xml"), 1, "folder: Is a directory\n");
    expectFailure(tool("transform ok.xsl empty"), 1, "empty: ", "invalid document structure");
    expectFailure(tool("transform empty ok.xml"), 1, "empty: ", "invalid document structure");
    expectFailure(tool("transform ok.xsl ''"), 1, "'': an empty name is no file");
    expectFailure(tool("transform '' ok.xml"), 1, "'': an empty name is no file");
    expectFailure(tool("transform ok.xsl ok.xml -o ''"), 2, "-o: ", "empty");
    expectFailure(shell("mkdir gone; cd gone; rmdir ../gone; vexa-xslt transform ../ok.xsl ok.xml"),
                  1, "../ok.xsl: No such file or directory");
    expectFailure(tool("transform ok.xsl file:///none/none.xml"), 1, "file:///none/none.xml: ");
}

TEST_F(TransformCommandTest, TellsOfAFileThatOthersMayNotRead) {
    // root may read everything, unless it gives that right up.
    const auto outcome =
        shell("cp ok.xml secret.xml; chmod 000 secret.xml; "
              "[ $(id -u) = 0 ] && drop='setpriv --bounding-set=-dac_override,-dac_read_search'; "
              "$drop vexa-xslt transform ok.xsl secret.xml");
    expectFailure(outcome, 1, "secret.xml: Permission denied\n");
}

TEST_F(TransformCommandTest, TellsOfMalformedDocumentsOnceAndByName) {
    m_folder.write("bad.xml", "<a>\n<b></a>");
    m_folder.write("bad.xsl", "<x>\n<y></x>");
    m_folder.write("importer.xsl", stylesheet("<xsl:import href='bad.xsl'/>"));
    m_folder.write("lost.xsl", stylesheet("<xsl:import href='none.xsl'/>"));
    expectFailure(tool("transform ok.xsl bad.xml"), 1, "bad.xml: SAXParseException: ", "line 2");
    expectFailure(tool("transform ok.xsl bad.xml -o out"), 1,
                  "bad.xml: SAXParseException: ", "line 2");
    expectFailure(tool("transform ok.xsl <bad.xml"), 1, "standard input: SAXParse", "line 2");
    expectFailure(shell("printf '<a>' | vexa-xslt transform ok.xsl -"), 1,
                  "standard input: SAXParseException: ", "last tag started is 'a'");
    expectFailure(tool("transform bad.xsl ok.xml"), 1, "bad.xsl: SAXParseException: ", "line 2");
    expectFailure(tool("transform bad.xsl <ok.xml"), 1, "bad.xsl: SAXParseException: ", "line 2");
    expectFailure(tool("transform importer.xsl ok.xml"), 1, m_folder.path("bad.xsl") + ": SAX");
    expectFailure(tool("transform lost.xsl ok.xml"), 1, "lost.xsl: SAXParse", "none.xsl");
    EXPECT_EQ(shell("ls out").status, 2);
}

TEST_F(TransformCommandTest, TellsOfFaultsOfTheStylesheetUnderItsName) {
    m_folder.write("foo.xsl", stylesheetWithRootTemplate("<xsl:foo/>"));
    m_folder.write("xpath.xsl", stylesheetWithRootTemplate("<xsl:value-of select='a['/>"));
    m_folder.write("call.xsl", stylesheetWithRootTemplate("<xsl:value-of select='vexa:none()'/>"));
    expectFailure(tool("transform foo.xsl ok.xml"), 1, "foo.xsl: XSLT error: ", "xsl:foo");
    expectFailure(tool("transform xpath.xsl ok.xml"), 1, "xpath.xsl: XPath error: ", "a[");
    expectFailure(tool("transform call.xsl ok.xml"), 1, "call.xsl: XalanXPathException: ", "none");
}

TEST_F(TransformCommandTest, TellsOfAPlaceThatCannotBeWritten) {
    shell("mkdir folder; ln -s loop loop");
    expectFailure(tool("transform ok.xsl ok.xml -o none/out"), 1,
                  "none/out: No such file or directory\n");
    expectFailure(tool("transform ok.xsl ok.xml -o folder"), 1, "folder: Is a directory\n");
    expectFailure(tool("transform ok.xsl ok.xml -o loop"), 1, "loop: ", "symbolic links");
    expectFailure(tool("transform ok.xsl ok.xml -o /dev/full"), 1,
                  "/dev/full: ", "No space left on device");
    expectFailure(tool("transform ok.xsl ok.xml > /dev/full"), 1,
                  "standard output: ", "No space left on device");
    expectFailure(tool("transform ok.xsl -o /dev/full < ok.xml"), 1, "/dev/full: ");
}

TEST_F(TransformCommandTest, LeavesAnEarlierFileAsItWasWhenTheTransformFails) {
    writeSheet("<b>part</b><xsl:message terminate='yes'>enough</xsl:message>");
    m_folder.write("out", "earlier");
    for (const char* arguments :
         {"transform sheet.xsl ok.xml -o out", "transform sheet.xsl -o out <ok.xml"}) {
        const auto outcome = tool(arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(file("out"), "earlier");
        EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl out sheet.xsl");
    }
}

TEST_F(TransformCommandTest, LeavesAnEarlierFileAsItWasWhenTheDiskIsFull) {
    writeSheet("<b>" + std::string(100'000, 'x') + "</b>");
    m_folder.write("out", "earlier");
    for (const char* arguments :
         {"transform sheet.xsl ok.xml -o out", "transform sheet.xsl -o out <ok.xml"}) {
        // A limit of 8 KiB on the size of files stands in for a full disk.
        const auto outcome =
            shell(std::string("trap '' XFSZ; ulimit -f 8; vexa-xslt ") + arguments);
        EXPECT_EQ(outcome.status, 1) << outcome.error;
        EXPECT_EQ(outcome.error.rfind("vexa-xslt: out: ", 0), 0U) << outcome.error;
        EXPECT_EQ(outcome.error.find(".vexa-xslt-"), std::string::npos) << outcome.error;
        EXPECT_EQ(file("out"), "earlier");
        EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl out sheet.xsl");
    }
}

TEST_F(TransformCommandTest, RemovesTheUnfinishedFileWhenInterrupted) {
    // The source never ends, so that the program can only be interrupted.
    shell("mkfifo pipe; (exec 3>pipe; exec sleep 30) & sleeper=$!; "
          "vexa-xslt transform ok.xsl -o out <pipe & tool=$!; "
          "for i in $(seq 100); do ls -A | grep -q '^.vexa-xslt-' && break; sleep 0.05; done; "
          "ls -A >seen; kill -TERM $tool; wait $tool; echo $? >status; kill $sleeper");
    EXPECT_NE(file("seen").find(".vexa-xslt-"), std::string::npos) << file("seen");
    EXPECT_EQ(file("status"), "143\n");
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl pipe seen status");
}

TEST_F(TransformCommandTest, GivesANewFileThePermissionsThatItWouldHaveHad) {
    shell("umask 027; vexa-xslt transform ok.xsl ok.xml -o out");
    EXPECT_EQ(permissions("out"), 0640U);
    shell("umask 022; vexa-xslt transform ok.xsl ok.xml -o out2");
    EXPECT_EQ(permissions("out2"), 0644U);
}

TEST_F(TransformCommandTest, KeepsThePermissionsOfAnExistingFile) {
    m_folder.write("out", "earlier");
    shell("chmod 606 out");
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o out").status, 0);
    EXPECT_EQ(permissions("out"), 0606U);
    EXPECT_EQ(file("out"), "<b>x</b>");
}

TEST_F(TransformCommandTest, FollowsASymbolicLink) {
    shell("mkdir far; echo earlier >far/out; ln -s far/out link; ln -s far/new dangling");
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o link").status, 0);
    EXPECT_EQ(file("far/out"), "<b>x</b>");
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o dangling").status, 0);
    EXPECT_EQ(file("far/new"), "<b>x</b>");
    EXPECT_EQ(shell("[ -L link ] && [ -L dangling ]").status, 0);
}

TEST_F(TransformCommandTest, WritesDirectlyToWhatIsNoRegularFile) {
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o /dev/null").status, 0);
    EXPECT_EQ(shell("test -c /dev/null").status, 0);
    const auto outcome =
        shell("mkfifo pipe; cat pipe & vexa-xslt transform ok.xsl ok.xml -o pipe; wait");
    EXPECT_EQ(outcome.output, "<b>x</b>");
}

TEST_F(TransformCommandTest, TakesNamesLiterally) {
    for (const char* name : {"a b", "100%", "a%20b", "a#b", "a?b", "a\\b", "a:b",
                             "\xCE\xB1\xE4\xBD\xA0", "-x", "a&b", "a\"b", "+", "file:", "a\nb"}) {
        const std::string quoted = "'" + std::string(name) + "'";
        shell("cp ok.xml ./" + quoted + ".xml; cp ok.xsl ./" + quoted + ".xsl");
        for (const char* source : {".xml", ".xml -o ./"}) {
            const std::string output = std::string(source) == ".xml" ? "" : quoted + ".out";
            const auto outcome = tool("transform ./" + quoted + ".xsl ./" + quoted + source +
                                      output + (output.empty() ? "" : "; cat ./" + output));
            EXPECT_EQ(outcome.output, "<b>x</b>") << name << ": " << outcome.error;
            EXPECT_EQ(outcome.error, "") << name;
        }
    }
}

TEST_F(TransformCommandTest, TakesUris) {
    const std::string uri = "file://" + m_folder.path("ok.xml");
    EXPECT_EQ(tool("transform ok.xsl " + uri).output, "<b>x</b>");
    EXPECT_EQ(tool("transform file://" + m_folder.path("ok.xsl") + " " + uri).output, "<b>x</b>");
    EXPECT_EQ(tool("transform ok.xsl " + uri + " -o out").status, 0);
    EXPECT_EQ(file("out"), "<b>x</b>");
}

TEST_F(TransformCommandTest, ReadsPipesByName) {
    EXPECT_EQ(tool("transform ok.xsl <(cat ok.xml)").output, "<b>x</b>");
    EXPECT_EQ(tool("transform <(cat ok.xsl) ok.xml").output, "<b>x</b>");
}

TEST_F(TransformCommandTest, FindsADtdBesideTheSourceOnBothRoads) {
    shell("mkdir far");
    m_folder.write("far/d.dtd", "<!ENTITY e 'entity'>");
    m_folder.write("far/d.xml", "<!DOCTYPE a SYSTEM 'd.dtd'><a>&e;</a>");
    EXPECT_EQ(tool("transform ok.xsl far/d.xml").output, "<b>entity</b>");
    EXPECT_EQ(tool("transform ok.xsl far/d.xml -o out; cat out").output, "<b>entity</b>");
}

TEST_F(TransformCommandTest, HandsMessagesOfTheStylesheetToStandardError) {
    writeSheet("<xsl:message>one\ntwo</xsl:message><b/><xsl:message>three</xsl:message>");
    for (const char* arguments : {"transform sheet.xsl ok.xml", "transform sheet.xsl <ok.xml"}) {
        const auto outcome = tool(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.output, "<b/>");
        EXPECT_NE(outcome.error.find("one\ntwo"), std::string::npos) << outcome.error;
        EXPECT_NE(outcome.error.find("three"), std::string::npos) << outcome.error;
    }
    EXPECT_EQ(tool("transform sheet.xsl ok.xml --quiet").error, "");
}

TEST_F(TransformCommandTest, SwallowsNoMessageThatLooksLikeAnError) {
    writeSheet("<xsl:message>first\nFatal Error: x\n\nrest</xsl:message>"
               "<xsl:message>second</xsl:message><b/>");
    const auto done = tool("transform sheet.xsl ok.xml");
    for (const char* part : {"first\nFatal Error: x\n\nrest (", "XSLT message: second ("}) {
        EXPECT_NE(done.error.find(part), std::string::npos) << done.error;
    }
    writeSheet("<xsl:message>first\nFatal Error: x\nrest</xsl:message><xsl:message "
               "terminate='yes'>a\nFatal Error: x\nb</xsl:message>");
    const auto failed = tool("transform sheet.xsl ok.xml");
    EXPECT_EQ(failed.status, 1);
    for (const char* part :
         {"first\nFatal Error: x\nrest (", "XSLT message: a\nFatal Error: x\nb (",
          "vexa-xslt: sheet.xsl: ElemMessageTerminateExpression: a Fatal"}) {
        EXPECT_NE(failed.error.find(part), std::string::npos) << failed.error;
    }
}

TEST_F(TransformCommandTest, TellsAnErrorInAnEvaluatedExpressionOnce) {
    writeSheet("<b><xsl:value-of select='xalan:evaluate(\"a[\")'/></b>");
    expectFailure(tool("transform sheet.xsl ok.xml"), 1, "sheet.xsl: ", "Expected ']'");
}

TEST_F(TransformCommandTest, TellsOfATerminatingMessage) {
    writeSheet("<xsl:message terminate='yes'>enough</xsl:message>");
    const auto outcome = tool("transform sheet.xsl ok.xml");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("vexa-xslt: sheet.xsl: ElemMessageTerminateExpression: enough"),
              std::string::npos)
        << outcome.error;
    expectFailure(tool("transform sheet.xsl ok.xml --quiet"), 1, "sheet.xsl: ");
}

TEST_F(TransformCommandTest, HandsWarningsOnEvenIfQuiet) {
    writeSheet("<b><xsl:value-of select='document(\"none.xml\")'/></b>");
    const auto outcome = tool("transform sheet.xsl ok.xml");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "<b/>");
    EXPECT_NE(outcome.error.find("none.xml"), std::string::npos);
    EXPECT_EQ(tool("transform sheet.xsl ok.xml --quiet").error, outcome.error);
}

TEST_F(TransformCommandTest, TellsWhereTheTimeWent) {
    const auto outcome = tool("transform ok.xsl ok.xml --timing");
    EXPECT_EQ(outcome.output, "<b>x</b>");
    for (const char* phase : {"start of the engines", "transform", "total"}) {
        EXPECT_NE(outcome.error.find(phase), std::string::npos) << outcome.error;
    }
    EXPECT_EQ(tool("transform ok.xsl ok.xml --timing --quiet").error, "");
}

TEST_F(TransformCommandTest, WritesDirectlyToAnOpenDescriptor) {
    const std::string run = "vexa-xslt transform ok.xsl ok.xml -o ";
    EXPECT_EQ(shell(run + "/dev/stdout | cat").output, "<b>x</b>");
    EXPECT_EQ(shell(run + "/dev/fd/3 3>&1 | cat").output, "<b>x</b>");
    EXPECT_EQ(shell(run + ">(cat >seen); sleep 0.3; cat seen").output, "<b>x</b>");
    // A file behind the descriptor keeps its place: the shell goes on writing to it.
    EXPECT_EQ(shell("{ " + run + "/dev/stdout; echo after; } >>file; cat file").output.substr(8),
              "after\n");
}

TEST_F(TransformCommandTest, KeepsResultAndMessagesApartWhereStandardStreamsAreClosed) {
    writeSheet("<xsl:message>a message</xsl:message><b/>");
    EXPECT_EQ(tool("transform sheet.xsl ok.xml -o out 2>&-; cat out").output, "<b/>");
    EXPECT_EQ(tool("transform sheet.xsl -o out2 <ok.xml 2>&-; cat out2").output, "<b/>");
    expectFailure(tool("transform ok.xsl ok.xml >&-"), 1,
                  "standard output: ", "Bad file descriptor");
    expectFailure(tool("transform ok.xsl <&-"), 1, "standard input: it cannot be read");
    expectFailure(tool("transform ok.xsl <."), 1, "standard input: it cannot be read");
    expectFailure(tool("--help >&-"), 1, "standard output: ");
    expectFailure(tool("--version >/dev/full"), 1, "standard output: ");
}

TEST_F(TransformCommandTest, RemovesTheUnfinishedFileHoweverTheProcessEnds) {
    m_folder.write("messages.xsl",
                   stylesheetWithRootTemplate("<xsl:for-each select='//i'><xsl:message>" +
                                              std::string(1000, 'm') +
                                              "</xsl:message></xsl:for-each><b/>"));
    std::string items = "<a>";
    for (int i = 0; i < 500; ++i) {
        items += "<i/>";
    }
    m_folder.write("items.xml", items + "</a>");
    shell("vexa-xslt transform messages.xsl items.xml -o out 2>&1 | head -1");
    // A number that the engine cannot write aborts the process.
    m_folder.write("abort.xsl", stylesheetWithRootTemplate("<xsl:value-of select='1 div 0." +
                                                           std::string(120, '0') + "1'/>"));
    EXPECT_NE(tool("transform abort.xsl ok.xml -o out").status, 0);
    for (const char* signal : {"HUP", "INT", "QUIT", "USR1"}) {
        shell("mkfifo pipe; (exec 3>pipe; exec sleep 30) & sleeper=$!; set -m; "
              "vexa-xslt transform ok.xsl -o out <pipe & tool=$!; "
              "for i in $(seq 100); do ls -A | grep -q '^.vexa-xslt-' && break; sleep 0.05; done; "
              "kill -" +
              std::string(signal) + " $tool; wait $tool; kill $sleeper; rm pipe");
    }
    EXPECT_EQ(m_folder.list(), "abort.xsl items.xml messages.xsl ok.xml ok.xsl");
}

TEST_F(TransformCommandTest, GoesOnWhereASignalIsIgnoredFromOutside) {
    shell("mkfifo pipe; (sleep 0.5; cat ok.xml >pipe) & "
          "(trap '' HUP; exec vexa-xslt transform ok.xsl -o out <pipe) & tool=$!; sleep 0.2; "
          "kill -HUP $tool; wait $tool; echo $? >status");
    EXPECT_EQ(file("status"), "0\n");
    EXPECT_EQ(file("out"), "<b>x</b>");
}

TEST_F(TransformCommandTest, KeepsTheOwnerOfAnExistingFileAsFarAsItMay) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    shell("echo earlier >out; chown 65534:65533 out; vexa-xslt transform ok.xsl ok.xml -o out");
    EXPECT_EQ(shell("stat -c %u:%g out").output, "65534:65533\n");
    // Without the right to give files away, the group is kept if it is one's own.
    shell("echo earlier >own; chown 65534:0 own; setpriv --bounding-set=-chown vexa-xslt transform "
          "ok.xsl ok.xml -o own");
    EXPECT_EQ(shell("stat -c %g own").output, "0\n");
    EXPECT_EQ(file("own"), "<b>x</b>");
}

TEST_F(TransformCommandTest, ParsesIntoAXercesDomIfAskedTo) {
    // The one thing that the engine finds in its own tree only.
    writeSheet("<b><xsl:value-of select='unparsed-entity-uri(\"pic\")'/></b>");
    m_folder.write("pic.xml", "<!DOCTYPE a [<!NOTATION n SYSTEM 'n'><!ENTITY pic SYSTEM "
                              "'file:/pic' NDATA n>]><a/>");
    EXPECT_EQ(tool("transform sheet.xsl pic.xml -o out; cat out").output, "<b>file:/pic</b>");
    EXPECT_EQ(tool("transform sheet.xsl pic.xml --xerces-dom -o out; cat out").output, "<b/>");
}

TEST_F(TransformCommandTest, NamesTheFileThatAReasonIsAbout) {
    m_folder.write("lost.xsl", stylesheet("<xsl:import href='none.xsl'/>"));
    m_folder.write("bad.xml", "<a>");
    shell("mkdir d; mkfifo p; ln -s p lnk");
    m_folder.write("d/entity.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'bad.ent'>]><a>&e;</a>");
    m_folder.write("d/bad.ent", "<x y=></x>");
    expectFailure(tool("transform lost.xsl ok.xml -o p"), 1, "lost.xsl: ", "none.xsl");
    expectFailure(tool("transform ok.xsl bad.xml -o lnk"), 1, "bad.xml: SAXParseException: input");
    for (const char* arguments :
         {"transform ok.xsl d/entity.xml", "transform ok.xsl d/entity.xml -o o"}) {
        expectFailure(tool(arguments), 1, m_folder.path("d/bad.ent") + ": SAXParseException");
    }
    expectFailure(tool("transform ok.xsl file://" + m_folder.path("none%zz.xml")), 1, "file://");
    expectFailure(tool("transform ok.xsl $'\\xff.xml' -o out"), 1, "\xFF.xml: ");
    shell("cp ok.xml $'\\xff.xml'");
    expectFailure(tool("transform ok.xsl $'\\xff.xml' -o out"), 1, "\xFF.xml: ", "not valid UTF-8");
    EXPECT_EQ(tool("transform ok.xsl $'\\xff.xml'").output, "<b>x</b>");
    expectFailure(shell("mkdir ro; [ $(id -u) = 0 ] && drop='setpriv "
                        "--bounding-set=-dac_override,-dac_read_search'; chmod 555 ro; "
                        "$drop vexa-xslt transform ok.xsl ok.xml -o ro/out"),
                  1, "ro/out: no file can be made in the folder ro: Permission denied");
}

TEST_F(TransformCommandTest, TellsALackOfMemory) {
    std::string items = "<a>";
    for (int i = 0; i < 400'000; ++i) {
        items += "<i>text</i>";
    }
    m_folder.write("big.xml", items + "</a>");
    const auto outcome = shell("ulimit -v 100000; vexa-xslt transform ok.xsl big.xml -o out");
    expectFailure(outcome, 1, "big.xml: there is not enough memory");
    EXPECT_EQ(m_folder.list(), "big.xml ok.xml ok.xsl");
}

/** A new process is a newly loaded library. */
TEST_F(TransformCommandTest, NumbersTimersFromOne) {
    m_folder.write("timers.xsl",
                   stylesheet("<xsl:output method='text'/><xsl:template match='/'><xsl:value-of "
                              "select='concat(vexa:TimerCreate(), \"|\", vexa:TimerCreate())'/>"
                              "</xsl:template>"));
    EXPECT_EQ(tool("transform timers.xsl ok.xml").output, "1|2");
    EXPECT_EQ(tool("transform timers.xsl ok.xml").output, "1|2");
}
