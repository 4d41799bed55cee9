#include "BatchTest.h"

/** A part of the sources: those of one machine, or those that have changed. */
class BatchShardTest : public BatchTest {
protected:
    BatchShardTest() { writeSources(10); }

    /** All that stands for time: a result is newer only if it is so by the clock. */
    void makeOlder(const std::string& files, int seconds = 10) {
        shell("touch -d '-" + std::to_string(seconds) + " seconds' " + files);
    }

    /** What a run of "batch --newer" says at its end. */
    std::string newer(const std::string& sheet = "ok.xsl") {
        const Outcome outcome = tool("batch " + sheet + " sources/* -d out --newer");
        EXPECT_EQ(outcome.status, 0);
        return outcome.error;
    }
};

TEST_F(BatchShardTest, TakesEachNthSource) {
    shell("ls -v sources/* >list");
    const std::string batch = "batch ok.xsl --files-from list -d out --shard ";
    EXPECT_EQ(tool(batch + "1/3").error, "vexa-xslt: 4 of 4 sources done\n");
    EXPECT_EQ(names(), "s1.out s10.out s4.out s7.out\n");
    EXPECT_EQ(tool(batch + "2/3").error, "vexa-xslt: 3 of 3 sources done\n");
    EXPECT_EQ(tool(batch + "3/3").error, "vexa-xslt: 3 of 3 sources done\n");
    EXPECT_EQ(rightResults(), 10);
    const Outcome nothing = tool("batch ok.xsl sources/s1.xml -d none --shard 2/2");
    EXPECT_EQ(nothing.status, 0);
    EXPECT_EQ(nothing.error, "vexa-xslt: 0 of 0 sources done\n");
}

TEST_F(BatchShardTest, RefusesNamesThatCollideInTheWholeList) {
    shell("mkdir more; cp sources/s2.xml more");
    expectFailure(tool("batch ok.xsl sources/s1.xml sources/s2.xml sources/s3.xml more/s2.xml "
                       "-d out --shard 1/2"),
                  2, "more/s2.xml: its result would go to out/s2.out, as that of sources/s2.xml");
}

TEST_F(BatchShardTest, IsANumberOfANumber) {
    for (const char* shard :
         {"0/3", "4/3", "1/0", "x", "1/", "/3", "1/3/4", "''", "-1/3", "1.0/3"}) {
        expectFailure(tool("batch ok.xsl sources/* -d out --shard " + std::string(shard)), 2,
                      "--shard: expected I/N, two integers with 1 <= I <= N, got '");
    }
}

TEST_F(BatchShardTest, LeavesOutWhatHasANewerResult) {
    makeOlder("ok.xsl sources/*");
    EXPECT_EQ(newer(), "vexa-xslt: 10 of 10 sources done\n");
    shell("echo mine >out/s4.out");
    EXPECT_EQ(newer(), "vexa-xslt: 0 of 10 sources done, 10 unchanged\n");
    EXPECT_EQ(file("out/s4.out"), "mine\n");
    // A source that has changed, one whose result is missing, and one that is as old as it.
    shell("touch -d '-5 seconds' out/s2.out; touch -d '-3 seconds' sources/s2.xml; rm out/s3.out; "
          "touch -r sources/s5.xml out/s5.out");
    EXPECT_EQ(newer(), "vexa-xslt: 3 of 10 sources done, 7 unchanged\n");
    EXPECT_EQ(file("out/s3.out"), "<b>3</b>");
    EXPECT_EQ(tool("batch ok.xsl sources/* -d out --newer --shard 1/2").error,
              "vexa-xslt: 0 of 5 sources done, 5 unchanged\n");
}

TEST_F(BatchShardTest, LooksAtEachModuleOfTheStylesheet) {
    m_folder.write("part.xsl", stylesheet("<xsl:import href='deep.xsl'/>"));
    m_folder.write("deep.xsl", stylesheetWithRootTemplate("<b><xsl:value-of select='a'/></b>"));
    m_folder.write("main.xsl", stylesheet("<xsl:include href='part.xsl'/>"));
    makeOlder("*.xsl sources/*");
    EXPECT_EQ(newer("main.xsl"), "vexa-xslt: 10 of 10 sources done\n");
    for (const char* module : {"main.xsl", "part.xsl", "deep.xsl"}) {
        makeOlder("*.xsl");
        EXPECT_EQ(newer("main.xsl"), "vexa-xslt: 0 of 10 sources done, 10 unchanged\n");
        shell("touch -d '+1 hour' " + std::string(module));
        EXPECT_EQ(newer("main.xsl"), "vexa-xslt: 10 of 10 sources done\n") << module;
    }
}

TEST_F(BatchShardTest, GoesOnWhereItWasBrokenOff) {
    makeOlder("ok.xsl sources/*");
    shell("rm sources/s10.xml; mkfifo sources/s10.xml; vexa-xslt batch ok.xsl $(ls -v sources/*) "
          "-d out -j 1 2>told & batch=$!; for i in $(seq 400); do [ -e out/s9.out ] && break; "
          "sleep 0.05; done; kill -TERM $batch; wait $batch; rm sources/s10.xml; "
          "echo '<a>10</a>' >sources/s10.xml");
    EXPECT_EQ(file("told"), "vexa-xslt: interrupted: 9 of 10 sources done, 1 not done\n");
    EXPECT_EQ(newer(), "vexa-xslt: 1 of 10 sources done, 9 unchanged\n");
    EXPECT_EQ(rightResults(), 10);
}

TEST_F(BatchShardTest, TellsOfAStylesheetThatIsWrong) {
    m_folder.write("bad.xsl", "<xsl:stylesheet");
    const Outcome outcome = tool("batch bad.xsl sources/* -d out --newer -j 4");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error.rfind("vexa-xslt: bad.xsl:1:", 0), 0U) << outcome.error;
}
