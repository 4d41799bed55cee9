#include "XsltTest.h"

using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Node;
using vexa::XPath;

namespace {

const char* const SOURCE = "<?target some data?><!-- top -->"
                           "<p:a xmlns:p='urn:p' xmlns='urn:d' p:x='1' y='&lt;2' xml:lang='en'>"
                           "text<b>more <![CDATA[<raw>]]> text</b><!--in--></p:a>";

Node nodeAt(const std::string& expression, const Document& document = parsed(SOURCE)) {
    const auto nodes =
        XPath::compile(expression, {{"p", "urn:p"}, {"d", "urn:d"}}).evaluate(document).nodes();
    EXPECT_EQ(nodes.size(), 1U) << expression;
    return nodes.empty() ? Node() : nodes.front();
}

/** "type name localName namespaceUri string", as a line. */
std::string described(const Node& node) {
    static const char* const TYPES[] = {"root",    "element", "attribute", "text",
                                        "comment", "pi",      "namespace"};
    return std::string(TYPES[static_cast<int>(node.type())]) + "|" + node.name() + "|" +
           node.localName() + "|" + node.namespaceUri() + "|" + node.string();
}

} // namespace

TEST(NodeTest, EachTypeHasItsNameAndString) {
    EXPECT_EQ(described(nodeAt("/")), "root||||textmore <raw> text");
    EXPECT_EQ(described(nodeAt("/p:a")), "element|p:a|a|urn:p|textmore <raw> text");
    EXPECT_EQ(described(nodeAt("//d:b")), "element|b|b|urn:d|more <raw> text");
    EXPECT_EQ(described(nodeAt("/*/@p:x")), "attribute|p:x|x|urn:p|1");
    EXPECT_EQ(described(nodeAt("/*/@y")), "attribute|y|y||<2");
    EXPECT_EQ(described(nodeAt("/*/@xml:lang")),
              "attribute|xml:lang|lang|http://www.w3.org/XML/1998/namespace|en");
    EXPECT_EQ(described(nodeAt("/*/text()")), "text||||text");
    EXPECT_EQ(described(nodeAt("//d:b/text()[1]")), "text||||more <raw> text");
    EXPECT_EQ(described(nodeAt("/comment()")), "comment|||| top ");
    EXPECT_EQ(described(nodeAt("/processing-instruction()")), "pi|target|target||some data");
    EXPECT_EQ(described(nodeAt("/*/namespace::p")), "namespace|p|p||urn:p");
    EXPECT_EQ(described(nodeAt("/*/namespace::*[name() = '']")), "namespace||||urn:d");
    EXPECT_EQ(described(nodeAt("/*/namespace::xml")),
              "namespace|xml|xml||http://www.w3.org/XML/1998/namespace");
}

TEST(NodeTest, XmlIsTheNodeWithoutADeclaration) {
    EXPECT_EQ(nodeAt("//d:b").xml(),
              "<b xmlns:p=\"urn:p\" xmlns=\"urn:d\">more &lt;raw&gt; text</b>");
    EXPECT_EQ(nodeAt("/*/text()").xml(), "text");
    EXPECT_EQ(nodeAt("/comment()").xml(), "<!-- top -->");
    EXPECT_EQ(nodeAt("/processing-instruction()").xml(), "<?target some data?>");
    EXPECT_EQ(nodeAt("/").xml(),
              "<?target some data?><!-- top -->"
              "<p:a xmlns:p=\"urn:p\" xmlns=\"urn:d\" p:x=\"1\" y=\"&lt;2\" xml:lang=\"en\">"
              "text<b>more &lt;raw&gt; text</b><!--in--></p:a>");
}

TEST(NodeTest, XmlOfAnElementHasTheNamespacesAroundIt) {
    const Document document = parsed("<p:a xmlns:p='urn:1' xmlns='urn:d' xmlns:q='urn:q'>"
                                     "<b xmlns:p='urn:2' x='1'><p:c xmlns='' y='2'/></b></p:a>");
    EXPECT_EQ(nodeAt("//*[@x]", document).xml(),
              "<b xmlns:p=\"urn:2\" x=\"1\" xmlns=\"urn:d\" xmlns:q=\"urn:q\">"
              "<p:c xmlns=\"\" y=\"2\"/></b>");
    EXPECT_EQ(nodeAt("//*[@y]", document).xml(),
              "<p:c xmlns=\"\" y=\"2\" xmlns:p=\"urn:2\" xmlns:q=\"urn:q\"/>");
}

TEST(NodeTest, XmlOfAnAttributeOrANamespaceIsItsValue) {
    EXPECT_EQ(nodeAt("/*/@y").xml(), "<2");
    EXPECT_EQ(nodeAt("/*/namespace::p").xml(), "urn:p");
}

/** The same over a document that a transform has built. */
TEST(NodeTest, NodesOfAResultAreThoseOfAParsedDocument) {
    const Document result =
        vexa::Transformation(vexa::Stylesheet::compile(Input::text(copyingStylesheet())))
            .toDocument(Input::text(SOURCE));
    const Document reparsed = parsed(result.xml());
    EXPECT_EQ(result.xml(), parsed(SOURCE).xml());
    const XPath all = XPath::compile("//node() | //@* | //namespace::*");
    const auto nodes = all.evaluate(result).nodes();
    const auto expected = all.evaluate(reparsed).nodes();
    ASSERT_EQ(nodes.size(), expected.size());
    EXPECT_GT(nodes.size(), 10U);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        EXPECT_EQ(described(nodes[i]), described(expected[i]));
        EXPECT_EQ(nodes[i].xml(), expected[i].xml());
    }
}

TEST(NodeTest, ANodeKeepsItsDocumentAlive) {
    Node node;
    { node = nodeAt("//d:b", parsed(SOURCE)); }
    EXPECT_EQ(node.string(), "more <raw> text");
}

TEST(NodeTest, TextIsUtf8) {
    EXPECT_EQ(nodeAt("/*", parsed("<\xC3\xA4>\xF0\x9F\x8C\x8A</\xC3\xA4>")).name(), "\xC3\xA4");
    EXPECT_EQ(nodeAt("/*", parsed("<a>&#x1F30A;</a>")).xml(), "<a>\xF0\x9F\x8C\x8A</a>");
}

TEST(NodeTest, ANodeThatIsEmptyOrWasMovedFromAnswersWithUsage) {
    Node full = nodeAt("/p:a");
    const Node other = std::move(full);
    EXPECT_EQ(other.name(), "p:a");
    for (const Node& node : {Node(), full}) { // NOLINT(bugprone-use-after-move)
        expectFailure([&] { static_cast<void>(node.type()); }, ErrorKind::Usage, "empty");
        expectFailure([&] { node.name(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { node.localName(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { node.namespaceUri(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { node.string(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { node.xml(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { XPath::compile("1").evaluate(node); }, ErrorKind::Usage, "empty");
    }
}
