#include "batch/BatchCommand.h"

#include "ChainCommand.h"
#include "Failure.h"
#include "Help.h"
#include "TransformCommand.h"
#include "UsageReason.h"
#include "VersionText.h"
#include "XPathCommand.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <functional>
#include <iostream>
#include <string>

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

  # Ask a document a question
  vexa-xslt xpath 'count(//order)' orders.xml

Exit status:
  0  done
  1  a transform, a query or a file failed
  2  the command line is wrong

'vexa-xslt COMMAND --help' tells all about a command, 'man vexa-xslt' the rest.)";

/** One line, in the form of every other error, and where to read on. */
int tellWrongUsage(const CLI::App& app, const std::string& reason) {
    const auto commands = app.get_subcommands();
    std::string helper = app.get_name();
    if (!commands.empty()) {
        helper += " " + commands.front()->get_name();
    }
    tellFailure(foldLines(reason) + " (see '" + helper + " --help')");
    return EXIT_USAGE;
}

/**
 * Standard streams that are closed from outside: without this, the next file to be opened would
 * take their place. Each is opened so that using it fails.
 */
void holdStandardStreams() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) == -1) {
            [[maybe_unused]] const int opened =
                open("/dev/null", descriptor == 0 ? O_WRONLY : O_RDONLY);
        }
    }
}

int runCommand(const CLI::App& app, const std::function<void()>& command) {
    try {
        command();
        return EXIT_DONE;
    } catch (const WrongUsage& wrong) {
        return tellWrongUsage(app, wrong.what());
    } catch (const std::exception& failure) {
        tellFailure(failure.what());
    } catch (...) {
        tellFailure("the engine gave up without a reason");
    }
    return EXIT_FAILED;
}

int printHelp(const CLI::App& app, const CLI::ParseError& request) {
    const bool isVersion = request.get_name() == "CallForVersion";
    std::cout << (isVersion ? request.what() + std::string("\n") : helpText(app));
    if (std::cout.flush()) {
        return EXIT_DONE;
    }
    tellFailure("standard output: " + systemReason(errno));
    return EXIT_FAILED;
}

} // namespace

int main(int argc, char** argv) {
    holdStandardStreams();
    std::ios::sync_with_stdio(false);

    CLI::App app("Run XSLT 1.0 stylesheets and XPath expressions over XML documents", "vexa-xslt");
    app.formatter(helpLayout());
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.set_version_flag("--version", versionText, "Print the version and exit");
    app.footer(MORE_HELP);
    app.require_subcommand(1);

    std::function<void()> command;
    addTransformCommand(app, command);
    addChainCommand(app, command);
    addXPathCommand(app, command);
    addBatchCommand(app, command);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool asked = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
        return asked ? printHelp(app, error) : tellWrongUsage(app, usageReason(app, error));
    }
    return runCommand(app, command);
}
