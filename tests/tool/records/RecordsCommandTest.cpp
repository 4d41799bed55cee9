#include "support/MemoryChecker.h"
#include "tool/ToolTest.h"

#include <regex>

/** One stylesheet over each record of a source. */
class RecordsCommandTest : public ToolTest {
protected:
    RecordsCommandTest() {
        m_folder.write("number.xsl",
                       stylesheet("<xsl:output omit-xml-declaration='yes'/><xsl:template match='/'>"
                                  "<b><xsl:value-of select='r/@n'/></b></xsl:template>"));
        writeRecords("all.xml", 10);
    }

    /** Each stands on a line of its own, from the second one. */
    void writeRecords(const std::string& name, int count, const std::string& content = "") {
        std::string text = "<all>\n";
        for (int i = 1; i <= count; ++i) {
            text += "<r n='" + std::to_string(i) + "'>" + content + "</r>\n";
        }
        m_folder.write(name, text + "</all>\n");
    }

    /** What number.xsl gives. */
    static std::string numbers(int first, int last) {
        std::string text;
        for (int i = first; i <= last; ++i) {
            text += "<b>" + std::to_string(i) + "</b>";
        }
        return text;
    }

    /** A stylesheet that does this with the third record, and is number.xsl for the others. */
    void writeSheetForThird(const std::string& content) {
        m_folder.write("third.xsl",
                       stylesheet("<xsl:output omit-xml-declaration='yes'/>"
                                  "<xsl:template match='/'><b><xsl:if test='r/@n = 3'>" +
                                  content +
                                  "</xsl:if><xsl:value-of select='r/@n'/></b></xsl:template>"));
    }

    /** Expects that the third record of ten fails for this reason, and no other. */
    void expectThirdFails(const Outcome& outcome, const std::string& reason) {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, numbers(1, 2) + numbers(4, 10));
        EXPECT_EQ(outcome.error, "vexa-xslt: all.xml:4: record 3: " + reason +
                                     "\nvexa-xslt: 9 of 10 records done\n");
    }
};

TEST_F(RecordsCommandTest, TransformsEachOutermostElementOfAName) {
    m_folder.write("nested.xml",
                   "<a><r n='1'><r n='2'/></r><b><r n='3'/></b><s><r n='4'/></s></a>");
    const Outcome outcome = tool("records number.xsl nested.xml -e r");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "<b>1</b><b>3</b><b>4</b>");
    EXPECT_EQ(outcome.error, "");
    m_folder.write("two.xml", "<a xmlns:p='urn:p' xmlns:q='urn:q'><p:r/><q:r/><r n='3'/></a>");
    m_folder.write("name.xsl", stylesheet("<xsl:output method='text'/><xsl:template match='/'>"
                                          "<xsl:value-of select='name(*)'/>,</xsl:template>"));
    EXPECT_EQ(tool("records name.xsl two.xml -e r").output, "p:r,q:r,r,");
    EXPECT_EQ(tool("records name.xsl two.xml --element '{urn:q}r'").output, "q:r,");
    EXPECT_EQ(tool("records name.xsl two.xml -e '{}r'").output, "r,");
    EXPECT_EQ(tool("records name.xsl -e '{urn:p}r' <two.xml").output, "p:r,");
    EXPECT_EQ(tool("records name.xsl - -e '{urn:p}r' -o - <two.xml").output, "p:r,");
}

TEST_F(RecordsCommandTest, KeepsNamespacesBaseUriEntitiesAndIds) {
    m_folder.write("other.xml", "<o>other</o>");
    m_folder.write("source.xml", "<!DOCTYPE a [<!ATTLIST r k ID #IMPLIED><!NOTATION n SYSTEM 'n'>"
                                 "<!ENTITY pic SYSTEM 'file:///pic' NDATA n>]>"
                                 "<a xmlns:p='urn:p' xml:lang='de'><r k='x'/></a>");
    m_folder.write("keep.xsl", stylesheet("<xsl:output method='text'/><xsl:template match='/'>"
                                          "<xsl:value-of select=\"document('other.xml', .)\"/>,"
                                          "<xsl:value-of select=\"*/namespace::p\"/>,"
                                          "<xsl:value-of select=\"unparsed-entity-uri('pic')\"/>,"
                                          "<xsl:value-of select=\"name(id('x'))\"/>,"
                                          "<xsl:value-of select=\"*/@xml:lang\"/></xsl:template>"));
    EXPECT_EQ(tool("records keep.xsl source.xml -e r").output, "other,urn:p,file:///pic,r,");
}

TEST_F(RecordsCommandTest, GivesTheSameAsTheRecordsAsDocuments) {
    m_folder.write("sheet.xsl",
                   stylesheet("<xsl:param name='x'/><xsl:template match='/'><c x='{$x}'>"
                              "<xsl:copy-of select='.'/></c>\n</xsl:template>"));
    const std::string record = "<r n='1'> <i>\xCE\xB1</i><!--c--><?p i?><![CDATA[<]]></r>";
    m_folder.write("one.xml", record);
    m_folder.write("two.xml", "<all>" + record + "\n" + record + "</all>");
    const std::string parameters = " -p \"x=it's \\\"\"";
    const std::string expected = tool("transform sheet.xsl one.xml" + parameters).output;
    ASSERT_NE(expected.find("\xCE\xB1"), std::string::npos);
    EXPECT_EQ(tool("records sheet.xsl two.xml -e r" + parameters).output, expected + expected);
    EXPECT_EQ(tool("records sheet.xsl two.xml -e r --expression 'x=count(//i) + 1'").output,
              tool("transform sheet.xsl one.xml --number x=2").output +
                  tool("transform sheet.xsl one.xml -p x=2").output);
}

TEST_F(RecordsCommandTest, GivesTheResultsInTheOrderOfTheSource) {
    const int COUNT = isUnderAMemoryChecker() ? 500 : 5'000;
    writeRecords("many.xml", COUNT, std::string(50, 'x'));
    for (const char* jobs : {"1", "2", "5"}) {
        const Outcome outcome =
            tool("records number.xsl many.xml -e r -o out -j " + std::string(jobs));
        EXPECT_EQ(outcome.error, "");
        EXPECT_TRUE(file("out") == numbers(1, COUNT)) << jobs;
    }
}

TEST_F(RecordsCommandTest, CanPutAnElementAroundAllResults) {
    writeRecords("three.xml", 3);
    m_folder.write("declared.xsl", stylesheet("<xsl:output encoding='ISO-8859-1'/><xsl:template "
                                              "match='/'><b>\xC3\xBC</b></xsl:template>"));
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>";
    EXPECT_EQ(tool("records declared.xsl three.xml -e r").output, declaration + "<b>\xFC</b>" +
                                                                      declaration + "<b>\xFC</b>" +
                                                                      declaration + "<b>\xFC</b>");
    EXPECT_EQ(tool("records declared.xsl three.xml -e r --wrap all").output,
              declaration + "<all><b>\xFC</b><b>\xFC</b><b>\xFC</b></all>\n");
    EXPECT_EQ(tool("records number.xsl three.xml -e r --wrap all").output,
              "<all>" + numbers(1, 3) + "</all>\n");
    EXPECT_EQ(tool("records number.xsl three.xml -e none --wrap all").output, "<all></all>\n");
    m_folder.write("wide.xsl", stylesheet("<xsl:output encoding='UTF-16'/><xsl:template "
                                          "match='/'><b/></xsl:template>"));
    const Outcome wide = tool("records wide.xsl three.xml -e r --wrap all -o out");
    EXPECT_EQ(wide.status, 1);
    EXPECT_EQ(wide.error,
              "vexa-xslt: three.xml: --wrap cannot put an element around results in UTF-16\n");
    EXPECT_FALSE(std::filesystem::exists(m_folder.path("out")));
}

TEST_F(RecordsCommandTest, ReportsARecordThatFailsAndGoesOn) {
    writeSheetForThird("<xsl:message terminate='yes'>no three</xsl:message>");
    const std::string reason =
        "third.xsl:1:" + std::to_string(file("third.xsl").find("<xsl:message") + 1) + ": no three";
    expectThirdFails(tool("records third.xsl all.xml -e r -j 1"), reason);
    expectThirdFails(tool("records third.xsl all.xml -e r -j 3"), reason);
    const Outcome outcome = tool("records third.xsl all.xml -e r -o out");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(file("out"), numbers(1, 2) + numbers(4, 10));
    EXPECT_NE(tool("records third.xsl all.xml -e r --excerpt").error.find("no three\n"),
              std::string::npos);
}

TEST_F(RecordsCommandTest, KeepsWhatCameBeforeTheSourceBreaksOff) {
    const Outcome cut = shell("head -c 45 all.xml >cut.xml; vexa-xslt records number.xsl cut.xml "
                              "-e r -o out --wrap all");
    EXPECT_EQ(cut.status, 1);
    EXPECT_EQ(file("out"), "<all>" + numbers(1, 2) + "</all>\n");
    EXPECT_TRUE(std::regex_match(cut.error, std::regex("vexa-xslt: cut.xml:4:[0-9]+: [^\n]+\n"
                                                       "vexa-xslt: 2 of 2 records done, then the "
                                                       "source broke off\n")))
        << cut.error;
    m_folder.write("empty.xml", "");
    expectFailure(tool("records number.xsl empty.xml -e r --quiet 2>&1 >out | head -1 >&2; exit 1"),
                  1, "empty.xml:");
}

TEST_F(RecordsCommandTest, WarnsWhereThereIsNoRecord) {
    const Outcome outcome = tool("records number.xsl all.xml -e '{urn:x}r'");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "vexa-xslt: all.xml: warning: no element '{urn:x}r'\n");
}

/** The third record comes to a pipe, so that its process can be caught there. */
TEST_F(RecordsCommandTest, ACrashCostsOneRecord) {
    writeSheetForThird("<xsl:value-of select=\"document('pipe')\"/>");
    const std::pair<const char*, const char*> crashes[] = {
        {"SEGV", "the engine crashed (SIGSEGV)"},
        {"ABRT", "the engine crashed (SIGABRT)"},
        {"KILL", "killed from outside (SIGKILL), perhaps because memory ran out"}};
    for (const auto& [signal, cause] : crashes) {
        for (const char* jobs : {"1", "2"}) {
            SCOPED_TRACE(signal + std::string(jobs));
            expectThirdFails(
                shell("rm -f pipe; mkfifo pipe; vexa-xslt records third.xsl all.xml -e r -j " +
                      std::string(jobs) +
                      " & tool=$!; exec 3>pipe; read -r reader </proc/$tool/task/$tool/children; "
                      "for child in $(cat /proc/$reader/task/$reader/children); do "
                      "[ \"$(readlink /proc/$child/fd/* | grep -c /pipe)\" != 0 ] && kill -" +
                      std::string(signal) + " $child; done; exec 3>&-; wait $tool"),
                cause);
        }
    }
}

TEST_F(RecordsCommandTest, SurvivesAnEndlessRecursion) {
    writeSheetForThird("<xsl:call-template name='deep'/>");
    const std::string sheet = file("third.xsl");
    m_folder.write("third.xsl",
                   sheet.substr(0, sheet.rfind("</xsl:stylesheet>")) +
                       "<xsl:template name='deep'><xsl:call-template name='deep'/></xsl:template>"
                       "</xsl:stylesheet>");
    const Outcome outcome = tool("records third.xsl all.xml -e r --max-depth 1000");
    EXPECT_EQ(outcome.output, numbers(1, 2) + numbers(4, 10));
    EXPECT_NE(outcome.error.find("the depth limit of 1000 was reached (--max-depth)"),
              std::string::npos)
        << outcome.error;
}

TEST_F(RecordsCommandTest, HoldsTheLimitsForEachRecord) {
    std::string items;
    for (int i = 0; i < 3000; ++i) {
        items += "<i/>";
    }
    m_folder.write("slow.xsl",
                   stylesheet("<xsl:output omit-xml-declaration='yes'/><xsl:template match='/'>"
                              "<b><xsl:if test='//i[count(//i[count(//i) = 0]) = 0]'/>"
                              "<xsl:value-of select='r/@n'/></b></xsl:template>"));
    m_folder.write("slow.xml", "<all><r n='1'/>\n<r n='2'>" + items + "</r>\n<r n='3'/></all>");
    Outcome outcome = tool("records slow.xsl slow.xml -e r --max-seconds 1");
    EXPECT_EQ(outcome.output, "<b>1</b><b>3</b>");
    EXPECT_EQ(outcome.error.rfind("vexa-xslt: slow.xml:2: record 2: ", 0), 0U) << outcome.error;
    EXPECT_NE(outcome.error.find("time limit of 1 s exceeded (--max-seconds)"), std::string::npos)
        << outcome.error;
    outcome = tool("records number.xsl large.xml -e r --max-memory 8");
    std::string large;
    for (int i = 0; i < 100'000; ++i) {
        large += "<e>text</e>";
    }
    m_folder.write("large.xml", "<all><r n='1'/>\n<r n='2'>" + large + "</r>\n<r n='3'/></all>");
    outcome = tool("records number.xsl large.xml -e r --max-memory 8");
    EXPECT_EQ(outcome.output, "<b>1</b><b>3</b>");
    EXPECT_EQ(outcome.error, "vexa-xslt: large.xml:2: record 2: memory limit of 8 MiB exceeded "
                             "(--max-memory)\nvexa-xslt: 2 of 3 records done\n");
}

TEST_F(RecordsCommandTest, PrintsMessagesWithTheNameOfTheSource) {
    writeSheetForThird("<xsl:message>two\nlines</xsl:message>");
    const Outcome outcome = tool("records third.xsl all.xml -e r");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, "all.xml: two\nall.xml: lines\n");
    EXPECT_EQ(tool("records third.xsl all.xml -e r --quiet").error, "");
    EXPECT_TRUE(std::regex_search(tool("records number.xsl all.xml -e r --timing").error,
                                  std::regex("records +[0-9.]+ ms")));
}

/** By standard input, and by the name of a pipe. Nothing waits for more than it needs. */
TEST_F(RecordsCommandTest, GivesResultsWhileTheSourceIsStillComing) {
    // The pipes are opened in the order in which the other side opens them.
    for (const auto& [source, pipes] :
         {std::pair("<in", "3>in 4<out"), std::pair("in", "4<out 3>in")}) {
        const Outcome outcome = shell(
            "rm -f in out; mkfifo in out; vexa-xslt records number.xsl -j 2 -e r " +
            std::string(source) + " >out 2>told & exec " + pipes +
            "; echo \"<all><r n='1'/><r n='2'/><r n='3'/>\" >&3; "
            "read -r -N 24 -t 20 first <&4; echo \"got $first\"; echo \"<r n='4'/>\" >&3; read -r "
            "-N 8 -t 20 next <&4; echo \"got $next\"; echo \"<r n='5'/></all>\" >&3; exec "
            "3>&-; cat <&4; wait");
        EXPECT_EQ(outcome.output, "got <b>1</b><b>2</b><b>3</b>\ngot <b>4</b>\n<b>5</b>") << source;
    }
}

/** Nothing more is read than the pipe has room for, and some chunks. */
TEST_F(RecordsCommandTest, WaitsForAReaderThatDoesNotRead) {
    m_folder.write("copy.xsl",
                   stylesheet("<xsl:template match='/'><xsl:copy-of select='.'/></xsl:template>"));
    // Each process ends with a search for leaks.
    const int COUNT = isUnderAMemoryChecker() ? 2'000 : 20'000;
    writeRecords("long.xml", COUNT, std::string(1000, 'x'));
    const Outcome outcome =
        shell("mkfifo out; vexa-xslt records copy.xsl long.xml -e r -j 2 >out & "
              "exec 4<out; sleep 2; for f in /proc/[0-9]*/fd/*; do "
              "[ \"$(readlink $f)\" = \"$PWD/long.xml\" ] && sed -n 's/^pos:\t//p' "
              "${f/\\/fd\\//\\/fdinfo\\/}; "
              "done 2>/dev/null | sort -n | tail -1; cat <&4 | wc -c; wait");
    std::istringstream lines(outcome.output);
    std::size_t position = 0;
    std::size_t size = 0;
    lines >> position >> size;
    EXPECT_GT(position, 0U);
    EXPECT_LT(position, 10'000'000U);
    EXPECT_GT(size, static_cast<std::size_t>(COUNT) * 1000);
}

TEST_F(RecordsCommandTest, LeavesNothingHalfWritten) {
    writeSheetForThird("<xsl:value-of select=\"document('pipe')\"/>");
    m_folder.write("out", "before");
    // A name of its own: other tests may run beside this one.
    const Outcome interrupted =
        shell("mkfifo pipe; ln -s all.xml interrupted.xml; tool='records third.xsl "
              "interrupted.xml'; vexa-xslt $tool -e r -o out & pid=$!; exec 3>pipe; "
              "kill -TERM $pid; wait $pid; kill -l $?; exec 3>&-; ls -A | grep '^[.]'; "
              "for i in $(seq 100); do pgrep -f \"^vexa-xslt $tool\" >/dev/null || break; "
              "sleep 0.05; done; pgrep -f \"^vexa-xslt $tool\"");
    EXPECT_EQ(interrupted.output, "TERM\n");
    EXPECT_EQ(file("out"), "before");
    const Outcome full = tool("records number.xsl all.xml -e r >/dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.error, "vexa-xslt: standard output: No space left on device\n");
    const Outcome limited =
        shell("ulimit -f 1; vexa-xslt records third.xsl big.xml -e r -o out 2>&1; exit 1");
    EXPECT_EQ(limited.status, 1);
    EXPECT_EQ(file("out"), "before");
    expectFailure(tool("records number.xsl all.xml -e r -o none/out"), 1, "none/out: cannot ");
}

TEST_F(RecordsCommandTest, WritesFurtherResults) {
    m_folder.write(
        "further.xsl",
        stylesheet("<xsl:template match='/'><e:document href='{r/@n}.txt' method='text' "
                   "xmlns:e='http://exslt.org/common' xsl:extension-element-prefixes='e'>"
                   "<xsl:value-of select='r/@n'/></e:document></xsl:template>"));
    const Outcome outcome =
        tool("records further.xsl all.xml -e r --documents docs >/dev/null; cd docs; cat $(ls -v)");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.output, "12345678910");
}

TEST_F(RecordsCommandTest, ShowsHowMuchIsReadOnATerminal) {
    writeSheetForThird("<xsl:value-of select=\"document('pipe')\"/>");
    m_folder.write("command", "stty cols 60; vexa-xslt records third.xsl all.xml -e r -o out");
    const std::string text = shell("mkfifo pipe; (exec 3>pipe; sleep 2; echo '<a/>' >&3) & "
                                   "TERM=xterm script -qec 'bash command' /dev/null; wait")
                                 .output;
    EXPECT_TRUE(std::regex_search(text, std::regex("\r\033\\[K\\[=+>? *\\] [0-9]+ records")))
        << text;
    EXPECT_EQ(file("out"), numbers(1, 10));
}

TEST_F(RecordsCommandTest, WorksInTheSandbox) {
    const Outcome outcome = tool("records number.xsl all.xml -e r --sandbox -o out");
    if (outcome.error.find("Landlock") != std::string::npos) {
        GTEST_SKIP() << outcome.error;
    }
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(file("out"), numbers(1, 10));
}

TEST_F(RecordsCommandTest, TellsWhatIsWrongWithTheCommandLine) {
    expectFailure(tool("records number.xsl all.xml"), 2, "--element: ELEMENT is missing");
    for (const char* name : {"p:r", "''", "'a b'", "'{urn:x}'", "'{urn:x'", "'<'"}) {
        expectFailure(tool("records number.xsl all.xml -e " + std::string(name)), 2,
                      "-e: expected a local name, or {uri}name, got ");
    }
    expectFailure(tool("records number.xsl all.xml -e r --wrap 'a b'"), 2,
                  "--wrap: expected the name of an element without a prefix, got 'a b'");
    expectFailure(tool("records - - -e r"), 2, "-: standard input can be read only once");
    expectFailure(tool("records number.xsl all.xml -e r -j 0"), 2, "--jobs: expected an integer");
    expectFailure(tool("records number.xsl all.xml -e r -o ''"), 2, "-o: empty file name");
    expectFailure(tool("records none.xsl all.xml -e r"), 1, "none.xsl: cannot open: ");
    expectFailure(tool("records number.xsl none.xml -e r"), 1, "none.xml: cannot open: ");
    m_folder.write("bad.xsl", "<xsl:stylesheet");
    expectFailure(tool("records bad.xsl all.xml -e r -o out"), 1, "bad.xsl:1:");
}
