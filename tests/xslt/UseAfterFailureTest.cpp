/**
 * @file
 * Every object is usable after every failure. (What is moved from or default-made is tested with
 * its class.)
 */
#include "Failures.h"
#include "XsltTest.h"

#include <sstream>

using vexa::Call;
using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Options;
using vexa::Output;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::XPath;

namespace {

/** Fails in a way that the source names, and not at all without a name. */
const std::string CONTENT =
    "<xsl:variable name='before'><x><xsl:value-of select='count(//i)'/></x></xsl:variable>"
    "<b xmlns:f='urn:f'><xsl:attribute name='p' namespace='urn:p'/><xsl:copy-of select='$before'/>"
    "<xsl:for-each select='//i'><xsl:sort select='.' order='descending'/><xsl:value-of select='.'/>"
    "<xsl:variable name='inside'><y>"
    "<xsl:if test='/a/@fail = \"terminate\"'><xsl:message terminate='yes'/></xsl:if>"
    "<xsl:if test='/a/@fail = \"variable\"'><xsl:value-of select='$none'/></xsl:if>"
    "<xsl:if test='/a/@fail = \"type\"'><xsl:value-of select='count(string(1))'/></xsl:if>"
    "<xsl:if test='/a/@fail = \"denied\"'><xsl:value-of select='document(\"http://h/\")'/></xsl:if>"
    "<xsl:if test='/a/@fail = \"function\"'><xsl:value-of select='f:fail()'/></xsl:if>"
    "<xsl:if test='/a/@fail = \"message\"'><xsl:message/></xsl:if>"
    "<xsl:if test='/a/@fail = \"unknown\"'><xsl:value-of select='f:none()'/></xsl:if>"
    "</y></xsl:variable><xsl:copy-of select='$inside'/></xsl:for-each></b>";

std::string sourceThatFails(const std::string& how) {
    return "<a fail='" + how + "'><i>1</i><i>2</i></a>";
}

Transformation makeRun() {
    Options options;
    options.onMessage = [](const vexa::Diagnostic&) { throw HostFailure(); };
    Transformation run(compiledRootTemplate(CONTENT), options);
    run.function("urn:f", "fail", [](const Call&) -> vexa::Value { throw HostFailure(); });
    return run;
}

template <typename Operation>
bool fails(Operation operation) {
    try {
        operation();
        return false;
    } catch (const vexa::Error&) {
        return true;
    } catch (const HostFailure&) {
        return true;
    }
}

class UseAfterFailureTest : public ::testing::TestWithParam<const char*> {};

} // namespace

TEST_P(UseAfterFailureTest, ATransformationGivesWhatItGaveBefore) {
    Transformation run = makeRun();
    const Document document = parsed(sourceThatFails(""));
    const Input input = Input::text(sourceThatFails(""));
    const Document failingDocument = parsed(sourceThatFails(GetParam()));
    const Input failingInput = Input::text(sourceThatFails(GetParam()));
    const std::string text = run.toString(document);
    const std::string xml = run.toDocument(document).xml();
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(fails([&] { run.toString(failingDocument); }));
        EXPECT_EQ(run.toString(document), text);
        EXPECT_EQ(run.toString(input), text);
        EXPECT_TRUE(fails([&] { run.toString(failingInput); }));
        EXPECT_TRUE(fails([&] { run.toDocument(failingDocument); }));
        EXPECT_EQ(run.toDocument(input).xml(), xml);
        EXPECT_EQ(run.toDocument(document).xml(), xml);
        std::ostringstream stream;
        EXPECT_TRUE(fails([&] { run.to(failingInput, Output::stream(stream)); }));
        stream.str("");
        run.to(input, Output::stream(stream));
        EXPECT_EQ(stream.str(), text);
    }
}

/** The stylesheet and the document of a failed run serve others. */
TEST_P(UseAfterFailureTest, StylesheetAndDocumentServeOthers) {
    const Stylesheet sheet = compiledRootTemplate(CONTENT);
    const Document document = parsed(sourceThatFails(GetParam()));
    for (int i = 0; i < 2; ++i) {
        Transformation run(sheet);
        run.function("urn:f", "fail", [](const Call&) -> vexa::Value { throw HostFailure(); })
            .onMessage([](const vexa::Diagnostic&) { throw HostFailure(); });
        EXPECT_TRUE(fails([&] { run.toString(document); }));
    }
    Transformation copy(vexa::Stylesheet::compile(Input::text(copyingStylesheet())));
    EXPECT_EQ(copy.toString(document), document.xml());
    Transformation run(sheet);
    EXPECT_NE(run.toString(Input::text(sourceThatFails(""))).find("<x>2</x>2<y/>1<y/>"),
              std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(, UseAfterFailureTest,
                         ::testing::Values("terminate", "variable", "type", "denied", "function",
                                           "message", "unknown"));

TEST(UseAfterOtherFailuresTest, ATransformationAfterAFailureOfItsOutput) {
    Transformation run = makeRun();
    const Input input = Input::text(sourceThatFails(""));
    const std::string text = run.toString(input);
    for (int i = 0; i < 2; ++i) {
        expectFailure([&] { run.to(input, Output::file("/dev/full")); }, ErrorKind::Output, "");
        expectFailure([&] { run.to(input, Output::file("/none/such")); }, ErrorKind::Output, "");
        EXPECT_EQ(run.toString(input), text);
    }
}

TEST(UseAfterOtherFailuresTest, ATransformationAfterAFailureOfItsSource) {
    Transformation run = makeRun();
    const Input input = Input::text(sourceThatFails(""));
    const std::string text = run.toString(input);
    for (const char* malformed : {"<a>", "", "<a><i>", "<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>",
                                  "<!DOCTYPE a SYSTEM 'x'><a/>"}) {
        EXPECT_TRUE(fails([&] { run.toString(Input::text(malformed)); }));
        EXPECT_EQ(run.toString(input), text);
    }
    EXPECT_TRUE(fails([&] { run.toString(Document()); }));
    EXPECT_EQ(run.toString(input), text);
}

/** All failures, one after the other, in between what must go on to work. */
TEST(UseAfterOtherFailuresTest, ObjectsThatTookNoPartGoOn) {
    const Document document = parsed(sourceThatFails(""));
    const XPath expression = XPath::compile("count(//i)");
    Transformation run = makeRun();
    const std::string text = run.toString(document);
    for (const Failure& failure : allFailures()) {
        EXPECT_TRUE(fails(failure.fail)) << failure.name;
        EXPECT_TRUE(fails(failure.fail)) << failure.name;
        EXPECT_EQ(run.toString(document), text) << failure.name;
        EXPECT_EQ(expression.evaluate(document).number(), 2) << failure.name;
    }
}
