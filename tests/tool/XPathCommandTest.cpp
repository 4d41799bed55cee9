#include "ToolTest.h"

#include <algorithm>

class XPathCommandTest : public ToolTest {
protected:
    XPathCommandTest() {
        m_folder.write(
            "some.xml",
            "<r xmlns:p='urn:p'><title>one</title><x i='1'>a<b/></x><x i='&lt;'>\xCE\xB1</x>"
            "<p:q>qualified</p:q><!--note--><empty/></r>");
    }

    std::string printed(const std::string& expression) {
        const auto outcome = tool("xpath '" + expression + "' some.xml");
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.error, "") << expression;
        return outcome.output;
    }
};

TEST_F(XPathCommandTest, PrintsAStringANumberOrABooleanAsItsText) {
    EXPECT_EQ(printed("string(//title[1])"), "one\n");
    EXPECT_EQ(printed("count(//x)"), "2\n");
    EXPECT_EQ(printed("1 div 4"), "0.25\n");
    EXPECT_EQ(printed("count(//x) = 2"), "true\n");
    EXPECT_EQ(printed("false()"), "false\n");
    EXPECT_EQ(printed("string(//none)"), "\n");
    EXPECT_EQ(printed("concat(\"a\", //x[2])"), "a\xCE\xB1\n");
}

TEST_F(XPathCommandTest, PrintsEachNodeOnALineOfItsOwn) {
    EXPECT_EQ(printed("//x"), "<x i=\"1\">a<b/></x>\n<x i=\"&lt;\">\xCE\xB1</x>\n");
    EXPECT_EQ(printed("//title"), "<title>one</title>\n");
    EXPECT_EQ(printed("//x/@i"), "1\n<\n");
    EXPECT_EQ(printed("//x[1]/@i"), "1\n");
    EXPECT_EQ(printed("//title | //comment()"), "<title>one</title>\n<!--note-->\n");
    EXPECT_EQ(printed("//empty"), "<empty/>\n");
    EXPECT_EQ(printed("//none"), "");
    EXPECT_EQ(printed("string(//p:q)"), "qualified\n");
}

TEST_F(XPathCommandTest, PrintsHoweverManyNodesThereAre) {
    std::string many = "<r>";
    for (int i = 0; i < 20'000; ++i) {
        many += "<i/>";
    }
    m_folder.write("many.xml", many + "</r>");
    const auto outcome = tool("xpath '//i' many.xml");
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 20'000);
}

TEST_F(XPathCommandTest, ReadsStandardInput) {
    EXPECT_EQ(tool("xpath 'string(/a)' <ok.xml").output, "x\n");
    EXPECT_EQ(tool("xpath 'string(/a)' - <ok.xml").output, "x\n");
    EXPECT_EQ(tool("xpath 'string(/a)' ok.xml --xerces-dom").output, "x\n");
}

TEST_F(XPathCommandTest, TellsOfFailuresInOneLine) {
    m_folder.write("bad.xml", "<a>");
    expectFailure(tool("xpath 'a[' ok.xml"), 1, "ok.xml: XSLException ", "a[");
    expectFailure(tool("xpath '' ok.xml"), 1, "ok.xml: XSLException ", "The expression is empty.");
    expectFailure(tool("xpath 'p:a' ok.xml"), 1, "ok.xml: XSLException ", "'p' is not declared");
    expectFailure(tool("xpath '1' bad.xml"), 1, "bad.xml: SAXParseException: ");
    expectFailure(tool("xpath '1' <bad.xml"), 1, "standard input: SAXParseException: ");
    expectFailure(tool("xpath '1' none.xml"), 1, "none.xml: No such file or directory");
    expectFailure(tool("xpath"), 2, "", "EXPRESSION");
    m_folder.write("control.xml", "<?xml version='1.1'?><a b='&#2;'>&#1;x</a>");
    for (const char* expression : {"//a", "//@b | //a"}) { // one node, several
        expectFailure(tool("xpath '" + std::string(expression) + "' control.xml"), 1,
                      "control.xml: SAXException: '", "' is an invalid Unicode scalar value.\n");
    }
    expectFailure(tool("xpath '//*' ok.xml >/dev/full"), 1, "standard output: ");
    expectFailure(tool("xpath \"$(printf '(%.0s' $(seq 30000))\" ok.xml"), 1,
                  "ok.xml: ", "nested too deeply");
}
