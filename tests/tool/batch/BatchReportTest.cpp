#include "BatchTest.h"

#include <rapidjson/document.h>

#include <sstream>

/** What programs are told of each source. */
class BatchReportTest : public BatchTest {
protected:
    /** The lines, by the name of the source. */
    static std::map<std::string, rapidjson::Document> parsed(const std::string& report) {
        std::map<std::string, rapidjson::Document> lines;
        std::istringstream stream(report);
        for (std::string line; std::getline(stream, line);) {
            rapidjson::Document json;
            json.Parse<rapidjson::kParseValidateEncodingFlag>(line.c_str());
            EXPECT_FALSE(json.HasParseError()) << line;
            if (!json.HasParseError()) {
                const std::string source = json["source"].GetString();
                EXPECT_TRUE(lines.emplace(source, std::move(json)).second) << line;
            }
        }
        return lines;
    }

    static std::string text(const rapidjson::Value& object, const char* name) {
        return object[name].GetString();
    }
};

TEST_F(BatchReportTest, HasALineForEachSource) {
    writeSources(3);
    m_folder.write("sources/bad.xml", "<a>\n<b></a>");
    m_folder.write("third.xsl",
                   stylesheetWithRootTemplate("<xsl:if test='a = 3'>\n<xsl:message "
                                              "terminate='yes'>no three</xsl:message></xsl:if>"));
    const Outcome outcome =
        tool("batch third.xsl sources/* none.xml -d out --report report.json -j 2");
    EXPECT_EQ(outcome.status, 1);
    const auto lines = parsed(file("report.json"));
    ASSERT_EQ(lines.size(), 5U);
    const auto& done = lines.at("sources/s1.xml");
    EXPECT_EQ(text(done, "output"), "out/s1.out");
    EXPECT_TRUE(done["ok"].GetBool());
    EXPECT_GT(done["milliseconds"].GetDouble(), 0);
    EXPECT_FALSE(done.HasMember("error"));
    EXPECT_FALSE(done.HasMember("skipped"));
    const auto& terminated = lines.at("sources/s3.xml");
    EXPECT_FALSE(terminated["ok"].GetBool());
    EXPECT_GT(terminated["milliseconds"].GetDouble(), 0);
    EXPECT_EQ(text(terminated["error"], "kind"), "Terminated");
    EXPECT_EQ(text(terminated["error"], "text"), "no three");
    EXPECT_EQ(text(terminated["error"], "uri"), "file://" + m_folder.path("third.xsl"));
    EXPECT_EQ(terminated["error"]["line"].GetInt(), 2);
    EXPECT_EQ(terminated["error"]["column"].GetInt(), 1);
    const auto& wrong = lines.at("sources/bad.xml")["error"];
    EXPECT_EQ(text(wrong, "kind"), "Parse");
    EXPECT_EQ(wrong["line"].GetInt(), 2);
    EXPECT_EQ(text(lines.at("none.xml")["error"], "kind"), "Input");
}

TEST_F(BatchReportTest, TellsWhatWasLeftOut) {
    writeSources(2);
    shell("touch -d '-10 seconds' ok.xsl sources/*");
    tool("batch ok.xsl sources/s1.xml -d out");
    const Outcome outcome = tool("batch ok.xsl sources/* -d out --newer --quiet --report -");
    EXPECT_EQ(outcome.error, "");
    const auto lines = parsed(outcome.output);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines.at("sources/s1.xml")["skipped"].GetBool());
    EXPECT_TRUE(lines.at("sources/s1.xml")["ok"].GetBool());
    EXPECT_FALSE(lines.at("sources/s2.xml").HasMember("skipped"));
}

/** The second source comes through a pipe, so that the worker waits for it. */
TEST_F(BatchReportTest, TellsOfACrashAndALimit) {
    writeSources(3);
    shell("rm sources/s2.xml; mkfifo sources/s2.xml; vexa-xslt batch ok.xsl sources/* -d out -j 1 "
          "--report report.json & batch=$!; exec 3>sources/s2.xml; "
          "kill -SEGV $(cat /proc/$batch/task/$batch/children); exec 3>&-; wait $batch");
    auto lines = parsed(file("report.json"));
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(text(lines.at("sources/s2.xml")["error"], "kind"), "Crash");
    EXPECT_EQ(text(lines.at("sources/s2.xml")["error"], "text"), "the engine crashed (SIGSEGV)");
    shell("(exec 3>sources/s2.xml; sleep 4) & vexa-xslt batch ok.xsl sources/* -d out -j 1 "
          "--max-seconds 1 --report report.json; kill $!");
    lines = parsed(file("report.json"));
    EXPECT_EQ(text(lines.at("sources/s2.xml")["error"], "kind"), "Limit");
    EXPECT_TRUE(lines.at("sources/s3.xml")["ok"].GetBool());
}

TEST_F(BatchReportTest, IsWholeAfterAnInterrupt) {
    writeSources(3);
    shell("rm sources/s3.xml; mkfifo sources/s3.xml; vexa-xslt batch ok.xsl sources/* -d out -j 1 "
          "--report report.json & batch=$!; exec 3>sources/s3.xml; kill -TERM $batch; wait $batch");
    const auto lines = parsed(file("report.json"));
    EXPECT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines.count("sources/s3.xml"), 0U);
}

TEST_F(BatchReportTest, IsJsonWhateverTheNames) {
    const Outcome outcome = shell("printf '<a>1</a>' >$'\\xff\"\\n.xml'; vexa-xslt batch ok.xsl "
                                  "$'\\xff\"\\n.xml' -d out --quiet --report -");
    const auto lines = parsed(outcome.output);
    ASSERT_EQ(lines.size(), 1U) << outcome.output;
    EXPECT_EQ(lines.begin()->first, "\xEF\xBF\xBD\"\n.xml");
}

TEST_F(BatchReportTest, IsWrittenWhereItCanBe) {
    writeSources(1);
    const Outcome outcome = tool("batch ok.xsl sources/* -d out --report none/report.json");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error,
              "vexa-xslt: none/report.json: cannot create: No such file or directory\n");
    const Outcome full = tool("batch ok.xsl sources/* -d out --report /dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.error, "vexa-xslt: /dev/full: cannot write: No space left on device\n");
}

TEST_F(BatchReportTest, DoesNotKeepTheProgramFromEnding) {
    writeSources(1);
    shell("for i in $(seq 2000); do ln -s s1.xml sources/t$i.xml; done");
    // More than the pipe holds, and nobody reads it.
    const std::string begin = "mkfifo pipe; exec 3<>pipe; vexa-xslt batch ok.xsl sources/* -d out "
                              "--quiet --report pipe & batch=$!; for i in $(seq 200); do "
                              "[ \"$(ls out 2>/dev/null | wc -l)\" -gt 600 ] && break; sleep 0.05; "
                              "done; sleep 0.5; ";
    const Outcome ended = shell(begin + "kill -TERM $batch; wait $batch; kill -l $?");
    EXPECT_EQ(ended.output, "TERM\n");
    EXPECT_NE(ended.error.find("interrupted: "), std::string::npos) << ended.error;
    // Nothing is lost where it is read late.
    const Outcome late = shell("rm -r pipe out; " + begin +
                               "cat <&3 >report & cat=$!; wait $batch; for i in "
                               "$(seq 100); do [ $(wc -l <report) = 2001 ] && break; "
                               "sleep 0.05; done; kill $cat; wc -l <report");
    EXPECT_EQ(late.output, "2001\n");
}

TEST_F(BatchReportTest, ReplacesNoOtherFile) {
    writeSources(2);
    const std::string source = file("sources/s2.xml");
    shell("ln -s sources linked");
    const auto refuses = [&](const std::string& report, const std::string& cause) {
        expectFailure(tool("batch ok.xsl sources/* -d out --report " + report), 2,
                      report + ": " + cause);
    };
    refuses("linked/s2.xml", "the report would replace sources/s2.xml");
    refuses("ok.xsl", "the report would replace ok.xsl");
    shell("ls sources/* >list");
    const std::string list = file("list");
    expectFailure(tool("batch ok.xsl --files-from list -d out --report ./list"), 2,
                  "./list: the report would replace list");
    EXPECT_EQ(file("list"), list);
    const std::string result = "the result of sources/s2.xml goes there";
    refuses("./out/s2.out", result); // the folder is not there yet
    EXPECT_EQ(tool("batch ok.xsl sources/* -d out --quiet --report report").status, 0);
    shell("ln -s out/s2.out link");
    refuses("link", result);
    EXPECT_EQ(file("sources/s2.xml"), source);
    EXPECT_EQ(tool("batch ok.xsl sources/* -d out --quiet --report report").status, 0);
    EXPECT_EQ(tool("batch ok.xsl sources/* -d out --quiet --report /dev/null").status, 0);
}
