#include "TestingTest.h"

#include <algorithm>
#include <utility>
#include <vector>

/** What test files say, and how wrong ones are refused. */
class TestFileTest : public TestingTest {
protected:
    /** Expects that a test file is refused in one line, and that the others are run. */
    void expectWrong(const std::string& cases, const std::string& reason) {
        SCOPED_TRACE(cases);
        writeTests("a.tests.xml", "copy.xsl", cases);
        writeTests("b.tests.xml", "copy.xsl", caseOf("b", "<a/>", "<expect xpath='a'/>"));
        const Outcome outcome = tool("test .");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "TAP version 13\n1..1\nok 1 - b.tests.xml: b\n");
        EXPECT_EQ(outcome.error, "vexa-xslt: a.tests.xml:" + reason + "\n");
    }
};

TEST_F(TestFileTest, ParametersKeepTheirTypes) {
    m_folder.write("type.xsl",
                   stylesheet("<xsl:param name='p'/><xsl:param name='x:q' xmlns:x='urn:q'/>"
                              "<xsl:template match='/'><r type='{exsl:object-type($p)}' p='{$p}' "
                              "q='{$x:q}' xmlns:x='urn:q'/></xsl:template>"));
    const std::pair<const char*, const char*> parameters[] = {
        {"value='it&apos;s &quot;3&quot;'", "/r[@type = 'string']/@p = concat('it', &quot;'&quot;, "
                                            "'s ', '&quot;3&quot;')"},
        {"number='3'", "/r[@type = 'number']/@p = 3"},
        {"number='-0.5'", "/r[@type = 'number']/@p = -0.5"},
        {"select='/a/b:b' xmlns:b='urn:b'", "/r[@type = 'node-set']/@p = 'x'"},
        {"select='1 = 1'", "/r[@type = 'boolean']/@p = 'true'"},
    };
    for (const auto& [attributes, expression] : parameters) {
        EXPECT_EQ(report("type.xsl", "<a><b xmlns='urn:b'>x</b></a>",
                         "<param name='p' " + std::string(attributes) +
                             "/><param name='{urn:q}q' value='7'/><expect xpath=\"" + expression +
                             "\"/><expect xpath='/r/@q = 7'/>"),
                  PASSED);
    }
}

TEST_F(TestFileTest, NamesAreRelativeToTheFile) {
    shell("mkdir -p tests/deep sheets; mv copy.xsl sheets; echo '<a>1</a>' >tests/in.xml; "
          "printf '<a>1</a>' >tests/deep/out.xml");
    writeTests("tests/deep/a.tests.xml", "../../sheets/copy.xsl",
               "<case name='c' source='../in.xml'><expect file='out.xml'/></case>\n");
    EXPECT_EQ(tool("test tests/deep/a.tests.xml").status, 0);
    EXPECT_EQ(shell("cd tests/deep; vexa-xslt test a.tests.xml").status, 0);
    EXPECT_EQ(tool("test \"$PWD\"/tests/deep/a.tests.xml").status, 0);
}

TEST_F(TestFileTest, AnInlineSourceHasTheBaseOfTheFile) {
    m_folder.write("read.xsl", stylesheet("<xsl:template match='/'><r><xsl:copy-of "
                                          "select=\"document('in.xml', /)\"/></r>"
                                          "</xsl:template>"));
    shell("mkdir tests; echo '<b>1</b>' >tests/in.xml");
    writeTests("tests/a.tests.xml", "../read.xsl",
               caseOf("c", "<?x y?><a/><!--z-->", "<expect xpath='/r/b = 1'/>"));
    EXPECT_EQ(tool("test tests").output, "TAP version 13\n1..1\nok 1 - tests/a.tests.xml: c\n");
}

TEST_F(TestFileTest, FoldersAreSearchedToAnyDepth) {
    shell("mkdir -p a/b/c 'a/d e'; touch a/b/tests.xml a/.tests.xml; mkdir a/folder.tests.xml");
    for (const char* name : {"z.tests.xml", "a/b/c/y.tests.xml", "a/d e/x.tests.xml"}) {
        m_folder.write(name, "<tests xmlns='http://vexa.example/xslt/test' stylesheet='" +
                                 m_folder.path("copy.xsl") + "'>" +
                                 caseOf("c", "<a/>", "<expect xpath='a'/>") + "</tests>");
    }
    EXPECT_EQ(tool("test .").output, "TAP version 13\n1..3\nok 1 - a/b/c/y.tests.xml: c\n"
                                     "ok 2 - a/d e/x.tests.xml: c\nok 3 - z.tests.xml: c\n");
    EXPECT_EQ(tool("test z.tests.xml a/b").output,
              "TAP version 13\n1..2\nok 1 - z.tests.xml: c\nok 2 - a/b/c/y.tests.xml: c\n");
}

TEST_F(TestFileTest, WithoutAnyThereIsAnError) {
    shell("mkdir empty; touch empty/a.xml");
    const Outcome empty = tool("test empty");
    EXPECT_EQ(empty.status, 2);
    EXPECT_EQ(empty.output, "TAP version 13\n1..0\n");
    EXPECT_EQ(empty.error, "vexa-xslt: empty: there is no file *.tests.xml in this folder\n");
    writeTests("a.tests.xml", "copy.xsl", "");
    const Outcome missing = tool("test b.tests.xml a.tests.xml");
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.output, "TAP version 13\n1..0\n");
    EXPECT_EQ(missing.error, "vexa-xslt: b.tests.xml: No such file or directory, did you mean "
                             "'a.tests.xml'?\n");
    EXPECT_EQ(tool("test a.tests.xml").status, 0) << "a file without cases";
    expectFailure(tool("test"), 2, "PATH");
    expectFailure(tool("test ''"), 2, "'': empty file name");
}

/** Nobody can read a folder by a name that is too long, also not root. */
TEST_F(TestFileTest, AFolderThatCannotBeReadHidesNoOther) {
    writeTests("a.tests.xml", m_folder.path("copy.xsl"),
               caseOf("c", "<a/>", "<expect xpath='a'/>"));
    const Outcome outcome = shell(
        "mkdir -p d/sub; cp a.tests.xml d; cp a.tests.xml d/sub; cd d; name=$(printf %0250d); "
        "for i in {1..17}; do mkdir $name; cd -P $name; done; cd " +
        m_folder.path(".") + "; vexa-xslt test d; status=$?; rm -r d; exit $status");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error.rfind("vexa-xslt: d/0000", 0), 0U) << outcome.error;
    EXPECT_NE(outcome.error.find("0: File name too long\n"), std::string::npos) << outcome.error;
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1);
    EXPECT_EQ(outcome.output,
              "TAP version 13\n1..2\nok 1 - d/a.tests.xml: c\nok 2 - d/sub/a.tests.xml: c\n");
}

TEST_F(TestFileTest, WrongOnesAreRefusedWithTheLine) {
    const std::string good = "<case name='good' source='ok.xml'><expect xpath='b'/></case>\n";
    const auto inCase = [](const std::string& content) {
        return "<case name='c'>\n<source xmlns=''><a><expect/></a></source>\n" + content +
               "</case>\n";
    };
    const std::vector<std::pair<std::string, std::string>> files = {
        {good + "<cases/>", "3: <tests> has no element <cases>, did you mean 'case'?"},
        {good + "text", "1: <tests> has no text, got 'text'"},
        {good + "<case source='ok.xml'><expect xpath='b'/></case>",
         "3: <case> needs the attribute 'name'"},
        {good + "<case name='x'\nsource='ok.xml'\nsources='b'/>",
         "3: <case> has no attribute 'sources', did you mean 'source'?"},
        {good + good, "3: there are two cases 'good'"},
        {"<case name='c'><expect xpath='b'/></case>",
         "2: the case 'c' has no source: an attribute 'source', or an element <source>"},
        {"<case name='c' source='ok.xml'>\n<source xmlns=''><a/></source></case>",
         "3: the case 'c' has two sources"},
        {"<case name='c' source='okk.xml'/>",
         "2: there is no file 'okk.xml', did you mean 'ok.xml'?"},
        {"<case name='c' source=''/>", "2: the attribute 'source' names no file"},
        {"<case name='c'><source><a/></source></case>",
         "2: <a> is in the namespace of the test file: write <source xmlns=\"\">"},
        {"<case name='c'>\n<source xmlns=''><a/><b/></source></case>",
         "3: <source> has one element, which is the document"},
        {"<case name='c'>\n<source xmlns=''>text<a/></source></case>",
         "3: <source> has one element, which is the document"},
        {"<case name='c'>\n<source x=''><a/></source></case>", "3: <source> has no attribute 'x'"},
        {"<case name='c' source='ok.xml'/>", "2: the case 'c' has no <expect>"},
        {inCase("<expect xpath='a'/>\n<expected/>"), "5: <case> has no element <expected>, did you "
                                                     "mean 'expect'?"},
        {inCase("<x:expect xmlns:x='urn:x'/>"),
         "4: <case> has no element <x:expect> of the namespace 'urn:x'"},
        {inCase("<param value='a'/>"), "4: <param> needs the attribute 'name'"},
        {inCase("<param name='a'/>"),
         "4: <param> has one of the attributes 'value', 'number' and 'select'"},
        {inCase("<param name='a' value='' select='1'/>"),
         "4: <param> has one of the attributes 'value', 'number' and 'select'"},
        {inCase("<param name='a' number='x'/>"), "4: <param> a=x: expected a number, got 'x'"},
        {inCase("<param name='a b' value='x'/>"),
         "4: <param> a b=x: expected a name such as title or {urn:example}title, got 'a b'"},
        {inCase("<param name='a=b' value='x'/>"), "4: <param> a=b: a name has no ="},
        {inCase("<param name='a' value='x'/>\n<param name='a' number='1'/>"),
         "5: there are two parameters 'a'"},
        {inCase("<expect/>"),
         "4: <expect> has one of the attributes 'file', 'xpath', 'message' and 'error'"},
        {inCase("<expect xpath='a' message='b'/>"),
         "4: <expect> has one of the attributes 'file', 'xpath', 'message' and 'error'"},
        {inCase("<expect file='none.xml'/>"), "4: there is no file 'none.xml'"},
        {inCase("<expect file='.'/>"), "4: '.' is no regular file"},
        {inCase("<expect file='http://host.invalid/a.xml'/>"),
         "4: 'http://host.invalid/a.xml' is no regular file"},
        {inCase("<expect file='ok.xml' as='html'/>"), "4: expected as=\"xml\", got as=\"html\""},
        {inCase("<expect xpath='a' as='xml'/>"),
         "4: the attribute 'as' belongs to 'file', and not to 'xpath'"},
        {inCase("<expect message='a' text='b'/>"),
         "4: the attribute 'text' belongs to 'error', and not to 'message'"},
        {inCase("<expect error='Terminate'/>"),
         "4: there is no error of kind 'Terminate', did you mean 'Terminated'?"},
        {inCase("<expect error='Crash'/>\n<expect xpath='b'/>"),
         "2: the case 'c' expects an error and a result"},
    };
    for (const auto& [cases, reason] : files) {
        expectWrong(cases, reason);
    }
}

TEST_F(TestFileTest, WrongExpressionsAreRefused) {
    for (const char* element : {"<expect xpath=", "<param name='p' select="}) {
        for (const char* expression : {"'a['", "'none:a'", "''"}) {
            writeTests("a.tests.xml", "copy.xsl",
                       caseOf("c", "<a/>", "\n" + std::string(element) + expression + "/>"));
            const Outcome outcome = tool("test a.tests.xml");
            EXPECT_EQ(outcome.status, 2);
            EXPECT_EQ(outcome.error.rfind("vexa-xslt: a.tests.xml:3: wrong expression " +
                                              std::string(expression) + ": ",
                                          0),
                      0U)
                << outcome.error;
        }
    }
}

TEST_F(TestFileTest, OtherDocumentsAreRefused) {
    m_folder.write("a.tests.xml", "\n<tests stylesheet='copy.xsl'/>");
    EXPECT_EQ(tool("test a.tests.xml").error,
              "vexa-xslt: a.tests.xml:2: expected <tests "
              "xmlns=\"http://vexa.example/xslt/test\">, got <tests>\n");
    m_folder.write("a.tests.xml", "<tests>\n</test>");
    const Outcome outcome = tool("test a.tests.xml");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error.rfind("vexa-xslt: a.tests.xml:2:", 0), 0U) << outcome.error;
    writeTests("a.tests.xml", "none.xsl", "");
    EXPECT_EQ(tool("test a.tests.xml").error,
              "vexa-xslt: a.tests.xml:1: there is no file 'none.xsl'\n");
    m_folder.write("a.tests.xml", "<tests xmlns='http://vexa.example/xslt/test'/>");
    EXPECT_EQ(tool("test a.tests.xml").error,
              "vexa-xslt: a.tests.xml:1: <tests> needs the attribute 'stylesheet'\n");
}
