#include "XsltTest.h"

#include <cmath>
#include <limits>

using vexa::Document;
using vexa::ErrorKind;
using vexa::Node;
using vexa::Value;
using vexa::XPath;

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

std::vector<Node> nodesOf(const Document& document, const std::string& expression) {
    return XPath::compile(expression).evaluate(document).nodes();
}

std::string namesOf(const std::vector<Node>& nodes) {
    std::string names;
    for (const Node& node : nodes) {
        names += node.name();
    }
    return names;
}

} // namespace

TEST(ValueTest, HasTheTypeOfWhatItWasMadeOf) {
    EXPECT_EQ(Value("a").type(), Value::Type::String);
    EXPECT_EQ(Value(std::string("a")).type(), Value::Type::String);
    EXPECT_EQ(Value(std::string_view("a")).type(), Value::Type::String);
    EXPECT_EQ(Value(true).type(), Value::Type::Boolean);
    EXPECT_EQ(Value(1).type(), Value::Type::Number);
    EXPECT_EQ(Value(1U).type(), Value::Type::Number);
    EXPECT_EQ(Value(1L).type(), Value::Type::Number);
    EXPECT_EQ(Value(std::size_t{1}).type(), Value::Type::Number);
    EXPECT_EQ(Value(1.5F).type(), Value::Type::Number);
    EXPECT_EQ(Value(1.5).type(), Value::Type::Number);
    EXPECT_EQ(Value(std::vector<Node>()).type(), Value::Type::NodeSet);
}

TEST(ValueTest, ANullPointerIsUsage) {
    const char* const none = nullptr;
    expectFailure([&] { Value value(none); }, ErrorKind::Usage, "null");
}

TEST(ValueTest, AStringIsConvertedAsInXPath) {
    EXPECT_EQ(Value("text").string(), "text");
    EXPECT_TRUE(Value("false").boolean());
    EXPECT_FALSE(Value("").boolean());
    EXPECT_EQ(Value(" \t-1.5\r\n").number(), -1.5);
    EXPECT_EQ(Value("007").number(), 7);
    EXPECT_EQ(Value(".5").number(), 0.5);
    EXPECT_EQ(Value("5.").number(), 5);
    for (const char* text : {"",
                             " ",
                             "+1",
                             "1e3",
                             "1E3",
                             "inf",
                             "nan",
                             "NaN",
                             "Infinity",
                             "0x10",
                             "- 1",
                             "--1",
                             "1 2",
                             ".",
                             "-",
                             "-.",
                             "1.2.3",
                             "1,5",
                             "1-",
                             "\xC2\xA0"
                             "1"}) {
        EXPECT_TRUE(std::isnan(Value(text).number())) << "'" << text << "'";
    }
    EXPECT_EQ(Value(std::string(400, '9')).number(), INFINITE);
    EXPECT_EQ(Value("-" + std::string(400, '9')).number(), -INFINITE);
    EXPECT_EQ(Value("0." + std::string(400, '0') + "1").number(), 0);
    EXPECT_EQ(Value("0" + std::string(400, '0') + "1").number(), 1);
    EXPECT_TRUE(std::signbit(Value("-0").number()));
}

TEST(ValueTest, ANumberIsConvertedAsInXPath) {
    const std::pair<double, const char*> numbers[] = {
        {0, "0"},
        {-0.0, "0"},
        {1, "1"},
        {-17, "-17"},
        {0.1, "0.1"},
        {-0.5, "-0.5"},
        {1e21, "1000000000000000000000"},
        {1e-7, "0.0000001"},
        {INFINITE, "Infinity"},
        {-INFINITE, "-Infinity"},
        {NOT_A_NUMBER, "NaN"},
        {0.1 + 0.2, "0.30000000000000004"},
        {9007199254740993.0, "9007199254740992"},
    };
    for (const auto& [number, text] : numbers) {
        EXPECT_EQ(Value(number).string(), text);
    }
    EXPECT_EQ(Value(std::numeric_limits<double>::max()).string().size(), 309U);
    EXPECT_EQ(Value(std::numeric_limits<double>::denorm_min()).string().substr(0, 5), "0.000");
    EXPECT_FALSE(Value(0).boolean());
    EXPECT_FALSE(Value(-0.0).boolean());
    EXPECT_FALSE(Value(NOT_A_NUMBER).boolean());
    EXPECT_TRUE(Value(0.1).boolean());
    EXPECT_TRUE(Value(-INFINITE).boolean());
    EXPECT_EQ(Value(-2.5).number(), -2.5);
}

/** Whatever the host's locale writes for a decimal point. */
TEST(ValueTest, NumbersDoNotDependOnTheLocale) {
    for (const double number : {1.5, 1e-300, 123456789.125}) {
        EXPECT_EQ(Value(Value(number).string()).number(), number);
    }
}

TEST(ValueTest, ABooleanIsConvertedAsInXPath) {
    EXPECT_EQ(Value(true).string(), "true");
    EXPECT_EQ(Value(false).string(), "false");
    EXPECT_EQ(Value(true).number(), 1);
    EXPECT_EQ(Value(false).number(), 0);
    EXPECT_FALSE(Value(false).boolean());
}

TEST(ValueTest, ANodeSetIsConvertedByItsFirstNodeInDocumentOrder) {
    const Document document = parsed("<a><b>1</b><c>2</c></a>");
    std::vector<Node> nodes = nodesOf(document, "/a/c");
    nodes.push_back(nodesOf(document, "/a/b").front());
    const Value value(nodes);
    EXPECT_EQ(value.string(), "1");
    EXPECT_EQ(value.number(), 1);
    EXPECT_TRUE(value.boolean());
    const Value none{std::vector<Node>()};
    EXPECT_EQ(none.string(), "");
    EXPECT_TRUE(std::isnan(none.number()));
    EXPECT_FALSE(none.boolean());
}

TEST(ValueTest, NodesAreInDocumentOrderEachOnce) {
    const Document document = parsed("<a x='1'><b><c/></b><d/></a>");
    std::vector<Node> nodes;
    for (const char* expression : {"//d", "//c", "//@x", "//b", "//c", "/a", "//@x"}) {
        nodes.push_back(nodesOf(document, expression).front());
    }
    EXPECT_EQ(namesOf(Value(nodes).nodes()), "axbcd");
}

TEST(ValueTest, NodesOfSeveralDocumentsStayTogether) {
    const Document one = parsed("<a><b/></a>");
    const Document two = parsed("<a><b/></a>");
    std::vector<Node> nodes;
    for (const Document& document : {one, two, one, two}) {
        for (const Node& node : nodesOf(document, "/* | /*/*")) {
            nodes.push_back(node);
        }
    }
    const Value value(nodes);
    EXPECT_EQ(namesOf(value.nodes()), "abab");
}

TEST(ValueTest, AnEmptyNodeIsUsage) {
    expectFailure([] { Value value(std::vector<Node>{Node()}); }, ErrorKind::Usage, "node");
    expectFailure([] { Value value(std::vector<Node>(3)); }, ErrorKind::Usage, "node");
}

TEST(ValueTest, NodesOfWhatIsNoNodeSetAreUsage) {
    expectFailure([] { Value("a").nodes(); }, ErrorKind::Usage, "node-set");
    const Value number(1);
    expectFailure([&] { number.nodes(); }, ErrorKind::Usage, "node-set");
}

TEST(ValueTest, ALoopOverTheNodesOfATemporaryIsSafe) {
    std::string names;
    for (const Node& node : XPath::compile("//*").evaluate(parsed("<a><b/><c/></a>")).nodes()) {
        names += node.name();
    }
    EXPECT_EQ(names, "abc");
}

TEST(ValueTest, NodesKeepTheirDocumentAlive) {
    Value value(1);
    {
        const Document document = parsed("<a><b>text</b></a>");
        value = nodesOf(document, "//b");
    }
    EXPECT_EQ(value.string(), "text");
}

TEST(ValueTest, TextIsUtf8AndMayHoldNul) {
    const std::string text("a\0b\xF0\x9F\x8C\x8A", 7);
    EXPECT_EQ(Value(text).string(), text);
    EXPECT_EQ(Value(std::string_view(text)).string(), text);
}

TEST(ValueTest, AValueThatWasMovedFromAnswersWithUsage) {
    Value value("text");
    const Value other = std::move(value);
    EXPECT_EQ(other.string(), "text");
    // NOLINTBEGIN(bugprone-use-after-move)
    expectFailure([&] { static_cast<void>(value.type()); }, ErrorKind::Usage, "empty");
    expectFailure([&] { value.string(); }, ErrorKind::Usage, "empty");
    expectFailure([&] { static_cast<void>(value.number()); }, ErrorKind::Usage, "empty");
    expectFailure([&] { static_cast<void>(value.boolean()); }, ErrorKind::Usage, "empty");
    expectFailure([&] { value.nodes(); }, ErrorKind::Usage, "empty");
    // NOLINTEND(bugprone-use-after-move)
    value = 1;
    EXPECT_EQ(value.number(), 1);
}
