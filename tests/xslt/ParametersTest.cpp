/**
 * @file
 * Parameters take any text, number, boolean, node-set or document, and are in the stylesheet what
 * they were.
 */
#include "XsltTest.h"

#include <limits>

using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Node;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::Value;
using vexa::XPath;

namespace {

/** Declares p, with "default", and writes what an expression makes of it. */
Transformation runWriting(const std::string& expression) {
    return Transformation(
        compiled("<xsl:output method='text'/><xsl:param name='p' select='\"default\"'/>"
                 "<xsl:template match='/'><xsl:value-of select=\"" +
                 expression + "\"/></xsl:template>"));
}

std::string written(Transformation& run) {
    return run.toString(Input::text("<a><b>1</b><b>2</b></a>"));
}

std::string typeOf(const Value& value) {
    Transformation run = runWriting("exsl:object-type($p)");
    return written(run.parameter("p", value));
}

} // namespace

TEST(ParametersTest, ATextIsTakenWordForWord) {
    Transformation run = runWriting("$p");
    for (const char* text : {"plain", "", " ", "May's", "\"orders\"", "May's \"orders\"", "'", "\"",
                             "concat('a', 'b')", "//b", "<&>]]>", "{}", "\n\t\r",
                             "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8C\x8A", "$p"}) {
        EXPECT_EQ(written(run.parameter("p", text)), text);
    }
    const std::string longText(1'000'000, '\'');
    EXPECT_EQ(written(run.parameter("p", longText)), longText);
}

TEST(ParametersTest, ATextThatIsNoUtf8HasReplacementCharacters) {
    Transformation run = runWriting("$p");
    EXPECT_EQ(written(run.parameter("p", "a\xFF"
                                         "b")),
              "a\xEF\xBF\xBD"
              "b");
}

TEST(ParametersTest, TypesStayWhatTheyAre) {
    EXPECT_EQ(typeOf("1"), "string");
    EXPECT_EQ(typeOf(1), "number");
    EXPECT_EQ(typeOf(true), "boolean");
    EXPECT_EQ(typeOf(std::vector<Node>()), "node-set");
    Transformation run = runWriting("exsl:object-type($p)");
    EXPECT_EQ(written(run.parameter("p", parsed("<a/>"))), "node-set");
}

TEST(ParametersTest, ANumberStaysANumber) {
    Transformation run = runWriting("$p + 1");
    EXPECT_EQ(written(run.parameter("p", 10.0)), "11");
    EXPECT_EQ(written(run.parameter("p", -0.25)), "0.75");
    EXPECT_EQ(written(run.parameter("p", std::numeric_limits<double>::infinity())), "Infinity");
    EXPECT_EQ(written(run.parameter("p", std::numeric_limits<double>::quiet_NaN())), "NaN");
    Transformation position = runWriting("//b[$p]");
    EXPECT_EQ(written(position.parameter("p", 2)), "2");
    EXPECT_EQ(written(position.parameter("p", "2")), "1"); // a text that is not empty is true
}

TEST(ParametersTest, ABooleanStaysABoolean) {
    Transformation run = runWriting("$p = false()");
    EXPECT_EQ(written(run.parameter("p", false)), "true");
    EXPECT_EQ(written(run.parameter("p", "false")), "false");
}

TEST(ParametersTest, ANodeSetStaysANodeSet) {
    Transformation run = runWriting("concat(count($p), name($p), $p[2], $p/..)");
    const Document document = parsed("<r><i>x</i><i>y</i></r>");
    EXPECT_EQ(written(run.parameter("p", XPath::compile("/r/i").evaluate(document))), "2iyxy");
}

TEST(ParametersTest, ADocumentIsANodeSetOfItsRoot) {
    Transformation run = runWriting("concat(count($p), name($p/*), $p/r/i[2])");
    EXPECT_EQ(written(run.parameter("p", parsed("<r><i>x</i><i>y</i></r>"))), "1ry");
}

TEST(ParametersTest, ADocumentLivesAsLongAsTheParameter) {
    Transformation run = runWriting("$p/a");
    { run.parameter("p", parsed("<a>kept</a>")); }
    EXPECT_EQ(written(run), "kept");
    EXPECT_EQ(written(run), "kept");
}

TEST(ParametersTest, NodesOfTheSourceItselfMayBeAParameter) {
    Transformation run = runWriting("count(//b | $p)");
    const Document document = parsed("<a><b/><b/></a>");
    run.parameter("p", XPath::compile("//b").evaluate(document));
    EXPECT_EQ(run.toString(document), "2");
}

TEST(ParametersTest, KeyAndIdWorkOverADocumentThatIsAParameter) {
    Transformation run(compiled(
        "<xsl:output method='text'/><xsl:param name='p'/><xsl:key name='k' match='i' use='@n'/>"
        "<xsl:template match='/'><xsl:for-each select='$p'><xsl:value-of select='key(\"k\", 2)'/>"
        "<xsl:value-of select='id(\"x\")'/></xsl:for-each></xsl:template>"));
    run.parameter("p", parsed("<!DOCTYPE r [<!ATTLIST i d ID #IMPLIED>]>"
                              "<r><i n='1' d='x'>one</i><i n='2'>two</i></r>"));
    EXPECT_EQ(run.toString(Input::text("<a/>")), "twoone");
}

TEST(ParametersTest, DocumentIsRelativeToADocumentThatIsAParameter) {
    const TemporaryFolder folder;
    folder.write("other.xml", "<o>other</o>");
    Transformation run = runWriting("document($p/a/@href)");
    run.parameter("p",
                  Document::parse(Input::file(folder.write("p.xml", "<a href='other.xml'/>"))));
    EXPECT_EQ(written(run), "other");
}

TEST(ParametersTest, TheyStayUntilTheyAreReplacedOrRemoved) {
    Transformation run = runWriting("$p");
    EXPECT_EQ(written(run), "default");
    run.parameter("p", "1");
    EXPECT_EQ(written(run), "1");
    EXPECT_EQ(written(run), "1");
    run.parameter("p", 2);
    EXPECT_EQ(written(run), "2");
    run.removeParameter("p");
    EXPECT_EQ(written(run), "default");
}

TEST(ParametersTest, ANameMayHaveANamespace) {
    Transformation run(
        compiled("<xsl:output method='text'/><xsl:param name='p' select='1'/>"
                 "<xsl:param name='q:p' select='2' xmlns:q='urn:\xC3\xA4'/><xsl:template match='/' "
                 "xmlns:r='urn:\xC3\xA4'><xsl:value-of select='concat($p, $r:p)'/>"
                 "</xsl:template>"));
    EXPECT_EQ(written(run.parameter("{urn:\xC3\xA4}p", "b")), "1b");
    EXPECT_EQ(written(run.parameter("p", "a")), "ab");
    EXPECT_EQ(written(run.parameter("{}p", "c")), "cb"); // no namespace
    EXPECT_EQ(written(run.removeParameter("{urn:\xC3\xA4}p")), "c2");
}

TEST(ParametersTest, ANameThatIsNoneIsUsage) {
    Transformation run = runWriting("$p");
    for (const std::string& name :
         {std::string(), std::string("a b"), std::string("1a"), std::string("a:b"),
          std::string("{urn:u"), std::string("{urn:u}"), std::string("{urn:u}a:b"),
          std::string("p\0", 2)}) {
        expectFailure([&] { run.parameter(name, 1); }, ErrorKind::Usage, "not a name");
        expectFailure([&] { run.removeParameter(name); }, ErrorKind::Usage, "not a name");
    }
    EXPECT_EQ(written(run), "default");
}

TEST(ParametersTest, ATextWithNulIsUsage) {
    Transformation run = runWriting("$p");
    run.parameter("p", "before");
    expectFailure([&] { run.parameter("p", std::string("a\0b", 3)); }, ErrorKind::Usage, "U+0000");
    EXPECT_EQ(written(run), "before");
}

TEST(ParametersTest, ANullPointerIsUsage) {
    Transformation run = runWriting("$p");
    const char* const none = nullptr;
    expectFailure([&] { run.parameter("p", none); }, ErrorKind::Usage, "null");
}

TEST(ParametersTest, ANameThatTheStylesheetDoesNotDeclareIsIgnored) {
    Transformation run = runWriting("$p");
    EXPECT_EQ(written(run.parameter("q", 1).parameter("{urn:u}p", 2)), "default");
    // It declares nothing either.
    Transformation undeclared(compiledRootTemplate("<xsl:value-of select='$q'/>"));
    undeclared.parameter("q", 1);
    expectFailure([&] { written(undeclared); }, ErrorKind::Transform, "'q' is not declared");
}

TEST(ParametersTest, AVariableIsNoParameter) {
    Transformation run(compiled("<xsl:output method='text'/><xsl:variable name='p' select='1'/>"
                                "<xsl:template match='/'><xsl:value-of select='$p'/>"
                                "</xsl:template>"));
    EXPECT_EQ(written(run.parameter("p", 2)), "1");
}

TEST(ParametersTest, AParameterOfATemplateIsNotTheirs) {
    Transformation run(compiled("<xsl:output method='text'/><xsl:template match='/'>"
                                "<xsl:param name='p' select='1'/><xsl:value-of select='$p'/>"
                                "</xsl:template>"));
    EXPECT_EQ(written(run.parameter("p", 2)), "1");
}

TEST(ParametersTest, AParameterOfAModuleIsTheirs) {
    for (const char* element : {"include", "import"}) {
        vexa::Options options;
        options.resolver = [](const std::string&, const std::string&) {
            return Input::text(stylesheet("<xsl:param name='p' select='1'/>"));
        };
        Transformation run(
            compiled("<xsl:" + std::string(element) +
                         " href='mem:/m'/><xsl:output method='text'/><xsl:template match='/'>"
                         "<xsl:value-of select='$p'/></xsl:template>",
                     options));
        EXPECT_EQ(written(run), "1");
        EXPECT_EQ(written(run.parameter("p", 2)), "2");
    }
}

TEST(ParametersTest, OtherGlobalsSeeTheirValues) {
    Transformation run(compiled(
        "<xsl:output method='text'/><xsl:variable name='v' select='$p * 2'/>"
        "<xsl:param name='q' select='$v + 1'/><xsl:param name='p' select='1'/>"
        "<xsl:template match='/'><xsl:value-of select='concat($p, $v, $q)'/></xsl:template>"));
    EXPECT_EQ(written(run), "123");
    EXPECT_EQ(written(run.parameter("p", 5)), "51011");
}

/** A fragment in the default, a text from the host. */
TEST(ParametersTest, ADefaultIsNotEvaluatedWhereThereIsAValue) {
    Transformation run(
        compiled("<xsl:output method='text'/><xsl:param name='p'><xsl:message terminate='yes'>no"
                 "</xsl:message></xsl:param><xsl:template match='/'><xsl:value-of select='$p'/>"
                 "</xsl:template>"));
    expectFailure([&] { written(run); }, ErrorKind::Terminated, "no");
    EXPECT_EQ(written(run.parameter("p", "x")), "x");
}

/** Its nodes are given back to the engine as the engine is thrown away. */
TEST(ParametersTest, ANodeSetOfARunThatFails) {
    const Document document = parsed("<a><b/><b/></a>");
    Transformation run(
        compiled("<xsl:param name='p'/><xsl:variable name='v' select='//*'/>"
                 "<xsl:template match='/'><xsl:value-of select='count($p)'/>"
                 "<xsl:if test='$v/self::fail'><xsl:message terminate='yes'/></xsl:if>"
                 "</xsl:template>"));
    run.parameter("p", XPath::compile("//b").evaluate(document));
    expectFailure([&] { run.toString(parsed("<fail/>")); }, ErrorKind::Terminated, "");
    EXPECT_EQ(run.toString(parsed("<a/>")), R"(<?xml version="1.0" encoding="UTF-8"?>2)");
}
