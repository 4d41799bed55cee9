#include "OtherKernel.h"
#include "ToolTest.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

/** A result appears whole or not at all. */
class OutputFileTest : public ToolTest {
protected:
    /** Writes a stylesheet that waits for a document when the output file is open. */
    void writeSlowSheet() {
        m_folder.write("slow.xsl", stylesheetWithRootTemplate(
                                       "<b><xsl:value-of select=\"document('pipe')\"/></b>"));
    }
};

TEST_F(OutputFileTest, ReportsAPlaceThatCannotBeWritten) {
    shell("mkdir folder; ln -s loop loop");
    expectFailure(tool("transform ok.xsl ok.xml -o none/out"), 1,
                  "none/out: cannot create: No such file or directory\n");
    expectFailure(tool("transform ok.xsl ok.xml -o folder"), 1,
                  "folder: cannot open: Is a directory\n");
    expectFailure(tool("transform ok.xsl ok.xml -o loop"), 1, "loop: ", "symbolic links");
    expectFailure(tool("transform ok.xsl ok.xml -o /dev/full"), 1,
                  "/dev/full: ", "No space left on device");
    expectFailure(tool("transform ok.xsl ok.xml > /dev/full"), 1,
                  "standard output: ", "No space left on device");
    expectFailure(tool("transform ok.xsl -o /dev/full < ok.xml"), 1, "/dev/full: ");
    expectFailure(tool("transform ok.xsl file://$PWD/ok.xml > /dev/full"), 1,
                  "standard output: No space left on device\n");
}

TEST_F(OutputFileTest, ReportsAPlaceThatCannotBeOpenedEvenForAnEmptyResult) {
    m_folder.write("none.xsl", stylesheet("<xsl:output method='text'/><xsl:template match='/'/>"));
    makeSocket("socket");
    for (const char* arguments : {"transform none.xsl", "chain - ok.xsl none.xsl"}) {
        expectFailure(tool(std::string(arguments) + " -o socket <ok.xml"), 1,
                      "socket: cannot open: No such device or address\n");
    }
    EXPECT_EQ(shell("test -S socket").status, 0);
}

TEST_F(OutputFileTest, LeavesAFileAloneThatMayNotBeWritten) {
    // root may write everything, unless it gives that right up.
    m_folder.write("out", "earlier");
    const auto outcome = shell("[ $(id -u) = 0 ] && drop='setpriv --bounding-set=-dac_override'; "
                               "chmod 444 out; $drop vexa-xslt transform ok.xsl ok.xml -o out");
    expectFailure(outcome, 1, "out: cannot open: Permission denied\n");
    EXPECT_EQ(file("out"), "earlier");
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl out");
}

TEST_F(OutputFileTest, ReportsAPlaceThatIsTakenInTheMeantime) {
    writeSlowSheet();
    const auto outcome =
        shell("mkfifo pipe; vexa-xslt transform slow.xsl ok.xml -o out & tool=$!; exec 3>pipe; "
              "for i in $(seq 100); do ls -l /proc/$tool/fd | grep -q '(deleted)' && break; sleep "
              "0.05; done; "
              "mkdir out; cat ok.xml >&3; exec 3>&-; wait $tool");
    expectFailure(outcome, 1, "out: cannot replace: Is a directory\n");
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl out pipe slow.xsl");
}

/** Not every file system has files without a name. */
TEST_F(OutputFileTest, WritesATemporaryFileWhereEachFileHasAName) {
    m_folder.write("out", "earlier");
    writeSheet("<b>part</b><xsl:message terminate='yes'>enough</xsl:message>");
    withAnsweredCall({SYS_openat, 2, O_TMPFILE, O_TMPFILE}, -EOPNOTSUPP, [&] {
        EXPECT_EQ(tool("transform ok.xsl ok.xml -o out").error, "");
        EXPECT_EQ(tool("transform ok.xsl ok.xml -o new").error, "");
        EXPECT_EQ(tool("transform sheet.xsl ok.xml -o out").status, 1);
    });
    EXPECT_EQ(file("out"), "<b>x</b>");
    EXPECT_EQ(file("new"), "<b>x</b>");
    EXPECT_EQ(m_folder.list(), "new ok.xml ok.xsl out sheet.xsl");
}

TEST_F(OutputFileTest, GivesUpWhereNoUnusedNameIsFound) {
    withAnsweredCall({SYS_linkat}, -EEXIST, [&] {
        expectFailure(tool("transform ok.xsl ok.xml -o out"), 1,
                      "out: cannot create: File exists\n");
    });
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl");
}

TEST_F(OutputFileTest, LeavesAnEarlierFileAsItWasWhenTheTransformFails) {
    writeSheet("<b>part</b><xsl:message terminate='yes'>enough</xsl:message>");
    m_folder.write("out", "earlier");
    for (const char* arguments :
         {"transform sheet.xsl ok.xml -o out", "transform sheet.xsl -o out <ok.xml"}) {
        const auto outcome = tool(arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(file("out"), "earlier");
        EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl out sheet.xsl");
    }
}

TEST_F(OutputFileTest, LeavesAnEarlierFileAsItWasWhenTheDiskIsFull) {
    writeSheet("<b>" + std::string(1'000'000, 'x') + "</b>");
    m_folder.write("out", "earlier");
    for (const char* arguments :
         {"transform sheet.xsl ok.xml -o out", "transform sheet.xsl -o out <ok.xml"}) {
        // A limit of 512 KiB on the size of files stands in for a full disk.
        expectFailure(shell(std::string("ulimit -f 512; vexa-xslt ") + arguments), 1,
                      "out: cannot write: File too large\n");
        EXPECT_EQ(file("out"), "earlier");
        EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl out sheet.xsl");
    }
}

TEST_F(OutputFileTest, LeavesNoFileWhenInterrupted) {
    writeSlowSheet();
    // The source never ends, so that the program can only be interrupted.
    shell("mkfifo pipe; (exec 3>pipe; exec sleep 30) & sleeper=$!; "
          "vexa-xslt transform slow.xsl ok.xml -o out & tool=$!; "
          "for i in $(seq 100); do ls -l /proc/$tool/fd | grep -q '(deleted)' && break; sleep "
          "0.05; done; "
          "kill -TERM $tool; wait $tool; echo $? >status; kill $sleeper");
    EXPECT_EQ(file("status"), "143\n");
    EXPECT_EQ(m_folder.list(), "ok.xml ok.xsl pipe slow.xsl status");
}

TEST_F(OutputFileTest, GivesANewFileThePermissionsThatItWouldHaveHad) {
    shell("umask 027; vexa-xslt transform ok.xsl ok.xml -o out");
    EXPECT_EQ(permissions("out"), 0640U);
    shell("umask 022; vexa-xslt transform ok.xsl ok.xml -o out2");
    EXPECT_EQ(permissions("out2"), 0644U);
}

TEST_F(OutputFileTest, KeepsThePermissionsOfAnExistingFile) {
    m_folder.write("out", "earlier");
    shell("chmod 606 out");
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o out").status, 0);
    EXPECT_EQ(permissions("out"), 0606U);
    EXPECT_EQ(file("out"), "<b>x</b>");
}

TEST_F(OutputFileTest, FollowsASymbolicLink) {
    shell("mkdir far; echo earlier >far/out; ln -s far/out link; ln -s far/new dangling");
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o link").status, 0);
    EXPECT_EQ(file("far/out"), "<b>x</b>");
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o dangling").status, 0);
    EXPECT_EQ(file("far/new"), "<b>x</b>");
    EXPECT_EQ(shell("[ -L link ] && [ -L dangling ]").status, 0);
}

TEST_F(OutputFileTest, WritesDirectlyToWhatIsNoRegularFile) {
    EXPECT_EQ(tool("transform ok.xsl ok.xml -o /dev/null").status, 0);
    EXPECT_EQ(shell("test -c /dev/null").status, 0);
    const auto outcome =
        shell("mkfifo pipe; cat pipe & vexa-xslt transform ok.xsl ok.xml -o pipe; wait");
    EXPECT_EQ(outcome.output, "<b>x</b>");
}

TEST_F(OutputFileTest, WritesDirectlyToAnOpenDescriptor) {
    const std::string run = "vexa-xslt transform ok.xsl ok.xml -o ";
    EXPECT_EQ(shell(run + "/dev/stdout | cat").output, "<b>x</b>");
    EXPECT_EQ(shell(run + "/dev/fd/3 3>&1 | cat").output, "<b>x</b>");
    EXPECT_EQ(shell(run + ">(cat >seen); sleep 0.3; cat seen").output, "<b>x</b>");
    // A file behind the descriptor keeps its place: the shell goes on writing to it.
    // It goes on where others have written, and they behind it.
    for (const char* place : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"}) {
        EXPECT_EQ(shell("{ echo before; " + run + place + "; echo after; } >log; cat log").output,
                  "before\n<b>x</b>after\n");
    }
    EXPECT_EQ(shell("{ " + run + "/dev/stdout; echo after; } >>file; cat file").output.substr(8),
              "after\n");
}

TEST_F(OutputFileTest, LeavesNoFileHoweverTheProcessEnds) {
    writeSlowSheet();
    m_folder.write("messages.xsl",
                   stylesheetWithRootTemplate("<xsl:for-each select='//i'><xsl:message>" +
                                              std::string(1000, 'm') +
                                              "</xsl:message></xsl:for-each><b/>"));
    std::string items = "<a>";
    for (int i = 0; i < 500; ++i) {
        items += "<i/>";
    }
    m_folder.write("items.xml", items + "</a>");
    shell("vexa-xslt transform messages.xsl items.xml -o out 2>&1 | head -1");
    for (const char* signal : {"HUP", "INT", "QUIT", "USR1", "ABRT", "SEGV", "KILL"}) {
        shell("ulimit -c 0; mkfifo pipe; (exec 3>pipe; exec sleep 30) & sleeper=$!; set -m; "
              "vexa-xslt transform slow.xsl ok.xml -o out & tool=$!; "
              "for i in $(seq 100); do ls -l /proc/$tool/fd | grep -q '(deleted)' && break; sleep "
              "0.05; done; "
              "kill -" +
              std::string(signal) + " $tool; wait $tool; kill $sleeper; rm pipe");
    }
    EXPECT_EQ(m_folder.list(), "items.xml messages.xsl ok.xml ok.xsl slow.xsl");
}

TEST_F(OutputFileTest, GoesOnWhereASignalIsIgnoredFromOutside) {
    shell("mkfifo pipe; (sleep 0.5; cat ok.xml >pipe) & "
          "(trap '' HUP; exec vexa-xslt transform ok.xsl -o out <pipe) & tool=$!; sleep 0.2; "
          "kill -HUP $tool; wait $tool; echo $? >status");
    EXPECT_EQ(file("status"), "0\n");
    EXPECT_EQ(file("out"), "<b>x</b>");
}

TEST_F(OutputFileTest, KeepsTheOwnerOfAnExistingFileAsFarAsItMay) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    shell("echo earlier >out; chown 65534:65533 out; vexa-xslt transform ok.xsl ok.xml -o out");
    EXPECT_EQ(shell("stat -c %u:%g out").output, "65534:65533\n");
    // Without the right to give files away, the group is kept if it is one's own.
    shell("echo earlier >own; chown 65534:0 own; setpriv --bounding-set=-chown vexa-xslt transform "
          "ok.xsl ok.xml -o own");
    EXPECT_EQ(shell("stat -c %g own").output, "0\n");
    EXPECT_EQ(file("own"), "<b>x</b>");
}
