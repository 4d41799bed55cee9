#include "XsltTest.h"

#include <sstream>

using vexa::Call;
using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Node;
using vexa::Options;
using vexa::Output;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::Value;
using vexa::XPath;

namespace {

/** A run whose root template calls f:f with the given arguments. */
Transformation callOf(const std::string& arguments, vexa::Function function) {
    Transformation run(
        compiledRootTemplate("<xsl:copy-of select='f:f(" + arguments + ")' xmlns:f='urn:f'/>"));
    run.function("urn:f", "f", std::move(function));
    return run;
}

std::string typeOf(const std::string& argument, const std::string& variables = {}) {
    static const char* const NAMES[] = {"string", "number", "boolean", "node-set"};
    Transformation run(compiledRootTemplate(variables + "<xsl:value-of select='f:f(" + argument +
                                            ")' xmlns:f='urn:f'/>"));
    run.function("urn:f", "f",
                 [](const Call& call) { return NAMES[static_cast<int>(call.argument(0).type())]; });
    return run.toString(Input::text("<a>1</a>"));
}

} // namespace

TEST(TransformationTest, EveryOperationGivesTheSame) {
    Transformation run(compiledRootTemplate("<b><xsl:copy-of select='a/node()'/></b>"));
    const std::string text = "<a>x<c/></a>";
    const Input input = Input::text(text);
    const Document document = parsed(text);
    const std::string expected = "<b>x<c/></b>";
    std::string result;
    std::ostringstream stream;
    run.to(input, Output::text(result));
    run.to(document, Output::stream(stream));
    EXPECT_EQ(result, expected);
    EXPECT_EQ(stream.str(), expected);
    EXPECT_EQ(run.toString(input), expected);
    EXPECT_EQ(run.toString(document), expected);
    EXPECT_EQ(run.toDocument(input).xml(), expected);
    EXPECT_EQ(run.toDocument(document).xml(), expected);
}

/** Prefixes that the engine makes up are counted anew, and keys and variables are built anew. */
TEST(TransformationTest, EveryRunIsAsTheFirst) {
    Transformation run(compiled(
        "<xsl:output omit-xml-declaration='yes'/><xsl:key name='k' match='i' use='.'/>"
        "<xsl:variable name='g' select='count(//i)'/>"
        "<xsl:template match='/'><b><xsl:attribute name='x' namespace='urn:x'/>"
        "<xsl:element name='y' namespace='urn:y'/><xsl:value-of select='count(key(\"k\", 1))'/>"
        ",<xsl:value-of select='$g'/>,<xsl:number value='1'/>"
        "<xsl:for-each select='//i'><xsl:number level='any'/></xsl:for-each></b></xsl:template>"));
    const std::string first = run.toString(Input::text("<a><i>1</i><i>2</i></a>"));
    run.toString(Input::text("<a><i>1</i></a>"));
    EXPECT_EQ(run.toString(Input::text("<a><i>1</i><i>2</i></a>")), first);
}

TEST(TransformationTest, ASourceThatIsNotWellFormedIsAParseError) {
    Transformation run(compiledRootTemplate("<b/>"));
    expectFailure([&] { run.toString(Input::text("<a>")); }, ErrorKind::Parse, "");
    expectFailure([&] { run.toString(Input::file("/none/such.xml")); }, ErrorKind::Input,
                  "No such file");
}

TEST(TransformationTest, AMessageThatEndsTheTransformIsItsError) {
    Transformation run(compiledRootTemplate(
        "<b/><xsl:message terminate='yes'>because <c>of</c> this</xsl:message>"));
    std::string heard;
    run.onMessage([&](const vexa::Diagnostic& message) { heard += message.text; });
    const auto error = failureOf([&] { run.toString(Input::text("<a/>")); });
    EXPECT_EQ(error.kind(), ErrorKind::Terminated);
    EXPECT_EQ(error.text(), "because of this");
    EXPECT_EQ(heard, "");
    EXPECT_TRUE(error.diagnostics().empty());
}

TEST(TransformationTest, ALaterHandlerReplacesAnEarlierOne) {
    Options options;
    std::string heard;
    options.onMessage = [&](const vexa::Diagnostic&) { heard += "1"; };
    Transformation run(compiledRootTemplate("<xsl:message>m</xsl:message>"), options);
    run.toString(Input::text("<a/>"));
    run.onMessage([&](const vexa::Diagnostic&) { heard += "2"; });
    run.toString(Input::text("<a/>"));
    run.onMessage(nullptr);
    run.toString(Input::text("<a/>"));
    EXPECT_EQ(heard, "12");
}

TEST(TransformationTest, AnUndeclaredVariableIsAnErrorThatNamesIt) {
    for (const char* expression : {"$nowhere", "count($nowhere)", "//a[. = $nowhere]"}) {
        const auto error = failureOf(
            [&] { transformed("<xsl:value-of select='" + std::string(expression) + "'/>"); });
        EXPECT_TRUE(error.kind() == ErrorKind::Compile || error.kind() == ErrorKind::Transform);
        EXPECT_EQ(error.text(), "the variable 'nowhere' is not declared");
        EXPECT_TRUE(error.diagnostics().empty());
    }
    expectFailure([] { transformed("<b c='{$nowhere}'/>"); }, ErrorKind::Transform, "nowhere");
}

TEST(TransformationTest, AttributeSetsOrVariablesThatUseEachOtherAreAnError) {
    expectFailure(
        [] {
            Transformation(compiled("<xsl:attribute-set name='a' use-attribute-sets='b'/>"
                                    "<xsl:attribute-set name='b' use-attribute-sets='a'/>"
                                    "<xsl:template match='/'><c xsl:use-attribute-sets='a'/>"
                                    "</xsl:template>"))
                .toString(Input::text("<a/>"));
        },
        ErrorKind::Transform, "recursion");
    expectFailure(
        [] {
            Transformation(compiled("<xsl:variable name='a' select='$b'/>"
                                    "<xsl:variable name='b' select='$a'/><xsl:template match='/'>"
                                    "<xsl:value-of select='$a'/></xsl:template>"))
                .toString(Input::text("<a/>"));
        },
        ErrorKind::Transform, "circular");
}

TEST(TransformationTest, OutputSettingsAreThoseOfTheStylesheet) {
    const auto result = [](const std::string& content) {
        return Transformation(compiled(content)).toString(Input::text("<a/>"));
    };
    EXPECT_EQ(result("<xsl:template match='/'><b/></xsl:template>"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><b/>");
    EXPECT_EQ(result("<xsl:output method='html' indent='no'/><xsl:template match='/'><html><br/>"
                     "</html></xsl:template>"),
              "<html><br></html>");
    EXPECT_EQ(result("<xsl:output method='xml' cdata-section-elements='b' "
                     "omit-xml-declaration='yes'/><xsl:template match='/'><b>&lt;</b>"
                     "</xsl:template>"),
              "<b><![CDATA[<]]></b>");
    EXPECT_EQ(result("<xsl:output method='text'/><xsl:template match='/'><b>&lt;</b>"
                     "</xsl:template>"),
              "<");
}

/** By the names of elements: of several documents, with and without namespaces; never in fragments.
 */
TEST(TransformationTest, WhiteSpaceIsStrippedByTheNameOfItsElement) {
    Options options;
    options.resolver = [](const std::string&, const std::string&) {
        return Input::text("<d xmlns='urn:n'><strip> </strip><keep> </keep></d>", "mem:/other");
    };
    const auto counts = [](const std::string& nodes) {
        return "<xsl:for-each select=\"" + nodes +
               "\"><xsl:value-of select='name()'/><xsl:value-of select='count(text())'/>;"
               "</xsl:for-each>";
    };
    Transformation run(
        compiled("<xsl:strip-space xmlns:n='urn:n' elements='strip n:keep'/>"
                 "<xsl:preserve-space xmlns:n='urn:n' elements='keep n:strip'/>"
                 "<xsl:output method='text'/><xsl:template match='/'>"
                 "<xsl:variable name='v'><strip><xsl:text> </xsl:text></strip></xsl:variable>" +
                 counts("*/*") + "|" + counts("document('other')/*/*") + "|" +
                 "<xsl:for-each xmlns:xalan='http://xml.apache.org/xalan' "
                 "select='xalan:nodeset($v)'>" +
                 counts("*") + "</xsl:for-each></xsl:template>"),
        options);
    const std::string others = "|strip1;keep0;|strip1;";
    EXPECT_EQ(run.toString(Input::text("<a xmlns:n='urn:n'><strip> </strip><keep> </keep>"
                                       "<n:strip> </n:strip><n:keep> </n:keep></a>")),
              "strip0;keep1;n:strip1;n:keep0;" + others);
    // The same names stand for others in the next source.
    EXPECT_EQ(run.toString(Input::text("<a xmlns:n='urn:other'><strip xmlns='urn:n'> </strip>"
                                       "<n:keep> </n:keep><strip> </strip><strip>x</strip></a>")),
              "strip1;n:keep1;strip0;strip1;" + others);
}

TEST(TransformationTest, ManyAttributesAreCopiedWithTheirNamespaces) {
    std::string attributes = " n:x='1' xml:lang='en'";
    for (int i = 0; i < 2000; ++i) {
        attributes += " a" + std::to_string(i) + "='" + std::to_string(i) + "'";
    }
    const Document source = parsed("<r xmlns='urn:d' xmlns:n='urn:n'><n:a" + attributes +
                                   "><b>text</b><!--c--><?p i?></n:a><c/></r>");
    Transformation copy(compiledRootTemplate("<xsl:copy-of select='*/*[1]'/>"));
    const Document result = copy.toDocument(source);
    const auto same = [&](const std::string& expression) {
        EXPECT_EQ(XPath::compile(expression).evaluate(result).string(),
                  XPath::compile(expression).evaluate(source).string())
            << expression;
    };
    same("count(//@*)");
    same("sum(//@*[not(namespace-uri())])");
    same("concat(namespace-uri(//@*[local-name() = 'x']), //@xml:lang)");
    same("concat(namespace-uri(//*[@a1]), namespace-uri(//*[@a1]/*))");
    same("string(//*[@a1])");
    same("count(//*[@a1]/node())");
    const std::string text = copy.toString(source);
    EXPECT_EQ(parsed(text).xml(), result.xml());
    const std::string end = " a1999=\"1999\"><b>text</b><!--c--><?p i?></n:a>";
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

/** One fragment may be where another one was. */
TEST(TransformationTest, KeysOfAFragmentAreItsOwn) {
    Transformation run(
        compiled("<xsl:output method='text'/><xsl:key name='k' match='x' use='@n'/>"
                 "<xsl:template match='/'><xsl:for-each select='//i'>"
                 "<xsl:variable name='n' select='string(.)'/>"
                 "<xsl:variable name='v'><x n='{.}'/></xsl:variable>"
                 "<xsl:for-each xmlns:xalan='http://xml.apache.org/xalan' "
                 "select='xalan:nodeset($v)'><xsl:value-of select=\"key('k', $n)/@n\"/>,"
                 "</xsl:for-each></xsl:for-each></xsl:template>"));
    std::string source = "<a>";
    std::string expected;
    for (int i = 0; i < 100; ++i) {
        source += "<i>" + std::to_string(i) + "</i>";
        expected += std::to_string(i) + ",";
    }
    source += "</a>";
    EXPECT_EQ(run.toString(Input::text(source)), expected);
    EXPECT_EQ(run.toString(Input::text(source)), expected);
}

TEST(TransformationTest, ItMayBeMoved) {
    Transformation run(compiledRootTemplate("<xsl:value-of select='f:f()' xmlns:f='urn:f'/>"));
    run.function("urn:f", "f", [](const Call&) { return "f"; });
    EXPECT_EQ(run.toString(Input::text("<a/>")), "f");
    Transformation moved = std::move(run);
    EXPECT_EQ(moved.toString(Input::text("<a/>")), "f");
    run = std::move(moved);
    EXPECT_EQ(run.toString(Input::text("<a/>")), "f");
}

TEST(TransformationTest, ItKeepsItsStylesheet) {
    Transformation run = [] {
        const Stylesheet sheet = compiledRootTemplate("<b/>");
        return Transformation(sheet);
    }();
    EXPECT_EQ(run.toString(Input::text("<a/>")), "<b/>");
}

TEST(TransformationTest, SettingsCanBeChained) {
    Transformation run(
        compiled("<xsl:output method='text'/><xsl:param name='p'/><xsl:template match='/'>"
                 "<xsl:value-of select='f:f($p)' xmlns:f='urn:f'/></xsl:template>"));
    run.parameter("p", "x")
        .function("urn:f", "f", [](const Call& call) { return call.argument(0); })
        .onMessage(nullptr)
        .removeParameter("none");
    EXPECT_EQ(run.toString(Input::text("<a/>")), "x");
}

TEST(TransformationTest, AMovedFromObjectAnswersWithUsage) {
    Transformation run(compiledRootTemplate("<b/>"));
    const Transformation other = std::move(run);
    const Input source = Input::text("<a/>");
    const Document document = parsed("<a/>");
    std::string text;
    // NOLINTBEGIN(bugprone-use-after-move)
    expectFailure([&] { run.toString(source); }, ErrorKind::Usage, "moved");
    expectFailure([&] { run.toString(document); }, ErrorKind::Usage, "moved");
    expectFailure([&] { run.toDocument(source); }, ErrorKind::Usage, "moved");
    expectFailure([&] { run.toDocument(document); }, ErrorKind::Usage, "moved");
    expectFailure([&] { run.to(source, Output::text(text)); }, ErrorKind::Usage, "moved");
    expectFailure([&] { run.to(document, Output::text(text)); }, ErrorKind::Usage, "moved");
    expectFailure([&] { run.parameter("p", 1); }, ErrorKind::Usage, "moved");
    expectFailure([&] { run.parameter("p", document); }, ErrorKind::Usage, "moved");
    expectFailure([&] { run.removeParameter("p"); }, ErrorKind::Usage, "moved");
    expectFailure([&] { run.function("urn:f", "f", [](const Call&) { return 1; }); },
                  ErrorKind::Usage, "moved");
    expectFailure([&] { run.onMessage(nullptr); }, ErrorKind::Usage, "moved");
    // NOLINTEND(bugprone-use-after-move)
}

// Functions of the host.

TEST(FunctionTest, ArgumentsHaveTheirTypes) {
    EXPECT_EQ(typeOf("\"x\""), "string");
    EXPECT_EQ(typeOf("1 + 1"), "number");
    EXPECT_EQ(typeOf("1 = 1"), "boolean");
    EXPECT_EQ(typeOf("//a"), "node-set");
    EXPECT_EQ(typeOf("//none"), "node-set");
    EXPECT_EQ(typeOf("/"), "node-set");
    EXPECT_EQ(typeOf("$v", "<xsl:variable name='v'><b/></xsl:variable>"), "node-set");
    EXPECT_EQ(typeOf("$v", "<xsl:variable name='v' select='1'/>"), "number");
    EXPECT_EQ(typeOf("$v", "<xsl:variable name='v'/>"), "string");
}

TEST(FunctionTest, AResultTreeFragmentIsANodeSetOfItsRoot) {
    Transformation run(
        compiledRootTemplate("<xsl:variable name='v'>x<b y='1'>text</b></xsl:variable>"
                             "<xsl:value-of select='f:f($v)' xmlns:f='urn:f'/>"));
    run.function("urn:f", "f", [](const Call& call) {
        const auto& nodes = call.argument(0).nodes();
        EXPECT_EQ(nodes.size(), 1U);
        EXPECT_EQ(nodes[0].type(), Node::Type::Root);
        EXPECT_EQ(nodes[0].xml(), "x<b y=\"1\">text</b>");
        return XPath::compile("string(b/@y)").evaluate(nodes[0]);
    });
    EXPECT_EQ(run.toString(Input::text("<a/>")), "1");
}

/** One fragment may be where another one was. */
TEST(FunctionTest, EachResultTreeFragmentIsAnother) {
    Transformation run(
        compiled("<xsl:output method='text'/><xsl:template match='/'>"
                 "<xsl:for-each select='//i'>"
                 "<xsl:variable name='v'><x><xsl:value-of select='.'/></x></xsl:variable>"
                 "<xsl:value-of select='f:f($v)' xmlns:f='urn:f'/>,"
                 "</xsl:for-each></xsl:template>"));
    run.function("urn:f", "f", [](const Call& call) { return call.argument(0); });
    EXPECT_EQ(run.toString(Input::text("<a><i>1</i><i>2</i><i>3</i><i>4</i></a>")), "1,2,3,4,");
}

TEST(FunctionTest, ResultsHaveTheirTypes) {
    const auto result = [](const std::string& expression, const Value& value) {
        Transformation run(
            compiledRootTemplate("<xsl:value-of select='" + expression + "' xmlns:f='urn:f'/>"));
        run.function("urn:f", "f", [&](const Call&) { return value; });
        return run.toString(Input::text("<a/>"));
    };
    EXPECT_EQ(result("f:f() + 1", 1.5), "2.5");
    EXPECT_EQ(result("string-length(f:f())", "abc"), "3");
    EXPECT_EQ(result("f:f() = true()", true), "true");
    EXPECT_EQ(result("string(f:f())", false), "false");
    EXPECT_EQ(result("name(f:f()/b)", XPath::compile("/a").evaluate(parsed("<a><b/></a>"))), "b");
    EXPECT_EQ(result("count(f:f())", std::vector<Node>()), "0");
}

TEST(FunctionTest, NodesOfTheSourceAreThoseOfTheHostsDocument) {
    const Document document = parsed("<a><b>1</b><b>2</b></a>");
    Transformation run = callOf("//b[2]", [](const Call& call) {
        return XPath::compile("preceding-sibling::b").evaluate(call.argument(0).nodes().front());
    });
    EXPECT_EQ(run.toString(document), "<b>1</b>");
    // What a function gives back is the same node, not another one like it.
    Transformation count(
        compiledRootTemplate("<xsl:value-of select='count(//b | f:f(//b))' xmlns:f='urn:f'/>"));
    count.function("urn:f", "f", [](const Call& call) { return call.argument(0); });
    EXPECT_EQ(count.toString(document), "2");
}

TEST(FunctionTest, TheContextIsTheNodeOfTheCall) {
    Transformation run(
        compiledRootTemplate("<xsl:for-each select='//@* | //node() | //namespace::q'>"
                             "<xsl:value-of select='f:f()' xmlns:f='urn:f'/>,</xsl:for-each>"));
    run.function("urn:f", "f", [](const Call& call) {
        return call.context().name() + "=" + call.context().string();
    });
    EXPECT_EQ(run.toString(Input::text("<a x='1' xmlns:q='urn:q'>t<!--c--><?p d?></a>")),
              "a=t,q=urn:q,x=1,=t,=c,p=d,");
}

/** In a fragment that the engine frees, the context is a copy. */
TEST(FunctionTest, TheContextInAFragmentIsItsNode) {
    Transformation run(compiledRootTemplate(
        "<xsl:variable name='v'><b y='1'>one</b>two"
        "<xsl:comment>three</xsl:comment></xsl:variable>"
        "<xsl:for-each select='exsl:node-set($v)//node() | exsl:node-set($v)//@*'>"
        "<xsl:value-of select='f:f(.)' xmlns:f='urn:f'/>,</xsl:for-each>"));
    run.function("urn:f", "f", [](const Call& call) {
        const Node& argument = call.argument(0).nodes().front();
        EXPECT_EQ(XPath::compile("count(ancestor::node())").evaluate(argument).number(),
                  XPath::compile("count(ancestor::node())").evaluate(call.context()).number());
        return call.context().name() + "=" + argument.string();
    });
    EXPECT_EQ(run.toString(Input::text("<a/>")), "b=one,y=1,=one,=two,=three,");
}

TEST(FunctionTest, NodesThatAFunctionKeepsLiveOn) {
    std::vector<Node> kept;
    {
        Transformation run(
            compiledRootTemplate("<xsl:variable name='v'><f>fragment</f></xsl:variable>"
                                 "<xsl:variable name='d' select='document(\"mem:/d\")'/>"
                                 "<xsl:value-of select='f:f($v, $d, a)' xmlns:f='urn:f'/>"),
            [] {
                Options options;
                options.resolver = [](const std::string&, const std::string&) {
                    return Input::text("<d>document</d>");
                };
                return options;
            }());
        run.function("urn:f", "f", [&](const Call& call) {
            for (std::size_t i = 0; i < call.size(); ++i) {
                kept.push_back(call.argument(i).nodes().front());
            }
            kept.push_back(call.context());
            return 1;
        });
        run.toString(Input::text("<a>source</a>"));
        run.toString(Input::text("<a>source</a>"));
    }
    ASSERT_EQ(kept.size(), 8U);
    for (int i = 0; i < 2; ++i) {
        const std::size_t first = static_cast<std::size_t>(i) * 4;
        EXPECT_EQ(kept[first].xml(), "<f>fragment</f>");
        EXPECT_EQ(kept[first + 1].xml(), "<d>document</d>");
        EXPECT_EQ(kept[first + 2].xml(), "<a>source</a>");
        EXPECT_EQ(kept[first + 3].xml(), "<a>source</a>");
    }
}

TEST(FunctionTest, KeptNodesMayBeGivenBackInALaterRun) {
    std::optional<Node> kept;
    Transformation run = callOf("", [&](const Call& call) {
        const auto result = kept ? std::vector<Node>{*kept} : std::vector<Node>();
        kept = XPath::compile("/a").evaluate(call.context()).nodes().front();
        return result;
    });
    EXPECT_EQ(run.toString(Input::text("<a>1</a>")), "");
    EXPECT_EQ(run.toString(Input::text("<a>2</a>")), "<a>1</a>");
}

TEST(FunctionTest, AnArgumentThatIsNotThereIsUsage) {
    Transformation run = callOf("1, 2", [](const Call& call) {
        EXPECT_EQ(call.size(), 2U);
        EXPECT_EQ(call.argument(1).number(), 2);
        return call.argument(2);
    });
    expectFailure([&] { run.toString(Input::text("<a/>")); }, ErrorKind::Usage, "2 arguments");
}

TEST(FunctionTest, AFunctionIsAvailable) {
    Transformation run(compiledRootTemplate(
        "<xsl:value-of select=\"function-available('f:f')\" xmlns:f='urn:f'/>"));
    EXPECT_EQ(run.toString(Input::text("<a/>")), "false");
    run.function("urn:f", "f", [](const Call&) { return 1; });
    EXPECT_EQ(run.toString(Input::text("<a/>")), "true");
}

TEST(FunctionTest, ALaterFunctionReplacesAnEarlierOne) {
    Transformation run = callOf("", [](const Call&) { return "1"; });
    EXPECT_EQ(run.toString(Input::text("<a/>")), "1");
    run.function("urn:f", "f", [](const Call&) { return "2"; });
    EXPECT_EQ(run.toString(Input::text("<a/>")), "2");
}

/** In the engine's and the library's own namespaces too. */
TEST(FunctionTest, AFunctionOfTheHostComesBeforeOneOfTheLibrary) {
    Transformation run(compiledRootTemplate("<xsl:value-of select='exsl:object-type(1)'/>,"
                                            "<xsl:value-of select='vexa:GetDateTime()'/>"));
    run.function("http://exslt.org/common", "object-type", [](const Call&) { return "mine"; });
    EXPECT_EQ(run.toString(Input::text("<a/>")).substr(0, 5), "mine,");
}

TEST(FunctionTest, TheEightFunctionsAreThereForEveryStylesheet) {
    for (const char* name : {"GetLocalizedString", "GetDateTime", "TimerCreate", "TimerStart",
                             "TimerStop", "TimerTotal", "TimerReset", "TimerDestroy"}) {
        EXPECT_EQ(transformed("<xsl:value-of select=\"function-available('vexa:" +
                              std::string(name) + "')\"/>"),
                  "true")
            << name;
    }
    EXPECT_EQ(transformed("<xsl:value-of select=\"vexa:GetLocalizedString(4, 'de')\"/>"), "Summe");
}

// Expressions that a stylesheet composes.

TEST(EvaluateTest, EvaluatesInTheContextOfTheStylesheet) {
    const auto evaluated = [](const std::string& expression) {
        return transformed("<xsl:variable name='v' select='7'/><xsl:for-each select='a/b' "
                           "xmlns:d='http://exslt.org/dynamic' xmlns:p='urn:p'><xsl:value-of "
                           "select='" +
                               expression + "'/></xsl:for-each>",
                           "<a><b>1</b><p:c xmlns:p='urn:p'>2</p:c></a>");
    };
    for (const std::string function : {"d:evaluate", "xalan:evaluate"}) {
        EXPECT_EQ(evaluated(function + "(\"1 + 1\")"), "2");
        EXPECT_EQ(evaluated(function + "(\". + $v\")"), "8");
        EXPECT_EQ(evaluated(function + "(\"name(..)\")"), "a");
        EXPECT_EQ(evaluated(function + "(\"string(//p:c)\")"), "2");
        EXPECT_EQ(evaluated(function + "(concat(\"" + function + "\", \"(3 + 4)\"))"), "7");
    }
}

TEST(EvaluateTest, AWrongExpressionIsAnErrorOrAnEmptyNodeSet) {
    std::vector<vexa::Diagnostic> messages;
    Options options;
    options.onMessage = [&](const vexa::Diagnostic& message) { messages.push_back(message); };
    EXPECT_EQ(transformed("<xsl:value-of select='count(d:evaluate(\"a[\"))' "
                          "xmlns:d='http://exslt.org/dynamic'/>",
                          "<a/>", options),
              "0");
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].severity, vexa::Severity::Error);
    EXPECT_NE(messages[0].text.find("Expected ']'"), std::string::npos) << messages[0].text;
    expectFailure([] { transformed("<xsl:value-of select='xalan:evaluate(\"a[\")'/>"); },
                  ErrorKind::Transform, "Expected ']'");
}

/** The engine alone overflows the stack. */
TEST(EvaluateTest, AnExpressionThatEvaluatesItselfIsAnError) {
    for (const char* uri : {"http://exslt.org/dynamic", "http://xml.apache.org/xalan"}) {
        expectFailure(
            [&] {
                transformed("<xsl:value-of select='d:evaluate(.)' xmlns:d='" + std::string(uri) +
                                "'/>",
                            "<a>d:evaluate(.)</a>");
            },
            ErrorKind::Transform, "nested too deeply");
    }
    expectFailure(
        [] {
            XPath::compile("d:evaluate(.)", {{"d", "http://exslt.org/dynamic"}})
                .evaluate(parsed("<a>d:evaluate(.)</a>"));
        },
        ErrorKind::Transform, "nested too deeply");
}

TEST(EvaluateTest, AFunctionOfTheHostComesFirst) {
    Transformation run(compiledRootTemplate("<xsl:value-of select='d:evaluate(1)' "
                                            "xmlns:d='http://exslt.org/dynamic'/>"));
    run.function("http://exslt.org/dynamic", "evaluate", [](const Call&) { return "mine"; });
    EXPECT_EQ(run.toString(Input::text("<a/>")), "mine");
}

TEST(FunctionTest, WithoutNamespaceOrBodyIsUsage) {
    Transformation run(compiledRootTemplate("<b/>"));
    const auto body = [](const Call&) { return 1; };
    expectFailure([&] { run.function("", "f", body); }, ErrorKind::Usage, "");
    expectFailure([&] { run.function("urn:f", "f", nullptr); }, ErrorKind::Usage, "");
    expectFailure([&] { run.function("urn:f", "f", vexa::Function()); }, ErrorKind::Usage, "");
    for (const char* name : {"", "a b", "a:b", "1", "{urn:x}a"}) {
        expectFailure([&] { run.function("urn:f", name, body); }, ErrorKind::Usage, "not a name");
    }
    EXPECT_EQ(run.toString(Input::text("<a/>")), "<b/>");
}

TEST(FunctionTest, NamesAndTextsAreOfAnyScript) {
    Transformation run(compiledRootTemplate("<xsl:value-of select='f:\xC3\x84(\"\xE2\x82\xAC\")' "
                                            "xmlns:f='urn:\xC3\xBC'/>"));
    run.function("urn:\xC3\xBC", "\xC3\x84", [](const Call& call) {
        EXPECT_EQ(call.argument(0).string(), "\xE2\x82\xAC");
        return "\xF0\x9F\x8C\x8A";
    });
    EXPECT_EQ(run.toDocument(Input::text("<a/>")).root().string(), "\xF0\x9F\x8C\x8A");
}

TEST(FunctionTest, ATextWithNulIsUsage) {
    Transformation run = callOf("", [](const Call&) { return std::string("a\0b", 3); });
    expectFailure([&] { run.toString(Input::text("<a/>")); }, ErrorKind::Usage, "U+0000");
}

TEST(FunctionTest, ItMayRunATransformationOfItsOwn) {
    Transformation inner(compiledRootTemplate("<i><xsl:value-of select='a'/></i>"));
    Transformation run = callOf("/", [&](const Call& call) {
        return std::vector<Node>{
            inner.toDocument(parsed(call.argument(0).nodes().front().xml())).root()};
    });
    EXPECT_EQ(run.toString(Input::text("<a>x</a>")), "<i>x</i>");
}

TEST(FunctionTest, AFunctionThatUsesItsTransformationIsUsage) {
    Transformation* self = nullptr;
    std::string log;
    std::string text;
    const auto attempt = [&](const auto& operation) {
        try {
            operation();
            log += "done ";
        } catch (const vexa::Error& error) {
            log += error.kind() == ErrorKind::Usage ? "" : error.what();
        }
    };
    Transformation run = callOf("", [&](const Call&) {
        const Input input = Input::text("<a/>");
        attempt([&] { self->toString(input); });
        attempt([&] { self->toDocument(input); });
        attempt([&] { self->to(input, Output::text(text)); });
        attempt([&] { self->parameter("p", 1); });
        attempt([&] { self->removeParameter("p"); });
        attempt([&] { self->function("urn:f", "f", [](const Call&) { return 1; }); });
        attempt([&] { self->onMessage(nullptr); });
        return "end";
    });
    self = &run;
    EXPECT_EQ(run.toString(Input::text("<a/>")), "end");
    EXPECT_EQ(log, "");
    EXPECT_EQ(run.toString(Input::text("<a/>")), "end"); // it is free again
}

TEST(FunctionTest, AHandlerOrResolverThatUsesItsTransformationIsUsage) {
    Transformation* self = nullptr;
    Options options;
    options.onMessage = [&](const vexa::Diagnostic&) { self->toString(Input::text("<a/>")); };
    options.resolver = [&](const std::string&, const std::string&) {
        return Input::text(self->toString(Input::text("<a/>")));
    };
    for (const char* content : {"<xsl:message/>", "<xsl:copy-of select='document(\"x\")'/>"}) {
        Transformation run(compiledRootTemplate(content), options);
        self = &run;
        expectFailure([&] { run.toString(Input::text("<a/>")); }, ErrorKind::Usage, "running");
    }
}
