#include <vexa/VEXAXslTransformer.h>

#include "support/EngineTest.h"
#include "support/TestFiles.h"
#include "support/TestFunctions.h"
#include "support/VEXAXslTransformerInspector.h"

#include <sstream>

using Inspector = VEXAXslTransformerInspector;

class VEXAXslTransformerTest : public EngineTest {
protected:
    /** The result of a root template in a stream transform, without the NUL. */
    std::string run(const std::string& content, const std::string& topLevel = "") {
        const std::string sheet = m_folder.write(
            "run.xsl", stylesheet("<xsl:output method='text'/>" + topLevel +
                                  "<xsl:template match='/'>" + content + "</xsl:template>"));
        std::istringstream source("<a/>");
        std::ostringstream output;
        EXPECT_EQ(m_transformer.doTransform(source, sheet.c_str(), output), 0)
            << m_transformer.getLastError();
        const std::string text = output.str();
        return text.substr(0, text.size() - 1);
    }

    TemporaryFolder m_folder;
    VEXAXslTransformer m_transformer;
};

TEST_F(VEXAXslTransformerTest, ANewObjectHasNoParametersAndNoErrorMessage) {
    EXPECT_TRUE(Inspector::params(m_transformer).empty());
    EXPECT_TRUE(Inspector::ownError(m_transformer).empty());
}

TEST_F(VEXAXslTransformerTest, ANewObjectReturnsTheEmptyMessageOfTheEngine) {
    ASSERT_NE(m_transformer.getLastError(), nullptr);
    EXPECT_STREQ(m_transformer.getLastError(), "");
    EXPECT_EQ(m_transformer.getLastError(), Inspector::engine(m_transformer).getLastError());
}

TEST_F(VEXAXslTransformerTest, ItsOwnErrorMessageHasPrecedenceOverTheEngines) {
    Inspector::ownError(m_transformer) = "own \xCE\xB1";
    EXPECT_STREQ(m_transformer.getLastError(), "own \xCE\xB1");
    Inspector::ownError(m_transformer) = "";
    EXPECT_STREQ(m_transformer.getLastError(), "");
}

TEST_F(VEXAXslTransformerTest, AParameterIsStoredBetweenApostrophes) {
    m_transformer.setStylesheetParam("title", "Hello");
    m_transformer.setStylesheetParam("empty", "");
    m_transformer.setStylesheetParam("odd", "it's");
    const auto& params = Inspector::params(m_transformer);
    EXPECT_EQ(params.at("title"), I18NString("'Hello'"));
    EXPECT_EQ(params.at("empty"), I18NString("''"));
    EXPECT_EQ(params.at("odd"), I18NString("'it's'"));
    EXPECT_EQ(params.size(), 3U);
}

TEST_F(VEXAXslTransformerTest, AParameterIsSetInTheEngineImmediately) {
    const std::string source = m_folder.write("a.xml", "<a/>");
    const std::string sheet = m_folder.write(
        "p.xsl", stylesheet("<xsl:output method='text'/><xsl:param name='p'/>"
                            "<xsl:template match='/'><xsl:value-of select='$p'/></xsl:template>"));
    m_transformer.setStylesheetParam("p", "pushed");
    std::ostringstream output;
    EXPECT_EQ(Inspector::engine(m_transformer).transform(source.c_str(), sheet.c_str(), output), 0);
    EXPECT_EQ(output.str(), "pushed");
}

TEST_F(VEXAXslTransformerTest, AParameterSetTwiceHasItsSecondValue) {
    m_transformer.setStylesheetParam("p", "first");
    m_transformer.setStylesheetParam("p", "second");
    EXPECT_EQ(Inspector::params(m_transformer).size(), 1U);
    EXPECT_EQ(Inspector::params(m_transformer).at("p"), I18NString("'second'"));
    EXPECT_EQ(run("<xsl:value-of select='$p'/>", "<xsl:param name='p'/>"), "second");
}

TEST_F(VEXAXslTransformerTest, AParameterIsAStringInTheStylesheet) {
    m_transformer.setStylesheetParam("p", "1 + 1");
    m_transformer.setStylesheetParam("greek", "\xCE\xB1\xCE\xB2 \xF0\x9F\x98\x80");
    m_transformer.setStylesheetParam("empty", "");
    const std::string params =
        "<xsl:param name='p'/><xsl:param name='greek'/><xsl:param name='empty' select='1'/>";
    EXPECT_EQ(
        run("<xsl:value-of select='concat($p, \"|\", $greek, \"|\", $empty, \"|\")'/>", params),
        "1 + 1|\xCE\xB1\xCE\xB2 \xF0\x9F\x98\x80||");
}

TEST_F(VEXAXslTransformerTest, AnInstalledFunctionIsCloned) {
    const int before = ConstantFunction::s_alive;
    {
        const ConstantFunction original("text");
        m_transformer.installExternalFunction("Mine", original);
        EXPECT_EQ(ConstantFunction::s_alive, before + 2);
    }
    EXPECT_EQ(ConstantFunction::s_alive, before + 1);
    EXPECT_EQ(run("<xsl:value-of select='vexa:Mine()'/>"), "text");
}

TEST_F(VEXAXslTransformerTest, AReplacedFunctionIsNotFreed) {
    const auto before = Inspector::functions(m_transformer).size();
    const int alive = ConstantFunction::s_alive;
    m_transformer.installExternalFunction("Mine", ConstantFunction("first"));
    const TqXsltFunction* const first = Inspector::functions(m_transformer).at("Mine");
    m_transformer.installExternalFunction("Mine", ConstantFunction("second"));
    EXPECT_EQ(Inspector::functions(m_transformer).size(), before + 1);
    EXPECT_NE(Inspector::functions(m_transformer).at("Mine"), first);
    EXPECT_EQ(ConstantFunction::s_alive, alive + 2);
    EXPECT_EQ(run("<xsl:value-of select='vexa:Mine()'/>"), "second");
}

TEST_F(VEXAXslTransformerTest, ADestroyedObjectFreesTheEnginesClonesButNotItsOwn) {
    const int before = ConstantFunction::s_alive;
    {
        VEXAXslTransformer transformer;
        transformer.installExternalFunction("Mine", ConstantFunction("text"));
        std::istringstream source("<a/>");
        std::ostringstream output;
        const std::string sheet = m_folder.write("a.xsl", stylesheetWithRootTemplate("<b/>"));
        EXPECT_EQ(transformer.doTransform(source, sheet.c_str(), output), 0);
        EXPECT_GT(ConstantFunction::s_alive, before + 1);
    }
    EXPECT_EQ(ConstantFunction::s_alive, before + 1);
}

TEST_F(VEXAXslTransformerTest, AFunctionWhoseCloneThrowsIsNotInstalled) {
    class Uncloneable : public ThrowingFunction {
        ThrowingFunction* clone() const override { throw std::runtime_error("no clone"); }
    };
    const auto before = Inspector::functions(m_transformer).size();
    EXPECT_THROW(m_transformer.installExternalFunction("Mine", Uncloneable()), std::runtime_error);
    EXPECT_EQ(Inspector::functions(m_transformer).size(), before);
    EXPECT_EQ(run("still works"), "still works");
}

TEST_F(VEXAXslTransformerTest, FunctionsBelongToOneTransformerOnly) {
    m_transformer.installExternalFunction("Mine", ConstantFunction("text"));
    VEXAXslTransformer other;
    EXPECT_EQ(Inspector::functions(other).count("Mine"), 0U);
}

TEST_F(VEXAXslTransformerTest, TheExtensionNamespaceIsAnHttpUriThatEndsInWol) {
    const std::string uri = VEXA_XSL_EXTENSION_NAMESPACE;
    EXPECT_EQ(uri.rfind("http://", 0), 0U);
    EXPECT_EQ(uri.substr(uri.size() - 4), "/wol");
}

TEST_F(VEXAXslTransformerTest, UsesTheXalanSourceTreeByDefault) {
    EXPECT_FALSE(VEXAXslTransformer::m_bUseXercesDOM);
}
