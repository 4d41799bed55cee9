#include "BatchTest.h"

#include <regex>

/** What a person at a terminal sees of a batch. */
class BatchProgressTest : public BatchTest {
protected:
    /** What appears on a terminal. */
    std::string onTerminal(const std::string& arguments,
                           const std::string& setting = "TERM=xterm") {
        m_folder.write("command", "stty cols 60; vexa-xslt batch " + arguments);
        return shell(setting + " script -qec 'bash command' /dev/null").output;
    }
};

TEST_F(BatchProgressTest, ShowsHowFarItIsAndClearsUp) {
    writeSources(300);
    shell("mkfifo late.xml");
    // It does not appear before a second is over.
    const std::string text = onTerminal(
        "ok.xsl sources/* late.xml -d out & (exec 3>late.xml; sleep 1.5; echo '<a>' >&3); wait");
    const std::regex line("\r\033\\[K(\\[=*>? *\\] [0-9]+ of 301[^\r]*)");
    std::smatch match;
    ASSERT_TRUE(std::regex_search(text, match, line)) << text;
    EXPECT_LT(match[1].length(), 60);
    EXPECT_NE(text.find("\r\033[K\033[1;31mvexa-xslt:\033[0m late.xml:2:1: "), std::string::npos)
        << text;
    EXPECT_NE(text.find("300 of 301 sources done, 1 failed"), std::string::npos);
    EXPECT_EQ(std::regex_replace(text, line, "").find("\033[K["), std::string::npos);
}

TEST_F(BatchProgressTest, ShowsLongTimesInHours) {
    // One in about a second, while the next makes it wait.
    shell("mkfifo first.xml second.xml; "
          "(echo first.xml; echo second.xml; seq -f 'none%.0f.xml' 30000) >list");
    const std::string text =
        onTerminal("ok.xsl --files-from list -d out -j 1 & (sleep 0.3; echo '<a/>') >first.xml; "
                   "sleep 2.5; kill -TERM $!; wait");
    EXPECT_TRUE(std::regex_search(
        text, std::regex(" 1 of 30002, [0-9.]+/s, [0-9]+:[0-5][0-9]:[0-5][0-9] left")))
        << text;
}

TEST_F(BatchProgressTest, ShowsNothingWhereNobodyWouldSeeIt) {
    writeSources(20);
    EXPECT_EQ(tool("batch ok.xsl sources/* -d out").error, "vexa-xslt: 20 of 20 sources done\n");
    EXPECT_EQ(onTerminal("ok.xsl sources/* -d out"), "vexa-xslt: 20 of 20 sources done\r\n")
        << "too short for a progress bar";
    EXPECT_EQ(onTerminal("ok.xsl sources/* -d out", "TERM=dumb"),
              "vexa-xslt: 20 of 20 sources done\r\n");
    EXPECT_EQ(onTerminal("ok.xsl sources/* -d out --quiet"), "");
    EXPECT_EQ(onTerminal("ok.xsl sources/* -d out 2>errors"), "");
}

TEST_F(BatchProgressTest, StaysWithinANarrowTerminal) {
    writeSources(50);
    shell("mkfifo late.xml");
    m_folder.write("command", "stty cols 12; vexa-xslt batch ok.xsl sources/* late.xml -d out & "
                              "(exec 3>late.xml; sleep 1.5; echo '<a/>' >&3); wait");
    const std::string text = shell("TERM=xterm script -qec 'bash command' /dev/null").output;
    const std::regex line("\033\\[K([^\r\n\033]*)\r\033");
    for (std::sregex_iterator match(text.begin(), text.end(), line), end; match != end; ++match) {
        EXPECT_LT((*match)[1].length(), 12) << (*match)[1];
    }
    EXPECT_NE(text.find("51 of 51 sources done"), std::string::npos);
}
