#include "base/Errors.h"
#include "cli/Help.h"
#include "cli/UsageMessage.h"
#include "cli/VersionText.h"
#include "commands/BatchCommand.h"
#include "commands/ChainCommand.h"
#include "commands/ProfileCommand.h"
#include "commands/RecordsCommand.h"
#include "commands/TestCommand.h"
#include "commands/TransformCommand.h"
#include "commands/WorkerCommand.h"
#include "commands/XPathCommand.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <exception>
#include <fcntl.h>
#include <functional>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* MORE_HELP =
    R"(Examples:
  # Turn an order book into a page
  vexa-xslt transform report.xsl orders.xml -o report.html

  # The same as a filter, with a parameter for the stylesheet
  generate-orders | vexa-xslt transform report.xsl -p title=May > report.html

  # Keep the open orders only, and turn these into a page
  vexa-xslt chain orders.xml open-only.xsl report.xsl -o open.html

  # Turn every order book into a page, in the folder pages
  vexa-xslt batch report.xsl orders*.xml -d pages --suffix .html

  # Turn a document that is larger than memory into a table, order by order
  vexa-xslt records order-line.xsl orders.xml -e order > orders.csv

  # Answer the requests of another program, a line of JSON each
  generate-requests | vexa-xslt worker report.xsl

  # See where a transform spends its time
  vexa-xslt profile report.xsl orders.xml --html profile.html

  # Test stylesheets
  vexa-xslt test report.tests.xml

  # Ask a document a question
  vexa-xslt xpath 'count(//order)' orders.xml

Exit status:
  0  done
  1  a transform, a query, a test or a file failed
  2  the command line is wrong

'vexa-xslt COMMAND --help' describes a command, 'man vexa-xslt' the rest.)";

/** One line, in the form of every other error, and where to read on. */
int reportWrongUsage(const CLI::App& app, const std::string& cause) {
    const auto commands = app.get_subcommands();
    std::string helper = app.get_name();
    if (!commands.empty()) {
        helper += " " + commands.front()->get_name();
    }
    printError(oneLine(cause) + " (see '" + helper + " --help')");
    return EXIT_USAGE;
}

/**
 * Standard streams that are closed from outside: without this, the next file to be opened would
 * take their place. Each is opened so that using it fails.
 */
void occupyStandardStreams() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) == -1) {
            [[maybe_unused]] const int opened =
                open("/dev/null", descriptor == 0 ? O_WRONLY : O_RDONLY);
        }
    }
}

int printHelp(const CLI::App& app, const CLI::ParseError& request) {
    const bool isVersion = request.get_name() == "CallForVersion";
    std::cout << (isVersion ? request.what() + std::string("\n") : helpText(app));
    if (std::cout.flush()) {
        return EXIT_DONE;
    }
    printError("standard output: " + systemMessage(errno));
    return EXIT_FAILED;
}

/** Only what is asked for gets its options: to define those of all takes time. */
void addCommands(CLI::App& app, int argc, char** argv, std::function<int()>& run) {
    const Command* const commands[] = {&TRANSFORM_COMMAND, &CHAIN_COMMAND,   &XPATH_COMMAND,
                                       &BATCH_COMMAND,     &RECORDS_COMMAND, &WORKER_COMMAND,
                                       &PROFILE_COMMAND,   &TEST_COMMAND};
    const auto isNamed = [&](const Command* command) {
        return std::find(argv, argv + argc, std::string_view(command->name)) != argv + argc;
    };
    const bool isNoneNamed = std::none_of(std::begin(commands), std::end(commands), isNamed);
    for (const Command* command : commands) {
        CLI::App* const definition = app.add_subcommand(command->name, command->description);
        if (isNoneNamed || isNamed(command)) {
            command->define(*definition, run);
        }
    }
}

/**
 * The words of the command line, the last one first. The parser takes a word in square brackets for
 * a list, and "++" for the end of a command: as names of files they are written with their folder.
 */
std::vector<std::string> wordsOf(int argc, char** argv) {
    std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    const bool hasLists = !words.empty() && (words.front() == BATCH_COMMAND.name ||
                                             words.front() == CHAIN_COMMAND.name ||
                                             words.front() == TEST_COMMAND.name);
    for (std::string& word : words) {
        if (word == "++" || (hasLists && word.rfind('[', 0) == 0)) {
            word.insert(0, "./");
        }
    }
    std::reverse(words.begin(), words.end());
    return words;
}

int parseAndRun(CLI::App& app, int argc, char** argv, const std::function<int()>& command) {
    try {
        app.parse(wordsOf(argc, argv));
        return command();
    } catch (const CLI::ParseError& error) {
        const bool isRequest = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
        return isRequest ? printHelp(app, error) : reportWrongUsage(app, usageMessage(app, error));
    } catch (const UsageError& error) {
        return reportWrongUsage(app, error.what());
    } catch (const std::exception& error) {
        printError(oneLine(error.what()));
    }
    return EXIT_FAILED;
}

} // namespace

int main(int argc, char** argv) {
    occupyStandardStreams();
    // A file that grows too large is to be an error like any other.
    std::signal(SIGXFSZ, SIG_IGN);
    std::ios::sync_with_stdio(false);

    CLI::App app("Run XSLT 1.0 stylesheets and XPath expressions over XML documents", "vexa-xslt");
    app.formatter(helpLayout());
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.set_version_flag("--version", versionText, "Print the version and exit");
    app.footer(MORE_HELP);
    app.require_subcommand(1);

    std::function<int()> command;
    addCommands(app, argc, argv, command);
    return parseAndRun(app, argc, argv, command);
}
