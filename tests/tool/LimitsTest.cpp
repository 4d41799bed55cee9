#include "OtherKernel.h"
#include "ToolTest.h"
#include "support/MemoryChecker.h"

#include <cerrno>
#include <sched.h>
#include <sys/mman.h>
#include <sys/syscall.h>

namespace {

/** Waits for a document when the output file is open. */
const std::string SLOW =
    stylesheetWithRootTemplate("<b><xsl:value-of select=\"document('pipe')\"/></b>");

} // namespace

/** A run within limits: as without them, until it reaches one. */
class LimitsTest : public ToolTest {
protected:
    /** Starts a run in the background that never ends by itself, with its number in $tool. */
    std::string startEndlessRun(const std::string& rest) {
        m_folder.write("slow.xsl", SLOW);
        return "mkfifo pipe; (exec 3>pipe; exec sleep 30) & sleeper=$!; "
               "vexa-xslt transform slow.xsl ok.xml --max-seconds 60 " +
               rest + " & tool=$!; ";
    }

    /** Waits until the child process works, with its number in $child. */
    static constexpr const char* WAIT_FOR_CHILD =
        "for i in $(seq 200); do child=$(echo $(cat /proc/$tool/task/$tool/children)); "
        "[ -n \"$child\" ] && ls -l /proc/$child/fd | grep -q '(deleted)' && break; sleep 0.05; "
        "done; ";
};

TEST_F(LimitsTest, ChangeNothingWhereTheyAreNotReached) {
    writeSheet("<xsl:message>note</xsl:message><b/>");
    m_folder.write("bad.xsl", "<xsl:stylesheet");
    for (const char* arguments :
         {"transform ok.xsl ok.xml", "transform ok.xsl <ok.xml", "chain ok.xml ok.xsl",
          "xpath /a ok.xml", "transform sheet.xsl ok.xml", "transform --quiet sheet.xsl ok.xml",
          "transform bad.xsl ok.xml", "transform ok.xsl bad.xsl", "chain ok.xml bad.xsl",
          "transform ok.xsl ok.xml -o none/out", "transform ok.xsl ok.xml >/dev/full"}) {
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

TEST_F(LimitsTest, TakeIntegersOnly) {
    for (const char* option : {"--max-memory", "--max-seconds", "--max-output", "--max-depth"}) {
        for (const char* value : {"0", "''", "x", "1.5", "1x", "-1", "1000001", "99999999999999"}) {
            expectFailure(tool("transform ok.xsl ok.xml " + std::string(option) + " " + value), 2,
                          std::string(option) + ": expected an integer from 1 to 1000000, got '",
                          "' (see ");
        }
    }
    expectFailure(tool("transform ok.xsl ok.xml --max-memory"), 2, "--max-memory: MIB is missing ");
    expectFailure(tool("transform ok.xsl ok.xml --max-seconds"), 2, "--max-seconds: N is missing ");
}

TEST_F(LimitsTest, AreNamedWithTheirOptionAndValue) {
    m_folder.write("deep.xml", "<a><b><c><d><e><f><g/></f></e></d></c></b></a>");
    std::string items;
    for (int i = 0; i < 100'000; ++i) {
        items += "<i/>";
    }
    m_folder.write("items.xml", "<a>" + items + "</a>");
    writeSheet("<xsl:for-each select='//i'>some text for each</xsl:for-each>");
    const auto expectLimit = [&](const std::string& arguments, const std::string& error) {
        expectFailure(tool(arguments), 1, error + "\n");
    };
    const std::string memory = "items.xml: memory limit of 1 MiB exceeded (--max-memory)";
    expectLimit("transform sheet.xsl items.xml --max-memory 1", memory);
    expectLimit("chain items.xml sheet.xsl --max-memory 1", memory);
    expectLimit("xpath / items.xml --max-memory 1", memory);
    const std::string depth = "deep.xml: the depth limit of 6 was reached (--max-depth)";
    expectLimit("transform ok.xsl deep.xml --max-depth 6", depth);
    expectLimit("xpath / deep.xml --max-depth 6", depth);
    expectLimit("transform sheet.xsl items.xml --max-output 1 -o out",
                "items.xml: output limit of 1 MiB exceeded (--max-output)");
    EXPECT_EQ(tool("transform sheet.xsl items.xml --max-output 2").output.size(),
              tool("transform sheet.xsl items.xml").output.size());
    EXPECT_EQ(
        tool("xpath 'count(//i)' items.xml --max-output 1 --max-memory 100 --max-depth 2").output,
        "100000\n");
    m_folder.write("items.xml", "<a>" + std::string(1'048'570, 'x') + "</a>");
    EXPECT_EQ(tool("xpath 'string(/)' items.xml --max-output 1").output.size(), 1'048'571U);
    expectFailure(tool("xpath / items.xml --max-output 1"), 1,
                  "expression: output limit of 1 MiB exceeded (--max-output)\n");
}

TEST_F(LimitsTest, OfTheDepthIsThereByItself) {
    m_folder.write("sheet.xsl",
                   stylesheet("\n <xsl:template match='/' name='again'><xsl:call-template "
                              "name='again'/></xsl:template>"));
    expectFailure(tool("transform sheet.xsl ok.xml"), 1,
                  "sheet.xsl:2:2: the depth limit of 100000 was reached (--max-depth)\n");
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
    expectFailure(outcome, 1, "-: time limit of 1 s exceeded (--max-seconds)\n");
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl pipe");
}

TEST_F(LimitsTest, PassAnInterruptOnAndEndByIt) {
    for (const char* signal : {"TERM", "HUP", "USR1"}) {
        shell(startEndlessRun("-o out") + WAIT_FOR_CHILD + "kill -" + std::string(signal) +
              " $tool; wait $tool; kill -l $? >status; kill $sleeper; rm pipe");
        EXPECT_EQ(file("status"), signal + std::string("\n"));
        EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl slow.xsl status");
    }
}

TEST_F(LimitsTest, ReportACrashInOneLine) {
    const std::pair<const char*, const char*> signals[] = {
        {"KILL", "killed from outside (SIGKILL), perhaps because memory ran out"},
        {"SEGV", "the engine crashed (SIGSEGV)"},
        {"ABRT", "the engine crashed (SIGABRT)"}};
    for (const auto& [signal, cause] : signals) {
        const auto outcome =
            shell("ulimit -c unlimited; " + startEndlessRun("-o out") + WAIT_FOR_CHILD + "kill -" +
                  signal + " $child; wait $tool; status=$?; kill $sleeper; rm pipe; exit $status");
        expectFailure(outcome, 1, "ok.xml: " + std::string(cause) + "\n");
        EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl slow.xsl");
    }
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

TEST_F(LimitsTest, ReportThatThereCanBeNoOtherProcess) {
    const SystemCall fork{SYS_clone, 0, CLONE_VM, 0};
    withAnsweredCall(fork, -EAGAIN, [&] {
        expectFailure(shell("exec vexa-xslt transform ok.xsl ok.xml --max-seconds 30"), 1,
                      "cannot start a process: Resource temporarily unavailable\n");
    });
}

TEST_F(LimitsTest, ReportThatThereIsNoMemoryForTwoProcesses) {
#ifdef SYS_mmap2
    constexpr long MAP = SYS_mmap2;
#else
    constexpr long MAP = SYS_mmap;
#endif
    constexpr std::uint32_t SHARED = MAP_SHARED | MAP_ANONYMOUS;
    withAnsweredCall({MAP, 3, SHARED, SHARED}, -ENOMEM, [&] {
        expectFailure(tool("transform ok.xsl ok.xml --max-seconds 30"), 1,
                      "shared memory: Cannot allocate memory\n");
    });
}

TEST_F(LimitsTest, OfTheUserForFilesAreErrors) {
    writeSheet(std::string(3'000'000, 'x'));
    for (const char* options : {"", " --isolate"}) {
        expectFailure(shell("ulimit -f 2048; vexa-xslt transform sheet.xsl ok.xml -o out" +
                            std::string(options)),
                      1, "out: cannot write: File too large\n");
    }
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl sheet.xsl");
}
