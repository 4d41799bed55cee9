#include "OtherKernel.h"
#include "ToolTest.h"

#include "support/BareEngine.h"
#include "support/EngineTest.h"

#include <cerrno>
#include <sys/syscall.h>

using TransformCommandTest = ToolTest;

TEST_F(TransformCommandTest, WritesTheResultAndNothingElseToStandardOutput) {
    for (const char* arguments :
         {"transform ok.xsl ok.xml", "transform ok.xsl ok.xml -o -", "transform ok.xsl <ok.xml",
          "transform ok.xsl - <ok.xml", "transform - ok.xml <ok.xsl",
          "transform ok.xsl ok.xml --isolate", "transform -o - -- ok.xsl ok.xml"}) {
        const auto outcome = tool(arguments);
        EXPECT_EQ(outcome.status, 0) << arguments;
        EXPECT_EQ(outcome.output, "<b>x</b>") << arguments;
        EXPECT_EQ(outcome.error, "") << arguments;
    }
}

TEST_F(TransformCommandTest, WritesTheResultToAFile) {
    for (const char* arguments :
         {"transform ok.xsl ok.xml -o out", "transform -o out ok.xsl <ok.xml",
          "transform ok.xsl ok.xml --output=out"}) {
        const auto outcome = tool(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(file("out"), "<b>x</b>");
        EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl out");
        shell("rm out");
    }
}

TEST_F(TransformCommandTest, WritesTheSameBytesAsTheBareEngine) {
    const std::string source = projectFile("samples/orders.xml");
    const std::string sheet = projectFile("samples/report.xsl");
    EXPECT_EQ(tool("transform '" + sheet + "' '" + source + "' -o out.html").status, 0);
    const auto streamed = tool("transform '" + sheet + "' '" + source + "'");

    TQXslTransformer_Initialize(nullptr);
    const std::string expected = bareEngineTransform(source, sheet);
    TQXslTransformer_Terminate(nullptr);
    EXPECT_TRUE(sameBytes(file("out.html"), expected));
    EXPECT_TRUE(sameBytes(streamed.output, expected));
}

TEST_F(TransformCommandTest, LeavesTheNulsOfAUtf16ResultInPlace) {
    m_folder.write("utf16.xsl", stylesheet("<xsl:output method='text' encoding='UTF-16LE'/>"
                                           "<xsl:template match='/'>ab</xsl:template>"));
    const auto outcome = tool("transform utf16.xsl ok.xml");
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output.substr(outcome.output.size() - 4), std::string("a\0b\0", 4));
    tool("transform utf16.xsl ok.xml -o out");
    EXPECT_EQ(file("out"), outcome.output);
}

TEST_F(TransformCommandTest, PassesParameters) {
    m_folder.write("p.xsl",
                   stylesheet("<xsl:output method='text'/>"
                              "<xsl:param name='p'/><xsl:param name='q' select='\"none\"'/>"
                              "<xsl:template match='/'><xsl:value-of "
                              "select='concat($p,\"|\",$q)'/></xsl:template>"));
    EXPECT_EQ(tool("transform p.xsl ok.xml -p p=1+1").output, "1+1|none");
    EXPECT_EQ(tool("transform p.xsl ok.xml -p p=a=b --param q=").output, "a=b|");
    EXPECT_EQ(tool("transform -p p='\xCE\xB1 \"b' -p q=-x p.xsl ok.xml").output, "\xCE\xB1 \"b|-x");
    EXPECT_EQ(tool("transform p.xsl ok.xml -p p=1 -p p=2").output, "2|none");
}

TEST_F(TransformCommandTest, PassesAnyTextNumbersAndExpressions) {
    m_folder.write("p.xsl",
                   stylesheet("<xsl:output method='text'/><xsl:param name='p'/>"
                              "<xsl:param name='n:q' xmlns:n='urn:n=1'/><xsl:template match='/'>"
                              "<xsl:value-of select='$p'/>|<xsl:value-of xmlns:n='urn:n=1' "
                              "select='$n:q'/>|"
                              "<xsl:value-of select='exsl:object-type($p)'/></xsl:template>"));
    m_folder.write("in.xml", "<r xmlns:x='urn:x'><x:i>1</x:i><x:i>2</x:i></r>");
    const auto result = [this](const std::string& parameters) {
        const auto outcome = tool("transform p.xsl in.xml " + parameters);
        EXPECT_EQ(outcome.error, "");
        return outcome.output;
    };
    EXPECT_EQ(result("-p \"p=it's \\\"so\\\" <&> \xCE\xB1\""), "it's \"so\" <&> \xCE\xB1||string");
    EXPECT_EQ(result("-p '{urn:n=1}q=a=b' -p p="), "|a=b|string");
    EXPECT_EQ(result("--number p=-2.50"), "-2.5||number");
    EXPECT_EQ(result("--number '{urn:n=1}q=1e3' --number p=2"), "2|1000|number");
    EXPECT_EQ(result("--expression p=//x:i"), "1||node-set");
    EXPECT_EQ(result("--expression 'p=count(//x:i)' --expression '{urn:n=1}q=name(*)'"),
              "2|r|number");
    EXPECT_EQ(result("--expression 'p=true()' <in.xml"), "true||boolean");
}

TEST_F(TransformCommandTest, RefusesParametersThatCannotBe) {
    expectFailure(tool("transform ok.xsl ok.xml -p novalue"), 2, "-p novalue: ", "NAME=VALUE");
    expectFailure(tool("transform ok.xsl ok.xml -p =x"), 2, "-p =x: ", "NAME=VALUE");
    expectFailure(tool("transform ok.xsl ok.xml -p p=$'\\xFF'"), 2, "",
                  "the text is not valid UTF-8");
    expectFailure(tool("transform ok.xsl ok.xml --number p=x"), 2,
                  "--number p=x: expected a number, got 'x'");
    expectFailure(tool("transform ok.xsl ok.xml --number p="), 2, "--number p=: ");
    expectFailure(tool("transform ok.xsl ok.xml --expression p=a["), 1, "expression: ", "']'");
    expectFailure(tool("transform ok.xsl ok.xml --expression p"), 2, "--expression p: ");
    for (const char* name : {"1", "a b", "q:x", "{u}", "{u", "{u}1", "a}b", "{a}b}c", ""}) {
        expectFailure(tool("transform ok.xsl ok.xml -p '" + std::string(name) + "=x'"), 2,
                      "-p " + std::string(name) + "=x: expected ");
    }
}

TEST_F(TransformCommandTest, ReportsWrongUsageInOneLine) {
    expectFailure(tool(""), 2, "", "vexa-xslt --help");
    expectFailure(tool("nonsense"), 2, "unknown command 'nonsense'", "vexa-xslt --help");
    expectFailure(tool("--nonsense"), 2, "unknown option '--nonsense'", "vexa-xslt --help");
    expectFailure(tool("transform"), 2, "STYLESHEET", "vexa-xslt transform --help");
    expectFailure(tool("transform ok.xsl ok.xml more"), 2, "", "more");
    expectFailure(tool("transform ok.xsl --nonsense"), 2, "", "--nonsense");
    expectFailure(tool("transform ok.xsl ok.xml -o"), 2, "", "-o");
}

TEST_F(TransformCommandTest, HelpsOnStandardOutput) {
    for (const char* arguments : {"--help", "-h", "transform --help"}) {
        const auto outcome = tool(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_NE(outcome.output.find("\n  vexa-xslt transform "), std::string::npos);
        EXPECT_EQ(outcome.error, "");
    }
}

TEST_F(TransformCommandTest, TellsItsVersion) {
    const auto outcome = tool("--version");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output.rfind("vexa-xslt (VEXA XSL Transformer) ", 0), 0U) << outcome.output;
    EXPECT_NE(outcome.output.find(PROJECT_VERSION_TEXT), std::string::npos);
}

TEST_F(TransformCommandTest, TakesNamesLiterally) {
    for (const char* name : {"a b", "100%", "a%20b", "a#b", "a?b", "a\\b", "a:b",
                             "\xCE\xB1\xE4\xBD\xA0", "-x", "a&b", "a\"b", "+", "file:", "a\nb"}) {
        const std::string quoted = "'" + std::string(name) + "'";
        shell("cp ok.xml ./" + quoted + ".xml; cp ok.xsl ./" + quoted + ".xsl");
        for (const char* source : {".xml", ".xml -o ./"}) {
            const std::string output = std::string(source) == ".xml" ? "" : quoted + ".out";
            const auto outcome = tool("transform ./" + quoted + ".xsl ./" + quoted + source +
                                      output + (output.empty() ? "" : "; cat ./" + output));
            EXPECT_EQ(outcome.output, "<b>x</b>") << name << ": " << outcome.error;
            EXPECT_EQ(outcome.error, "") << name;
        }
        const auto chained = tool("chain ./" + quoted + ".xml ./" + quoted + ".xsl");
        EXPECT_EQ(chained.output, "<b>x</b>") << name << ": " << chained.error;
        const auto queried = tool("xpath 'string(/a)' ./" + quoted + ".xml");
        EXPECT_EQ(queried.output, "x\n") << name << ": " << queried.error;
    }
}

TEST_F(TransformCommandTest, TakesUris) {
    const std::string uri = "file://" + m_folder.path("ok.xml");
    EXPECT_EQ(tool("transform ok.xsl " + uri).output, "<b>x</b>");
    EXPECT_EQ(tool("transform file://" + m_folder.path("ok.xsl") + " " + uri).output, "<b>x</b>");
    EXPECT_EQ(tool("transform ok.xsl " + uri + " -o out").status, 0);
    EXPECT_EQ(file("out"), "<b>x</b>");
}

TEST_F(TransformCommandTest, WritesNothingForAnEmptyResult) {
    m_folder.write("none.xsl", stylesheet("<xsl:output method='text'/><xsl:template match='/'/>"));
    for (const char* source : {"ok.xml", "<ok.xml", "file://$PWD/ok.xml"}) {
        const auto outcome = tool("transform none.xsl " + std::string(source));
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.error, "");
    }
}

TEST_F(TransformCommandTest, ReadsPipesByName) {
    EXPECT_EQ(tool("transform ok.xsl <(cat ok.xml)").output, "<b>x</b>");
    EXPECT_EQ(tool("transform <(cat ok.xsl) ok.xml").output, "<b>x</b>");
}

TEST_F(TransformCommandTest, FindsADtdNextToTheSource) {
    shell("mkdir far");
    m_folder.write("far/d.dtd", "<!ENTITY e 'entity'>");
    m_folder.write("far/d.xml", "<!DOCTYPE a SYSTEM 'd.dtd'><a>&e;</a>");
    EXPECT_EQ(tool("transform ok.xsl far/d.xml").output, "<b>entity</b>");
    EXPECT_EQ(tool("transform ok.xsl far/d.xml -o out; cat out").output, "<b>entity</b>");
}

TEST_F(TransformCommandTest, TellsWhereTheTimeWent) {
    const auto outcome = tool("transform ok.xsl ok.xml --timing");
    EXPECT_EQ(outcome.output, "<b>x</b>");
    for (const char* phase : {"stylesheet ", "source ", "transform ", "total "}) {
        EXPECT_NE(outcome.error.find(phase), std::string::npos) << outcome.error;
    }
    EXPECT_EQ(tool("transform ok.xsl ok.xml --timing --quiet").error, "");
}

/** A new process is a newly loaded library. */
TEST_F(TransformCommandTest, NumbersTimersFromOne) {
    m_folder.write("timers.xsl",
                   stylesheet("<xsl:output method='text'/><xsl:template match='/'><xsl:value-of "
                              "select='concat(vexa:TimerCreate(), \"|\", vexa:TimerCreate())'/>"
                              "</xsl:template>"));
    EXPECT_EQ(tool("transform timers.xsl ok.xml").output, "1|2");
    EXPECT_EQ(tool("transform timers.xsl ok.xml").output, "1|2");
}
