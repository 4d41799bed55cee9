#include "ToolTest.h"
#include "support/Listener.h"

/** Nothing is fetched without --network, however it is asked for. */
class NetworkTest : public ToolTest {
protected:
    NetworkTest() {
        const std::string address = m_server.address();
        m_folder.write("dtd.xml", "<!DOCTYPE a SYSTEM '" + address + "/a.dtd'><a>x</a>");
        m_folder.write("entity.xml",
                       "<!DOCTYPE a [<!ENTITY e SYSTEM '" + address + "/e'>]><a>&e;</a>");
        writeSheet("<b><xsl:value-of select=\"document('" + address + "/d.xml')\"/></b>");
        m_folder.write("include.xsl", stylesheet("<xsl:include href='" + address + "/i.xsl'/>"));
    }

    Outcome toolWithoutProxy(const std::string& arguments) {
        return shell("unset http_proxy all_proxy ALL_PROXY; vexa-xslt " + arguments);
    }

    /** Expects a page to be refused, and to be fetched with the option. */
    void expectRefused(const std::string& arguments, const std::string& page) {
        SCOPED_TRACE(arguments);
        const int before = m_server.requests();
        const Outcome outcome = toolWithoutProxy(arguments + " -o out");
        expectFailure(outcome, 1, "", ": network access denied: " + m_server.address() + page);
        EXPECT_EQ(m_server.requests(), before);
        EXPECT_EQ(m_folder.list().find("out"), std::string::npos);
        EXPECT_EQ(toolWithoutProxy(arguments + " --network").status, 0);
        EXPECT_GT(m_server.requests(), before);
        expectFailure(toolWithoutProxy(arguments + " --network --sandbox -o out"), 1, "", "denied");
    }

    Listener m_server{{{"/a.dtd", "<!ELEMENT a ANY>"},
                       {"/e", "from afar"},
                       {"/d.xml", "<d>from afar</d>"},
                       {"/i.xsl", stylesheetWithRootTemplate("<b>from afar</b>")}}};
};

TEST_F(NetworkTest, RefusesDtdsAndEntities) {
    expectRefused("transform ok.xsl dtd.xml", "/a.dtd");
    expectRefused("transform ok.xsl entity.xml", "/e");
    expectRefused("chain entity.xml ok.xsl", "/e");
    expectRefused("transform ok.xsl <entity.xml", "/e");
    expectFailure(toolWithoutProxy("xpath 'string(/)' entity.xml"), 1,
                  "entity.xml:1:", m_server.address() + "/e\n");
}

TEST_F(NetworkTest, RefusesStylesheetsAndWhatTheyAskFor) {
    expectRefused("transform sheet.xsl ok.xml", "/d.xml");
    expectRefused("chain ok.xml sheet.xsl", "/d.xml");
    expectRefused("transform include.xsl ok.xml", "/i.xsl");
    expectRefused("chain ok.xml include.xsl", "/i.xsl");
    expectRefused("transform " + m_server.address() + "/i.xsl ok.xml", "/i.xsl");
}

TEST_F(NetworkTest, RefusesASource) {
    expectRefused("transform ok.xsl " + m_server.address() + "/d.xml", "/d.xml");
    expectRefused("chain " + m_server.address() + "/d.xml ok.xsl", "/d.xml");
    EXPECT_EQ(
        toolWithoutProxy("xpath 'string(/)' --network " + m_server.address() + "/d.xml").output,
        "from afar\n");
}

/** Files outside of a document can be refused as well. */
TEST_F(NetworkTest, RefusesEntitiesInFilesToo) {
    m_folder.write("e.ent", "from a file");
    m_folder.write("local.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'e.ent'>]><a>&e;</a>");
    EXPECT_EQ(tool("xpath 'string(/)' local.xml").output, "from a file\n");
    expectFailure(tool("xpath 'string(/)' local.xml --no-entities"), 1,
                  "local.xml:1:48: external entity access denied: ", "e.ent\n");
}
