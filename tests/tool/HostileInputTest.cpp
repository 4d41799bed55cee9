/**
 * @file
 * What docs/security.md lists, through each command, with limits set.
 */
#include "ToolTest.h"
#include "support/HostileWork.h"
#include "support/MemoryChecker.h"

#include <sstream>

namespace {

struct Row {
    const char* name;
    std::string sheet;
    std::string source;
    /** What the error says; empty where the work succeeds. */
    std::string text;
    /** Whether the source alone is enough. */
    bool isAboutSource;
};

std::string brackets(int depth) {
    return repeated("(", depth) + "1" + repeated(")", depth);
}

std::string nested(int depth) {
    return repeated("<a>", depth) + repeated("</a>", depth);
}

Row inSource(const char* name, const std::string& source, const std::string& text) {
    return {name, stylesheet("<xsl:template match='/'><b/></xsl:template>"), source, text, true};
}

Row inTemplate(const char* name, const std::string& content, const std::string& text) {
    return {name, stylesheetWithRootTemplate(content), manyItems(), text, false};
}

Row inSheet(const char* name, const std::string& content, const std::string& text) {
    return {name, stylesheet(content), "<a/>", text, false};
}

std::string entities() {
    std::string declarations = "<!ENTITY e0 'lol'>";
    for (int i = 1; i <= 9; ++i) {
        declarations += "<!ENTITY e" + std::to_string(i) + " '" +
                        repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    return "<!DOCTYPE a [" + declarations + "]><a>&e9;</a>";
}

std::string attributes() {
    std::string text;
    for (int i = 0; i < 20'000; ++i) {
        text += " n" + std::to_string(i) + "=''";
    }
    return "<a" + text + "/>";
}

std::string loops(std::string content) {
    for (int i = 0; i < 6; ++i) {
        content = "<xsl:for-each select='//i'>" + content + "</xsl:for-each>";
    }
    return content;
}

/** Writes further results. */
Row inDocuments(const char* name, const std::string& instructions, const std::string& text) {
    return inTemplate(name,
                      "<a xmlns:e='http://exslt.org/common' xsl:extension-element-prefixes='e'>" +
                          instructions + "</a>",
                      text);
}

std::string document(const std::string& href) {
    return "<e:document method='text' href='" + href + "'>x</e:document>";
}

std::vector<Row> rows() {
    return {
        inSource("AnExternalEntity",
                 "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><a>&e;</a>",
                 "external entity access denied: file:///etc/passwd"),
        inSource("ADtdOnTheNetwork", "<!DOCTYPE a SYSTEM 'http://host.example/a.dtd'><a/>",
                 "denied: http://host.example/a.dtd"),
        inSheet("AnIncludeOnTheNetwork", "<xsl:include href='http://host.example/i.xsl'/>",
                "network access denied: http://host.example/i.xsl"),
        inTemplate("ADocumentOnTheNetwork",
                   "<xsl:copy-of select=\"document('http://host.example/d.xml')\"/>",
                   "network access denied: http://host.example/d.xml"),
        inSource("EntityExpansion", entities(), " exceeded (--max-"),
        inSource("NestedElements", nested(100'000), "the depth limit of 1000"),
        inSource("ManyReferences", "<a>" + repeated("&amp;", 50'000) + "</a>", ""),
        inSource("ManyAttributes", attributes(), ""),
        inSource("AnEmptySystemIdentifier",
                 "<!DOCTYPE a [<!NOTATION JPEG SYSTEM 'j'><!ENTITY pic SYSTEM '' NDATA JPEG>]><a/>",
                 ""),
        inTemplate("DeepParentheses", "<xsl:value-of select='" + brackets(22'000) + "'/>",
                   "nested too deeply"),
        inTemplate("NestedElementsInAStylesheet", nested(100'000), "the depth limit of 1000"),
        inSheet("EndlessRecursion", endlessRecursion(), "the depth limit of 1000"),
        inTemplate("AnEndlessResult", loops("some text"),
                   "output limit of 1 MiB exceeded (--max-output)"),
        inTemplate("AnEndlessLoop", loops(""), "time limit of 2 s exceeded (--max-seconds)"),
        inTemplate("AnEndlessVariable",
                   "<xsl:variable name='v'>" + loops("<x/>") + "</xsl:variable>",
                   " exceeded (--max-"),
        inTemplate("ALargeNumber", "<xsl:value-of select='1 div 0." + repeated("0", 120) + "1'/>",
                   ""),
        inTemplate("AnUnknownAttributeOfText", "<xsl:text unknown='x'>y</xsl:text>", "'unknown'"),
        inTemplate("AWrongValueOfAnAttributeOfText",
                   "<xsl:text disable-output-escaping='perhaps'>y</xsl:text>",
                   "'disable-output-escaping'"),
        inSheet("AnIncompletePattern", "<xsl:template match='//'/>", "incomplete pattern '//'"),
        inTemplate("TheNumberOfARoot", "<xsl:number level='any' from='x'/>", ""),
        inTemplate("TheNumberOfAFragment",
                   "<xsl:variable name='v'><a/></xsl:variable><xsl:for-each "
                   "xmlns:exsl='http://exslt.org/common' "
                   "select='exsl:node-set($v)'><xsl:number/></xsl:for-each>",
                   ""),
        inDocuments("ADocumentElsewhere", document("new") + document("../x"),
                    "the document '../x' may not be written: it is not below the folder"),
        inDocuments("ADocumentOnADevice", document("new") + document("/dev/full"),
                    "the document '/dev/full' may not be written: it is not below the folder"),
        inDocuments("ADocumentTwice", document("new") + document("new"),
                    "the document 'new' is written twice"),
        inDocuments("AMillionDocuments",
                    "<xsl:for-each select='//i'><xsl:variable name='n' select='position()'/>"
                    "<xsl:for-each select='//i'>" +
                        document("{$n}-{position()}") + "</xsl:for-each></xsl:for-each>",
                    "Too many open files"),
        inSheet("AFunctionThatCallsItself",
                "<f:function name='m:f' xmlns:f='http://exslt.org/functions' xmlns:m='urn:m'>"
                "<a xsl:extension-element-prefixes='f'><f:result select='m:f()'/></a></f:function>"
                "<xsl:template match='/' xmlns:m='urn:m'>"
                "<xsl:value-of select='m:f()'/></xsl:template>",
                "the depth limit of 1000"),
        {"AnExpressionThatEvaluatesItself",
         stylesheetWithRootTemplate("<xsl:value-of xmlns:dyn='http://exslt.org/dynamic' "
                                    "select='dyn:evaluate(string(a))'/>"),
         "<a xmlns:dyn='http://exslt.org/dynamic'>dyn:evaluate(string(a))</a>",
         "sheet.xsl:1:", false},
    };
}

constexpr const char* LIMITS =
    " --no-entities --max-memory 32 --max-seconds 2 --max-output 1 --max-depth 1000";

class HostileInputTest : public ToolTest, public ::testing::WithParamInterface<Row> {
protected:
    HostileInputTest() {
        m_folder.write("sheet.xsl", GetParam().sheet);
        m_folder.write("a.xml", GetParam().source);
        m_folder.write("out", "earlier");
    }

    void SetUp() override {
        if (isUnderAMemoryChecker() && GetParam().text == std::string("Too many open files")) {
            GTEST_SKIP() << "a sanitizer opens a file to look at an object";
        }
    }

    Outcome run(const std::string& arguments) {
        return shell("ulimit -c unlimited; ulimit -n 200; timeout 60 vexa-xslt " + arguments +
                     LIMITS);
    }

    static void expectOneLine(const Outcome& outcome) {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.error.rfind("vexa-xslt: ", 0), 0U) << outcome.error;
        EXPECT_EQ(outcome.error.find('\n'), outcome.error.size() - 1) << outcome.error;
        EXPECT_NE(outcome.error.find(GetParam().text), std::string::npos) << outcome.error;
    }

    /** The error is one line, an earlier output stays as it was, and nothing is left behind. */
    void expectSurvived(const std::string& arguments) {
        SCOPED_TRACE(arguments);
        const std::string before = m_folder.list();
        const Outcome outcome = run(arguments + " -o out");
        if (GetParam().text.empty()) {
            EXPECT_EQ(outcome.status, 0) << outcome.error;
            EXPECT_NE(file("out"), "earlier");
        } else {
            expectOneLine(outcome);
            EXPECT_EQ(file("out"), "earlier");
        }
        EXPECT_EQ(m_folder.list(), before);
    }
};

} // namespace

TEST_P(HostileInputTest, Transform) {
    expectSurvived("transform sheet.xsl a.xml");
}

TEST_P(HostileInputTest, Chain) {
    // What is refused as a source is refused as a stylesheet too.
    expectSurvived("chain a.xml sheet.xsl");
}

TEST_P(HostileInputTest, Batch) {
    shell("mkdir good pages; echo '<c/>' >good/c.xml");
    const std::string before = m_folder.list();
    const Outcome outcome = run("batch sheet.xsl a.xml -d pages -j 1");
    if (GetParam().text.empty()) {
        EXPECT_EQ(outcome.error, "vexa-xslt: 1 of 1 source done\n");
        return;
    }
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find(GetParam().text), std::string::npos) << outcome.error;
    EXPECT_EQ(shell("ls -A pages").output, "");
    EXPECT_EQ(m_folder.list(), before);
    if (GetParam().isAboutSource) {
        EXPECT_EQ(run("batch sheet.xsl a.xml good/c.xml -d pages -j 1").status, 1);
        EXPECT_EQ(shell("ls -A pages").output, "c.out\n");
    }
}

TEST_P(HostileInputTest, XPath) {
    // The document, or the stylesheet as a document.
    const bool isAboutSource = GetParam().isAboutSource;
    const std::string name = isAboutSource ? "a.xml" : "sheet.xsl";
    const Outcome outcome = run("xpath 'count(/*)' " + name);
    if (isAboutSource && !GetParam().text.empty()) {
        expectOneLine(outcome);
    } else if (outcome.status == 0) {
        EXPECT_EQ(outcome.output, "1\n");
    } else {
        EXPECT_STREQ(GetParam().name, "NestedElementsInAStylesheet");
        expectOneLine(outcome);
    }
}

INSTANTIATE_TEST_SUITE_P(, HostileInputTest, ::testing::ValuesIn(rows()),
                         [](const auto& row) { return std::string(row.param.name); });

using HostileExpressionTest = ToolTest;

TEST_F(HostileExpressionTest, IsRefusedOrStopped) {
    m_folder.write("items.xml", manyItems());
    expectFailure(tool("xpath '" + brackets(50'000) + "' ok.xml"), 1,
                  "expression: ", "nested too deeply");
    expectFailure(tool("xpath 'count(//i/preceding::*/following::*/preceding::*)' items.xml "
                       "--max-seconds 1"),
                  1, "expression: time limit of 1 s exceeded (--max-seconds)\n");
    expectFailure(tool("xpath \"document('http://host.example/')\" ok.xml"), 1,
                  "expression: ", "network access denied");
    expectFailure(
        tool("transform ok.xsl ok.xml --max-seconds 1 --expression p='" + brackets(50'000) + "'"),
        1, "expression: ", "nested too deeply");
}
