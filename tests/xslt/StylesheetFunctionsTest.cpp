#include "XsltTest.h"

#include <vector>

using vexa::ErrorKind;
using vexa::Input;
using vexa::Stylesheet;
using vexa::Transformation;

/** Functions that a stylesheet declares itself: func:function. */
class StylesheetFunctionsTest : public ::testing::Test {
protected:
    static Stylesheet compiledWith(const std::string& functions, const std::string& instructions) {
        return Stylesheet::compile(
            Input::text("<xsl:stylesheet version='1.0' xmlns:func='http://exslt.org/functions' "
                        "xmlns:f='urn:f' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
                        "extension-element-prefixes='func' exclude-result-prefixes='f'>"
                        "<xsl:output omit-xml-declaration='yes'/><xsl:variable name='g' "
                        "select='10'/>\n" +
                        functions + "<xsl:template match='/'>" + instructions +
                        "</xsl:template></xsl:stylesheet>"));
    }
    static std::string run(const std::string& functions, const std::string& expression) {
        Transformation run(compiledWith(functions, "<e v='{" + expression + "}'/>"));
        const std::string first = run.toString(Input::text("<a><b>1</b><b>2</b></a>"));
        EXPECT_EQ(run.toString(Input::text("<a><b>1</b><b>2</b></a>")), first);
        EXPECT_EQ(first.substr(0, 6), "<e v=\"") << first;
        return first.substr(6, first.size() - 9);
    }
    static std::string function(const std::string& name, const std::string& body) {
        return "<func:function name='" + name + "'>" + body + "</func:function>";
    }
    static vexa::Error errorOf(const std::string& functions, const std::string& expression) {
        return failureOf([&] { run(functions, expression); });
    }
};

TEST_F(StylesheetFunctionsTest, ReturnValuesOfEveryType) {
    const std::string same = function("f:f", "<xsl:param name='p'/><func:result select='$p'/>");
    EXPECT_EQ(run(same, "f:f(1) + 1"), "2");
    EXPECT_EQ(run(same, "concat(f:f(&quot;1&quot;), 1)"), "11");
    EXPECT_EQ(run(same, "f:f(true()) and not(f:f(false()))"), "true");
    EXPECT_EQ(run(same, "count(f:f(//b)[. = 2]/..)"), "1");
    EXPECT_EQ(run(function("f:f", "<func:result><i>1</i>2</func:result>"), "f:f()"), "12");
    EXPECT_EQ(run(function("f:f", ""), "concat(f:f(), 1)"), "1");
}

TEST_F(StylesheetFunctionsTest, TakeArgumentsInOrder) {
    const std::string two = function("f:f", "<xsl:param name='a' select='1'/><xsl:param name='b' "
                                            "select='$a + $g'/><func:result "
                                            "select='concat($a, \"-\", $b)'/>");
    EXPECT_EQ(run(two, "f:f()"), "1-11");
    EXPECT_EQ(run(two, "f:f(5)"), "5-15");
    EXPECT_EQ(run(two, "f:f(5, 6)"), "5-6");
    EXPECT_EQ(errorOf(two, "f:f(5, 6, 7)").text(), "'f' takes 2 arguments");
}

TEST_F(StylesheetFunctionsTest, CallThemselves) {
    EXPECT_EQ(run(function("f:f", "<xsl:param name='n'/><xsl:choose><xsl:when test='$n &lt; 2'>"
                                  "<func:result select='1'/></xsl:when><xsl:otherwise>"
                                  "<func:result select='$n * f:f($n - 1)'/></xsl:otherwise>"
                                  "</xsl:choose>"),
                  "f:f(10)"),
              "3628800");
    const vexa::Error error = errorOf(function("f:f", "<func:result select='f:f()'/>"), "f:f()");
    EXPECT_EQ(error.kind(), ErrorKind::Transform);
    EXPECT_EQ(error.text(), "'f' is called too deeply");
    EXPECT_EQ(error.where().line, 2U);
}

TEST_F(StylesheetFunctionsTest, WriteNothingAndSeeNoVariableOfTheCaller) {
    EXPECT_EQ(run(function("f:f", "text<i/><func:result select='1'/>"), "f:f()"), "1");
    const Stylesheet sheet =
        compiledWith(function("f:f", "<func:result select='$local'/>"),
                     "<xsl:variable name='local' select='1'/><e v='{f:f()}'/>");
    expectFailure([&] { Transformation(sheet).toString(Input::text("<a/>")); },
                  ErrorKind::Transform, "'local' is not declared");
}

TEST_F(StylesheetFunctionsTest, HaveTheContextOfTheCall) {
    EXPECT_EQ(run(function("f:f", "<func:result select='string(.)'/>"), "//b[f:f() = 2]"), "2");
}

TEST_F(StylesheetFunctionsTest, AreAvailable) {
    EXPECT_EQ(run(function("f:f", ""), "concat(function-available(&quot;f:f&quot;), "
                                       "function-available(&quot;f:g&quot;), "
                                       "element-available(&quot;func:result&quot;))"),
              "truefalsetrue");
}

/** Whatever prefix XSLT itself has. */
TEST_F(StylesheetFunctionsTest, AreDeclaredWithoutAPrefixOfXsltToo) {
    const Stylesheet sheet = Stylesheet::compile(Input::text(
        "<stylesheet version='1.0' xmlns:func='http://exslt.org/functions' xmlns:f='urn:f' "
        "xmlns='http://www.w3.org/1999/XSL/Transform' extension-element-prefixes='func'>"
        "<output method='text'/><func:function name='f:f'><func:result select='7'/>"
        "</func:function><template match='/'><value-of select='f:f()'/></template></stylesheet>"));
    EXPECT_EQ(Transformation(sheet).toString(Input::text("<a/>")), "7");
}

TEST_F(StylesheetFunctionsTest, AreAvailableByTheirNamesOnly) {
    EXPECT_EQ(run(function("f:f", ""), "concat(element-available(&quot;func:function&quot;), "
                                       "element-available(&quot;func:script&quot;), "
                                       "element-available(&quot;f:result&quot;), "
                                       "function-available(&quot;f:f&quot;))"),
              "truefalsefalsetrue");
}

TEST_F(StylesheetFunctionsTest, ShareNoNameWithTemplates) {
    EXPECT_EQ(run(function("f:f", "<func:result select='1'/>") +
                      "<xsl:template name='f:f'>2</xsl:template>",
                  "f:f()"),
              "1");
}

TEST_F(StylesheetFunctionsTest, NeedANamespaceAndAreNoScripts) {
    EXPECT_EQ(errorOf(function("f", ""), "1").kind(), ErrorKind::Compile);
    const vexa::Error error = errorOf("<func:script implements-prefix='f'/>", "1");
    EXPECT_EQ(error.kind(), ErrorKind::Compile);
    EXPECT_EQ(error.text(), "'func:script' is not supported");
}
