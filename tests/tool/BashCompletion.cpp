#include "BashCompletion.h"

#include <sstream>

BashCompletionTest::Lines BashCompletionTest::completed(const Lines& lines,
                                                        const std::string& setup) {
    const TemporaryFolder streams;
    // The shell runs the completed line: what a function then gets is what a program would get.
    streams.write("rc", "unset HISTFILE\n" + setup +
                            "\n. '" BASH_COMPLETION "'\n"
                            "vexa-xslt() { printf '<%s>' \"$@\"; echo; } >>'" +
                            streams.path("arguments") +
                            "'\n"
                            "bind '\"\\t\": insert-completions'\n");
    std::string typed;
    for (const std::string& line : lines) {
        typed += line + "\t\n";
    }
    streams.write("typed", typed + "exit\n");
    const auto outcome =
        shell("INPUTRC=/dev/null TERM=xterm timeout 60 script -qec \"bash --rcfile '" +
              streams.path("rc") + "' -i\" /dev/null <'" + streams.path("typed") + "'");
    EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;

    Lines arguments;
    std::istringstream results(readFile(streams.path("arguments")));
    for (std::string result; std::getline(results, result);) {
        arguments.push_back(result);
    }
    EXPECT_EQ(arguments.size(), lines.size()) << outcome.output;
    arguments.resize(lines.size());
    return arguments;
}

void BashCompletionTest::expectCompleted(
    const std::vector<std::pair<std::string, std::string>>& lines) {
    Lines typed;
    for (const auto& line : lines) {
        typed.push_back(line.first);
    }
    for (const char* setup :
         {"unset -f _init_completion", ". /usr/share/bash-completion/bash_completion || exit"}) {
        const Lines arguments = completed(typed, setup);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(arguments[i], lines[i].second) << lines[i].first << "\n" << setup;
        }
    }
}
