#include "ToolTest.h"
#include "support/MemoryChecker.h"

#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

/** Catalogs that map http://x/ to the folder "files" next to them, for all that can be asked for.
 */
class ToolCatalogTest : public ToolTest {
protected:
    ToolCatalogTest() {
        shell("mkdir files");
        m_folder.write("catalog.xml",
                       "<catalog xmlns='urn:oasis:names:tc:entity:xmlns:xml:catalog'>"
                       "<public publicId='-//A//DTD A//EN' uri='files/a.dtd'/>"
                       "<rewriteSystem systemIdStartString='http://x/' rewritePrefix='files/'/>"
                       "<uri name='http://y/far.xml' uri='http://127.0.0.1:9/far.xml'/>"
                       "</catalog>");
        m_folder.write("files/a.dtd", "<!ENTITY e SYSTEM 'http://x/e.txt'>");
        m_folder.write("files/e.txt", "entity");
        m_folder.write("files/data.xml", "<d>data</d>");
        m_folder.write("files/part.xsl",
                       stylesheetWithRootTemplate("<b><xsl:value-of select='/'/> <xsl:value-of "
                                                  "select=\"document('data.xml')\"/></b>"));
        m_folder.write("source.xml", "<!DOCTYPE a PUBLIC '-//A//DTD A//EN' 'none.dtd'><a>&e;</a>");
        m_folder.write("include.xsl", stylesheet("<xsl:include href='http://x/part.xsl'/>"));
    }

    /** Runs the program with the catalog. */
    Outcome withCatalog(const std::string& arguments) {
        return shell("export XML_CATALOG_FILES=\"$PWD/catalog.xml\"; vexa-xslt " + arguments);
    }
};

TEST_F(ToolCatalogTest, AreAskedByEveryCommand) {
    for (const char* arguments :
         {"transform include.xsl source.xml", "transform http://x/part.xsl source.xml",
          "transform include.xsl <source.xml", "transform include.xsl source.xml --isolate",
          "chain source.xml http://x/part.xsl",
          "batch http://x/part.xsl source.xml -d out --quiet; cat out/source.out"}) {
        const auto outcome = withCatalog(arguments);
        EXPECT_EQ(outcome.status, 0) << arguments;
        EXPECT_EQ(outcome.error, "") << arguments;
        EXPECT_EQ(outcome.output, "<b>entitydata</b>") << arguments;
    }
    EXPECT_EQ(withCatalog("xpath 'string(/)' source.xml").output, "entity\n");
    EXPECT_EQ(withCatalog("xpath 'string(/)' http://x/data.xml").output, "data\n");
    EXPECT_EQ(withCatalog("xpath 'string(document(\"http://x/data.xml\"))' ok.xml").output,
              "data\n");
}

TEST_F(ToolCatalogTest, AreNotAskedWithNoCatalogs) {
    expectFailure(withCatalog("transform include.xsl ok.xml --no-catalogs"), 1,
                  "include.xsl:", "network access denied: http://x/part.xsl\n");
    expectFailure(withCatalog("xpath / source.xml --no-catalogs"), 1, "source.xml:1:", "none.dtd");
    expectFailure(withCatalog("xpath / http://x/data.xml --no-catalogs"), 1,
                  "http://x/data.xml: ", "network access denied");
}

TEST_F(ToolCatalogTest, AreNoWayAroundWhatIsDenied) {
    expectFailure(withCatalog("xpath / source.xml --no-entities"), 1,
                  "source.xml:1:", "external entity access denied");
    expectFailure(withCatalog("xpath / http://y/far.xml"), 1, "http://127.0.0.1:9/far.xml: ",
                  "network access denied: http://127.0.0.1:9/far.xml\n");
}

TEST_F(ToolCatalogTest, ArePassedOverWhereTheyAreBroken) {
    m_folder.write("broken.xml", "<catalog");
    const auto outcome = shell("export XML_CATALOG_FILES=\"missing.xml broken.xml catalog.xml\"; "
                               "vexa-xslt xpath 'string(/)' http://x/data.xml");
    EXPECT_EQ(outcome.output, "data\n");
    EXPECT_EQ(outcome.error, "");
}

TEST_F(ToolCatalogTest, AnErrorInAMappedFileNamesThatFile) {
    m_folder.write("files/part.xsl",
                   stylesheet("<xsl:template match='/'><xsl:if/></xsl:template>"));
    m_folder.write("files/data.xml", "<a><b></a>");
    expectFailure(withCatalog("transform http://x/part.xsl ok.xml"), 1, "files/part.xsl:1:");
    expectFailure(withCatalog("xpath / http://x/data.xml"), 1, "files/data.xml:1:");
}

/** No library is loaded for what is on this machine. */
TEST_F(ToolCatalogTest, AreNotLoadedForLocalFiles) {
    writeSheet("<xsl:copy-of select=\"document('files/data.xml')\"/>");
    const std::string load = "LD_DEBUG=files LD_DEBUG_OUTPUT=$PWD/loaded vexa-xslt transform ";
    EXPECT_EQ(shell(load + "sheet.xsl ok.xml; cat loaded.* | grep -c libxml2").output,
              "<d>data</d>0\n");
    EXPECT_NE(shell("export XML_CATALOG_FILES=\"$PWD/catalog.xml\"; rm loaded.*; " + load +
                    "include.xsl ok.xml >/dev/null; cat loaded.* | grep -c libxml2")
                  .output,
              "0\n");
}

TEST_F(ToolCatalogTest, WorkInTheSandbox) {
    if (syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) < 1) {
        GTEST_SKIP() << "this kernel offers no Landlock";
    }
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a leak checker reads the system's files when the process ends";
    }
    EXPECT_EQ(withCatalog("transform include.xsl source.xml --sandbox").output,
              "<b>entitydata</b>");
    EXPECT_EQ(withCatalog("transform ok.xsl ok.xml --sandbox --no-catalogs").output, "<b>x</b>");
    // What the catalog leads to has to be where files may be read.
    shell("mkdir own; cp ok.xml include.xsl own");
    expectFailure(withCatalog("transform own/include.xsl own/ok.xml --sandbox"), 1,
                  "own/include.xsl:1:", "file access denied: file://");
    if (access("/etc/xml/catalog", R_OK) == 0 &&
        access("/usr/share/xml/docbook/stylesheet/docbook-xsl/VERSION.xsl", R_OK) == 0) {
        const std::string arguments =
            "xpath 'count(/*)' http://docbook.sourceforge.net/release/xsl/current/VERSION.xsl";
        EXPECT_EQ(tool(arguments + " --sandbox").output, "1\n");
        EXPECT_EQ(tool(arguments).output, "1\n");
    }
}
