#include "BatchTest.h"

/** A batch that is ended from outside leaves whole results, and says how far it came. */
class BatchInterruptTest : public BatchTest {
protected:
    BatchInterruptTest() {
        writeSources(20);
        std::string items;
        for (int i = 0; i < 5000; ++i) {
            items += "<i/>";
        }
        m_folder.write("sources/endless.xml", "<a>" + items + "</a>");
        m_folder.write("some-endless.xsl",
                       stylesheetWithRootTemplate(
                           "<b><xsl:for-each select='//i[count(//i[count(//i) = 0]) = 0]'>"
                           "<xsl:value-of select='count(//i[count(//i) = 0])'/></xsl:for-each>"
                           "<xsl:value-of select='a'/></b>"));
    }

    /**
     * Starts a batch with one source that takes very long, waits until it works on that alone, does
     * what is asked with $batch, and waits for its end. What the batch tells is in "told".
     */
    Outcome whenStuck(const std::string& options, const std::string& action) {
        return shell(
            "ls sources/s*.xml >list; echo sources/endless.xml >>list; set -m; "
            "vexa-xslt batch some-endless.xsl --files-from list -d out -j 2 2>told " +
            options +
            " & batch=$!; for i in $(seq 400); do "
            "[ \"$(ls out | grep -c '^s')\" = 20 ] && break; sleep 0.05; done; sleep 0.2; " +
            action + "; wait $batch; kill -l $? 2>/dev/null");
    }
};

TEST_F(BatchInterruptTest, LeavesWholeResultsAndAClearLastLine) {
    for (const char* options : {"", "--max-seconds 60"}) {
        for (const char* signal : {"INT", "TERM", "HUP"}) {
            SCOPED_TRACE(options + std::string(" ") + signal);
            shell("rm -rf out");
            const Outcome outcome = whenStuck(options, std::string("kill -") + signal + " $batch");
            EXPECT_EQ(outcome.output, signal + std::string("\n"));
            EXPECT_EQ(file("told"), "vexa-xslt: interrupted: 20 of 21 sources done, 1 not done\n");
            EXPECT_EQ(rightResults(), 20);
            EXPECT_EQ(shell("ls -A out | wc -l").output, "20\n");
        }
    }
}

TEST_F(BatchInterruptTest, LeavesNothingWhicheverMomentItComes) {
    writeSources(3000);
    for (int moment = 20; moment < 40; ++moment) {
        const Outcome outcome = shell(
            "rm -rf out; vexa-xslt batch ok.xsl sources/s*.xml -d out -j 2 2>told & batch=$!; "
            "for i in $(seq 1000); do [ -e out/s10.out ] && break; sleep 0.01; done; sleep 0.0" +
            std::to_string(moment) + "; kill -TERM $batch; wait $batch; ls -A out | grep '^[.]'");
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(lastLine(file("told")).rfind("vexa-xslt: interrupted: ", 0), 0U) << file("told");
    }
}

TEST_F(BatchInterruptTest, EndsThoughNobodyReadsItsMessages) {
    // A pipe that is full; one that has room for a part of a message.
    const std::pair<std::string, int> messages[] = {{"note", 65536},
                                                    {std::string(300'000, 'n'), 60'000}};
    for (const auto& [text, filled] : messages) {
        m_folder.write("message.xsl",
                       stylesheetWithRootTemplate("<xsl:message>" + text + "</xsl:message>"));
        const Outcome outcome =
            shell("rm -rf out told; mkfifo told; exec 3<>told; head -c " + std::to_string(filled) +
                  " /dev/zero >&3; timeout -k 20 0.5 vexa-xslt batch message.xsl sources/s*.xml "
                  "-d out 2>&3; echo $?; ls -A out | grep '^[.]'");
        EXPECT_EQ(outcome.output, "124\n") << filled; // 137 where it had to be killed
    }
}

TEST_F(BatchInterruptTest, TakesAnInterruptOfItsWholeGroup) {
    const Outcome outcome = whenStuck("", "kill -INT -- -$batch");
    EXPECT_EQ(outcome.output, "INT\n");
    EXPECT_EQ(file("told"), "vexa-xslt: interrupted: 20 of 21 sources done, 1 not done\n");
    EXPECT_EQ(shell("ls -A out | wc -l").output, "20\n");
}

TEST_F(BatchInterruptTest, ReportsAWorkerThatIsKilledFromOutside) {
    whenStuck("", "kill -KILL $(cat /proc/$batch/task/$batch/children)");
    const std::string told = file("told");
    EXPECT_EQ(told.rfind("vexa-xslt: sources/endless.xml: killed from outside (SIGKILL)", 0), 0U)
        << told;
    EXPECT_EQ(lastLine(told), "vexa-xslt: 20 of 21 sources done, 1 failed");
    EXPECT_EQ(shell("ls -A out | wc -l").output, "20\n");
}

TEST_F(BatchInterruptTest, LeavesNoWorkerBehind) {
    // The reader comes to an end when nobody is left who could write.
    shell("mkfifo ended");
    const Outcome outcome =
        whenStuck("1<>ended", "timeout 60 cat ended & reader=$!; sleep 0.2; "
                              "kill -KILL $batch; wait $reader; echo $? >status");
    EXPECT_EQ(file("status"), "0\n") << outcome.error;
}
