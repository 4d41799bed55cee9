#include "XsltTest.h"

#include <vector>

using vexa::Diagnostic;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Stylesheet;
using vexa::Transformation;

namespace {

constexpr const char* SOURCE = "<a><b><x/></b><c/></a>";

/** What a stylesheet does that the engine alone refuses, or gets wrong. */
struct Case {
    const char* name;
    std::string content; // of the stylesheet
    const char* result;  // after the XML declaration
};

void PrintTo(const Case& some, std::ostream* stream) {
    *stream << some.name;
}

const char* const PART = "<xsl:template name='part'><xsl:param name='p'/>"
                         "<xsl:value-of select='$p'/></xsl:template>";

const std::vector<Case> CASES = {
    {"AnAttributeSetHasVariables",
     "<xsl:attribute-set name='s'><xsl:attribute name='n'><xsl:variable name='v' select='7'/>"
     "<xsl:value-of select='$v'/></xsl:attribute></xsl:attribute-set>"
     "<xsl:template match='/'><e xsl:use-attribute-sets='s'/></xsl:template>",
     "<e n=\"7\"/>"},
    {"AnAttributeSetSeesGlobalVariablesThatAreEvaluatedThere",
     "<xsl:variable name='one' select='count(//b)'/><xsl:variable name='two' select='$one + 1'/>"
     "<xsl:attribute-set name='s'><xsl:attribute name='n'><xsl:value-of select='$two'/>"
     "</xsl:attribute></xsl:attribute-set>"
     "<xsl:template match='/'><e xsl:use-attribute-sets='s'/></xsl:template>",
     "<e n=\"2\"/>"},
    {"AnAttributeSetCallsTemplates",
     std::string(PART) +
         "<xsl:attribute-set name='s'><xsl:attribute name='n'><xsl:call-template name='part'>"
         "<xsl:with-param name='p' select='7'/></xsl:call-template></xsl:attribute>"
         "</xsl:attribute-set><xsl:template match='/'><e xsl:use-attribute-sets='s'/>"
         "</xsl:template>",
     "<e n=\"7\"/>"},
    {"AnAttributeSetDoesNotSeeTheVariablesOfTheTemplate",
     "<xsl:variable name='v' select='1'/><xsl:attribute-set name='s'><xsl:attribute name='n'>"
     "<xsl:value-of select='$v'/></xsl:attribute></xsl:attribute-set>"
     "<xsl:template match='/'><xsl:variable name='v' select='2'/>"
     "<e xsl:use-attribute-sets='s'><xsl:value-of select='$v'/></e></xsl:template>",
     "<e n=\"1\">2</e>"},
    {"TheVariablesOfTheTemplateStayBehindAnAttributeSet",
     "<xsl:attribute-set name='s' use-attribute-sets='t'><xsl:attribute name='n'>1"
     "</xsl:attribute></xsl:attribute-set><xsl:attribute-set name='t'><xsl:attribute name='m'>2"
     "</xsl:attribute></xsl:attribute-set><xsl:template match='/'><xsl:param name='p' select='3'/>"
     "<xsl:variable name='v' select='4'/><e xsl:use-attribute-sets='s'>"
     "<xsl:value-of select='$p + $v'/></e></xsl:template>",
     "<e m=\"2\" n=\"1\">7</e>"},
    {"ATreeWithinAnAttributeKeepsItsElements",
     "<xsl:template match='/'><e><xsl:attribute name='n'><xsl:variable name='v'>"
     "<xsl:copy-of select='//x'/><i>1</i></xsl:variable>"
     "<xsl:value-of select='count(n:node-set($v)/*)' xmlns:n='http://exslt.org/common'/>"
     "</xsl:attribute></e></xsl:template>",
     "<e n=\"2\"/>"},
    {"ATreeInAVariableKeepsItsWhitespace",
     "<xsl:strip-space elements='i'/><xsl:template match='/'><xsl:variable name='v'><i>"
     "<xsl:text> </xsl:text><b/><xsl:text> </xsl:text></i></xsl:variable>"
     "<e n='{count(n:node-set($v)/i/node())}' xsl:exclude-result-prefixes='n' "
     "xmlns:n='http://exslt.org/common'><xsl:copy-of select='n:node-set($v)/i'/>"
     "<xsl:apply-templates select='n:node-set($v)/i'/></e></xsl:template>",
     "<e n=\"3\"><i> <b/> </i>  </e>"},
    {"WhatIsNoTextIsLeftOutOfAnAttribute",
     "<xsl:template match='/'><e><xsl:attribute name='n'><xsl:variable name='v'><i>1</i>"
     "</xsl:variable>2<xsl:copy-of select='$v'/>3</xsl:attribute></e></xsl:template>",
     "<e n=\"23\"/>"},
    {"AnAliasLeadsToNoNamespace",
     "<xsl:namespace-alias stylesheet-prefix='o' result-prefix='#default' xmlns:o='urn:o'/>"
     "<xsl:template match='/'><o:e xmlns:o='urn:o' n='1'><f/><o:g/></o:e></xsl:template>",
     "<e n=\"1\"><f/><g/></e>"},
    {"AnAliasLeadsFromNoNamespace",
     "<xsl:namespace-alias stylesheet-prefix='#default' result-prefix='r' xmlns:r='urn:r'/>"
     "<xsl:template match='/'><e n='{1}'><o:f xmlns:o='urn:o'><g/></o:f></e></xsl:template>",
     "<r:e xmlns:r=\"urn:r\" n=\"1\"><o:f xmlns:o=\"urn:o\"><r:g/></o:f></r:e>"},
    {"AnAliasLeadsFromNoNamespaceToXslt",
     "<xsl:template match='/'><template match='/'><xsl:value-of select='1'/></template>"
     "</xsl:template><xsl:namespace-alias stylesheet-prefix='#default' result-prefix='xsl'/>",
     "<xsl:template xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\" match=\"/\">1"
     "</xsl:template>"},
    {"AnAliasMayStandLast",
     "<xsl:template match='/'><o:e xmlns:o='urn:o'/></xsl:template>"
     "<xsl:namespace-alias stylesheet-prefix='o' result-prefix='#default' xmlns:o='urn:o'/>",
     "<e/>"},
    {"ALiteralElementDeclaresExtensions",
     "<xsl:template match='/'><e xmlns:u='urn:u' xsl:extension-element-prefixes='u'><f><u:g>"
     "<xsl:fallback>1</xsl:fallback></u:g></f></e></xsl:template>",
     "<e><f>1</f></e>"},
    {"AnExtensionElementDeclaresItself",
     "<xsl:template match='/'><e><u:g xmlns:u='urn:u' xsl:extension-element-prefixes='u'>"
     "<xsl:fallback>1</xsl:fallback></u:g></e></xsl:template>",
     "<e>1</e>"},
    {"AMissingDefaultNamespaceIsExcluded",
     "<xsl:template match='/'><u:e xmlns:u='urn:u' xmlns:v='urn:v' "
     "xsl:exclude-result-prefixes='v #default'/></xsl:template>",
     "<u:e xmlns:u=\"urn:u\"/>"},
    {"AVariableIsDeclaredAgain",
     "<xsl:template match='/'><xsl:variable name='v' select='1'/><e><xsl:if test='true()'>"
     "<xsl:variable name='v'><i/>2</xsl:variable><xsl:value-of select='$v'/></xsl:if>"
     "<xsl:value-of select='$v'/></e></xsl:template>",
     "<e>21</e>"},
    {"AVariableHasAParametersName",
     "<xsl:template match='/'><xsl:call-template name='t'><xsl:with-param name='p' select='1'/>"
     "</xsl:call-template></xsl:template><xsl:template name='t'><xsl:param name='p'/>"
     "<xsl:variable name='p' select='$p + 1'/><e><xsl:value-of select='$p'/></e></xsl:template>",
     "<e>2</e>"},
    {"OfTwoGlobalVariablesTheFirstCounts",
     "<xsl:variable name='v'><i>1</i></xsl:variable><xsl:variable name='v'><i>2</i><?p i?>"
     "</xsl:variable><xsl:template match='/'><e><xsl:value-of select='$v'/></e></xsl:template>",
     "<e>1</e>"},
    {"AnUnknownAttributeIsPassedOver",
     "<xsl:template match='/' use='1'><xsl:choose><xsl:when test='false()'/>"
     "<xsl:otherwise test='x'><e/></xsl:otherwise></xsl:choose></xsl:template>",
     "<e/>"},
    {"AnAttributeHasAPrefixThatIsDeclared",
     "<xsl:template match='/'><e xmlns='urn:p'><xsl:call-template name='p'/>"
     "<f xmlns='' xmlns:q='urn:p'><xsl:call-template name='p'/></f></e></xsl:template>"
     "<xsl:template name='p'><xsl:attribute name='p:n' xmlns:p='urn:p'>1</xsl:attribute>"
     "</xsl:template>",
     "<e xmlns=\"urn:p\" xmlns:p=\"urn:p\" p:n=\"1\">"
     "<f xmlns=\"\" xmlns:q=\"urn:p\" p:n=\"1\"/></e>"},
    {"ACopiedAttributeHasAPrefixThatIsDeclared",
     "<xsl:variable name='v'><s xmlns:p='urn:p' p:n='1' xml:lang='en'/></xsl:variable>"
     "<xsl:variable name='s' select='n:node-set($v)/s/@*' xmlns:n='http://exslt.org/common'/>"
     "<xsl:template match='/'><r><e xmlns='urn:p'><xsl:copy-of select='$s'/></e>"
     "<e xmlns:q='urn:p'><xsl:for-each select='$s'><xsl:copy/></xsl:for-each></e>"
     "<p:e xmlns:p='urn:other'><xsl:copy-of select='$s'/></p:e>"
     "<p:e xmlns:p='urn:other' xmlns:q='urn:p'><xsl:for-each select='$s'><xsl:copy/></xsl:for-each>"
     "</p:e></r></xsl:template>",
     "<r><e xmlns=\"urn:p\" xmlns:p=\"urn:p\" p:n=\"1\" xml:lang=\"en\"/>"
     "<e xmlns:q=\"urn:p\" xmlns:p=\"urn:p\" p:n=\"1\" xml:lang=\"en\"/>"
     "<p:e xmlns:p=\"urn:other\" xmlns:ns0=\"urn:p\" ns0:n=\"1\" xml:lang=\"en\"/>"
     "<p:e xmlns:p=\"urn:other\" xmlns:q=\"urn:p\" q:n=\"1\" xml:lang=\"en\"/></r>"},
    {"EachAlternativeOfAPatternHasItsOwnPriority",
     "<xsl:template match='x[1]'>1</xsl:template><xsl:template match='x | x[2]'>2</xsl:template>"
     "<xsl:template match=\"x[@n='|'] | p:x[2] | c[1]\" xmlns:p='urn:p'>3</xsl:template>"
     "<xsl:template match='c'>4</xsl:template><xsl:template match='/'><e><xsl:apply-templates/></e>"
     "</xsl:template>",
     "<e>13</e>"},
    {"ATemplateThatDoesNotExistIsNotCalled",
     "<xsl:template match='/'><e><xsl:if test='false()'><xsl:call-template name='none'/></xsl:if>"
     "</e></xsl:template>",
     "<e/>"},
};

} // namespace

class RealStylesheetsTest : public ::testing::TestWithParam<Case> {};

TEST_P(RealStylesheetsTest, GiveWhatTheRecommendationSays) {
    Transformation run(compiled(GetParam().content));
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(run.toString(Input::text(SOURCE)),
                  "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + std::string(GetParam().result));
    }
}

INSTANTIATE_TEST_SUITE_P(, RealStylesheetsTest, ::testing::ValuesIn(CASES),
                         [](const auto& some) { return std::string(some.param.name); });

/** Stylesheets of several modules. */
class RealModulesTest : public ::testing::Test {
protected:
    /** What follows the XML declaration. */
    std::string run(const std::string& content) {
        const std::string path = m_folder.write("main.xsl", stylesheet(content));
        const std::string text =
            Transformation(Stylesheet::compile(Input::file(path))).toString(Input::text(SOURCE));
        return text.substr(text.find("?>") + 2);
    }

    TemporaryFolder m_folder;
};

TEST_F(RealModulesTest, AnXmlDeclarationIsLeftOutThoughStandaloneHasAValue) {
    const std::string path = m_folder.write(
        "main.xsl", stylesheet("<xsl:output omit-xml-declaration='yes' standalone='yes'/>"
                               "<xsl:template match='/'><e/></xsl:template>"));
    EXPECT_EQ(Transformation(Stylesheet::compile(Input::file(path))).toString(Input::text(SOURCE)),
              "<e/>");
}

TEST_F(RealModulesTest, ANamedTemplateLeavesTheCurrentRule) {
    m_folder.write("base.xsl", stylesheet("<xsl:template match='a'><base/></xsl:template>"
                                          "<xsl:template match='b'><other/></xsl:template>"));
    const std::string import = "<xsl:import href='base.xsl'/>";
    EXPECT_EQ(run(import + "<xsl:template match='a'><xsl:call-template name='t'/></xsl:template>"
                           "<xsl:template name='t'><t><xsl:apply-imports/></t></xsl:template>"),
              "<t><base/></t>");
    EXPECT_EQ(run(import + "<xsl:template match='a'><xsl:choose><xsl:when test='true()'>"
                           "<xsl:call-template name='t'><xsl:with-param name='p' select='1'/>"
                           "</xsl:call-template></xsl:when></xsl:choose></xsl:template>"
                           "<xsl:template name='t'><xsl:param name='p'/>"
                           "<xsl:call-template name='u'/></xsl:template>"
                           "<xsl:template name='u'><u><xsl:apply-imports/></u></xsl:template>"),
              "<u><base/></u>");
    EXPECT_EQ(run(import + "<xsl:template match='a'><xsl:call-template name='t'/></xsl:template>"
                           "<xsl:template name='t'><t><xsl:apply-templates select='b'/>"
                           "<xsl:apply-imports/></t></xsl:template>"
                           "<xsl:template match='b'><b><xsl:apply-imports/></b></xsl:template>"),
              "<t><b><other/></b><base/></t>");
}

TEST_F(RealModulesTest, AnIncludedModuleExcludesPrefixes) {
    const std::string part =
        "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
        "xmlns:y='urn:y' xmlns:z='urn:z' exclude-result-prefixes='z xsl'><xsl:template match='/'>"
        "<e><f xmlns:z='urn:z'/></e><z:g/><xsl:if test='true()'><h xmlns:z='urn:other'/></xsl:if>"
        "</xsl:template></xsl:stylesheet>";
    m_folder.write("part.xsl", part);
    EXPECT_EQ(run("<xsl:include href='part.xsl'/>"),
              "<e xmlns:y=\"urn:y\"><f/></e><z:g xmlns:y=\"urn:y\" xmlns:z=\"urn:z\"/>"
              "<h xmlns:z=\"urn:other\" xmlns:y=\"urn:y\"/>");
}

TEST_F(RealModulesTest, AnAliasLeadsFromTheDefaultNamespaceOfAModuleToNone) {
    m_folder.write("base.xsl",
                   "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
                   "xmlns='urn:o' xmlns:o='urn:o'><xsl:template match='/'><e n='1'><f/>"
                   "<p:g xmlns:p='urn:p'/></e></xsl:template></xsl:stylesheet>");
    EXPECT_EQ(run("<xsl:import href='base.xsl'/><xsl:namespace-alias stylesheet-prefix='o' "
                  "result-prefix='#default' xmlns:o='urn:o'/>"),
              "<e n=\"1\"><f/><p:g xmlns:p=\"urn:p\"/></e>");
}

TEST_F(RealModulesTest, TheVendorIsNotTheEngines) {
    EXPECT_EQ(run("<xsl:template match='/'><e a='{function-available(\"o:f\") and "
                  "o:system-property(\"xsl:vendor\")}' xmlns:o='urn:o'/></xsl:template>"),
              "<e xmlns:o=\"urn:o\" a=\"false\"/>");
    EXPECT_EQ(run("<xsl:template match='/'><e a='{system-property(\"xsl:vendor\")}' "
                  "b='{concat(&apos;system-property(&quot;xsl:vendor&quot;)&apos;, "
                  "system-property ( &apos;xsl:vendor&apos; ))}' "
                  "c='{starts-with(system-property(\"xsl:vendor-url\"), \"http://\")}' "
                  "d='{contains(system-property(\"xsl:vendor-url\"), \"xalan\")}' "
                  "e='{system-property(\"xsl:version\")}' f='{system-property(\"none:vendor\")}' "
                  "g='{system-property(\"vendor\")}' xmlns:none='urn:none'/></xsl:template>"),
              "<e xmlns:none=\"urn:none\" a=\"VEXA\" "
              "b=\"system-property(&quot;xsl:vendor&quot;)VEXA\" "
              "c=\"true\" d=\"false\" e=\"1\" f=\"\" g=\"\"/>");
}

/** Errors that wait until they are met, and warnings that are told at once. */
class LateErrorsTest : public ::testing::Test {
protected:
    /** What is reported while a stylesheet of XSLT 1.0 is compiled, and executed. */
    std::string reportsOf(const std::string& content) {
        vexa::Options options;
        std::string reports;
        options.onMessage = [&](const vexa::Diagnostic& report) {
            reports += std::to_string(report.where.line) + ": " + report.text + "\n";
        };
        Transformation(compiled(content, options)).toString(Input::text(SOURCE));
        return reports;
    }

    static Stylesheet ofVersion(const std::string& version, const std::string& content) {
        return Stylesheet::compile(Input::text(
            "<xsl:stylesheet xmlns:xsl='http://www.w3.org/1999/XSL/Transform' version='" + version +
            "'>\n<xsl:template match='/'>" + content + "</xsl:template></xsl:stylesheet>"));
    }
};

TEST_F(LateErrorsTest, WhatIsPassedOverIsAWarning) {
    EXPECT_EQ(reportsOf("\n<xsl:template match='/' use='1'/>"),
              "2: 'xsl:template' has no attribute 'use'\n");
    EXPECT_EQ(reportsOf("<xsl:variable name='v'/>\n<xsl:variable name='v'/>"),
              "2: 'v' is declared again\n");
    EXPECT_EQ(reportsOf("<xsl:template match='/'><xsl:variable name='v'/>\n\n"
                        "<xsl:variable name='v'/></xsl:template>"),
              "3: 'v' is declared again\n");
    // Not where the other one is not visible.
    EXPECT_EQ(reportsOf("<xsl:variable name='v'><xsl:variable name='v'/></xsl:variable>"
                        "<xsl:template match='/'><xsl:variable name='v'/></xsl:template>"
                        "<xsl:template match='*'><e><xsl:variable name='v'/></e>"
                        "<xsl:variable name='v'/></xsl:template>"),
              "");
}

TEST_F(LateErrorsTest, ATemplateThatDoesNotExistIsAnErrorWhereItIsCalled) {
    const Stylesheet sheet = ofVersion("1.0", "\n<xsl:call-template name='none'/>");
    const auto error = failureOf([&] { Transformation(sheet).toString(Input::text(SOURCE)); });
    EXPECT_EQ(error.kind(), ErrorKind::Transform);
    EXPECT_EQ(error.text(), "there is no template 'none'");
    EXPECT_EQ(error.where().line, 3U);
}

TEST_F(LateErrorsTest, AnExpressionOfALaterVersionIsAnErrorWhereItIsEvaluated) {
    for (const std::string expression :
         {"for $i in 1 to 3 return $i", "none:f()", "none:e", "a[", "'unclosed"}) {
        const std::string instruction = "<xsl:value-of select=\"" + expression + "\"/>";
        const std::string unused = "<e><xsl:if test='false()'>" + instruction + "</xsl:if></e>";
        EXPECT_NE(
            Transformation(ofVersion("2.0", unused)).toString(Input::text(SOURCE)).find("<e/>"),
            std::string::npos);
        const Stylesheet used = ofVersion("2.0", "\n" + instruction);
        const auto error = failureOf([&] { Transformation(used).toString(Input::text(SOURCE)); });
        EXPECT_EQ(error.kind(), ErrorKind::Transform) << error.what();
        EXPECT_EQ(error.where().line, 3U) << error.what();
        EXPECT_EQ(failureOf([&] { ofVersion("1.0", unused); }).kind(), ErrorKind::Compile);
        // A part may be of a later version.
        EXPECT_EQ(failureOf([&] { ofVersion("1.0", "<f xsl:version='2.0'/>" + unused); }).kind(),
                  ErrorKind::Compile);
        EXPECT_NE(Transformation(ofVersion("1.0", "<f xsl:version='2.0'>" + unused + "</f>"))
                      .toString(Input::text(SOURCE))
                      .find("<e/>"),
                  std::string::npos);
    }
}
