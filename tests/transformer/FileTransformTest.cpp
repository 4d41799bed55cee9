#include "support/TestFunctions.h"
#include "support/TransformTest.h"
#include "support/VEXAXslTransformerInspector.h"

#include <xalanc/XercesParserLiaison/XercesDocumentWrapper.hpp>

using Inspector = VEXAXslTransformerInspector;
using FileTransformTest = TransformTest;

TEST_F(FileTransformTest, WritesTheResultToTheFile) {
    const auto outcome =
        transformFile(source(), sheetWithRootTemplate("<b><xsl:value-of select='a'/></b>"));
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.output, "<b>x</b>");
    EXPECT_EQ(outcome.error, "");
}

TEST_F(FileTransformTest, RejectsAnEmptySourceName) {
    const auto outcome = transformFile("", sheetWithRootTemplate("<b/>"));
    EXPECT_NE(outcome.result, 0);
    EXPECT_EQ(outcome.error, "The source file name is empty.");
    EXPECT_EQ(outcome.result, -2);
    EXPECT_EQ(m_folder.list(), "sheet.xsl");

    EXPECT_EQ(transformFile(source(), sheetWithRootTemplate("<b/>")).output, "<b/>");
}

TEST_F(FileTransformTest, AnEmptySourceNameDoesNotHideErrorsOfLaterStreamTransforms) {
    EXPECT_EQ(transformFile("", sheetWithRootTemplate("<b/>")).result, -2);
    const auto malformed = transformStream("<a>", sheetWithRootTemplate("<b/>"));
    EXPECT_EQ(malformed.result, -2);
    EXPECT_EQ(malformed.error.rfind("SAXParseException: ", 0), 0U) << malformed.error;

    EXPECT_EQ(transformFile("", sheetWithRootTemplate("<b/>")).result, -2);
    const auto failed = transformStream("<a/>", sheetWithRootTemplate("<xsl:foo/>"));
    EXPECT_EQ(failed.result, -1);
    EXPECT_NE(failed.error.find("xsl:foo"), std::string::npos) << failed.error;
}

TEST_F(FileTransformTest, RejectsAnEmptySourceNameWithAXercesDom) {
    VEXAXslTransformer::m_bUseXercesDOM = true;
    const auto outcome = transformFile("", sheetWithRootTemplate("<b/>"));
    VEXAXslTransformer::m_bUseXercesDOM = false;
    EXPECT_EQ(outcome.result, -2);
    EXPECT_EQ(outcome.error, "The source file name is empty.");
}

TEST_F(FileTransformTest, ClearsAnEarlierErrorMessage) {
    Inspector::ownError(m_transformer) = "left by an earlier operation";
    EXPECT_EQ(transformFile(source(), sheetWithRootTemplate("<b/>")).error, "");

    Inspector::ownError(m_transformer) = "left by an earlier operation";
    const auto failed = transformFile(m_folder.path("missing.xml"), sheetWithRootTemplate("<b/>"));
    EXPECT_EQ(failed.error.rfind("SAXParseException: ", 0), 0U) << failed.error;
}

TEST_F(FileTransformTest, PassesParametersToEveryLaterTransform) {
    const std::string sheet = m_folder.write(
        "p.xsl", stylesheet("<xsl:output method='text'/><xsl:param name='p'/><xsl:param name='q'/>"
                            "<xsl:template match='/'><xsl:value-of select='concat($p, $q)'/>"
                            "</xsl:template>"));
    m_transformer.setStylesheetParam("q", "2+2");
    m_transformer.setStylesheetParam("p", "count(//a)=");
    EXPECT_EQ(transformFile(source(), sheet).output, "count(//a)=2+2");
    EXPECT_EQ(transformFile(source(), sheet).output, "count(//a)=2+2");
    m_transformer.setStylesheetParam("p", "");
    EXPECT_EQ(transformFile(source(), sheet).output, "2+2");
}

TEST_F(FileTransformTest, PassesNamesAndValuesInAnyScript) {
    const std::string sheet = m_folder.write("p.xsl", sheetInAnyScript());
    m_transformer.setStylesheetParam("gr\xC3\xB6\xC3\x9F", "\xCE\xB1 \xF0\x9F\x98\x80");
    m_transformer.installExternalFunction("\xC3\x84", BracketFunction());
    EXPECT_EQ(transformFile(source(), sheet).output, "[\xCE\xB1 \xF0\x9F\x98\x80]");
    EXPECT_EQ(transformStream("<a/>", sheet).output, withNul("[\xCE\xB1 \xF0\x9F\x98\x80]"));
}

TEST_F(FileTransformTest, SetsAllParametersAgainInEachTransform) {
    const std::string sheet = m_folder.write(
        "p.xsl", stylesheet("<xsl:output method='text'/><xsl:param name='p'/><xsl:template "
                            "match='/'><xsl:value-of select='$p'/></xsl:template>"));
    m_transformer.setStylesheetParam("p", "kept");
    for (int i = 0; i < 2; ++i) {
        // The engine has lost the parameters, but the transformer sets them again.
        Inspector::engine(m_transformer).clearStylesheetParams();
        EXPECT_EQ(transformFile(source(), sheet).output, "kept");
        Inspector::engine(m_transformer).clearStylesheetParams();
        EXPECT_EQ(transformStream("<a/>", sheet).output, withNul("kept"));
    }
}

TEST_F(FileTransformTest, CallsInstalledFunctions) {
    const std::string sheet = sheetWithRootTemplate("<b><xsl:value-of select='vexa:B(a)'/></b>");
    m_transformer.installExternalFunction("B", BracketFunction());
    EXPECT_EQ(transformFile(source("<a>\xCE\xB1</a>"), sheet).output, "<b>[\xCE\xB1]</b>");

    m_transformer.installExternalFunction("B", ConstantFunction("replaced"));
    EXPECT_EQ(transformFile(source(), sheet).output, "<b>replaced</b>");
}

TEST_F(FileTransformTest, CallsNodesetInTheEnginesNamespace) {
    const std::string sheet =
        sheetWithRootTemplate("<xsl:variable name='tree'><i>1</i><i>2</i></xsl:variable>"
                              "<b><xsl:value-of select='sum(xalan:nodeset($tree)/i)'/></b>");
    EXPECT_EQ(transformFile(source(), sheet).output, "<b>3</b>");
}

/** The engine installs nodeset globally. Without that, the installation by the library is used. */
TEST_F(FileTransformTest, InstallsNodesetItself) {
    const xalanc::XalanDOMString ns("http://xml.apache.org/xalan"), name("nodeset");
    xalanc::XalanTransformer::uninstallExternalFunctionGlobal(ns, name);
    const std::string sheet =
        sheetWithRootTemplate("<b><xsl:value-of select='count(xalan:nodeset(\"a string\"))'/></b>");
    EXPECT_EQ(transformFile(source(), sheet).output, "<b>1</b>");
    EXPECT_EQ(transformStream("<a/>", sheet).output, withNul("<b>1</b>"));

    xalanc::XalanTransformer bare;
    std::ostringstream output;
    EXPECT_NE(bare.transform(source().c_str(), sheet.c_str(), output), 0);
}

TEST_F(FileTransformTest, AcceptsUris) {
    const std::string sheet = sheetWithRootTemplate("<b><xsl:value-of select='a'/></b>");
    EXPECT_EQ(transformFile("file://" + source(), "file://" + sheet).output, "<b>x</b>");
}

TEST_F(FileTransformTest, AcceptsNamesWithSpacesAndOtherScripts) {
    const std::string odd = m_folder.write("\xCE\xB1 \xE4\xBD\xA0 b.xml", "<a>x</a>");
    const std::string sheet = m_folder.write("\xCE\xB2 c.xsl", stylesheetWithRootTemplate("<b/>"));
    const std::string output = m_folder.path("\xCE\xB3 100%.out");
    EXPECT_EQ(m_transformer.doTransform(odd.c_str(), sheet.c_str(), output.c_str()), 0);
    EXPECT_EQ(readFile(output), "<b/>");
}

TEST_F(FileTransformTest, ResolvesReferencesAgainstTheStylesheet) {
    std::filesystem::create_directory(m_folder.path("sheets"));
    m_folder.write("sheets/base.xsl", stylesheet("<xsl:template match='a'><c/></xsl:template>"));
    m_folder.write("sheets/data.xml", "<d>data</d>");
    const std::string sheet = m_folder.write(
        "sheets/main.xsl",
        stylesheet("<xsl:import href='base.xsl'/><xsl:output omit-xml-declaration='yes'/>"
                   "<xsl:template match='/'><b><xsl:apply-templates/>"
                   "<xsl:value-of select='document(\"data.xml\")/d'/></b></xsl:template>"));
    EXPECT_EQ(transformFile(source(), sheet).output, "<b><c/>data</b>");
}

TEST_F(FileTransformTest, CompilesTheStylesheetAgainInEachTransform) {
    sheetWithRootTemplate("<first/>");
    EXPECT_EQ(transformFile(source(), m_folder.path("sheet.xsl")).output, "<first/>");
    sheetWithRootTemplate("<second/>");
    EXPECT_EQ(transformFile(source(), m_folder.path("sheet.xsl")).output, "<second/>");
}

TEST_F(FileTransformTest, WritesNothingIfTheSourceIsNotWellFormed) {
    const auto outcome = transformFile(source("<a>"), sheetWithRootTemplate("<b/>"));
    EXPECT_NE(outcome.result, 0);
    EXPECT_EQ(m_folder.list(), "sheet.xsl source.xml");
}

TEST_F(FileTransformTest, KeepsParametersAndFunctionsAfterAFailure) {
    m_transformer.setStylesheetParam("p", "kept");
    m_transformer.installExternalFunction("B", BracketFunction());
    EXPECT_NE(transformFile(source("<a>"), sheetWithRootTemplate("<b/>")).result, 0);
    EXPECT_NE(transformFile(source(), sheetWithRootTemplate("<xsl:nonsense/>")).result, 0);
    const std::string sheet = m_folder.write(
        "p.xsl", stylesheet("<xsl:output method='text'/><xsl:param name='p'/><xsl:template "
                            "match='/'><xsl:value-of select='vexa:B($p)'/></xsl:template>"));
    EXPECT_EQ(transformFile(source(), sheet).output, "[kept]");
}

TEST_F(FileTransformTest, PassesForeignExceptionsToTheCallerAndStaysUsable) {
    m_transformer.installExternalFunction("T", ThrowingFunction());
    EXPECT_THROW(
        transformFile(source(), sheetWithRootTemplate("<xsl:value-of select='vexa:T()'/>")),
        std::runtime_error);
    EXPECT_EQ(transformFile(source(), sheetWithRootTemplate("<b/>")).output, "<b/>");
}

namespace {

/** Returns the data structure of the document. */
class TreeFunction : public BracketFunction {
public:
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode* node,
                               const XObjectArgVectorType&, const xalanc::Locator*) const override {
        const auto* const document =
            dynamic_cast<const xalanc::XercesDocumentWrapper*>(node->getOwnerDocument());
        return context.getXObjectFactory().createString(
            xalanc::XalanDOMString(document ? "Xerces" : "Xalan"));
    }
    TreeFunction* clone() const override { return new TreeFunction(*this); }
};

} // namespace

TEST_F(FileTransformTest, ParsesIntoAXercesDomOnRequest) {
    m_transformer.installExternalFunction("Tree", TreeFunction());
    const std::string sheet = m_folder.write(
        "tree.xsl", stylesheetWithRootTemplate("<xsl:for-each select='a'><b>"
                                               "<xsl:value-of select='vexa:Tree()'/></b>"
                                               "</xsl:for-each>"));
    EXPECT_EQ(transformFile(source(), sheet).output, "<b>Xalan</b>");
    EXPECT_EQ(transformStream("<a/>", sheet).output, withNul("<b>Xalan</b>"));
    VEXAXslTransformer::m_bUseXercesDOM = true;
    const auto files = transformFile(source(), sheet);
    const auto streams = transformStream("<a/>", sheet);
    VEXAXslTransformer::m_bUseXercesDOM = false;
    EXPECT_EQ(files.output, "<b>Xerces</b>");
    EXPECT_EQ(streams.output, withNul("<b>Xerces</b>"));
}

TEST_F(FileTransformTest, ReportsAFullDisk) {
    const int result = m_transformer.doTransform(
        source().c_str(), sheetWithRootTemplate("<b/>").c_str(), "/dev/full");
    EXPECT_EQ(result, -1);
    EXPECT_NE(std::string(m_transformer.getLastError()).find("/dev/full"), std::string::npos);
}
