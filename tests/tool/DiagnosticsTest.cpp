#include "ToolTest.h"

/** What goes to standard error: each error once, under the name of its file, and every message. */
using DiagnosticsTest = ToolTest;

TEST_F(DiagnosticsTest, TellsOfFilesThatCannotBeRead) {
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
    expectFailure(tool("transform ok.xsl file:///none/100%"), 1,
                  "file:///none/100%: No such file or directory\n");
}

TEST_F(DiagnosticsTest, TellsOfASourceThatFailsWhileItIsRead) {
    // The memory of a process is opened like a file, but has nothing at its beginning.
    for (const char* arguments : {"transform ok.xsl /proc/self/mem", "chain /proc/self/mem ok.xsl",
                                  "xpath / /proc/self/mem"}) {
        expectFailure(tool(arguments), 1, "/proc/self/mem: it cannot be read\n");
    }
    expectFailure(tool("transform ok.xsl </"), 1, "standard input: it cannot be read\n");
}

TEST_F(DiagnosticsTest, TellsOfASourceThatCannotBeOpened) {
    makeSocket("socket");
    for (const char* arguments :
         {"transform ok.xsl socket", "chain socket ok.xsl", "xpath / socket"}) {
        expectFailure(tool(arguments), 1, "socket: No such device or address\n");
    }
}

TEST_F(DiagnosticsTest, TellsOfAFileThatOthersMayNotRead) {
    // root may read everything, unless it gives that right up.
    const auto outcome =
        shell("cp ok.xml secret.xml; chmod 000 secret.xml; "
              "[ $(id -u) = 0 ] && drop='setpriv --bounding-set=-dac_override,-dac_read_search'; "
              "$drop vexa-xslt transform ok.xsl secret.xml");
    expectFailure(outcome, 1, "secret.xml: Permission denied\n");
}

TEST_F(DiagnosticsTest, TellsOfMalformedDocumentsOnceAndByName) {
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

TEST_F(DiagnosticsTest, TellsOfAVersionOfXmlThatXercesTreeRefuses) {
    m_folder.write("later.xml", "<?xml version='1.2'?><a/>");
    expectFailure(tool("transform --xerces-dom ok.xsl later.xml"), 1,
                  "later.xml: implementation does not support");
    expectFailure(tool("transform --xerces-dom ok.xsl <later.xml"), 1,
                  "standard input: implementation does");
    expectFailure(tool("chain --xerces-dom later.xml ok.xsl"), 1,
                  "later.xml: implementation does not support");
    expectFailure(tool("xpath --xerces-dom / later.xml"), 1,
                  "later.xml: implementation does not support");
}

TEST_F(DiagnosticsTest, TellsOfFaultsOfTheStylesheetUnderItsName) {
    m_folder.write("foo.xsl", stylesheetWithRootTemplate("<xsl:foo/>"));
    m_folder.write("xpath.xsl", stylesheetWithRootTemplate("<xsl:value-of select='a['/>"));
    m_folder.write("call.xsl", stylesheetWithRootTemplate("<xsl:value-of select='vexa:none()'/>"));
    expectFailure(tool("transform foo.xsl ok.xml"), 1, "foo.xsl: XSLT error: ", "xsl:foo");
    expectFailure(tool("transform xpath.xsl ok.xml"), 1, "xpath.xsl: XPath error: ", "a[");
    expectFailure(tool("transform call.xsl ok.xml"), 1, "call.xsl: XalanXPathException: ", "none");
}

TEST_F(DiagnosticsTest, HandsMessagesOfTheStylesheetToStandardError) {
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

TEST_F(DiagnosticsTest, SwallowsNoMessageThatLooksLikeAnError) {
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

TEST_F(DiagnosticsTest, TellsAnErrorInAnEvaluatedExpressionOnce) {
    writeSheet("<b><xsl:value-of select='xalan:evaluate(\"a[\")'/></b>");
    expectFailure(tool("transform sheet.xsl ok.xml"), 1, "sheet.xsl: ", "Expected ']'");
}

TEST_F(DiagnosticsTest, TellsOfATerminatingMessage) {
    writeSheet("<xsl:message terminate='yes'>enough</xsl:message>");
    const auto outcome = tool("transform sheet.xsl ok.xml");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("vexa-xslt: sheet.xsl: ElemMessageTerminateExpression: enough"),
              std::string::npos)
        << outcome.error;
    expectFailure(tool("transform sheet.xsl ok.xml --quiet"), 1, "sheet.xsl: ");
}

TEST_F(DiagnosticsTest, HandsWarningsOnEvenIfQuiet) {
    writeSheet("<b><xsl:value-of select='document(\"none.xml\")'/></b>");
    const auto outcome = tool("transform sheet.xsl ok.xml");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "<b/>");
    EXPECT_NE(outcome.error.find("none.xml"), std::string::npos);
    EXPECT_EQ(tool("transform sheet.xsl ok.xml --quiet").error, outcome.error);
}

TEST_F(DiagnosticsTest, KeepsResultAndMessagesApartWhereStandardStreamsAreClosed) {
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

TEST_F(DiagnosticsTest, NamesTheFileThatAReasonIsAbout) {
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

TEST_F(DiagnosticsTest, TellsALackOfMemory) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs memory without a limit";
#endif
    std::string items = "<a>";
    for (int i = 0; i < 400'000; ++i) {
        items += "<i>text</i>";
    }
    m_folder.write("big.xml", items + "</a>");
    const auto outcome = shell("ulimit -v 100000; vexa-xslt transform ok.xsl big.xml -o out");
    expectFailure(outcome, 1, "big.xml: there is not enough memory");
    EXPECT_EQ(m_folder.list(), "big.xml ok.xml ok.xsl");
}
