#include "OtherKernel.h"
#include "ToolTest.h"
#include "support/MemoryChecker.h"

#include <cerrno>
#include <sched.h>
#include <sys/mman.h>
#include <sys/syscall.h>

/** A run within limits: as without them, until it reaches one. */
class LimitsTest : public ToolTest {
protected:
    /** Starts a run in the background that never ends by itself, with its number in $tool. */
    static std::string startEndlessRun(const std::string& rest) {
        return "mkfifo pipe; (exec 3>pipe; exec sleep 30) & sleeper=$!; "
               "vexa-xslt transform ok.xsl --max-seconds 60 <pipe " +
               rest + " & tool=$!; ";
    }
};

TEST_F(LimitsTest, ChangeNothingWhereTheyAreNotReached) {
    writeSheet("<xsl:message>note</xsl:message><b/>");
    m_folder.write("bad.xsl", "<xsl:stylesheet");
    for (const char* arguments :
         {"transform ok.xsl ok.xml", "transform ok.xsl <ok.xml", "chain ok.xml ok.xsl",
          "xpath /a ok.xml", "transform sheet.xsl ok.xml", "transform --quiet sheet.xsl ok.xml",
          "transform bad.xsl ok.xml", "transform ok.xsl bad.xsl", "chain ok.xml bad.xsl",
          "transform ok.xsl ok.xml -o ''", "transform ok.xsl ok.xml -o none/out",
          "transform ok.xsl ok.xml >/dev/full"}) {
        const Outcome without = tool(arguments);
        const std::string command = arguments;
        const auto end = command.find(' ');
        const Outcome within =
            tool(command.substr(0, end) + " --max-seconds 30" + command.substr(end));
        EXPECT_EQ(within.status, without.status) << arguments;
        EXPECT_EQ(within.output, without.output) << arguments;
        EXPECT_EQ(within.error, without.error) << arguments;
    }
}

TEST_F(LimitsTest, TakeWholeNumbersOnly) {
    for (const char* option : {"--max-memory", "--max-seconds"}) {
        for (const char* value : {"0", "''", "x", "1.5", "1x", "-1", "1000001", "99999999999999"}) {
            expectFailure(tool("transform ok.xsl ok.xml " + std::string(option) + " " + value), 2,
                          std::string(option) + ": ",
                          " is no whole number from 1 to 1000000 (see ");
        }
    }
    expectFailure(tool("transform ok.xsl ok.xml --max-memory"), 2,
                  "--max-memory: its MIB is missing ");
    expectFailure(tool("transform ok.xsl ok.xml --max-seconds"), 2,
                  "--max-seconds: its N is missing ");
}

TEST_F(LimitsTest, TellOfTooLittleMemoryForTheEngines) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker needs all of the address space";
    }
    for (const char* arguments :
         {"transform ok.xsl ok.xml", "chain ok.xml ok.xsl", "xpath /a ok.xml"}) {
        expectFailure(tool(arguments + std::string(" --max-memory 1")), 1,
                      "ok.xml: there is not enough memory: --max-memory allows 1 MiB\n");
    }
    EXPECT_EQ(tool("transform ok.xsl ok.xml --max-memory 200").output, "<b>x</b>");
}

TEST_F(LimitsTest, WriteAnOutputFileAsEver) {
    m_folder.write("out", "earlier");
    shell("chmod 606 out");
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o out --max-seconds 30").status, 0);
    EXPECT_EQ(file("out"), "<b>x</b>");
    EXPECT_EQ(permissions("out"), 0606U);
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl out");
}

TEST_F(LimitsTest, EndASourceThatNeverEnds) {
    const auto outcome =
        shell("mkfifo pipe; (exec 3>pipe; exec sleep 30) & sleeper=$!; "
              "vexa-xslt transform ok.xsl -o out --max-seconds 1 <pipe; status=$?; "
              "kill $sleeper; exit $status");
    expectFailure(outcome, 1, "standard input: it takes longer than the 1 s ");
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl pipe");
}

TEST_F(LimitsTest, PassAnInterruptOnAndEndByIt) {
    for (const char* signal : {"TERM", "HUP", "USR1"}) {
        shell(startEndlessRun("-o out") +
              "for i in $(seq 100); do ls -A | grep -q '^.vexa-xslt-' && break; sleep 0.05; done; "
              "ls -A >seen; kill -" +
              std::string(signal) +
              " $tool; wait $tool; kill -l $? >status; kill $sleeper; rm pipe");
        EXPECT_NE(file("seen").find(".vexa-xslt-"), std::string::npos) << file("seen");
        EXPECT_EQ(file("status"), signal + std::string("\n"));
        EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl seen status");
    }
}

TEST_F(LimitsTest, RemoveTheOutputOfAChildThatIsKilled) {
    const auto outcome =
        shell(startEndlessRun("-o out") +
              "for i in $(seq 100); do ls -A | grep -q '^.vexa-xslt-' && break; sleep 0.05; done; "
              "kill -KILL $(cat /proc/$tool/task/$tool/children); wait $tool; status=$?; "
              "kill $sleeper; exit $status");
    expectFailure(outcome, 1, "standard input: the engine was ended from outside (Killed)");
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl pipe");
}

TEST_F(LimitsTest, LeaveNoChildBehind) {
    // The reader comes to an end when nobody is left who could write.
    shell("mkfifo ended; " + startEndlessRun(">ended") +
          "timeout 10 cat ended & reader=$!; sleep 0.5; kill -KILL $tool; "
          "wait $reader; echo $? >status; kill $sleeper");
    EXPECT_EQ(file("status"), "0\n");
}

TEST_F(LimitsTest, EndWithTheReaderOfAPipe) {
    std::string items;
    for (int i = 0; i < 300; ++i) {
        items += "<i/>";
    }
    m_folder.write("items.xml", "<a>" + items + "</a>");
    writeSheet("<xsl:for-each select='//i'><xsl:for-each select='//i'>" + std::string(100, 'x') +
               "</xsl:for-each></xsl:for-each>");
    const auto outcome = shell("vexa-xslt transform sheet.xsl items.xml --max-seconds 30 | "
                               "head -c 1; echo ${PIPESTATUS[0]}");
    EXPECT_EQ(outcome.output.substr(1), "141\n");
    EXPECT_EQ(outcome.error, "");
}

TEST_F(LimitsTest, LetARunBeStoppedAndContinued) {
    const auto outcome = shell("mkfifo pipe; (exec 3>pipe; sleep 0.6; cat ok.xml >&3) & "
                               "vexa-xslt transform ok.xsl --max-seconds 30 <pipe & tool=$!; "
                               "sleep 0.2; kill -STOP $tool; sleep 0.1; kill -CONT $tool; "
                               "wait $tool");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "<b>x</b>");
    EXPECT_EQ(outcome.error, "");
}

TEST_F(LimitsTest, TellThatThereCanBeNoOtherProcess) {
    const SystemCall fork{SYS_clone, 0, CLONE_VM, 0};
    withAnsweredCall(fork, -EAGAIN, [&] {
        expectFailure(shell("exec vexa-xslt transform ok.xsl ok.xml --max-seconds 30"), 1,
                      "ok.xml: no process can be made for it: "
                      "Resource temporarily unavailable\n");
    });
}

TEST_F(LimitsTest, TellThatThereIsNoMemoryForTwoProcesses) {
#ifdef SYS_mmap2
    constexpr long MAP = SYS_mmap2;
#else
    constexpr long MAP = SYS_mmap;
#endif
    constexpr std::uint32_t SHARED = MAP_SHARED | MAP_ANONYMOUS;
    withAnsweredCall({MAP, 3, SHARED, SHARED}, -ENOMEM, [&] {
        expectFailure(tool("transform ok.xsl ok.xml --max-seconds 30"), 1,
                      "memory for two processes: Cannot allocate memory\n");
    });
}

TEST_F(LimitsTest, TakeALowerLimitOfTheUsersForAResultInMemory) {
    writeSheet(std::string(3'000'000, 'x'));
    for (const char* limit : {"", " --max-memory 500"}) {
        if (*limit && isUnderAMemoryChecker()) {
            continue; // which needs all of the address space
        }
        expectFailure(shell("ulimit -f 2048; vexa-xslt transform sheet.xsl file://$PWD/ok.xml" +
                            std::string(limit)),
                      1, "standard output: ", "File too large");
    }
}
