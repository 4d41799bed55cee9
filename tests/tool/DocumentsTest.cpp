#include "ToolTest.h"
#include "support/MemoryChecker.h"

/** Results beside the result: exsl:document. */
class DocumentsTest : public ToolTest {
protected:
    DocumentsTest() {
        writeDocuments("many.xsl",
                       "<m/><xsl:for-each select='//b'>" +
                           document("part/{.}.xml", "<d><xsl:value-of select='.'/></d>") +
                           "</xsl:for-each>");
        m_folder.write("source.xml", "<a><b>1</b><b>2</b></a>");
    }

    static std::string document(const std::string& href, const std::string& content) {
        return "<exsl:document href='" + href +
               "' omit-xml-declaration='yes' "
               "xmlns:exsl='http://exslt.org/common'>" +
               content + "</exsl:document>";
    }
    void writeDocuments(const std::string& name, const std::string& instructions) {
        m_folder.write(name, "<xsl:stylesheet version='1.0' xmlns:exsl='http://exslt.org/common' "
                             "xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
                             "extension-element-prefixes='exsl'>\n<xsl:template match='/'>" +
                                 instructions + "</xsl:template></xsl:stylesheet>");
    }
    /** All files below a folder, with what is in them. */
    std::string files(const std::string& folder) {
        return shell("cd " + folder +
                     " && find . -type f | LC_ALL=C sort | while read -r f; do "
                     "echo \"$f $(cat $f)\"; done")
            .output;
    }
};

TEST_F(DocumentsTest, GoBelowTheFolderOfTheResult) {
    shell("mkdir out");
    const Outcome outcome = tool("transform many.xsl source.xml -o out/m.xml");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(files("out/part"), "./1.xml <d>1</d>\n./2.xml <d>2</d>\n");
    EXPECT_EQ(file("out/m.xml"), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><m/>");
}

TEST_F(DocumentsTest, GoBelowTheFolderThatIsNamed) {
    EXPECT_EQ(tool("transform many.xsl source.xml --documents new/folder").status, 0);
    EXPECT_EQ(files("new"), "./folder/part/1.xml <d>1</d>\n./folder/part/2.xml <d>2</d>\n");
    EXPECT_EQ(tool("chain source.xml many.xsl --documents chain/ -o out").status, 0);
    EXPECT_EQ(files("chain"), "./part/1.xml <d>1</d>\n./part/2.xml <d>2</d>\n");
    EXPECT_EQ(tool("batch many.xsl source.xml -d batch").status, 0);
    EXPECT_EQ(files("batch/part"), "./1.xml <d>1</d>\n./2.xml <d>2</d>\n");
    EXPECT_EQ(tool("batch many.xsl source.xml -d batch2 --documents other --sandbox").status, 0);
    EXPECT_EQ(files("other"), "./part/1.xml <d>1</d>\n./part/2.xml <d>2</d>\n");
}

TEST_F(DocumentsTest, AreRefusedWhereNoFolderIsKnown) {
    for (const char* output : {"", " -o /dev/null", " --sandbox"}) {
        expectFailure(tool("transform many.xsl source.xml" + std::string(output)), 1, "many.xsl:2:",
                      "the document 'part/1.xml' may not be written without "
                      "--documents\n");
    }
}

TEST_F(DocumentsTest, AreRefusedWhereTheFolderCannotBe) {
    expectFailure(tool("transform many.xsl source.xml --documents source.xml/x"), 1,
                  "many.xsl:2:", "it is not below the folder source.xml/x\n");
    expectFailure(tool("transform many.xsl source.xml --documents source.xml"), 1,
                  "source.xml/part/1.xml: cannot open: Not a directory\n");
    EXPECT_EQ(file("source.xml"), "<a><b>1</b><b>2</b></a>");
}

TEST_F(DocumentsTest, NestedOnesAreRelativeToEachOther) {
    writeDocuments("nested.xsl", document("a/o.xml", "<o/>" + document("b/i.xml", "<i/>") +
                                                         document("../up.xml", "<u/>")) +
                                     document("next.xml", "<n/>"));
    EXPECT_EQ(tool("transform nested.xsl ok.xml --documents out -o m.xml").error, "");
    EXPECT_EQ(files("out"), "./a/b/i.xml <i/>\n./a/o.xml <o/>\n./next.xml <n/>\n./up.xml <u/>\n");
}

TEST_F(DocumentsTest, LeadNowhereElse) {
    shell("mkdir out far; ln -s ../far out/link; ln -s ../far/new out/dangling; mkfifo out/pipe; "
          "echo before >far/old");
    const std::string outside = m_folder.path("far/x.xml");
    for (const std::string& href :
         {std::string("../x.xml"), std::string("sub/../../x.xml"), outside, "file://" + outside,
          std::string("link/x.xml"), std::string("link/old"), std::string("dangling"),
          std::string("%2e%2e/x.xml"), std::string("http://localhost/x"), std::string("/dev/null"),
          std::string("pipe"), std::string("."), std::string("link")}) {
        writeDocuments("evil.xsl", document("good.xml", "<g/>") + "\n" + document(href, "<x/>"));
        for (const char* options : {"", " --sandbox"}) {
            expectFailure(tool("transform evil.xsl ok.xml -o out/m.xml" + std::string(options)), 1,
                          "evil.xsl:3:1: the document '" + href + "' may not be written: ");
            EXPECT_EQ(files("far"), "./old before\n") << href;
            EXPECT_EQ(files("out"), "") << href;
        }
    }
}

TEST_F(DocumentsTest, AppearAllOrNone) {
    shell("mkdir out; echo before >out/1.xml");
    const std::string one = document("1.xml", "<new/>");
    for (const std::string& end : {document("1.xml", "<x/>"), document("m.xml", "<x/>"),
                                   std::string("<xsl:message terminate='yes'>no</xsl:message>"),
                                   document("2.xml", std::string(2'000'000, 'x'))}) {
        writeDocuments("failing.xsl", one + end);
        EXPECT_EQ(tool("transform failing.xsl ok.xml -o out/m.xml --max-output 1").status, 1);
        EXPECT_EQ(files("out"), "./1.xml before\n");
    }
}

TEST_F(DocumentsTest, MayBeMany) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a sanitizer opens a file to look at an object";
    }
    writeDocuments("many.xsl", "<xsl:for-each select='//b'>" + document("{position()}", "x") +
                                   "</xsl:for-each>");
    std::string items;
    for (int i = 0; i < 3000; ++i) {
        items += "<b/>";
    }
    m_folder.write("source.xml", "<a>" + items + "</a>");
    EXPECT_EQ(
        shell("ulimit -Sn 100; vexa-xslt transform many.xsl source.xml --documents out").error, "");
    EXPECT_EQ(shell("ls out | wc -l").output, "3000\n");
    const Outcome few =
        shell("ulimit -n 100; vexa-xslt transform many.xsl source.xml --documents few");
    expectFailure(few, 1, "few/", ": Too many open files\n");
    EXPECT_EQ(shell("ls -A few | wc -l").output, "0\n");
}
