#include "ToolTest.h"
#include "support/MemoryChecker.h"

/** What goes to standard error: each error once, under the name of its file, and every message. */
using DiagnosticsTest = ToolTest;

TEST_F(DiagnosticsTest, NamesFilesThatCannotBeRead) {
    m_folder.write("empty", "");
    shell("mkdir folder");
    expectFailure(tool("transform ok.xsl none.xml"), 1,
                  "none.xml: cannot open: No such file or directory\n");
    expectFailure(tool("transform none.xsl ok.xml"), 1,
                  "none.xsl: cannot open: No such file or directory\n");
    expectFailure(tool("transform ok.xsl folder"), 1, "folder: cannot read: Is a directory\n");
    expectFailure(tool("transform folder ok.xml"), 1, "folder: cannot read: Is a directory\n");
    expectFailure(tool("transform ok.xsl empty"), 1, "empty:", "invalid document structure");
    expectFailure(tool("transform empty ok.xml"), 1, "empty:", "invalid document structure");
    expectFailure(tool("transform ok.xsl ''"), 2, "'': empty file name (see ");
    expectFailure(tool("transform '' ok.xml"), 2, "'': empty file name (see ");
    expectFailure(tool("transform ok.xsl ok.xml -o ''"), 2, "-o: empty file name (see ");
    expectFailure(shell("mkdir gone; cd gone; rmdir ../gone; vexa-xslt transform ../ok.xsl ok.xml"),
                  1, "../ok.xsl: No such file or directory");
    expectFailure(tool("transform ok.xsl file:///none/none.xml"), 1,
                  "file:///none/none.xml: cannot open: No such file or directory\n");
    expectFailure(tool("transform - -"), 2, "-: standard input can be read only once (see ");
    expectFailure(tool("chain - ok.xsl -"), 2, "-: standard input can be read only once (see ");
}

TEST_F(DiagnosticsTest, NamesASourceThatFailsWhileItIsRead) {
    // The memory of a process is opened like a file, but has nothing at its beginning.
    for (const char* arguments : {"transform ok.xsl /proc/self/mem", "chain /proc/self/mem ok.xsl",
                                  "xpath / /proc/self/mem"}) {
        expectFailure(tool(arguments), 1, "/proc/self/mem: cannot read: Input/output error\n");
    }
    expectFailure(tool("transform ok.xsl </"), 1, "-: the stream cannot be read\n");
}

TEST_F(DiagnosticsTest, NamesASourceThatCannotBeOpened) {
    makeSocket("socket");
    for (const char* arguments :
         {"transform ok.xsl socket", "chain socket ok.xsl", "xpath / socket"}) {
        expectFailure(tool(arguments), 1, "socket: cannot open: No such device or address\n");
    }
}

TEST_F(DiagnosticsTest, NamesAFileThatOthersMayNotRead) {
    // root may read everything, unless it gives that right up.
    const auto outcome =
        shell("cp ok.xml secret.xml; chmod 000 secret.xml; "
              "[ $(id -u) = 0 ] && drop='setpriv --bounding-set=-dac_override,-dac_read_search'; "
              "$drop vexa-xslt transform ok.xsl secret.xml");
    expectFailure(outcome, 1, "secret.xml: cannot open: Permission denied\n");
}

TEST_F(DiagnosticsTest, NamesMalformedDocumentsWithLineAndColumn) {
    m_folder.write("bad.xml", "<a>\n<b></a>");
    m_folder.write("bad.xsl", "<x>\n<y></x>");
    m_folder.write("importer.xsl", stylesheet("<xsl:import href='bad.xsl'/>"));
    const std::string error = ":2:6: expected end of tag 'b'\n";
    expectFailure(tool("transform ok.xsl bad.xml"), 1, "bad.xml" + error);
    expectFailure(tool("transform ok.xsl bad.xml -o out"), 1, "bad.xml" + error);
    expectFailure(tool("transform ok.xsl ./bad.xml -o out"), 1, "./bad.xml" + error);
    expectFailure(tool("transform ok.xsl $PWD/bad.xml"), 1, m_folder.path("bad.xml") + error);
    expectFailure(tool("transform ok.xsl <bad.xml"), 1, "-" + error);
    expectFailure(tool("chain - ok.xsl <bad.xml"), 1, "-" + error);
    expectFailure(tool("xpath / bad.xml"), 1, "bad.xml" + error);
    expectFailure(shell("printf '<a>' | vexa-xslt transform ok.xsl -"), 1,
                  "-:1:4: ", "last tag started is 'a'");
    expectFailure(tool("transform bad.xsl ok.xml"), 1, "bad.xsl:2:6: expected end of tag 'y'\n");
    expectFailure(tool("transform bad.xsl <ok.xml"), 1, "bad.xsl:2:6: expected end of tag 'y'\n");
    // A file that was not named on the command line: relative to the working directory.
    expectFailure(tool("transform importer.xsl ok.xml"), 1,
                  "bad.xsl:2:6: expected end of tag 'y'\n");
    expectFailure(shell("mkdir d; cd d; vexa-xslt transform ../importer.xsl ../ok.xml"), 1,
                  m_folder.path("bad.xsl") + ":2:6: ");
    EXPECT_EQ(shell("ls out").status, 2);
}

/** A missing file is the fault of the file that wants it. */
TEST_F(DiagnosticsTest, NamesTheFileThatWantsAnother) {
    const std::string missing = m_folder.path("none") + ": cannot open: No such file or directory";
    m_folder.write("lost.xsl",
                   "<?xml version='1.0'?>\n" + stylesheet("\n  <xsl:import href='none'/>"));
    expectFailure(tool("transform lost.xsl ok.xml"), 1, "lost.xsl:3:3: file://" + missing);
    m_folder.write("entity.xml", "<!DOCTYPE a [\n<!ENTITY e SYSTEM 'none'>]>\n<a>&e;</a>");
    expectFailure(tool("transform ok.xsl entity.xml"), 1, "entity.xml:3:7: file://" + missing);
    m_folder.write("dtd.xml", "<!DOCTYPE a SYSTEM 'none'>\n<a/>");
    expectFailure(tool("transform ok.xsl dtd.xml"), 1, "dtd.xml:1:27: file://" + missing);
    writeSheet("<b><xsl:value-of select='document(\"none\")'/></b>");
    const auto outcome = tool("transform sheet.xsl ok.xml");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "<b/>");
    const auto column = file("sheet.xsl").find("<xsl:value-of") + 1;
    EXPECT_EQ(outcome.error, "vexa-xslt: sheet.xsl:1:" + std::to_string(column) +
                                 ": warning: file://" + missing + "\n");
    EXPECT_EQ(tool("transform sheet.xsl ok.xml --quiet").error, outcome.error);
}

TEST_F(DiagnosticsTest, NamesDefectsOfTheStylesheetAtTheirInstruction) {
    const auto expectError = [this](const std::string& instruction, const std::string& text) {
        m_folder.write("sheet.xsl", stylesheet("<xsl:template match='/'>\n\xCE\xB1 " + instruction +
                                               "</xsl:template>"));
        expectFailure(tool("transform sheet.xsl ok.xml"), 1, "sheet.xsl:2:3: ", text);
        expectFailure(tool("chain ok.xml ok.xsl sheet.xsl"), 1, "sheet.xsl:2:3: ", text);
    };
    expectError("<xsl:foo/>", "xsl:foo");
    expectError("<xsl:value-of select='a['/>", "'a['");
    expectError("<xsl:value-of select='vexa:none()'/>", "unknown function 'none'");
    expectError("<xsl:value-of select='$none'/>", "the variable 'none' is not declared");
    expectError("<xsl:message terminate='yes'>enough\nof it</xsl:message>", ": enough of it\n");
}

TEST_F(DiagnosticsTest, PrintsMessagesAsTheyAre) {
    writeSheet(
        "<xsl:message>one\n  two\n</xsl:message><b/><xsl:message>Fatal Error: x</xsl:message>");
    for (const char* arguments :
         {"transform sheet.xsl ok.xml", "transform sheet.xsl <ok.xml", "chain ok.xml sheet.xsl",
          "transform sheet.xsl ok.xml --isolate"}) {
        const auto outcome = tool(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.output, "<b/>");
        EXPECT_EQ(outcome.error, "one\n  two\n\nFatal Error: x\n");
    }
    EXPECT_EQ(tool("transform sheet.xsl ok.xml --quiet").error, "");
    // What ends the transform is reported once.
    writeSheet(
        "<xsl:message>before</xsl:message><xsl:message terminate='yes'>the end</xsl:message>");
    const auto column = file("sheet.xsl").find("<xsl:message terminate") + 1;
    const std::string error = "vexa-xslt: sheet.xsl:1:" + std::to_string(column) + ": the end\n";
    EXPECT_EQ(tool("transform sheet.xsl ok.xml").error, "before\n" + error);
    EXPECT_EQ(tool("transform sheet.xsl ok.xml --quiet").error, error);
}

TEST_F(DiagnosticsTest, KeepsResultAndMessagesApartWhereStandardStreamsAreClosed) {
    writeSheet("<xsl:message>a message</xsl:message><b/>");
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o /dev/stderr --isolate").error, "<b>x</b>");
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o /dev/fd/2").error, "<b>x</b>");
    EXPECT_EQ(tool("transform sheet.xsl ok.xml -o out 2>&-; cat out").output, "<b/>");
    EXPECT_EQ(tool("transform sheet.xsl -o out2 <ok.xml 2>&-; cat out2").output, "<b/>");
    expectFailure(tool("transform ok.xsl ok.xml >&-"), 1, "standard output: Bad file descriptor\n");
    expectFailure(tool("transform ok.xsl <&-"), 1, "-: the stream cannot be read\n");
    expectFailure(tool("--help >&-"), 1, "standard output: ");
    expectFailure(tool("--version >/dev/full"), 1, "standard output: ");
}

TEST_F(DiagnosticsTest, NamesFilesWhateverTheirNames) {
    m_folder.write("bad.xml", "<a>");
    shell("mkdir d; mkfifo p; ln -s p lnk; cp bad.xml 'a b%20#?.xml'; cp bad.xml $'line\\nbreak'; "
          "cp ok.xml $'\\xff.xml'; cp bad.xml $'\\xfe.xml'");
    m_folder.write("d/entity.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'bad.ent'>]><a>&e;</a>");
    m_folder.write("d/bad.ent", "<x y=></x>");
    expectFailure(tool("transform ok.xsl bad.xml -o lnk"), 1, "bad.xml:1:4: ");
    expectFailure(tool("transform ok.xsl 'a b%20#?.xml'"), 1, "a b%20#?.xml:1:4: ");
    expectFailure(tool("transform ok.xsl $'line\\nbreak'"), 1, "line break:1:4: ");
    expectFailure(tool("transform ok.xsl $'\\xfe.xml'"), 1, "\xFE.xml:1:4: ");
    EXPECT_EQ(tool("transform ok.xsl $'\\xff.xml'").output, "<b>x</b>");
    EXPECT_EQ(tool("transform ok.xsl $'\\xff.xml' -o $'\\xff'; cat $'\\xff'").output, "<b>x</b>");
    expectFailure(tool("transform ok.xsl d/entity.xml"), 1, "d/bad.ent:1:6: ");
    expectFailure(tool("transform ok.xsl file://$PWD/bad.xml"), 1,
                  "file://" + m_folder.path("bad.xml") + ":1:4: ");
    expectFailure(shell("mkdir ro; [ $(id -u) = 0 ] && drop='setpriv "
                        "--bounding-set=-dac_override,-dac_read_search'; chmod 555 ro; "
                        "$drop vexa-xslt transform ok.xsl ok.xml -o ro/out"),
                  1, "ro/out: cannot create: Permission denied\n");
}

/** An excerpt shows where the error is. */
TEST_F(DiagnosticsTest, ShowsTheLineOfAnError) {
    m_folder.write("sheet.xsl", stylesheet("<xsl:template match='/'>\n\t<b>\xE4\xBD\xA0"
                                           "<xsl:value-of select='$none'/></b></xsl:template>"));
    const std::string error = "vexa-xslt: sheet.xsl:2:6: the variable 'none' is not declared\n";
    const std::string excerpt = "  2 |     <b>\xE4\xBD\xA0<xsl:value-of select='$none'/></b>";
    const std::string caret = "\n    |          ^\n";
    EXPECT_EQ(tool("transform sheet.xsl ok.xml").error, error);
    const std::string shown = tool("transform sheet.xsl ok.xml --excerpt").error;
    EXPECT_EQ(shown.rfind(error + excerpt, 0), 0U) << shown;
    EXPECT_EQ(shown.substr(shown.rfind("\n    |")), caret) << shown;
    m_folder.write("command", "stty cols 40; vexa-xslt transform sheet.xsl ok.xml\n");
    const std::string terminal =
        shell("NO_COLOR=1 TERM=xterm script -qec 'bash command' /dev/null").output;
    EXPECT_EQ(terminal, "vexa-xslt: sheet.xsl:2:6: the variable 'none' is not declared\r\n"
                        "  2 |     <b>\xE4\xBD\xA0<xsl:value-of select='$n\r\n"
                        "    |          ^\r\n");
    EXPECT_EQ(tool("transform sheet.xsl ok.xml --excerpt -o out --isolate").error, shown);
    expectFailure(tool("xpath 'a[' ok.xml --excerpt"), 1, "expression: ");
    expectFailure(tool("transform ok.xsl --excerpt <sheet.xsl -o none/out"), 1, "none/out: ");
}

TEST_F(DiagnosticsTest, CountsColumnsInCharacters) {
    // Characters of one, two and three bytes, and two of four, which are two units of UTF-16 each.
    const std::string text = "a\xC3\xA4\xE4\xBD\xA0\xF0\x9F\x98\x80\xF0\x9F\x98\x80";
    m_folder.write("bad.xml", "<a>\n" + text + "</b>");
    const std::string error = tool("transform ok.xsl bad.xml --excerpt").error;
    EXPECT_EQ(error.rfind("vexa-xslt: bad.xml:2:8: ", 0), 0U) << error;
    EXPECT_EQ(error.substr(error.rfind("\n  2 | ")),
              "\n  2 | " + text + "</b>\n    | " + std::string(10, ' ') + "^\n");
    m_folder.write("sheet.xsl", stylesheet("<xsl:template match='/'>\n" + text +
                                           "<xsl:value-of select='$none'/></xsl:template>"));
    expectFailure(tool("transform sheet.xsl ok.xml"), 1, "sheet.xsl:2:6: ");
    m_folder.write("wide.xml", std::string("\xFF\xFE<\0a\0>\0<\0/\0b\0>\0", 16));
    expectFailure(tool("transform ok.xsl wide.xml"), 1, "wide.xml:1:6: ");
}

TEST_F(DiagnosticsTest, ReportsThatMemoryRanOut) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker needs all of the address space";
    }
    std::string items = "<a>";
    for (int i = 0; i < 2'000'000; ++i) {
        items += "<i>text</i>";
    }
    m_folder.write("big.xml", items + "</a>");
    for (const char* arguments : {"transform ok.xsl big.xml -o out", "chain big.xml ok.xsl",
                                  "xpath / big.xml", "batch ok.xsl big.xml -d ."}) {
        const auto outcome = shell("ulimit -v 130000; vexa-xslt " + std::string(arguments));
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.error.rfind("vexa-xslt: big.xml: out of memory\n", 0), 0U)
            << outcome.error;
    }
    EXPECT_EQ(m_folder.list(), "big.xml ok.xml ok.xsl");
}
