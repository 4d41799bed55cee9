#include "ChainCommand.h"
#include "Failure.h"
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

constexpr const char* EXAMPLES = R"(Examples:
  vexa-xslt transform report.xsl orders.xml -o report.html
  vexa-xslt transform report.xsl orders.xml -p currency=EUR > report.html
  vexa-xslt chain orders.xml open-only.xsl report.xsl -o report.html
  vexa-xslt xpath 'count(//order)' orders.xml

Exit status: 0 done; 1 a transform, query or file failed; 2 wrong usage.
'vexa-xslt COMMAND --help' tells more about a command.)";

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
    app.exit(request);
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

    CLI::App app("Runs XSLT 1.0 stylesheets and XPath expressions over XML documents.",
                 "vexa-xslt");
    app.set_version_flag("--version", versionText, "Print the version and exit");
    app.footer(EXAMPLES);
    app.require_subcommand(1);

    std::function<void()> command;
    addTransformCommand(app, command);
    addChainCommand(app, command);
    addXPathCommand(app, command);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool asked = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
        return asked ? printHelp(app, error) : tellWrongUsage(app, usageReason(app, error));
    }
    return runCommand(app, command);
}
