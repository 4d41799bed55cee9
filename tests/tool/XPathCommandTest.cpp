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
    // With the namespaces that are in scope, so that each can be parsed on its own.
    EXPECT_EQ(printed("//x"), "<x i=\"1\" xmlns:p=\"urn:p\">a<b/></x>\n"
                              "<x i=\"&lt;\" xmlns:p=\"urn:p\">\xCE\xB1</x>\n");
    EXPECT_EQ(tool("xpath //a ok.xml").output, "<a>x</a>\n");
    EXPECT_EQ(printed("//x/@i"), "1\n<\n");
    EXPECT_EQ(printed("//x[1]/@i"), "1\n");
    EXPECT_EQ(printed("//title | //comment()"),
              "<title xmlns:p=\"urn:p\">one</title>\n<!--note-->\n");
    EXPECT_EQ(printed("//empty"), "<empty xmlns:p=\"urn:p\"/>\n");
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
}

TEST_F(XPathCommandTest, PrintsWhateverKindOfNode) {
    EXPECT_EQ(printed("/"),
              "<r xmlns:p=\"urn:p\"><title>one</title><x i=\"1\">a<b/></x>"
              "<x i=\"&lt;\">\xCE\xB1</x><p:q>qualified</p:q><!--note--><empty/></r>\n");
    EXPECT_EQ(printed("//x/text()"), "a\n\xCE\xB1\n");
    EXPECT_EQ(printed("/r/namespace::p"), "urn:p\n");
}

TEST_F(XPathCommandTest, KnowsThePrefixesOfTheDocumentAndOthers) {
    m_folder.write("default.xml", "<r xmlns='urn:d'><i xmlns:q='urn:q'><q:j>inner</q:j></i></r>");
    EXPECT_EQ(tool("xpath 'string(//q:j)' default.xml").output, "inner\n");
    EXPECT_EQ(tool("xpath 'count(//i)' default.xml").output, "0\n");
    EXPECT_EQ(tool("xpath 'count(//d:i)' default.xml -n d=urn:d").output, "1\n");
    EXPECT_EQ(tool("xpath 'count(//d:i/descendant::e:j)' default.xml --namespace d=urn:d "
                   "-n e=urn:q")
                  .output,
              "1\n");
    // What is given on the command line comes before what the document declares.
    EXPECT_EQ(tool("xpath 'count(//q:i)' default.xml -n q=urn:d").output, "1\n");
    EXPECT_EQ(tool("xpath 'concat(\"q:j \", //q:j)' default.xml").output, "q:j inner\n");
    // A prefix is a name, of whatever letters.
    m_folder.write("names.xml", "<a xmlns:p_q.r-s='urn:p' xmlns:\xC3\xA4='urn:a'>"
                                "<p_q.r-s:b>1</p_q.r-s:b><\xC3\xA4:c>2</\xC3\xA4:c></a>");
    EXPECT_EQ(tool("xpath 'concat(//p_q.r-s:b, //\xC3\xA4:c)' names.xml").output, "12\n");
    expectFailure(tool("xpath '//a:' names.xml"), 1, "expression: ", "'a' is not declared");
    expectFailure(tool("xpath '//*[:b]' names.xml"), 1, "expression: ", "NCName");
    expectFailure(tool("xpath 'count(//e:i)' default.xml"), 1,
                  "expression: ", "'e' is not declared");
    for (const char* wrong : {"d", "=urn:d", "d=", "{u}d=urn:d", "1=urn:d"}) {
        expectFailure(tool("xpath / default.xml -n '" + std::string(wrong) + "'"), 2,
                      "-n " + std::string(wrong) + ": expected ");
    }
}

TEST_F(XPathCommandTest, ReportsFailuresInOneLine) {
    m_folder.write("bad.xml", "<a>");
    expectFailure(tool("xpath 'a[' ok.xml"), 1, "expression: ", "a[");
    expectFailure(tool("xpath '' ok.xml"), 1, "expression: The expression is empty.");
    expectFailure(tool("xpath 'p:a' ok.xml"), 1, "expression: ", "'p' is not declared");
    expectFailure(tool("xpath '$x' ok.xml"), 1, "expression: the variable 'x' is not declared\n");
    expectFailure(tool("xpath '1' bad.xml"), 1, "bad.xml:1:4: ");
    expectFailure(tool("xpath '1' <bad.xml"), 1, "-:1:4: ");
    expectFailure(tool("xpath '1' none.xml"), 1,
                  "none.xml: cannot open: No such file or directory");
    expectFailure(tool("xpath"), 2, "", "EXPRESSION");
    expectFailure(tool("xpath $'\\xff' ok.xml"), 2, "expression: the text is not valid UTF-8");
    m_folder.write("control.xml", "<?xml version='1.1'?><a b='&#2;'>&#1;x</a>");
    for (const char* expression : {"//a", "//@b | //a"}) { // one node, several
        const auto outcome = tool("xpath '" + std::string(expression) + "' control.xml");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.error.find("invalid"), std::string::npos) << outcome.error;
    }
    expectFailure(tool("xpath '//*' ok.xml >/dev/full"), 1,
                  "standard output: No space left on device\n");
}
