#include "ToolTest.h"
#include "support/MemoryChecker.h"

namespace {

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

/** Entities that stand for ten of the one before, and a text that is the last of them. */
std::string documentOfEntities(int levels) {
    std::string entities = "<!ENTITY e0 'lol'>";
    for (int i = 1; i <= levels; ++i) {
        entities += "<!ENTITY e" + std::to_string(i) + " '" +
                    repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    return "<!DOCTYPE a [" + entities + "]><a>&e" + std::to_string(levels) + ";</a>";
}

std::string documentOfAttributes(int number) {
    std::string attributes;
    for (int i = 0; i < number; ++i) {
        attributes += " a" + std::to_string(i) + "='x'";
    }
    return "<a" + attributes + "/>";
}

} // namespace

/** What a stranger may send, and that the program survives it. */
class HostileInputTest : public ToolTest {
protected:
    /** Expects one line of error, an earlier output as it was, and nothing left behind. */
    void expectSurvived(const std::string& arguments, const std::string& reason) {
        SCOPED_TRACE(arguments);
        m_folder.write("out", "earlier");
        const std::string before = m_folder.list();
        const Outcome outcome =
            shell("ulimit -c unlimited; timeout 60 vexa-xslt transform -o out " + arguments);
        expectFailure(outcome, 1, "", reason);
        EXPECT_EQ(file("out"), "earlier");
        EXPECT_EQ(m_folder.list(), before);
    }

    /** Expects it to take longer than a second. */
    void expectTooSlow(const std::string& arguments) {
        constexpr const char* REASON = ": it takes longer than the 1 s that --max-seconds allows\n";
        expectSurvived(arguments + " --max-seconds 1", REASON);
    }
};

TEST_F(HostileInputTest, ExpandingEntities) {
    m_folder.write("a.xml", documentOfEntities(9));
    expectTooSlow("ok.xsl a.xml");
    expectTooSlow("--xerces-dom ok.xsl a.xml");
}

TEST_F(HostileInputTest, AHundredThousandNestedElements) {
    m_folder.write("a.xml", repeated("<a>", 100'000) + repeated("</a>", 100'000));
    expectTooSlow("ok.xsl a.xml");
    expectTooSlow("--xerces-dom ok.xsl a.xml");
}

TEST_F(HostileInputTest, FiftyThousandAmpersandsInOneText) {
    m_folder.write("a.xml", "<a>" + repeated("&amp;", 50'000) + "</a>");
    for (const char* tree : {"", " --xerces-dom"}) {
        const auto outcome =
            tool("xpath 'string-length(/)' a.xml --max-seconds 30" + std::string(tree));
        EXPECT_EQ(outcome.output + outcome.error, "50000\n");
    }
}

TEST_F(HostileInputTest, TwentyThousandAttributes) {
    // Among the attributes, the engine's own tree counts the declaration of the prefix xml.
    m_folder.write("a.xml", documentOfAttributes(20'000));
    for (const char* tree : {"", " --xerces-dom"}) {
        const auto outcome =
            tool("xpath 'count(//@*[. = \"x\"])' a.xml --max-seconds 30" + std::string(tree));
        EXPECT_EQ(outcome.output + outcome.error, "20000\n");
    }
}

TEST_F(HostileInputTest, DeepParenthesesInAStylesheet) {
    writeSheet("<xsl:value-of select='" + repeated("(", 200'000) + "1" + repeated(")", 200'000) +
               "'/>");
    expectSurvived("sheet.xsl ok.xml --max-seconds 30", ": the engine overflowed its stack\n");
}

TEST_F(HostileInputTest, DeepParenthesesInAnExpression) {
    const auto outcome =
        tool("xpath '" + repeated("(", 50'000) + "1" + repeated(")", 50'000) + "' ok.xml");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error.rfind("vexa-xslt: ok.xml: ", 0), 0U) << outcome.error;
}

TEST_F(HostileInputTest, EndlessRecursion) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker needs all of the address space";
    }
    for (const char* recursion :
         {"<xsl:call-template name='again'/>", "<xsl:apply-templates select='.'/>"}) {
        m_folder.write("sheet.xsl", stylesheet("<xsl:template match='/' name='again'>" +
                                               std::string(recursion) + "</xsl:template>"));
        expectSurvived("sheet.xsl ok.xml --max-memory 128 --max-seconds 30",
                       "ok.xml: there is not enough memory: --max-memory allows 128 MiB\n");
    }
}

TEST_F(HostileInputTest, AnEndlessResult) {
    m_folder.write("a.xml", "<a>" + repeated("<i/>", 1'000) + "</a>");
    std::string content = "x";
    for (int i = 0; i < 6; ++i) {
        content = "<xsl:for-each select='//i'>" + content + "</xsl:for-each>";
    }
    writeSheet(content);
    expectTooSlow("sheet.xsl a.xml");
}

TEST_F(HostileInputTest, AnEndlessResultInAFileInMemory) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker needs all of the address space";
    }
    m_folder.write("a.xml", "<a>" + repeated("<i/>", 1'000) + "</a>");
    writeSheet("<r><xsl:for-each select='//i'><xsl:for-each select='//i'><l>" +
               std::string(10'000, 'x') + "</l></xsl:for-each></xsl:for-each></r>");
    // A source that is a URI takes the road over a file in memory.
    expectFailure(tool("transform sheet.xsl file://$PWD/a.xml --max-memory 128 --max-seconds 30"),
                  1, "standard output: ", "File too large");
}

TEST_F(HostileInputTest, AnEndlessDocumentBetweenTwoStylesheets) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker needs all of the address space";
    }
    m_folder.write("a.xml", "<a>" + repeated("<i/>", 1'000) + "</a>");
    writeSheet("<r><xsl:for-each select='//i'><xsl:for-each select='//i'><l><m/><m/></l>"
               "</xsl:for-each></xsl:for-each></r>");
    expectFailure(tool("chain a.xml sheet.xsl ok.xsl --max-memory 128 --max-seconds 30"), 1,
                  "a.xml: there is not enough memory: --max-memory allows 128 MiB\n");
}

TEST_F(HostileInputTest, ANumberThatTheEngineCannotWrite) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker ends the process before the engine does";
    }
    writeSheet("<xsl:value-of select='1 div 0." + std::string(120, '0') + "1'/>");
    expectSurvived("sheet.xsl ok.xml --max-seconds 30", ": the engine crashed (Aborted)\n");
}

TEST_F(HostileInputTest, StylesheetsThatCrashTheEngine) {
    constexpr const char* REASON = ": the engine crashed (Segmentation fault)\n";
    for (const char* content : {"<xsl:number level='any' from='x'/>",
                                "<xsl:variable name='v'><a/></xsl:variable><xsl:for-each "
                                "xmlns:xalan='http://xml.apache.org/xalan' "
                                "select='xalan:nodeset($v)'><xsl:number/></xsl:for-each>",
                                "<xsl:text unknown='x'>y</xsl:text>",
                                "<xsl:text disable-output-escaping='perhaps'>y</xsl:text>"}) {
        writeSheet(content);
        expectSurvived("sheet.xsl ok.xml --max-seconds 30", REASON);
    }
    m_folder.write("sheet.xsl", stylesheet("<xsl:template match='//'>x</xsl:template>"));
    expectSurvived("sheet.xsl ok.xml --max-seconds 30", REASON);
}

TEST_F(HostileInputTest, ADtdThatCrashesTheEngine) {
    m_folder.write("a.xml", "<!DOCTYPE a [<!NOTATION JPEG SYSTEM 'j'>"
                            "<!ENTITY pic SYSTEM '' NDATA JPEG>]><a/>");
    expectSurvived("ok.xsl a.xml --max-seconds 30",
                   "a.xml: the engine crashed (Segmentation fault)\n");
}
