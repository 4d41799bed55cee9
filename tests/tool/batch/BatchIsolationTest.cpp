#include "BatchTest.h"

#include "support/Listener.h"
#include "support/MemoryChecker.h"
#include "tool/OtherKernel.h"

#include <cerrno>
#include <linux/net.h>
#include <sys/syscall.h>

/** What a source does to the others: nothing. */
class BatchIsolationTest : public BatchTest {
protected:
    BatchIsolationTest() {
        writeSources(5);
        m_folder.write(
            "some-deep.xsl",
            stylesheet(
                "<xsl:output omit-xml-declaration='yes'/>"
                "<xsl:template match='/'><b><xsl:if test='a = 3'><xsl:call-template "
                "name='deep'/></xsl:if>"
                "<xsl:value-of select='a'/></b></xsl:template>"
                "<xsl:template name='deep'><xsl:call-template name='deep'/></xsl:template>"));
        m_folder.write("some-slow.xsl",
                       stylesheet("<xsl:output omit-xml-declaration='yes'/><xsl:variable name='s' "
                                  "select=\"document('')//text()\"/>"
                                  "<xsl:template match='/'><b><xsl:if test='a = 3'><xsl:for-each "
                                  "select='$s'><xsl:for-each select='$s'>"
                                  "<xsl:for-each select='$s'><xsl:for-each "
                                  "select='$s'><xsl:for-each select='$s'><xsl:for-each select='$s'>"
                                  "</xsl:for-each></xsl:for-each></xsl:for-each></xsl:for-each></"
                                  "xsl:for-each></xsl:for-each></xsl:if>"
                                  "<xsl:value-of select='a'/></b></xsl:template><x xmlns='urn:x'>" +
                                  [] {
                                      std::string text;
                                      for (int i = 0; i < 100; ++i) {
                                          text += "t<y/>";
                                      }
                                      return text;
                                  }() +
                                  "</x>"));
    }

    /** Expects that the third source of five fails for this reason, and no other. */
    void expectOneFailure(const std::string& arguments, const std::string& reason) {
        SCOPED_TRACE(arguments);
        const Outcome outcome = tool("batch " + arguments + " sources/* -d out");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.error.rfind("vexa-xslt: sources/s3.xml:", 0), 0U) << outcome.error;
        const std::string end = " " + reason + "\nvexa-xslt: 4 of 5 sources done, 1 failed\n";
        EXPECT_EQ(outcome.error.find(end) + end.size(), outcome.error.size()) << outcome.error;
        EXPECT_EQ(rightResults(), 4);
        EXPECT_EQ(names(), "s1.out s2.out s4.out s5.out\n");
        shell("rm -r out");
    }
};

/** The third source comes through a pipe, so that the worker waits for it. */
TEST_F(BatchIsolationTest, ACrashCostsItsSourceOnly) {
    const std::pair<const char*, const char*> crashes[] = {
        {"SEGV", "the engine crashed (SIGSEGV)"}, {"ABRT", "the engine crashed (SIGABRT)"}};
    for (const auto& [signal, cause] : crashes) {
        const Outcome outcome =
            shell("rm -rf out sources/s3.xml; mkfifo sources/s3.xml; ulimit -c unlimited; "
                  "vexa-xslt batch ok.xsl sources/* -d out -j 1 & batch=$!; "
                  "exec 3>sources/s3.xml; kill -" +
                  std::string(signal) +
                  " $(cat /proc/$batch/task/$batch/children); exec 3>&-; wait $batch");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.error, "vexa-xslt: sources/s3.xml: " + std::string(cause) +
                                     "\nvexa-xslt: 4 of 5 sources done, 1 failed\n");
        EXPECT_EQ(rightResults(), 4);
        EXPECT_EQ(names(), "s1.out s2.out s4.out s5.out\n");
    }
}

/** A worker is started again; its stylesheet comes through a pipe, so that it can be caught there.
 */
TEST_F(BatchIsolationTest, AWorkerThatEndsWhileItCompilesIsStartedAgain) {
    m_folder.write("piped.xsl", stylesheet("<xsl:include href='pipe.xsl'/>"));
    const std::string start = "rm -rf out pipe.xsl; mkfifo pipe.xsl; "
                              "vexa-xslt batch piped.xsl sources/* -d out -j 1 & batch=$!; "
                              // The next one must not find the pipe open for the one before.
                              "kill_worker() { exec 3>pipe.xsl; kill -STOP $batch; "
                              "worker=$(echo $(cat /proc/$batch/task/$batch/children)); "
                              "kill -KILL $worker; exec 3>&-; kill -CONT $batch; "
                              "while [ -e /proc/$worker ]; do sleep 0.01; done; }; ";
    const Outcome once = shell(start + "kill_worker; cat ok.xsl >pipe.xsl; wait $batch");
    EXPECT_EQ(once.error, "vexa-xslt: 5 of 5 sources done\n");
    EXPECT_EQ(rightResults(), 5);
    const Outcome ever = shell(start + "kill_worker; kill_worker; kill_worker; wait $batch");
    expectFailure(ever, 1, "piped.xsl: killed from outside (SIGKILL)");
}

TEST_F(BatchIsolationTest, LimitsHoldForEachSource) {
    expectOneFailure("some-slow.xsl --max-seconds 1", "time limit of 1 s exceeded (--max-seconds)");
    expectOneFailure("some-deep.xsl --max-depth 300",
                     "the depth limit of 300 was reached (--max-depth)");
    expectOneFailure("some-deep.xsl --max-memory 1",
                     "memory limit of 1 MiB exceeded (--max-memory)");
}

TEST_F(BatchIsolationTest, ASandboxKeepsEachWorkerToWhatIsNamed) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a leak checker reads the system's files when the process ends";
    }
    shell("mkdir secrets sheets; echo '<a>secret</a>' >secrets/x.xml; cp ok.xsl sheets");
    m_folder.write("sheets/reading.xsl",
                   stylesheetWithRootTemplate(
                       "<b><xsl:value-of select=\"a[. != 3]\"/><xsl:if test='a = 3'>"
                       "<xsl:value-of select=\"document('../secrets/x.xml')\"/></xsl:if></b>"));
    const Outcome outcome = tool("batch sheets/reading.xsl sources/* -d out --sandbox");
    if (outcome.error.find("has no Landlock") != std::string::npos) {
        GTEST_SKIP() << outcome.error;
    }
    EXPECT_EQ(shell("cat out/*").output.find("secret"), std::string::npos);
    EXPECT_EQ(rightResults(), 4);
    shell("rm -r out; mkdir out; ln -s ../secrets/stolen out/s2.out");
    const Outcome writing = tool("batch sheets/ok.xsl sources/* -d out --sandbox");
    EXPECT_EQ(writing.status, 1);
    EXPECT_EQ(lastLine(writing.error), "vexa-xslt: 4 of 5 sources done, 1 failed");
    EXPECT_EQ(names("secrets"), "x.xml\n");
}

TEST_F(BatchIsolationTest, WorksNowhereOutsideOfASandbox) {
    withAnsweredCall({SYS_landlock_create_ruleset}, -ENOSYS, [&] {
        expectFailure(tool("batch ok.xsl sources/* -d out --sandbox"), 1,
                      "--sandbox: the kernel has no Landlock: "
                      "Function not implemented\n");
    });
    EXPECT_EQ(names(), "\n");
}

TEST_F(BatchIsolationTest, ARefusedNetworkCostsItsSourceOnly) {
    const Listener server{{{"/e", "from afar"}}};
    m_folder.write("sources/s3.xml",
                   "<!DOCTYPE a [<!ENTITY e SYSTEM '" + server.address() + "/e'>]><a>&e;</a>");
    expectOneFailure("ok.xsl", "network access denied: " + server.address() + "/e");
    EXPECT_EQ(server.requests(), 0);
}

TEST_F(BatchIsolationTest, ManySourcesTakeNoMoreMemoryThanAFew) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker needs all of the address space";
    }
    const auto expectEnoughMemory = [&](int count, int size) {
        std::string items;
        for (int i = 0; i < size; ++i) {
            items += "<i n='" + std::to_string(i) + "'>text</i>";
        }
        m_folder.write("large.xml", "<a>" + items + "</a>");
        const std::string all = std::to_string(count);
        shell("rm -rf many out; mkdir many; for i in $(seq " + all +
              "); do ln large.xml many/$i.xml; done");
        // What a transformer keeps of all of them would be more.
        const Outcome outcome =
            shell("ulimit -v 250000; vexa-xslt batch ok.xsl many/* -d out -j 1");
        EXPECT_EQ(outcome.error, "vexa-xslt: " + all + " of " + all + " sources done\n");
        EXPECT_EQ(shell("ls out | wc -l").output, all + "\n");
    };
    expectEnoughMemory(600, 1'000);
    expectEnoughMemory(19, 50'000);
}

/** No more processes or threads can be made, or no more files opened. */
class BatchShortageTest : public BatchTest {
protected:
    BatchShortageTest() {
        writeSources(30);
        shell("chmod 777 .");
    }

    /** Runs the rest of a line as a user whom limits hold for, and who has no other process. */
    static std::string asUser(int user) {
        const std::string id = std::to_string(user);
        return " setpriv --reuid " + id + " --regid " + id + " --clear-groups ";
    }
};

TEST_F(BatchShortageTest, WorksWithAsManyWorkersAsThereCanBe) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a checker makes threads of its own";
    }
    for (const char* options : {"", " --max-seconds 60"}) {
        shell("rm -rf out");
        const Outcome outcome =
            shell("prlimit --nproc=5" + asUser(54321) +
                  "vexa-xslt batch ok.xsl sources/* -d out -j 20" + std::string(options));
        EXPECT_EQ(outcome.error, "vexa-xslt: 30 of 30 sources done\n") << options;
        EXPECT_EQ(rightResults(), 30);
        const Outcome none = shell("prlimit --nproc=1" + asUser(54321) +
                                   "vexa-xslt batch ok.xsl sources/* -d out" + options);
        expectFailure(none, 1, "ok.xsl: cannot start a process: Resource temporarily unavail");
    }
}

TEST_F(BatchShortageTest, WorksWithAsManyWorkersAsHaveTheirFiles) {
    // Allowed outright; allowed if asked for.
    for (const char* files : {"70:70", "70:4000"}) {
        for (const char* options : {"", " --max-seconds 60"}) {
            shell("rm -rf out");
            const Outcome outcome =
                shell(std::string("prlimit --nofile=") + files +
                      " vexa-xslt batch ok.xsl sources/* -d out -j 30" + options);
            EXPECT_EQ(outcome.error, "vexa-xslt: 30 of 30 sources done\n") << files << options;
            EXPECT_EQ(rightResults(), 30);
        }
    }
}

TEST_F(BatchShortageTest, TellsWhatNoWorkerCanDoWithout) {
#ifdef SYS_socketcall
    const SystemCall pairOfSockets{SYS_socketcall, 0, ~0U, SYS_SOCKETPAIR};
#else
    const SystemCall pairOfSockets{SYS_socketpair};
#endif
    const auto expectRefused = [&](const SystemCall& call, const std::string& what) {
        withAnsweredCall(call, -ENOMEM, [&] {
            expectFailure(tool("batch ok.xsl sources/* -d out"), 1,
                          what + ": Cannot allocate memory\n");
        });
    };
    expectRefused(pairOfSockets, "ok.xsl: cannot connect to a worker");
    expectRefused({SYS_signalfd4}, "cannot wait for signals");
    EXPECT_EQ(names(), "\n");
}

TEST_F(BatchShortageTest, TellsHowFarItCameWhereNoWorkerIsLeft) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a checker makes threads of its own";
    }
    // The first source is done; the worker waits for the second when it is ended.
    const Outcome outcome =
        shell("mkdir -m 777 out; mkfifo -m 666 pipe.xml;" + asUser(54322) +
              "vexa-xslt batch ok.xsl sources/s1.xml pipe.xml sources/s2.xml -d out -j 1 "
              "& batch=$!; for i in $(seq 400); do "
              "[ -e out/s1.out ] && break; sleep 0.05; done; sleep 0.2;" +
              asUser(54322) +
              "prlimit --pid $batch --nproc=1; "
              "kill -KILL $(cat /proc/$batch/task/$batch/children); wait $batch");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error.rfind("vexa-xslt: pipe.xml: killed from outside", 0), 0U)
        << outcome.error;
    EXPECT_NE(outcome.error.find("\nvexa-xslt: ok.xsl: cannot start a process: "),
              std::string::npos)
        << outcome.error;
    EXPECT_EQ(lastLine(outcome.error), "vexa-xslt: 1 of 3 sources done, 1 failed, 1 not done");
    EXPECT_EQ(names(), "s1.out\n");
}
