/**
 * @file
 * What an operation allocates is given back when it ends, however it ends. All that the process has
 * allocated is counted, the engines' memory too.
 */
#include "Failures.h"
#include "XsltTest.h"

#include "support/MemoryChecker.h"

#include <malloc.h>

using vexa::Document;
using vexa::Input;
using vexa::Node;
using vexa::Output;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::XPath;

namespace {

constexpr int WARM_UP = 100;
/** Seventy-odd failures and a dozen successes: more than 10,000 operations of either kind. */
constexpr int FAILURES = 200;
constexpr int SUCCESSES = 1000;

std::size_t allocatedBytes() {
    const struct mallinfo2 information = ::mallinfo2();
    return information.uordblks + information.hblkhd;
}

template <typename Operation>
void repeat(int count, Operation operation) {
    for (int i = 0; i < count; ++i) {
        operation();
    }
}

/** Expects that the process holds no more after many operations than after a few. */
template <typename Operation>
void expectNothingStays(int count, Operation operation) {
    repeat(WARM_UP, operation);
    const std::size_t before = allocatedBytes();
    repeat(count, operation);
    // Not even six bytes each; what the allocator itself keeps in hand varies by less.
    EXPECT_LT(allocatedBytes(), before + 1024);
}

class NothingStaysTest : public ::testing::TestWithParam<Failure> {
protected:
    void SetUp() override {
        if (isUnderAMemoryChecker()) {
            GTEST_SKIP() << "Memory checkers count for themselves.";
        }
    }
};

struct Success {
    const char* name;
    std::function<void()> run;
};

void PrintTo(const Success& success, std::ostream* stream) {
    *stream << success.name;
}

class NothingStaysOfASuccessTest : public ::testing::TestWithParam<Success> {
protected:
    void SetUp() override {
        if (isUnderAMemoryChecker()) {
            GTEST_SKIP() << "Memory checkers count for themselves.";
        }
    }
};

const std::string CONTENT =
    "<xsl:variable name='v'><b><xsl:for-each select='//i'><xsl:sort select='.'/>"
    "<xsl:copy-of select='.'/><xsl:number/><xsl:value-of select='format-number(., \"0.0\")'/>"
    "</xsl:for-each></b></xsl:variable><c><xsl:copy-of select='exsl:node-set($v)'/>"
    "<xsl:message>m</xsl:message><xsl:value-of select='document(\"file:///none\")'/>"
    "<xsl:value-of select='document(\"mem:/d\")'/><xsl:value-of select='f:f($v)' "
    "xmlns:f='urn:f'/><xsl:value-of select='vexa:GetDateTime()'/></c>";

const char* const SOURCE = "<!DOCTYPE a [<!ATTLIST i n ID #IMPLIED>]>"
                           "<a xmlns:p='urn:p'><i n='x'>2</i><i>1</i><?p d?><!--c--></a>";

/** Used again and again, as a host does. */
class KeptObjects {
public:
    KeptObjects() : run(makeRun()) {}

    static vexa::Options options() {
        vexa::Options made;
        made.access.externalEntities = true;
        made.resolver = [](const std::string& uri, const std::string&) -> std::optional<Input> {
            if (uri == "mem:/d") {
                return Input::text("<d>document</d>");
            }
            if (uri == "mem:/dtd") {
                return Input::text("<!ELEMENT a ANY>");
            }
            return std::nullopt;
        };
        return made;
    }
    static Transformation makeRun() {
        Transformation made(compiledRootTemplate(CONTENT), options());
        made.function("urn:f", "f", [](const vexa::Call& call) {
            return call.argument(0).nodes().front().string();
        });
        return made;
    }

    const Document document = parsed(SOURCE);
    const XPath expression = XPath::compile("//i | //@* | //namespace::*");
    Transformation run;
    TemporaryFolder folder;
};

std::vector<Success> allSuccesses() {
    static const auto kept = std::make_shared<KeptObjects>();
    return {
        {"Parse", [] { parsed(SOURCE); }},
        {"ParseWithAnExternalDtd",
         [] {
             Document::parse(Input::text("<!DOCTYPE a SYSTEM 'mem:/dtd'><a/>"),
                             KeptObjects::options());
         }},
        {"TransformWithAnExternalDtd",
         [] { kept->run.toString(Input::text("<!DOCTYPE a SYSTEM 'mem:/dtd'><a/>")); }},
        {"CompileWithAnExternalDtd",
         [] {
             Stylesheet::compile(
                 Input::text("<!DOCTYPE xsl:stylesheet SYSTEM 'mem:/dtd'>" + copyingStylesheet()),
                 KeptObjects::options());
         }},
        {"Compile", [] { compiledRootTemplate(CONTENT); }},
        {"CompileAnExpression",
         [] {
             XPath::compile("//a[. = math:max(b)]/@c | key", {{"math", "http://exslt.org/math"}});
         }},
        {"Evaluate", [] { kept->expression.evaluate(kept->document).string(); }},
        {"EvaluateADocument",
         [] { XPath::compile("document('file:///none')").evaluate(kept->document); }},
        {"Write", [] { kept->document.write(Output::file(kept->folder.path("a.xml"))); }},
        {"Xml", [] { kept->document.xml(); }},
        {"ToString", [] { kept->run.toString(kept->document); }},
        {"ToStringOfAnInput", [] { kept->run.toString(Input::text(SOURCE)); }},
        {"ToDocument", [] { kept->run.toDocument(kept->document); }},
        {"ToFile", [] { kept->run.to(kept->document, Output::file(kept->folder.path("b.xml"))); }},
        {"ANewTransformation", [] { KeptObjects::makeRun().toString(kept->document); }},
        {"Parameters",
         [] {
             kept->run.parameter("p", parsed("<p/>")).parameter("q", "text").removeParameter("q");
             kept->run.toString(kept->document);
         }},
        {"WithATracer",
         [] {
             class : public vexa::Tracer {
                 void enter(const vexa::Step& step) override { step.node(); }
                 void leave(const vexa::Step& /*step*/) noexcept override {}
             } tracer;
             kept->run.onTrace(tracer).toString(kept->document);
             kept->run.onTrace(nullptr);
         }},
        {"SeveralRoots",
         [] {
             static Transformation run(compiledRootTemplate("<b/>text<c/>"));
             run.toDocument(kept->document).xml();
         }},
    };
}

} // namespace

TEST_P(NothingStaysTest, OfAFailure) {
    expectNothingStays(FAILURES, [] {
        try {
            GetParam().fail();
        } catch (const vexa::Error&) {
        } catch (const HostFailure&) {
        }
    });
}

INSTANTIATE_TEST_SUITE_P(, NothingStaysTest, ::testing::ValuesIn(allFailures()),
                         [](const auto& test) { return test.param.name; });

TEST_P(NothingStaysOfASuccessTest, OfAnOperation) {
    expectNothingStays(SUCCESSES, GetParam().run);
}

INSTANTIATE_TEST_SUITE_P(, NothingStaysOfASuccessTest, ::testing::ValuesIn(allSuccesses()),
                         [](const auto& test) { return test.param.name; });

/** All kinds in turn, over the same objects. */
TEST(NothingStaysOfAllTest, OfTenThousandOperationsOfAllKinds) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "Memory checkers count for themselves.";
    }
    const auto successes = allSuccesses();
    const auto rounds = 10'000 / (allFailures().size() + successes.size()) + 1;
    expectNothingStays(static_cast<int>(rounds), [&] {
        for (const Failure& failure : allFailures()) {
            try {
                failure.fail();
            } catch (const vexa::Error&) {
            } catch (const HostFailure&) {
            }
        }
        for (const Success& success : successes) {
            success.run();
        }
    });
}
