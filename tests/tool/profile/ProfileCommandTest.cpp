/**
 * @file
 * vexa-xslt profile, over stylesheets whose calls are known.
 */
#include "../ToolTest.h"

#include <rapidjson/document.h>

#include <algorithm>
#include <cstdint>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

class ProfileCommandTest : public ToolTest {
protected:
    ProfileCommandTest() {
        m_folder.write("known.xsl", KNOWN);
        m_folder.write("two.xml", "<a><i/><i/></a>");
    }

    /** The table without its times: "CALLS INSTRUCTIONS NAME PLACE", a line each, sorted. */
    static std::string countsOf(const std::string& table) {
        static const std::regex ROW(R"( *(\d+) +[\d.]+ +[\d.]+ +[\d.]+ % +(\d+)  (.*))");
        std::set<std::string> rows;
        std::istringstream lines(table);
        for (std::string line; std::getline(lines, line);) {
            std::smatch match;
            if (std::regex_match(line, match, ROW)) {
                rows.insert(match.str(1) + " " + match.str(2) + " " + match.str(3) + "\n");
            }
        }
        std::string text;
        for (const std::string& row : rows) {
            text += row;
        }
        return text;
    }

    /** What the page of a profile shows. */
    rapidjson::Document dataOf(const std::string& page) const {
        const std::string text = file(page);
        const std::string begin = "id=\"data\">";
        const auto from = text.find(begin) + begin.size();
        rapidjson::Document data;
        data.Parse(text.substr(from, text.find("</script>", from) - from).c_str());
        EXPECT_FALSE(data.HasParseError());
        return data;
    }

    /**
     * For two elements "i": the rule for the root executes 3 instructions of its own, that for "i"
     * 3 each, and "n" 5, 5 and 3, as it calls itself twice.
     */
    static constexpr const char* KNOWN =
        "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>\n"
        "<xsl:template match='/'>\n"
        "  <out><xsl:apply-templates select='//i'/></out>\n"
        "</xsl:template>\n"
        "<xsl:template match='i'>\n"
        "  <xsl:call-template name='n'><xsl:with-param name='d' select='3'/></xsl:call-template>\n"
        "</xsl:template>\n"
        "<xsl:template name='n'><xsl:param name='d'/>\n"
        "  <xsl:if test='$d > 1'><xsl:call-template name='n'>\n"
        "    <xsl:with-param name='d' select='$d - 1'/></xsl:call-template></xsl:if>\n"
        "</xsl:template>\n"
        "<xsl:template match='never'><x/></xsl:template>\n"
        "</xsl:stylesheet>\n";
};

TEST_F(ProfileCommandTest, PrintsARowForEachTemplate) {
    const Outcome outcome = tool("profile known.xsl two.xml");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(countsOf(outcome.error), "1 3 match=\"/\"  known.xsl:2\n"
                                       "2 6 match=\"i\"  known.xsl:5\n"
                                       "6 26 name=\"n\"  known.xsl:8\n");
    EXPECT_TRUE(std::regex_search(outcome.error, std::regex("\n +[\\d.]+ +[\\d.]+ % +35  all of "
                                                            "them\n +[\\d.]+ +[\\d.]+ % +outside "
                                                            "of templates\n")))
        << outcome.error;
    EXPECT_TRUE(std::regex_search(
        outcome.error,
        std::regex("\nstylesheet [\\d.]+ ms, source [\\d.]+ ms, transform [\\d.]+ ms\n$")))
        << outcome.error;
}

TEST_F(ProfileCommandTest, NamesAllKindsOfRoutines) {
    m_folder.write("kinds.xsl",
                   "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'"
                   " xmlns:func='http://exslt.org/functions' xmlns:f='urn:f'\n"
                   " extension-element-prefixes='func'>\n"
                   "<func:function name='f:f'><func:result select='1'/></func:function>\n"
                   "<xsl:variable name='v' select='f:f()'/>\n"
                   "<xsl:attribute-set name='s'><xsl:attribute name='x'>1</xsl:attribute>"
                   "</xsl:attribute-set>\n"
                   "<xsl:template match='a'><b xsl:use-attribute-sets='s'><xsl:value-of select='$v'"
                   "/></b></xsl:template>\n</xsl:stylesheet>");
    EXPECT_EQ(countsOf(tool("profile kinds.xsl ok.xml").error), "1 1 $v  kinds.xsl:4\n"
                                                                "1 2 attribute set s  kinds.xsl:5\n"
                                                                "1 2 built-in rule, match=\"/\"\n"
                                                                "1 2 f()  kinds.xsl:3\n"
                                                                "1 3 match=\"a\"  kinds.xsl:6\n");
}

TEST_F(ProfileCommandTest, TheResultGoesToItsPlaceOrNowhere) {
    const Outcome standard = tool("profile ok.xsl ok.xml -o -");
    EXPECT_EQ(standard.output, "<b>x</b>");
    EXPECT_EQ(tool("profile ok.xsl ok.xml -o out.xml").output, "");
    EXPECT_EQ(file("out.xml"), "<b>x</b>");
    EXPECT_EQ(tool("profile ok.xsl ok.xml --quiet").output, "");
}

TEST_F(ProfileCommandTest, TakesParameters) {
    m_folder.write(
        "parameters.xsl",
        stylesheet("<xsl:output method='text'/><xsl:param name='p'/><xsl:param name='q'/>"
                   "<xsl:template match='/'><xsl:value-of select='"
                   "concat($p, $q)'/></xsl:template>"));
    EXPECT_EQ(tool("profile parameters.xsl ok.xml -p p=1 --expression 'q=string(/a)' -o -").output,
              "1x");
}

/** What was executed up to there. */
TEST_F(ProfileCommandTest, ARunThatFailsHasItsProfile) {
    m_folder.write("endless.xsl", stylesheet("<xsl:template match='/'><xsl:call-template name='n'/>"
                                             "</xsl:template><xsl:template name='n'><r>"
                                             "<xsl:call-template name='n'/></r></xsl:template>"));
    const Outcome limited = tool("profile endless.xsl ok.xml --max-depth 50 --html p.html");
    EXPECT_EQ(limited.status, 1);
    // The last template is not called: its xsl:call-template does not begin.
    EXPECT_EQ(countsOf(limited.error), "1 2 match=\"/\"  endless.xsl:1\n"
                                       "49 146 name=\"n\"  endless.xsl:1\n");
    const std::string error = "endless.xsl:1:";
    const auto last = limited.error.rfind("\nvexa-xslt: ");
    ASSERT_NE(last, std::string::npos) << limited.error;
    EXPECT_NE(limited.error.find("(--max-depth)", last), std::string::npos) << limited.error;
    EXPECT_EQ(std::count(limited.error.begin() + static_cast<std::ptrdiff_t>(last),
                         limited.error.end(), '\n'),
              2);
    const auto data = dataOf("p.html");
    EXPECT_EQ("\nvexa-xslt: " + std::string(data["outcome"].GetString()) + "\n",
              limited.error.substr(last));

    m_folder.write("ends.xsl", stylesheetWithRootTemplate(
                                   "<b/><xsl:message terminate='yes'>enough</xsl:message><c/>"));
    const Outcome ended = tool("profile ends.xsl ok.xml -o out.xml");
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(countsOf(ended.error), "1 3 match=\"/\"  ends.xsl:1\n");
    EXPECT_NE(ended.error.find("\nvexa-xslt: ends.xsl:1:"), std::string::npos) << ended.error;
    EXPECT_EQ(shell("ls out.xml").status, 2);
}

TEST_F(ProfileCommandTest, WritesACallgrindProfile) {
    EXPECT_EQ(tool("profile known.xsl two.xml --callgrind callgrind.out.x").status, 0);
    const auto expectRows = [this](const std::string& options,
                                   const std::vector<std::string>& rows) {
        const Outcome outcome =
            shell("callgrind_annotate --show=Instructions " + options + " callgrind.out.x");
        EXPECT_EQ(outcome.error, "");
        for (const std::string& row : rows) {
            EXPECT_NE(outcome.output.find(row + "\n"), std::string::npos) << row << "\n"
                                                                          << outcome.output;
        }
    };
    expectRows("", {" 35 (100.0%)  PROGRAM TOTALS",
                    " 26 (74.29%)  known.xsl:name=\"n\"\n  6 (17.14%)  known.xsl:match=\"i\"\n"
                    "  3 ( 8.57%)  known.xsl:match=\"/\"",
                    "  1 ( 2.86%)  <xsl:template match='/'>",
                    " 32 (91.43%)  => known.xsl:match=\"i\" (2x)",
                    " 26 (74.29%)  => known.xsl:name=\"n\" (2x)",
                    " 12 (34.29%)  <xsl:template name='n'><xsl:param name='d'/>",
                    // Their cost is in that of the first call.
                    "  0           => known.xsl:name=\"n\" (4x)",
                    "  .           <xsl:template match='never'><x/></xsl:template>"});
    expectRows("--inclusive=yes",
               {"35 (100.0%)  known.xsl:match=\"/\"\n 32 (91.43%)  known.xsl:match=\"i\"\n"
                " 26 (74.29%)  known.xsl:name=\"n\""});
}

TEST_F(ProfileCommandTest, WritesFoldedStacks) {
    EXPECT_EQ(tool("profile known.xsl two.xml --folded stacks").status, 0);
    const std::string text = file("stacks");
    EXPECT_TRUE(std::regex_match(text, std::regex("match=\"/\" \\d+\n"
                                                  "match=\"/\";match=\"i\" \\d+\n"
                                                  "match=\"/\";match=\"i\";name=\"n\" \\d+\n")))
        << text;
    EXPECT_TRUE(std::regex_match(tool("profile known.xsl two.xml --folded -").output,
                                 std::regex("(match=\"/\"\\S* \\d+\n){3}")));
}

TEST_F(ProfileCommandTest, WritesWhereStandardOutputIs) {
    const std::string text = shell("{ echo before; vexa-xslt profile ok.xsl ok.xml --coverage -; "
                                   "echo after; } 2>/dev/null >log; cat log")
                                 .output;
    EXPECT_EQ(text.rfind("before\nTN:\n", 0), 0U) << text;
    EXPECT_NE(text.find("end_of_record\nafter\n"), std::string::npos) << text;
    EXPECT_EQ(tool("profile ok.xsl ok.xml --html /dev/null --folded /dev/null").status, 0);
}

TEST_F(ProfileCommandTest, WritesCoverage) {
    EXPECT_EQ(tool("profile known.xsl two.xml --coverage known.info").status, 0);
    EXPECT_EQ(file("known.info"), "TN:\nSF:" + m_folder.path("known.xsl") +
                                      "\nFN:2,match=\"/\"\nFN:5,match=\"i\"\nFN:8,name=\"n\"\n"
                                      "FN:12,match=\"never\"\nFNDA:1,match=\"/\"\n"
                                      "FNDA:2,match=\"i\"\nFNDA:6,name=\"n\"\n"
                                      "FNDA:0,match=\"never\"\nFNF:4\nFNH:3\n"
                                      "DA:2,1\nDA:3,1\nDA:5,2\nDA:6,2\nDA:8,6\nDA:9,6\nDA:10,4\n"
                                      "DA:12,0\nLF:8\nLH:7\nend_of_record\n");
    const Outcome pages = shell("genhtml --quiet known.info -o coverage");
    EXPECT_EQ(pages.status, 0);
    EXPECT_EQ(pages.error, "");
    const std::string summary = shell("genhtml known.info -o coverage").output;
    EXPECT_NE(summary.find("lines......: 87.5% (7 of 8 lines)"), std::string::npos) << summary;
    EXPECT_NE(summary.find("functions..: 75.0% (3 of 4 functions)"), std::string::npos) << summary;
}

TEST_F(ProfileCommandTest, WritesAPage) {
    EXPECT_EQ(tool("profile known.xsl two.xml --html p.html").status, 0);
    const auto data = dataOf("p.html");
    EXPECT_EQ(std::string(data["title"].GetString()), "known.xsl over two.xml");
    EXPECT_EQ(std::string(data["outcome"].GetString()), "");
    EXPECT_EQ(data["instructions"].GetUint64(), 35U);
    std::string routines;
    for (const auto& routine : data["routines"].GetArray()) {
        if (routine["name"] == "name=\"n\"") {
            EXPECT_EQ(routine["calls"].GetUint64(), 6U);
            EXPECT_EQ(routine["ownSteps"].GetUint64(), 26U);
            EXPECT_EQ(routine["totalSteps"].GetUint64(), 26U);
            EXPECT_EQ(routine["own"].GetUint64(), routine["total"].GetUint64());
            EXPECT_EQ(routine["line"].GetUint64(), 8U);
        }
    }
    std::uint64_t steps = 0;
    std::uint64_t time = 0;
    for (const auto& node : data["tree"].GetArray()) {
        steps += node["ownSteps"].GetUint64();
        time += node["own"].GetUint64();
    }
    EXPECT_EQ(steps, 35U);
    EXPECT_LE(time, data["transform"].GetUint64());
    EXPECT_EQ(std::string(data["modules"][0]["text"].GetString()), KNOWN);
    EXPECT_EQ(data["lines"][0].Size(), 8U);
    EXPECT_EQ(data["lines"][0][4][0].GetUint64(), 8U); // line 8: a template and xsl:param
    EXPECT_EQ(data["lines"][0][4][1].GetUint64(), 6U);
    EXPECT_EQ(data["lines"][0][4][3].GetUint64(), 12U);
    EXPECT_EQ(file("p.html").find("@DATA@"), std::string::npos);
}

/** What a page must not take for its own text. */
TEST_F(ProfileCommandTest, AnyStylesheetCanBeInThePage) {
    m_folder.write("b>&@STYLE@.xsl",
                   stylesheetWithRootTemplate("<!--</script>@SCRIPT@ \xC3\xA4--><b/>"));
    EXPECT_EQ(tool("profile 'b>&@STYLE@.xsl' ok.xml --html p.html").status, 0);
    const auto data = dataOf("p.html");
    EXPECT_EQ(std::string(data["title"].GetString()), "b>&@STYLE@.xsl over ok.xml");
    EXPECT_NE(
        std::string(data["modules"][0]["text"].GetString()).find("</script>@SCRIPT@ \xC3\xA4"),
        std::string::npos);
    EXPECT_NE(file("p.html").find("<h1>b>&amp;@STYLE@.xsl over ok.xml</h1>"), std::string::npos);
}

/** Deep and wide trees of calls are cut, and nothing is lost. */
TEST_F(ProfileCommandTest, MutualRecursionIsCounted) {
    m_folder.write(
        "mutual.xsl",
        stylesheet("<xsl:template match='/'><xsl:call-template name='a'><xsl:with-param name='n' "
                   "select='2000'/></xsl:call-template></xsl:template>"
                   "<xsl:template name='a'><xsl:param name='n'/><xsl:if test='$n > 0'>"
                   "<xsl:call-template name='b'><xsl:with-param name='n' select='$n - 1'/>"
                   "</xsl:call-template></xsl:if></xsl:template>"
                   "<xsl:template name='b'><xsl:param name='n'/><xsl:if test='$n > 0'>"
                   "<xsl:call-template name='a'><xsl:with-param name='n' select='$n - 1'/>"
                   "</xsl:call-template></xsl:if></xsl:template>"));
    const Outcome outcome = tool("profile mutual.xsl ok.xml --html p.html");
    // The last call has no next one.
    EXPECT_EQ(countsOf(outcome.error), "1 3 match=\"/\"  mutual.xsl:1\n"
                                       "1000 5000 name=\"b\"  mutual.xsl:1\n"
                                       "1001 5003 name=\"a\"  mutual.xsl:1\n");
    const auto data = dataOf("p.html");
    EXPECT_EQ(data["tree"].Size(), 501U);
    std::uint64_t calls = 0;
    std::uint64_t steps = 0;
    for (const auto& node : data["tree"].GetArray()) {
        calls += node["calls"].GetUint64();
        steps += node["ownSteps"].GetUint64();
    }
    EXPECT_EQ(calls, 2002U);
    EXPECT_EQ(steps, 10006U);
}

TEST_F(ProfileCommandTest, WorksInAProcessOfItsOwn) {
    for (const char* option : {"--isolate", "--max-seconds 60", "--max-memory 500"}) {
        const Outcome outcome =
            tool("profile known.xsl two.xml --coverage c.info " + std::string(option));
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_NE(outcome.error.find("name=\"n\"  known.xsl:8"), std::string::npos);
        EXPECT_NE(file("c.info").find("DA:8,6\n"), std::string::npos);
        shell("rm c.info");
    }
}

TEST_F(ProfileCommandTest, RefusesWhatCannotBeWritten) {
    expectFailure(tool("profile ok.xsl ok.xml --html p --folded ./p"), 2, "./p: it is the place");
    expectFailure(tool("profile ok.xsl ok.xml -o p --html p"), 2, "p: it is the place");
    expectFailure(tool("profile ok.xsl ok.xml -o - --folded -"), 2, "-: it is the place");
    expectFailure(shell("ln -s ok.xml link; vexa-xslt profile ok.xsl ok.xml --html ./link"), 2,
                  "./link: the report would replace ok.xml");
    expectFailure(tool("profile ok.xsl ok.xml --coverage ok.xsl"), 2,
                  "ok.xsl: the report would replace ok.xsl");
    expectFailure(tool("profile none.xsl ok.xml"), 1, "none.xsl: ");
    const Outcome missing = tool("profile ok.xsl ok.xml --html none/p");
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.error.find("\nvexa-xslt: none/p: "), std::string::npos) << missing.error;
    // And what ended the run is reported as well.
    const Outcome both = tool("profile ok.xsl ok.xml -o none/o --html none/p");
    EXPECT_EQ(both.status, 1);
    EXPECT_NE(both.error.find("\nvexa-xslt: none/o: "), std::string::npos) << both.error;
    EXPECT_NE(both.error.find("\nvexa-xslt: none/p: "), std::string::npos) << both.error;
}

/** A stylesheet from a pipe has no file to show. */
TEST_F(ProfileCommandTest, ReadsTheStylesheetFromStandardInput) {
    const Outcome outcome = shell("vexa-xslt profile - two.xml --html p.html --coverage c.info "
                                  "--callgrind c.out <known.xsl");
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_NE(countsOf(outcome.error).find("6 26 name=\"n\"  -:8\n"), std::string::npos)
        << outcome.error;
    EXPECT_NE(file("c.info").find("SF:-\n"), std::string::npos);
}
