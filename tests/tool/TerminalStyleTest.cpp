#include "ToolTest.h"

/** Colour and bold letters: on a terminal, and nowhere else. */
class TerminalStyleTest : public ToolTest {
protected:
    /** What a terminal shows of a shell command. */
    std::string shown(const std::string& command) {
        m_folder.write("command", command + "\n");
        return shell("unset NO_COLOR; TERM=xterm script -qec 'bash command' /dev/null").output;
    }

    static bool isStyled(const std::string& text) { return text.find('\033') != std::string::npos; }
};

TEST_F(TerminalStyleTest, ShowsTheBeginningOfAnErrorInBoldRed) {
    const std::string begin = "\033[1;31mvexa-xslt:\033[0m ";
    EXPECT_EQ(shown("vexa-xslt xpath 1 none.xml"),
              begin + "none.xml: cannot open: No such file or directory\r\n");
    EXPECT_EQ(shown("vexa-xslt nonsense").rfind(begin + "unknown command 'nonsense'", 0), 0U);
    EXPECT_EQ(shown("vexa-xslt xpath 1 none.xml | cat").rfind(begin, 0), 0U)
        << "standard error is a terminal still";
}

TEST_F(TerminalStyleTest, ShowsTheHeadingsOfTheHelpInBold) {
    const std::string help = shown("vexa-xslt transform --help");
    for (const char* heading : {"Usage:", "Arguments:", "Options:", "Examples:"}) {
        EXPECT_NE(help.find("\033[1m" + std::string(heading) + "\033[0m"), std::string::npos)
            << help;
    }
    EXPECT_TRUE(isStyled(shown("vexa-xslt --help 2>/dev/null")));
}

TEST_F(TerminalStyleTest, LeavesAResultAlone) {
    EXPECT_EQ(shown("vexa-xslt transform ok.xsl ok.xml"), "<b>x</b>");
    EXPECT_FALSE(isStyled(shown("vexa-xslt transform ok.xsl ok.xml --timing")));
    EXPECT_FALSE(isStyled(shown("vexa-xslt --version")));
}

TEST_F(TerminalStyleTest, LooksAtTheVeryStream) {
    EXPECT_FALSE(isStyled(shown("vexa-xslt --help | cat")));
    EXPECT_FALSE(isStyled(shown("vexa-xslt nonsense 2>error; cat error")));
    EXPECT_FALSE(isStyled(tool("--help").output));
    EXPECT_FALSE(isStyled(tool("nonsense").error));
}

TEST_F(TerminalStyleTest, ObeysTheUserAndTheTerminal) {
    for (const char* setting :
         {"NO_COLOR=1", "NO_COLOR=", "TERM=dumb", "-u TERM", "NO_COLOR=0 TERM=xterm"}) {
        for (const char* arguments : {"--help", "nonsense"}) {
            const std::string text =
                shown("env " + std::string(setting) + " vexa-xslt " + arguments);
            EXPECT_NE(text.find("vexa-xslt"), std::string::npos);
            EXPECT_FALSE(isStyled(text)) << setting;
        }
    }
}
