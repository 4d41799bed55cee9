/**
 * @file
 * What docs/security.md lists, with limits set: in the main thread, and in one with a small stack.
 */
#include "XsltTest.h"

#include "support/HostileWork.h"
#include "support/Listener.h"

#include <functional>
#include <optional>
#include <pthread.h>

using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Options;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::XPath;

namespace {

Options limited() {
    Options options;
    options.limits.memory = std::size_t{16} << 20;
    options.limits.output = 1'000'000;
    options.limits.time = std::chrono::minutes(1);
    options.limits.depth = 1000;
    return options;
}

void inASmallStack(const std::function<void()>& work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, std::size_t{1} << 20);
    pthread_t thread{};
    const auto start = [](void* given) -> void* {
        (*static_cast<const std::function<void()>*>(given))();
        return nullptr;
    };
    ASSERT_EQ(
        pthread_create(&thread, &attributes, start, const_cast<std::function<void()>*>(&work)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

struct Hostile {
    const char* name;
    /** None: the work succeeds. */
    std::optional<ErrorKind> kind;
    const char* text;
    void (*run)(const Options&);
};

void run(const std::string& rootTemplate, const std::string& source, const Options& options) {
    Transformation(
        Stylesheet::compile(Input::text(stylesheetWithRootTemplate(rootTemplate)), options),
        options)
        .toString(Input::text(source));
}

void compile(const std::string& content, const Options& options) {
    Stylesheet::compile(Input::text(stylesheet(content)), options);
}

void parse(const std::string& text, const Options& options) {
    Document::parse(Input::text(text), options);
}

void callAFunctionThatCallsItself(const Options& options) {
    const std::string content =
        "<f:function name='m:f' xmlns:f='http://exslt.org/functions' xmlns:m='urn:m'>"
        "<a xsl:extension-element-prefixes='f'><f:result select='m:f()'/></a></f:function>"
        "<xsl:template match='/' xmlns:m='urn:m'>"
        "<xsl:value-of select='m:f()'/></xsl:template>";
    Transformation(Stylesheet::compile(Input::text(stylesheet(content))), options)
        .toString(Input::text("<a/>"));
}

std::string nested(int depth) {
    return repeated("<a>", depth) + repeated("</a>", depth);
}

std::string brackets(int depth) {
    return repeated("(", depth) + "1" + repeated(")", depth);
}

const Hostile ALL_HOSTILE[] = {
    {"AnExternalEntity", ErrorKind::Denied, "file:///etc/passwd",
     [](const Options& options) {
         parse("<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><a>&e;</a>", options);
     }},
    {"ADocumentOfTheStylesheetsChoice", ErrorKind::Denied, "file:///etc/passwd",
     [](const Options& given) {
         Options options = given;
         options.access.folders = {"/usr/share/xml"};
         run("<xsl:copy-of select=\"document('/etc/passwd')\"/>", "<a/>", options);
     }},
    {"EntityExpansion", ErrorKind::Limit, "limit", endlessWork().front().run},
    {"NestedElements", ErrorKind::Limit, "the depth limit of 1000",
     [](const Options& options) { parse(nested(100'000), options); }},
    {"NestedElementsInAStylesheet", ErrorKind::Limit, "the depth limit of 1000",
     [](const Options& options) { run(nested(100'000), "<a/>", options); }},
    {"NestedElementsUpToTheLimit", std::nullopt, "",
     [](const Options& options) {
         run(nested(990), nested(990), options);
         run("<xsl:apply-templates/>", nested(990), options);
         run("<xsl:copy-of select='.'/>", nested(990), options);
     }},
    {"ManyReferences", std::nullopt, "",
     [](const Options& options) { parse("<a>" + repeated("&amp;", 50'000) + "</a>", options); }},
    {"ManyAttributes", std::nullopt, "",
     [](const Options& options) {
         std::string attributes;
         for (int i = 0; i < 20'000; ++i) {
             attributes += " n" + std::to_string(i) + "=''";
         }
         parse("<a" + attributes + "/>", options);
     }},
    {"DeepParentheses", ErrorKind::Compile, "nested too deeply",
     [](const Options& options) {
         run("<xsl:value-of select='" + brackets(22'000) + "'/>", "<a/>", options);
     }},
    {"DeepParenthesesInAPattern", ErrorKind::Compile, "nested too deeply",
     [](const Options& options) {
         compile("<xsl:template match='a[" + brackets(22'000) + "]'/>", options);
     }},
    {"DeepParenthesesInAnAttributeValue", ErrorKind::Compile, "nested too deeply",
     [](const Options& options) { run("<a b='{" + brackets(22'000) + "}'/>", "<a/>", options); }},
    {"DeepParenthesesInAComposedExpression", std::nullopt, "",
     [](const Options& options) {
         run("<xsl:value-of xmlns:dyn='http://exslt.org/dynamic' "
             "select='dyn:evaluate(string(a))'/>",
             "<a>" + brackets(22'000) + "</a>", options);
     }},
    {"DeepParenthesesInAQuery", ErrorKind::Compile, "nested too deeply",
     [](const Options&) { XPath::compile(brackets(22'000)); }},
    {"EndlessRecursion", ErrorKind::Limit, "the depth limit of 1000",
     [](const Options& options) {
         Transformation(Stylesheet::compile(Input::text(stylesheet(endlessRecursion()))), options)
             .toString(Input::text("<a/>"));
     }},
    {"AFunctionThatCallsItself", ErrorKind::Limit, "the depth limit of 100 ",
     [](const Options& options) {
         Options few = options; // a sanitizer makes the calls larger
         few.limits.depth = 100;
         callAFunctionThatCallsItself(few);
     }},
    {"AFunctionThatCallsItselfWithoutALimit", ErrorKind::Transform, "is called too deeply",
     [](const Options&) { callAFunctionThatCallsItself({}); }},
    {"ADocumentWithoutAHandler", ErrorKind::Denied, "the document 'file:///tmp/x' may not be",
     [](const Options& options) {
         run("<a xmlns:e='http://exslt.org/common' xsl:extension-element-prefixes='e'>"
             "<e:document href='file:///tmp/x'/></a>",
             "<a/>", options);
     }},
    {"AnExpressionThatEvaluatesItself", ErrorKind::Transform, "",
     [](const Options& options) {
         run("<xsl:value-of xmlns:dyn='http://exslt.org/dynamic' "
             "select='dyn:evaluate(string(a))'/>",
             "<a xmlns:dyn='http://exslt.org/dynamic'>dyn:evaluate(string(a))</a>", options);
     }},
    {"AnEndlessResult", ErrorKind::Limit, "the output limit of 1000000 bytes",
     [](const Options& options) {
         std::string content = "some text";
         for (int i = 0; i < 6; ++i) {
             content = "<xsl:for-each select='//i'>" + content + "</xsl:for-each>";
         }
         run(content, manyItems(), options);
     }},
    {"ALargeNumber", std::nullopt, "",
     [](const Options& options) {
         run("<xsl:value-of select='1 div 0." + repeated("0", 120) + "1'/>", "<a/>", options);
     }},
    {"AnUnknownAttributeOfText", ErrorKind::Compile, "'unknown'",
     [](const Options& options) { run("<xsl:text unknown='x'>y</xsl:text>", "<a/>", options); }},
    {"AWrongValueOfAnAttributeOfText", ErrorKind::Compile, "'disable-output-escaping'",
     [](const Options& options) {
         run("<xsl:text disable-output-escaping='perhaps'>y</xsl:text>", "<a/>", options);
     }},
    {"AnIncompletePattern", ErrorKind::Compile, "incomplete pattern '//'",
     [](const Options& options) { compile("<xsl:template match='//'/>", options); }},
    {"AnEmptyAlternative", ErrorKind::Compile, "incomplete pattern '|a'",
     [](const Options& options) { compile("<xsl:template match='|a'/>", options); }},
    {"AnEmptySystemIdentifier", std::nullopt, "",
     [](const Options& options) {
         run("<xsl:copy-of select='.'/>",
             "<!DOCTYPE a [<!NOTATION JPEG SYSTEM \"j\"><!ENTITY pic SYSTEM \"\" NDATA JPEG>]><a/>",
             options);
     }},
    {"TheNumberOfARoot", std::nullopt, "",
     [](const Options& options) { run("<xsl:number level='any' from='x'/>", "<a/>", options); }},
};

class UntrustedInputTest : public ::testing::TestWithParam<Hostile> {
protected:
    static void expectTheSame() {
        const Hostile& hostile = GetParam();
        if (hostile.kind) {
            expectFailure([&] { hostile.run(limited()); }, *hostile.kind, hostile.text);
        } else {
            EXPECT_NO_THROW(hostile.run(limited()));
        }
    }
};

} // namespace

TEST_P(UntrustedInputTest, IsRefusedStoppedOrDone) {
    expectTheSame();
}

TEST_P(UntrustedInputTest, IsRefusedStoppedOrDoneInASmallStack) {
    inASmallStack(expectTheSame);
}

INSTANTIATE_TEST_SUITE_P(, UntrustedInputTest, ::testing::ValuesIn(ALL_HOSTILE),
                         [](const auto& some) { return std::string(some.param.name); });

TEST(UntrustedStylesheetTest, NestedElementsAreRefusedWithoutALimitToo) {
    inASmallStack([] {
        EXPECT_NO_THROW(run(nested(3'000), "<a/>", {}));
        expectFailure([] { run(nested(20'000), "<a/>", {}); }, ErrorKind::Compile,
                      "the elements are nested too deeply");
    });
}

/** Wherever a URI comes in. */
TEST(NetworkTest, NothingConnectsUnlessAllowed) {
    const Listener server(std::map<std::string, std::string>{});
    const std::string uri = server.address() + "/x";
    const std::string dtd = "<!DOCTYPE a SYSTEM '" + uri + "'><a/>";
    const std::string entity = "<!DOCTYPE a [<!ENTITY e SYSTEM '" + uri + "'>]><a>&e;</a>";
    const std::function<void(const Options&)> operations[] = {
        [&](const Options& options) { Document::parse(Input::uri(uri), options); },
        [&](const Options& options) { Stylesheet::compile(Input::uri(uri), options); },
        [&](const Options& options) { parse(dtd, options); },
        [&](const Options& options) { parse(entity, options); },
        [&](const Options& options) { Stylesheet::compile(Input::text(dtd), options); },
        [&](const Options& options) { Stylesheet::compile(Input::text(entity), options); },
        [&](const Options& options) { compile("<xsl:include href='" + uri + "'/>", options); },
        [&](const Options& options) { compile("<xsl:import href='" + uri + "'/>", options); },
        [&](const Options& options) {
            run("<xsl:copy-of select=\"document('" + uri + "')\"/>", "<a/>", options);
        },
        [&](const Options& options) {
            XPath::compile("document('" + uri + "')").evaluate(parsed("<a/>"), options);
        },
        [&](const Options& options) {
            Transformation(compiledRootTemplate("<a/>"), options).toString(Input::uri(uri));
        },
    };
    Options withEntities = limited();
    withEntities.access.externalEntities = true;
    for (const auto& operation : operations) {
        expectFailure([&] { operation(limited()); }, ErrorKind::Denied, uri);
        expectFailure([&] { operation(withEntities); }, ErrorKind::Denied, uri);
    }
    EXPECT_EQ(server.requests(), 0);
}
