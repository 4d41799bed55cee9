#include "XsltTest.h"

#include <vexa/VEXAConfig.h>

#include <cmath>

using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Namespaces;
using vexa::Node;
using vexa::Options;
using vexa::Value;
using vexa::XPath;

namespace {

Value evaluated(const std::string& expression, const std::string& source = "<a/>",
                const Namespaces& namespaces = {}) {
    return XPath::compile(expression, namespaces).evaluate(parsed(source));
}

} // namespace

TEST(XPathTest, AValueHasTheTypeOfTheExpression) {
    EXPECT_EQ(evaluated("'x'").type(), Value::Type::String);
    EXPECT_EQ(evaluated("1 + 1").type(), Value::Type::Number);
    EXPECT_EQ(evaluated("1 = 1").type(), Value::Type::Boolean);
    EXPECT_EQ(evaluated("//none").type(), Value::Type::NodeSet);
    EXPECT_EQ(evaluated("concat('x', 'y')").string(), "xy");
    EXPECT_EQ(evaluated("1 div 3").number(), 1.0 / 3.0);
    EXPECT_TRUE(std::isnan(evaluated("number('x')").number()));
    EXPECT_FALSE(evaluated("not(1)").boolean());
}

TEST(XPathTest, NodesAreThoseOfTheDocumentInItsOrder) {
    const auto nodes = evaluated("//c | //b | //@x", "<a x='1'><b/><c/></a>").nodes();
    ASSERT_EQ(nodes.size(), 3U);
    EXPECT_EQ(nodes[0].name() + nodes[1].name() + nodes[2].name(), "xbc");
}

/** A reverse axis too, whose first node is the last one of the document order. */
TEST(XPathTest, NodesOfAReverseAxisAreInDocumentOrder) {
    const Document document = parsed("<a><b><c/></b></a>");
    const Node c = XPath::compile("//c").evaluate(document).nodes().front();
    const auto nodes = XPath::compile("ancestor::*").evaluate(c).nodes();
    ASSERT_EQ(nodes.size(), 2U);
    EXPECT_EQ(nodes[0].name(), "a");
    EXPECT_EQ(XPath::compile("string(ancestor::*[1]/@none) or name(ancestor::*[1]) = 'b'")
                  .evaluate(c)
                  .boolean(),
              true);
}

TEST(XPathTest, ANodeIsTheContext) {
    const Document document = parsed("<a><b>1</b><b>2</b></a>");
    const auto nodes = XPath::compile("//b").evaluate(document).nodes();
    EXPECT_EQ(XPath::compile(".").evaluate(nodes[1]).string(), "2");
    EXPECT_EQ(XPath::compile("count(preceding-sibling::b)").evaluate(nodes[1]).number(), 1);
    EXPECT_EQ(XPath::compile("string(/a)").evaluate(nodes[1]).string(), "12");
}

TEST(XPathTest, EveryTypeOfNodeIsAContext) {
    const Document document = parsed("<?p d?><a x='1' xmlns:q='urn:q'>t<!--c--></a>");
    auto nodes = XPath::compile("//node() | //@* | //namespace::*").evaluate(document).nodes();
    nodes.push_back(document.root());
    for (const Node& node : nodes) {
        EXPECT_EQ(XPath::compile("string(.)").evaluate(node).string(), node.string());
        EXPECT_EQ(XPath::compile("name()").evaluate(node).string(), node.name());
        EXPECT_EQ(XPath::compile("count(//*)").evaluate(node).number(), 1);
    }
}

TEST(XPathTest, PositionAndLastAreOneAtTheTop) {
    EXPECT_EQ(evaluated("position()").number(), 1);
    EXPECT_EQ(evaluated("last()").number(), 1);
}

TEST(XPathTest, PrefixesAreThoseOfTheHost) {
    EXPECT_EQ(evaluated("count(//o:b)", "<a xmlns:p='urn:p'><p:b/></a>", {{"o", "urn:p"}}).number(),
              1);
    EXPECT_EQ(evaluated("string(//@xml:lang)", "<a xml:lang='de'/>").string(), "de");
    // The document's own prefixes do not count, nor does its default namespace.
    expectFailure([] { evaluated("//p:b", "<a xmlns:p='urn:p'><p:b/></a>"); }, ErrorKind::Compile,
                  "p");
    EXPECT_EQ(evaluated("count(//b)", "<a xmlns='urn:d'><b/></a>").number(), 0);
}

TEST(XPathTest, APrefixBeyondAsciiWorks) {
    EXPECT_EQ(
        evaluated("count(\xC3\xA4:b)", "<b xmlns='urn:\xC3\xA4'/>", {{"\xC3\xA4", "urn:\xC3\xA4"}})
            .number(),
        1);
}

TEST(XPathTest, WhatIsWrongIsACompileError) {
    for (const char* expression :
         {"", " ", "a[", "a]", "1 +", "'", "//", "a b", "@@a", "unknown()", "count()",
          "count(1, 2)", "p:f()", "p:a", "a::b", "string(", "(", ")", "\xC3"}) {
        EXPECT_EQ(failureOf([&] { XPath::compile(expression); }).kind(), ErrorKind::Compile)
            << expression;
    }
}

TEST(XPathTest, AnExpressionWithNulIsUsage) {
    expectFailure([] { XPath::compile(std::string("1\0", 2)); }, ErrorKind::Usage, "U+0000");
}

TEST(XPathTest, ATypeErrorIsATransformError) {
    for (const char* expression : {"count(1)", "sum('x')", "1/a", "'x' | 'y'", "id(1)/.. | 2"}) {
        const vexa::Error error = failureOf([&] { evaluated(expression); });
        EXPECT_TRUE(error.kind() == ErrorKind::Compile || error.kind() == ErrorKind::Transform)
            << expression << ": " << error.what();
    }
}

TEST(XPathTest, NestingThatWouldOverflowTheStackIsACompileError) {
    const std::string deep = std::string(100'000, '(') + "1" + std::string(100'000, ')');
    expectFailure([&] { XPath::compile(deep); }, ErrorKind::Compile, "nested too deeply");
}

/** Long ones, as the stack that they need is counted only then. */
TEST(XPathTest, LongSyntaxErrorsAreCompileErrors) {
    std::string operators = "1";
    std::string numbers = "1";
    for (int i = 0; i < 100; ++i) {
        operators += " ^ 1";
        numbers += " + 1.2.3";
    }
    for (const std::string& wrong :
         {operators, numbers, std::string(30, '('), std::string(30, ')'),
          "a" + std::string(30, '['), "1" + std::string(100, '@'), "1" + std::string(100, '$')}) {
        expectFailure([&] { XPath::compile(wrong); }, ErrorKind::Compile, "");
    }
}

TEST(XPathTest, KeyAndCurrentAreUnknown) {
    for (const char* expression :
         {"key('k', 1)", "current()", "1 + count( key ('a', 'b'))", "a[current() = 1]",
          "concat('x', current\n())", "not(current())"}) {
        EXPECT_EQ(failureOf([&] { XPath::compile(expression); }).kind(), ErrorKind::Compile)
            << expression;
    }
    // Names and strings that only look like them.
    EXPECT_EQ(evaluated("count(key | current)").number(), 0);
    EXPECT_EQ(evaluated("string-length('key(1) current()')").number(), 16);
    EXPECT_EQ(evaluated("count(//my-key[1] | //key.current)").number(), 0);
}

TEST(XPathTest, TheFunctionsOfTheEngineAreKnown) {
    const Namespaces namespaces{{"math", "http://exslt.org/math"}};
    EXPECT_EQ(evaluated("math:max(//b)", "<a><b>1</b><b>3</b></a>", namespaces).number(), 3);
    EXPECT_EQ(evaluated("count(child::node())").number(), 1);
}

TEST(XPathTest, TheFunctionsOfTheLibraryAreUnknown) {
    const Namespaces namespaces{{"vexa", VEXA_XSL_EXTENSION_NAMESPACE}, {"p", "urn:p"}};
    for (const char* expression : {"vexa:GetDateTime()", "1 + vexa:TimerCreate()", "p:f()"}) {
        EXPECT_EQ(failureOf([&] { XPath::compile(expression, namespaces); }).kind(),
                  ErrorKind::Compile)
            << expression;
    }
}

TEST(XPathTest, DocumentIsRelativeToTheDocumentAndUnderThePolicy) {
    const TemporaryFolder folder;
    folder.write("b.xml", "<b>read</b>");
    const Document document = Document::parse(Input::file(folder.write("a.xml", "<a>b.xml</a>")));
    EXPECT_EQ(XPath::compile("string(document(a))").evaluate(document).string(), "read");
    EXPECT_EQ(XPath::compile("string(document(/a, /))").evaluate(document).string(), "read");
    Options options;
    options.access.folders = std::vector<std::filesystem::path>();
    expectFailure([&] { XPath::compile("document(/a)").evaluate(document, options); },
                  ErrorKind::Denied, folder.path("b.xml"));
}

TEST(XPathTest, NodesThatDocumentHasReadOutliveTheEvaluation) {
    const TemporaryFolder folder;
    folder.write("b.xml", "<b><c>read</c></b>");
    const Document document = Document::parse(Input::file(folder.write("a.xml", "<a/>")));
    const auto nodes = XPath::compile("document('b.xml', /)//c").evaluate(document).nodes();
    ASSERT_EQ(nodes.size(), 1U);
    EXPECT_EQ(nodes[0].string(), "read");
    EXPECT_EQ(XPath::compile("name(..)").evaluate(nodes[0]).string(), "b");
}

TEST(XPathTest, AMissingDocumentIsAWarning) {
    std::vector<vexa::Diagnostic> messages;
    Options options;
    options.onMessage = [&](const vexa::Diagnostic& message) { messages.push_back(message); };
    EXPECT_EQ(XPath::compile("count(document('file:///none/such.xml'))")
                  .evaluate(parsed("<a/>"), options)
                  .number(),
              0);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].severity, vexa::Severity::Warning);
    EXPECT_NE(messages[0].text.find("file:///none/such.xml"), std::string::npos);
}

TEST(XPathTest, VariablesAreThoseOfTheHost) {
    const Document document = parsed("<a><b>1</b><b>2</b></a>");
    const auto evaluate = [&](const std::string& expression, const vexa::Variables& variables) {
        return XPath::compile(expression, {{"p", "urn:p"}})
            .evaluate(document, Options(), variables);
    };
    EXPECT_EQ(evaluate("$x", {{"x", "text"}}).string(), "text");
    EXPECT_EQ(evaluate("$x", {{"x", 1.5}}).type(), Value::Type::Number);
    EXPECT_EQ(evaluate("$x", {{"x", true}}).type(), Value::Type::Boolean);
    EXPECT_EQ(evaluate("$p:x", {{"{urn:p}x", "qualified"}, {"x", "plain"}}).string(), "qualified");
    EXPECT_EQ(evaluate("//b[. = $n]", {{"n", 2}}).nodes().size(), 1U);
    const auto nodes = XPath::compile("//b").evaluate(document).nodes();
    EXPECT_EQ(evaluate("sum($x) + count($x[2]/..)", {{"x", nodes}}).number(), 4);
    EXPECT_EQ(evaluate("$x", {{"x", "May's \"orders\""}}).string(), "May's \"orders\"");
}

TEST(XPathTest, NodesOfAnotherDocumentMayBeAVariable) {
    Value value(0);
    {
        const Document other = parsed("<o><i>other</i></o>");
        value = XPath::compile("$x/i").evaluate(parsed("<a/>"), Options(),
                                                {{"x", XPath::compile("/o").evaluate(other)}});
    }
    EXPECT_EQ(value.string(), "other");
}

TEST(XPathTest, AnUndeclaredVariableIsATransformErrorThatNamesIt) {
    expectFailure([] { evaluated("$nowhere + 1"); }, ErrorKind::Transform, "nowhere");
    expectFailure(
        [] {
            XPath::compile("$x").evaluate(parsed("<a/>"), Options(), {{"{urn:p}x", "text"}});
        },
        ErrorKind::Transform, "x");
}

TEST(XPathTest, AVariableWithNulIsUsage) {
    const XPath expression = XPath::compile("$x");
    expectFailure(
        [&] {
            expression.evaluate(parsed("<a/>"), Options(), {{"x", std::string("a\0b", 3)}});
        },
        ErrorKind::Usage, "U+0000");
}

TEST(XPathTest, IsEvaluatedAgainAndAgainAfterFailuresToo) {
    const Document document = parsed("<a>1</a>");
    const XPath expression = XPath::compile("$x + a");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(expression.evaluate(document, Options(), {{"x", i}}).number(), i + 1);
        expectFailure([&] { expression.evaluate(document); }, ErrorKind::Transform, "x");
    }
}

TEST(XPathTest, AnExpressionThatIsEmptyOrWasMovedFromAnswersWithUsage) {
    XPath full = XPath::compile("1");
    const XPath other = std::move(full);
    const Document document = parsed("<a/>");
    EXPECT_EQ(other.evaluate(document).number(), 1);
    for (const XPath& expression : {XPath(), full}) { // NOLINT(bugprone-use-after-move)
        expectFailure([&] { expression.evaluate(document); }, ErrorKind::Usage, "empty");
        expectFailure([&] { expression.evaluate(document.root()); }, ErrorKind::Usage, "empty");
    }
}
