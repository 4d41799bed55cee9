#include "OtherKernel.h"
#include "ToolTest.h"
#include "support/MemoryChecker.h"

#include <cerrno>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool hasLandlock() {
    return syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) > 0;
}

} // namespace

/** With --sandbox, only what the command line names is read and written. */
class SandboxTest : public ToolTest {
protected:
    void SetUp() override {
        if (!hasLandlock()) {
            GTEST_SKIP() << "this kernel offers no Landlock";
        }
        if (isUnderAMemoryChecker()) {
            GTEST_SKIP() << "a leak checker reads the system's files when the process ends";
        }
        shell("mkdir sheets sheets/more sources results secrets; cp ok.xsl sheets; "
              "cp ok.xml sources; echo secret >secrets/text");
        m_folder.write("secrets/secret.xml", "<s>secret</s>");
    }

    /** Runs in the sandbox a stylesheet with this root template. */
    Outcome transform(const std::string& content) {
        m_folder.write("sheets/sheet.xsl", stylesheetWithRootTemplate(content));
        return tool("transform sheets/sheet.xsl sources/ok.xml --sandbox");
    }
};

TEST_F(SandboxTest, WorksAsWithoutIt) {
    m_folder.write("results/earlier", "earlier");
    for (const char* arguments :
         {"transform sheets/ok.xsl sources/ok.xml", "chain sources/ok.xml sheets/ok.xsl",
          "transform sheets/ok.xsl <sources/ok.xml", "xpath '/a' sources/ok.xml",
          "transform sheets/ok.xsl file://$PWD/sources/ok.xml",
          "transform sheets/ok.xsl sources/ok.xml -o /dev/stdout",
          "transform sheets/ok.xsl sources/ok.xml -o /dev/stdout | cat",
          "transform sheets/ok.xsl sources/ok.xml -o results/new; cat results/new",
          "transform sheets/ok.xsl sources/ok.xml -o results/earlier; cat results/earlier",
          "transform sheets/ok.xsl sources/ok.xml -o /dev/null"}) {
        const std::string command = arguments;
        const auto outcome = tool(command.substr(0, command.find(' ')) + " --sandbox" +
                                  command.substr(command.find(' ')));
        EXPECT_EQ(outcome.status, 0) << command;
        EXPECT_EQ(outcome.error, "") << command;
        EXPECT_EQ(outcome.output, tool(command).output) << command;
    }
    EXPECT_EQ(shell("ls -A results").output, "earlier\nnew\n");
}

TEST_F(SandboxTest, ReadsTheFoldersOfStylesheetAndSource) {
    m_folder.write("sheets/more/part.xsl",
                   stylesheet("<xsl:template match='/'><b><xsl:value-of "
                              "select=\"document('data.xml')\"/> <xsl:value-of "
                              "select=\"document('beside.xml', /)\"/></b></xsl:template>"));
    m_folder.write("sheets/more/data.xml", "<d>1</d>");
    m_folder.write("sources/beside.xml", "<d>2</d>");
    m_folder.write("sheets/main.xsl", stylesheet("<xsl:include href='more/part.xsl'/>"));
    const auto outcome = tool("transform sheets/main.xsl sources/ok.xml --sandbox");
    EXPECT_NE(outcome.output.find("<b>12</b>"), std::string::npos) << outcome.error;
}

TEST_F(SandboxTest, RefusesToReadAFileThroughAnEntity) {
    m_folder.write("sources/entity.xml",
                   "<!DOCTYPE a [<!ENTITY e SYSTEM '../secrets/text'>]><a>&e;</a>");
    EXPECT_EQ(tool("transform sheets/ok.xsl sources/entity.xml").output, "<b>secret\n</b>");
    for (const char* command :
         {"transform sheets/ok.xsl sources/entity.xml", "chain sources/entity.xml sheets/ok.xsl",
          "xpath / sources/entity.xml"}) {
        expectFailure(tool(std::string(command) + " --sandbox"), 1,
                      "sources/entity.xml:1:", "file access denied: file://");
    }
}

TEST_F(SandboxTest, RefusesToReadTheSystemsFiles) {
    m_folder.write("sources/entity.xml",
                   "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><a>&e;</a>");
    expectFailure(tool("transform sheets/ok.xsl sources/entity.xml --sandbox"), 1,
                  "sources/entity.xml:1:", "file access denied: file:///etc/passwd\n");
}

TEST_F(SandboxTest, GivesAStylesheetNoDocumentFromElsewhere) {
    const std::string content =
        "<b><xsl:value-of select=\"document('../secrets/secret.xml')\"/></b>";
    expectFailure(transform(content), 1, "sheets/sheet.xsl:1:", "file access denied: file://");
    EXPECT_EQ(tool("transform sheets/sheet.xsl sources/ok.xml").output, "<b>secret</b>");
    shell("ln -s ../secrets/secret.xml sheets/link.xml");
    expectFailure(transform("<b><xsl:value-of select=\"document('link.xml')\"/></b>"), 1,
                  "sheets/sheet.xsl:1:", "file access denied: file://");
}

TEST_F(SandboxTest, ReadsANamedFileThatIsALink) {
    shell("mkdir links; ln -s ../secrets/secret.xml links/source.xml");
    EXPECT_EQ(tool("xpath 'string(/)' links/source.xml --sandbox").output, "secret\n");
}

TEST_F(SandboxTest, UsesNoNetwork) {
    expectFailure(tool("transform sheets/ok.xsl http://127.0.0.1:9/a.xml --sandbox"), 1,
                  "http://127.0.0.1:9/a.xml: network access denied: http://127.0.0.1:9/a.xml\n");
}

TEST_F(SandboxTest, KnowsTheTimeZone) {
    if (access("/usr/share/zoneinfo/Asia/Tokyo", R_OK) != 0) {
        GTEST_SKIP() << "this system has no time zones";
    }
    m_folder.write("sheets/now.xsl",
                   stylesheetWithRootTemplate("<xsl:value-of select='vexa:GetDateTime()'/>"));
    const auto outcome = shell("export TZ=Asia/Tokyo; date +%H; "
                               "vexa-xslt transform sheets/now.xsl sources/ok.xml --sandbox "
                               "| cut -c 1-2; date +%H");
    const std::string before = outcome.output.substr(0, 3);
    const std::string told = outcome.output.substr(3, 3);
    const std::string after = outcome.output.substr(6);
    EXPECT_TRUE(told == before || told == after) << outcome.output;
}

TEST_F(SandboxTest, ReportsAPlaceThatCannotBeWritten) {
    expectFailure(tool("transform sheets/ok.xsl sources/ok.xml --sandbox -o none/out"), 1,
                  "none/out: cannot create: No such file or directory\n");
}

TEST_F(SandboxTest, KeepsToTheFilesOnEarlierKernels) {
    m_folder.write("sources/entity.xml",
                   "<!DOCTYPE a [<!ENTITY e SYSTEM '../secrets/text'>]><a>&e;</a>");
    // Each version had fewer rights to give and to take than the next.
    for (const int version : {1, 2, 3}) {
        SCOPED_TRACE(version);
        m_folder.write("results/out", "earlier");
        withAnsweredCall(
            {SYS_landlock_create_ruleset, 2, ~0U, LANDLOCK_CREATE_RULESET_VERSION}, version, [&] {
                const std::string sandboxed = "transform sheets/ok.xsl --sandbox -o results/out ";
                expectFailure(tool(sandboxed + "sources/entity.xml"), 1,
                              "sources/entity.xml:1:", "file access denied: file://");
                EXPECT_EQ(file("results/out"), "earlier");
                EXPECT_EQ(tool(sandboxed + "sources/ok.xml").error, "");
                EXPECT_EQ(file("results/out"), "<b>x</b>");
            });
    }
}

TEST_F(SandboxTest, NeverGoesOnOutsideOfIt) {
    const auto expectRefused = [&](const SystemCall& call, const std::string& reason) {
        withAnsweredCall(call, -ENOMEM, [&] {
            expectFailure(tool("transform sheets/ok.xsl sources/ok.xml --sandbox"), 1,
                          "--sandbox: " + reason + ": Cannot allocate memory\n");
        });
    };
    expectRefused({SYS_landlock_create_ruleset, 2, ~0U, 0}, "cannot create a sandbox");
    expectRefused({SYS_landlock_add_rule}, "sheets/ok.xsl");
    expectRefused({SYS_prctl, 0, ~0U, PR_SET_NO_NEW_PRIVS}, "cannot enter the sandbox");
    expectRefused({SYS_landlock_restrict_self}, "cannot enter the sandbox");
}

using SandboxWithoutLandlockTest = ToolTest;

TEST_F(SandboxWithoutLandlockTest, Fails) {
    withAnsweredCall({SYS_landlock_create_ruleset}, -ENOSYS, [&] {
        expectFailure(tool("xpath / ok.xml --sandbox"), 1,
                      "--sandbox: the kernel has no Landlock: "
                      "Function not implemented\n");
    });
}
