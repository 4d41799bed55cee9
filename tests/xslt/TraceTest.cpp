/**
 * @file
 * Each step of a run is reported, with exact ends however the run ends.
 */
#include "XsltTest.h"

#include <algorithm>
#include <map>
#include <thread>
#include <vector>

using vexa::ErrorKind;
using vexa::Input;
using vexa::Instruction;
using vexa::Options;
using vexa::Step;
using vexa::Stylesheet;
using vexa::Tracer;
using vexa::Transformation;

namespace {

/** "xsl:template match="a"", "xsl:if" */
std::string asText(const Instruction& instruction) {
    return instruction.name + (instruction.title.empty() ? "" : " " + instruction.title);
}

/** Writes steps as they are nested: "a(b c(d))"; checks that the last one that began ends. */
class Recorder : public Tracer {
public:
    void enter(const Step& step) override {
        if (!text.empty() && text.back() != '(') {
            text += ' ';
        }
        text += asText(step.instruction());
        text += "(";
        m_open.push_back(step.index());
        ++counts[asText(step.instruction())];
        deepest = std::max(deepest, m_open.size());
    }
    void leave(const Step& step) noexcept override {
        EXPECT_FALSE(m_open.empty());
        EXPECT_EQ(m_open.back(), step.index());
        m_open.pop_back();
        if (text.back() == '(') {
            text.pop_back();
        } else {
            text += ')';
        }
    }

    std::size_t open() const { return m_open.size(); }

    std::string text;
    std::map<std::string, int> counts;
    std::size_t deepest = 0;

private:
    std::vector<std::size_t> m_open;
};

/** The steps of a run of a stylesheet with this content. */
std::string stepsOf(const std::string& content, const std::string& source = "<a/>") {
    Recorder recorder;
    Transformation run(compiled(content));
    const std::string plain = run.toString(Input::text(source));
    EXPECT_EQ(run.onTrace(recorder).toString(Input::text(source)), plain);
    EXPECT_EQ(recorder.open(), 0U);
    return recorder.text;
}

} // namespace

TEST(TraceTest, StepsAreNestedAsTheyAreExecuted) {
    EXPECT_EQ(
        stepsOf("<xsl:template match='/'><r><xsl:apply-templates/></r></xsl:template>"
                "<xsl:template match='a'><xsl:if test='b'>x<xsl:value-of select='b'/></xsl:if>"
                "<xsl:choose><xsl:when test='c'/><xsl:otherwise><o/></xsl:otherwise>"
                "</xsl:choose></xsl:template>",
                "<a><b>1</b></a>"),
        "xsl:template match=\"/\"(r(xsl:apply-templates(xsl:template match=\"a\"("
        "xsl:if(xsl:value-of) xsl:choose(xsl:otherwise(o))))))");
}

TEST(TraceTest, TheEngineIsHeardOnlyOfWhatItExecutes) {
    EXPECT_EQ(
        stepsOf("<xsl:template match='/'><xsl:if test='false()'><x/></xsl:if></xsl:template>"),
        "xsl:template match=\"/\"(xsl:if)");
}

/** Texts that they copy are none: the engine copies them at once. */
TEST(TraceTest, BuiltInRulesAreSteps) {
    EXPECT_EQ(stepsOf("<xsl:template match='none'/>", "<a>t<b/></a>"),
              "xsl:template match=\"/\"(xsl:apply-templates(xsl:template match=\"*\"("
              "xsl:apply-templates(xsl:template match=\"*\"(xsl:apply-templates)))))");
}

TEST(TraceTest, ModesAndForEach) {
    EXPECT_EQ(stepsOf("<xsl:template match='/'><xsl:for-each select='a/b'><xsl:copy/>"
                      "<xsl:apply-templates select='.' mode='m'/></xsl:for-each></xsl:template>"
                      "<xsl:template match='b' mode='m'><m/></xsl:template>"
                      "<xsl:template match='b'><none/></xsl:template>",
                      "<a><b/><b/></a>"),
              "xsl:template match=\"/\"(xsl:for-each("
              "xsl:copy xsl:apply-templates(xsl:template match=\"b\" mode=\"m\"(m)) "
              "xsl:copy xsl:apply-templates(xsl:template match=\"b\" mode=\"m\"(m))))");
}

/** The engine skips an xsl:call-template that is alone in its parent. */
TEST(TraceTest, ACallThatIsAloneIsAStep) {
    const std::string named = "<xsl:template name='n'><n/></xsl:template>";
    const std::string call = "xsl:call-template(xsl:template name=\"n\"(n))";
    EXPECT_EQ(
        stepsOf("<xsl:template match='/'><xsl:call-template name='n'/></xsl:template>" + named),
        "xsl:template match=\"/\"(" + call + ")");
    EXPECT_EQ(stepsOf("<xsl:template match='/'><xsl:for-each select='a/b'>"
                      "<xsl:call-template name='n'/></xsl:for-each><z/></xsl:template>" +
                          named,
                      "<a><b/><b/></a>"),
              "xsl:template match=\"/\"(xsl:for-each(" + call + " " + call + ") z)");
    EXPECT_EQ(stepsOf("<xsl:variable name='g'><xsl:call-template name='n'/></xsl:variable>"
                      "<xsl:template match='/'><xsl:copy-of select='$g'/></xsl:template>" +
                      named),
              "xsl:template match=\"/\"(xsl:copy-of(xsl:variable $g(" + call + ")))");
}

TEST(TraceTest, CallsWithParameters) {
    EXPECT_EQ(stepsOf("<xsl:template match='/'><xsl:call-template name='n'>"
                      "<xsl:with-param name='p'><w/></xsl:with-param></xsl:call-template>"
                      "</xsl:template><xsl:template name='n'><xsl:param name='p'/>"
                      "<xsl:param name='q'><d/></xsl:param><xsl:copy-of select='$p'/>"
                      "</xsl:template>"),
              "xsl:template match=\"/\"(xsl:call-template(xsl:with-param(w) "
              "xsl:template name=\"n\"(xsl:param xsl:param(d) xsl:copy-of)))");
}

TEST(TraceTest, AttributeSets) {
    EXPECT_EQ(stepsOf("<xsl:attribute-set name='s' use-attribute-sets='t'>"
                      "<xsl:attribute name='x'><xsl:value-of select='1'/></xsl:attribute>"
                      "</xsl:attribute-set><xsl:attribute-set name='t'>"
                      "<xsl:attribute name='y'>2</xsl:attribute></xsl:attribute-set>"
                      "<xsl:template match='/'><e xsl:use-attribute-sets='s'><f/></e>"
                      "</xsl:template>"),
              "xsl:template match=\"/\"(e(xsl:attribute-set s(xsl:attribute-set t(xsl:attribute) "
              "xsl:attribute(xsl:value-of)) f))");
}

/** And once only; a local variable hides one of the same name. */
TEST(TraceTest, AGlobalVariableIsAStepWhereItIsFirstUsed) {
    EXPECT_EQ(stepsOf("<xsl:variable name='a' select='$b + 1'/><xsl:variable name='b'><x/>"
                      "</xsl:variable><xsl:variable name='unused' select='1'/>"
                      "<xsl:template match='/'><xsl:call-template name='n'/>"
                      "<xsl:value-of select='$a'/><xsl:value-of select='$a'/></xsl:template>"
                      "<xsl:template name='n'><xsl:variable name='a' select='7'/>"
                      "<xsl:value-of select='$a'/></xsl:template>"),
              "xsl:template match=\"/\"(xsl:call-template(xsl:template name=\"n\"("
              "xsl:variable xsl:value-of)) "
              "xsl:value-of(xsl:variable $a(xsl:variable $b(x))) xsl:value-of)");
}

TEST(TraceTest, AParameterWithAValueOfTheHostIsNotEvaluated) {
    Recorder recorder;
    Transformation run(compiled("<xsl:param name='p'><none/></xsl:param>"
                                "<xsl:template match='/'><xsl:value-of select='$p'/>"
                                "</xsl:template>"));
    run.parameter("p", "x").onTrace(recorder).toString(Input::text("<a/>"));
    EXPECT_EQ(recorder.text, "xsl:template match=\"/\"(xsl:value-of)");
}

TEST(TraceTest, FunctionsOfTheStylesheet) {
    Recorder recorder;
    Transformation run(Stylesheet::compile(Input::text(
        "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'"
        " xmlns:f='urn:f' xmlns:func='http://exslt.org/functions'"
        " extension-element-prefixes='func'><func:function name='f:f'><xsl:param name='n'/>"
        "<func:result select='2 * $n'/></func:function><xsl:template match='/'>"
        "<xsl:for-each select='//*[f:f(1) = 2]'><xsl:call-template name='n'/></xsl:for-each>"
        "</xsl:template><xsl:template name='n'><n/></xsl:template></xsl:stylesheet>")));
    run.onTrace(recorder).toString(Input::text("<a/>"));
    // A function inside of a step that a call is alone in is none of that call.
    EXPECT_EQ(recorder.text, "xsl:template match=\"/\"(xsl:for-each("
                             "func:function f()(xsl:param func:result) "
                             "xsl:call-template(xsl:template name=\"n\"(n))))");
}

TEST(TraceTest, KeysAreBuiltInsideOfTheStepThatNeedsThem) {
    EXPECT_EQ(stepsOf("<xsl:key name='k' match='b' use='@i'/><xsl:template match='/'>"
                      "<xsl:for-each select='key(\"k\", 1)'><x/></xsl:for-each>"
                      "<xsl:value-of select='key(\"k\", 1)'/></xsl:template>",
                      "<a><b i='1'/><b i='1'/></a>"),
              "xsl:template match=\"/\"(xsl:for-each(x x) xsl:value-of)");
}

TEST(TraceTest, ApplyImports) {
    TemporaryFolder folder;
    folder.write("base.xsl", stylesheet("<xsl:template match='a'><base/></xsl:template>"));
    const std::string path =
        folder.write("main.xsl", stylesheet("<xsl:import href='base.xsl'/><xsl:template match='a'>"
                                            "<xsl:apply-imports/><main/></xsl:template>"));
    const Stylesheet sheet = Stylesheet::compile(Input::file(path));
    Recorder recorder;
    Transformation(sheet).onTrace(recorder).toString(Input::text("<a/>"));
    EXPECT_EQ(recorder.text, "xsl:template match=\"/\"(xsl:apply-templates("
                             "xsl:template match=\"a\"(xsl:apply-imports("
                             "xsl:template match=\"a\"(base)) main)))");
    std::vector<std::string> places;
    for (const Instruction& instruction : sheet.instructions()) {
        if (instruction.title == "match=\"a\"") {
            places.push_back(instruction.where.uri.substr(instruction.where.uri.rfind('/') + 1));
        }
    }
    EXPECT_EQ(places, (std::vector<std::string>{"base.xsl", "main.xsl"}));
}

namespace {

const std::string RECURSION =
    "<xsl:template match='/'><xsl:call-template name='r'><xsl:with-param name='n' select='1000'/>"
    "</xsl:call-template></xsl:template>"
    "<xsl:template name='r'><xsl:param name='n'/><xsl:choose><xsl:when test='$n > 1'>"
    "<xsl:call-template name='r'><xsl:with-param name='n' select='$n - 1'/></xsl:call-template>"
    "</xsl:when><xsl:otherwise>AT_END</xsl:otherwise></xsl:choose></xsl:template>";

std::string recursionEndingWith(const std::string& content) {
    std::string text = RECURSION;
    return text.replace(text.find("AT_END"), 6, content);
}

} // namespace

TEST(TraceTest, RecursionAThousandDeep) {
    Recorder recorder;
    Transformation run(compiled(recursionEndingWith("<e/>")));
    run.onTrace(recorder).toString(Input::text("<a/>"));
    EXPECT_EQ(recorder.open(), 0U);
    EXPECT_EQ(recorder.counts, (std::map<std::string, int>{{"xsl:template match=\"/\"", 1},
                                                           {"xsl:call-template", 1000},
                                                           {"xsl:with-param", 1000},
                                                           {"xsl:template name=\"r\"", 1000},
                                                           {"xsl:param", 1000},
                                                           {"xsl:choose", 1000},
                                                           {"xsl:when", 999},
                                                           {"xsl:otherwise", 1},
                                                           {"e", 1}}));
    // The root's rule and a call; four for each level but the last, and four there.
    EXPECT_EQ(recorder.deepest, 2U + 999U * 4U + 4U);
}

TEST(TraceTest, StepsEndWhereTheStylesheetEndsTheRun) {
    Recorder recorder;
    Transformation run(
        compiled(recursionEndingWith("<xsl:message terminate='yes'>end</xsl:message>")));
    run.onTrace(recorder);
    expectFailure([&] { run.toString(Input::text("<a/>")); }, ErrorKind::Terminated, "end");
    EXPECT_EQ(recorder.open(), 0U);
    EXPECT_EQ(recorder.counts["xsl:message"], 1);
    EXPECT_EQ(recorder.counts["xsl:template name=\"r\""], 1000);
}

TEST(TraceTest, StepsEndAtAnErrorAndAtALimit) {
    Options options;
    options.limits.depth = 500;
    Recorder recorder;
    Transformation limited(compiled(recursionEndingWith("<e/>")), options);
    limited.onTrace(recorder);
    expectFailure([&] { limited.toString(Input::text("<a/>")); }, ErrorKind::Limit, "depth");
    EXPECT_EQ(recorder.open(), 0U);
    EXPECT_EQ(recorder.counts["xsl:template name=\"r\""], 499);

    Recorder ofError;
    Transformation wrong(compiledRootTemplate("<a><xsl:value-of select='document(1, 2)'/></a>"));
    wrong.onTrace(ofError);
    failureOf([&] { wrong.toString(Input::text("<a/>")); });
    EXPECT_EQ(ofError.text, "xsl:template match=\"/\"(a(xsl:value-of))");
    EXPECT_EQ(ofError.open(), 0U);
}

TEST(TraceTest, StepsEndWhereAGlobalVariableFails) {
    Recorder recorder;
    Transformation run(compiled("<xsl:variable name='g'><x><xsl:message terminate='yes'/></x>"
                                "</xsl:variable><xsl:template match='/'>"
                                "<xsl:value-of select='$g'/></xsl:template>"));
    run.onTrace(recorder);
    failureOf([&] { run.toString(Input::text("<a/>")); });
    EXPECT_EQ(recorder.text, "xsl:template match=\"/\"(xsl:value-of(xsl:variable $g("
                             "x(xsl:message))))");
    EXPECT_EQ(recorder.open(), 0U);
}

TEST(TraceTest, WhatATracerThrowsReachesTheHost) {
    class Thrower : public Recorder {
    public:
        void enter(const Step& step) override {
            if (step.instruction().name == "b") {
                throw 42;
            }
            Recorder::enter(step);
        }
    } thrower;
    Transformation run(compiledRootTemplate(
        "<xsl:variable name='v'><a><b/></a></xsl:variable><xsl:copy-of select='$v'/><c/>"));
    run.onTrace(thrower);
    EXPECT_THROW(run.toString(Input::text("<a/>")), int);
    // The step that was refused has no end.
    EXPECT_EQ(thrower.text, "xsl:template match=\"/\"(xsl:variable(a))");
    EXPECT_EQ(thrower.open(), 0U);
    EXPECT_EQ(run.onTrace(nullptr).toString(Input::text("<a/>")), "<a><b/></a><c/>");
}

TEST(TraceTest, ATracerMustNotUseTheTransformation) {
    class User : public Tracer {
    public:
        explicit User(Transformation& run) : m_run(run) {}
        void enter(const Step& /*step*/) override { m_run.onTrace(nullptr); }
        void leave(const Step& /*step*/) noexcept override {}

    private:
        Transformation& m_run;
    };
    Transformation run(compiledRootTemplate("<b/>"));
    User user(run);
    run.onTrace(user);
    expectFailure([&] { run.toString(Input::text("<a/>")); }, ErrorKind::Usage, "running");
}

TEST(TraceTest, AStepHasItsCurrentNode) {
    class Nodes : public Tracer {
    public:
        void enter(const Step& step) override { add(step); }
        void leave(const Step& step) noexcept override { add(step); }
        std::string text;

    private:
        void add(const Step& step) {
            text += step.instruction().name + ":" + step.node().name() + "=" +
                    step.node().string() + " ";
        }
    } nodes;
    Transformation run(compiled(
        "<xsl:template match='/'><xsl:for-each select='//@*'><x/></xsl:for-each></xsl:template>"));
    run.onTrace(nodes).toString(Input::text("<a i='1'><b j='2'/></a>"));
    EXPECT_EQ(nodes.text, "xsl:template:= xsl:for-each:= x:i=1 x:i=1 x:j=2 x:j=2 "
                          "xsl:for-each:= xsl:template:= ");
}

TEST(TraceTest, InstructionsAreListedInTheOrderOfTheStylesheet) {
    TemporaryFolder folder;
    const std::string path = folder.write(
        "sheet.xsl", "<xsl:stylesheet version='1.0'\n"
                     "  xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>\n"
                     "<xsl:decimal-format name='d'/><xsl:key name='k' match='a' use='b'/>\n"
                     "<xsl:param name='p'/>\n"
                     "<xsl:template match='a | b[1]' mode='m' name='n'>\n"
                     "  text <xsl:text>text</xsl:text><table><xsl:variable name='v'/></table>\n"
                     "  <xsl:apply-templates><xsl:sort select='.'/></xsl:apply-templates>\n"
                     "</xsl:template>\n"
                     "</xsl:stylesheet>");
    std::string text;
    for (const Instruction& instruction : Stylesheet::compile(Input::file(path)).instructions()) {
        if (instruction.where.line != 0) {
            text += std::to_string(static_cast<int>(instruction.kind)) + " " + asText(instruction) +
                    " " + std::to_string(instruction.where.line) + ":" +
                    std::to_string(instruction.where.column) + "\n";
        }
    }
    EXPECT_EQ(text, "2 xsl:param $p 4:1\n"
                    "0 xsl:template match=\"a | b[1]\" name=\"n\" mode=\"m\" 5:1\n"
                    "4 table 6:33\n"
                    "5 xsl:variable 6:40\n"
                    "5 xsl:apply-templates 7:3\n");
}

TEST(TraceTest, ThreadsMayAskForTheInstructionsAtOnce) {
    const Stylesheet sheet = compiled(RECURSION);
    const std::vector<Instruction>* lists[2];
    std::thread other([&] { lists[1] = &sheet.instructions(); });
    lists[0] = &sheet.instructions();
    other.join();
    EXPECT_EQ(lists[0], lists[1]);
    EXPECT_GT(lists[0]->size(), 9U);
}

TEST(TraceTest, AnEmptyStylesheetHasNoInstructions) {
    expectFailure([] { Stylesheet().instructions(); }, ErrorKind::Usage, "empty");
}
