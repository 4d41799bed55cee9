#include "ToolTest.h"
#include "support/Listener.h"

/** With --no-network, nothing is fetched, however it is asked for. */
class NoNetworkTest : public ToolTest {
protected:
    NoNetworkTest() {
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

    /** Expects that the arguments fetch a page, and that with the option they fail instead. */
    void expectRefused(const std::string& arguments, const std::string& page) {
        SCOPED_TRACE(arguments);
        const int before = m_server.requests();
        EXPECT_EQ(toolWithoutProxy(arguments).status, 0);
        const int fetched = m_server.requests();
        EXPECT_GT(fetched, before);
        const Outcome outcome = toolWithoutProxy(arguments + " --no-network -o out");
        expectFailure(outcome, 1, m_server.address() + page + ": the network is not to be used\n");
        EXPECT_EQ(m_server.requests(), fetched);
        EXPECT_EQ(m_folder.list().find("out"), std::string::npos);
    }

    Listener m_server{{{"/a.dtd", "<!ELEMENT a ANY>"},
                       {"/e", "from afar"},
                       {"/d.xml", "<d>from afar</d>"},
                       {"/i.xsl", stylesheetWithRootTemplate("<b>from afar</b>")}}};
};

TEST_F(NoNetworkTest, RefusesDtdsAndEntities) {
    expectRefused("transform ok.xsl dtd.xml", "/a.dtd");
    expectRefused("transform ok.xsl entity.xml", "/e");
    expectRefused("transform --xerces-dom ok.xsl entity.xml", "/e");
    expectRefused("chain entity.xml ok.xsl", "/e");
    expectRefused("transform ok.xsl <entity.xml", "/e");
    expectFailure(toolWithoutProxy("xpath 'string(/)' entity.xml --no-network"), 1,
                  m_server.address() + "/e: ");
}

TEST_F(NoNetworkTest, RefusesStylesheetsAndWhatTheyAskFor) {
    expectRefused("transform sheet.xsl ok.xml", "/d.xml");
    expectRefused("chain ok.xml sheet.xsl", "/d.xml");
    expectRefused("transform include.xsl ok.xml", "/i.xsl");
    expectRefused("chain ok.xml include.xsl", "/i.xsl");
    expectRefused("transform " + m_server.address() + "/i.xsl ok.xml", "/i.xsl");
}

TEST_F(NoNetworkTest, RefusesASource) {
    expectRefused("transform ok.xsl " + m_server.address() + "/d.xml", "/d.xml");
}

TEST_F(NoNetworkTest, ReadsFilesAsEver) {
    EXPECT_EQ(tool("transform ok.xsl ok.xml --no-network").output, "<b>x</b>");
    EXPECT_EQ(tool("chain ok.xml ok.xsl --no-network").output, tool("chain ok.xml ok.xsl").output);
    EXPECT_EQ(tool("xpath 'string(/)' ok.xml --no-network").output, "x\n");
}
