#include "BashCompletion.h"
#include "support/MemoryChecker.h"

#include <algorithm>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

namespace {

using Names = std::set<std::string>;

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/** All matches of a pattern's first group. */
std::vector<std::string> matches(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern, std::regex::ECMAScript | std::regex::multiline);
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
        found.push_back((*match)[1]);
    }
    return found;
}

Names namesIn(const std::string& text, const std::string& pattern) {
    const auto found = matches(text, pattern);
    return {found.begin(), found.end()};
}

/** What stands between two texts, or up to the end. */
std::string between(const std::string& text, const std::string& begin, const std::string& end) {
    const auto from = text.find(begin);
    EXPECT_NE(from, std::string::npos) << begin;
    const std::string rest = from == std::string::npos ? "" : text.substr(from + begin.size());
    return rest.substr(0, rest.find(end));
}

} // namespace

/** What the help says, and that the man page and the completion say the same. */
class HelpTest : public BashCompletionTest {
protected:
    HelpTest()
        : m_strManPage(
              replaced(replaced(replaced(replaced(readFile(MAN_PAGE), "\\-", "-"), "\\(aq", "'"),
                                "\\(dq", "\""),
                       "\\e", "\\")) {}

    std::string help(const std::string& command) {
        const auto outcome = tool(command + " --help");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.error, "");
        return outcome.output;
    }

    Names commands() { return namesIn(between(help(""), "Commands:\n", "\n\n"), "^  ([a-z]+)  "); }

    /** Every name that an option has. */
    Names optionNames(const std::string& command) {
        const std::string text = help(command);
        Names names = namesIn(text, "^  +(-[a-z0-9]), --");
        names.merge(namesIn(text, "^  +(?:-[a-z0-9], )?(--[a-z-]+)"));
        return names;
    }

    /** The first name of each option. */
    Names firstNames(const std::string& command) {
        return namesIn(help(command), "^  +(-[a-z0-9](?=, --)|--[a-z-]+)");
    }

    Names proposed(const std::string& line) {
        return namesIn(completed({"vexa-xslt " + line}).front(), "<([^<>]+)>");
    }

    /** A section of the man page. */
    std::string section(const std::string& title) {
        return between(m_strManPage, ".SH " + title + "\n", "\n.SH ");
    }

    std::string m_strManPage;
};

TEST_F(HelpTest, FitsATerminalAndShowsExamples) {
    Names all = commands();
    ASSERT_GE(all.size(), 3U);
    all.insert("");
    for (const std::string& command : all) {
        const std::string text = help(command);
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 80U) << line;
            EXPECT_TRUE(line.empty() || line.back() != ' ') << line;
        }
        EXPECT_NE(between(text, "\nExamples:\n", "\n\nExit").find("vexa-xslt " + command),
                  std::string::npos);
    }
}

TEST_F(HelpTest, TellsWhatIsRequired) {
    EXPECT_NE(help("transform").find("vexa-xslt transform STYLESHEET [SOURCE] [OPTIONS]\n"),
              std::string::npos);
    EXPECT_NE(help("chain").find("vexa-xslt chain SOURCE STYLESHEET... [OPTIONS]\n"),
              std::string::npos);
    EXPECT_NE(help("xpath").find("vexa-xslt xpath EXPRESSION [SOURCE] [OPTIONS]\n"),
              std::string::npos);
}

TEST_F(HelpTest, ShowsExamplesThatRun) {
    shell("cp '" + projectFile("samples") + "'/* .");
    std::string pages = help("");
    for (const std::string& command : commands()) {
        pages += help(command);
    }
    auto examples = matches(pages, "^  ((?:[a-z-]+ .*\\|\\n? +)?vexa-xslt (?:.*\\\\\n)?.*)$");
    EXPECT_GE(examples.size(), 10U);
    for (const std::string& example : matches(m_strManPage, "\\.EX\n([^]*?)\n\\.EE")) {
        examples.push_back(example);
    }
    for (const std::string& example : examples) {
        const bool isInSandbox = example.find("--sandbox") != std::string::npos;
        if (isInSandbox && isUnderAMemoryChecker()) {
            continue; // a leak checker reads the system's files when the process ends
        }
        const auto outcome = shell("generate-orders() { cat orders.xml; }; generate-requests() { "
                                   "echo '{\"file\": \"orders.xml\"}'; }; curl() { cat "
                                   "orders.xml; }; zcat() { cat orders.xml; }; set -o pipefail; " +
                                   example);
        EXPECT_EQ(outcome.status, 0) << example;
        const bool isBatch = example.find("vexa-xslt batch") != std::string::npos;
        if (example.find("vexa-xslt profile") != std::string::npos) {
            EXPECT_EQ(outcome.error.rfind("    calls ", 0), 0U) << example << outcome.error;
            continue;
        }
        EXPECT_TRUE(std::regex_match(
            outcome.error,
            std::regex(isBatch ? "vexa-xslt: ([0-9]+) of \\1 sources done\n|vexa-xslt: 0 of "
                                 "([0-9]+) sources? done, \\2 unchanged\n"
                               : "")))
            << example << outcome.error;
    }
}

TEST_F(HelpTest, NamesTheCommandsThatTheManPageAndTheCompletionName) {
    const Names names = commands();
    EXPECT_EQ(namesIn(section("COMMANDS"), "^\\.SS ([a-z]+)"), names);
    EXPECT_EQ(namesIn(section("SYNOPSIS"), "^\\.B vexa-xslt ([a-z]+)"), names);
    EXPECT_EQ(proposed(""), names);
}

TEST_F(HelpTest, NamesTheOptionsThatTheCompletionProposes) {
    EXPECT_EQ(proposed("-"), optionNames(""));
    for (const std::string& command : commands()) {
        Names names = proposed(command + " -");
        names.erase(command);
        EXPECT_EQ(names, optionNames(command));
    }
}

TEST_F(HelpTest, NamesTheOptionsThatTheManPageTellsOf) {
    Names all = optionNames("");
    for (const std::string& command : commands()) {
        all.merge(optionNames(command));
        const std::string synopsis =
            between(section("SYNOPSIS"), ".B vexa-xslt " + command + "\n", ".PP");
        Names names = firstNames(command);
        names.erase("-h");
        EXPECT_EQ(namesIn(synopsis, "(--?[a-z0-9][a-z-]*)"), names) << command;
    }
    std::string tags;
    for (const std::string& tag : matches(section("OPTIONS"), "^\\.TP\n(.*)$")) {
        tags += tag + "\n";
    }
    EXPECT_EQ(namesIn(tags, "(--?[a-z0-9][a-z-]*)"), all);
}

TEST_F(HelpTest, HasAManPageWithoutFaults) {
    const auto linted = shell("mandoc -Tlint -Wwarning '" MAN_PAGE "'");
    EXPECT_EQ(linted.status, 0);
    EXPECT_EQ(linted.output + linted.error, "");
    const auto rendered = shell("LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l '" MAN_PAGE "'");
    EXPECT_EQ(rendered.status, 0);
    EXPECT_EQ(rendered.error, "");
    EXPECT_NE(rendered.output.find("XPath expressions"), std::string::npos);
    const std::string version = PROJECT_VERSION_TEXT;
    EXPECT_NE(m_strManPage.find("\"vexa-xslt " + version.substr(0, version.rfind('.')) + "\""),
              std::string::npos);
}
