#include "cli/RunOptions.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <thread>

namespace {

constexpr const char* LIMITS = "Limits for each source";

/** Without a description, which would show in the help. */
CLI::Validator integerUpTo(unsigned largest) {
    return CLI::Validator(
        [largest](const std::string& text) {
            const bool isNumber = !text.empty() && text.size() <= std::to_string(largest).size() &&
                                  text.find_first_not_of("0123456789") == std::string::npos;
            const unsigned long number = isNumber ? std::stoul(text) : 0;
            return number >= 1 && number <= largest
                       ? std::string()
                       : "expected an integer from 1 to " + std::to_string(largest) + ", got '" +
                             text + "'";
        },
        "");
}

void addParameters(CLI::App& command, RunOptions& options, const std::string& names,
                   Parameter::Kind kind, const std::string& form, const std::string& description) {
    const std::string first = names.substr(0, names.find(','));
    command
        .add_option_function<std::vector<std::string>>(
            names,
            [&options, kind, first](const std::vector<std::string>& arguments) {
                for (const std::string& argument : arguments) {
                    options.parameters.push_back(parseParameter(first, kind, argument));
                }
            },
            description)
        ->type_name(form)
        ->allow_extra_args(false);
}

} // namespace

void addSourceArgument(CLI::App& command, std::string& source) {
    command.add_option("SOURCE", source, "The document; standard input if it is - or left out")
        ->type_name("");
}

void addOutputOption(CLI::App& command, std::string& output) {
    command
        .add_option("-o,--output", output,
                    "Write the result to this file; to standard output if it is - or left out")
        ->type_name("OUTPUT");
}

void addParameterOptions(CLI::App& command, RunOptions& options) {
    addParameters(command, options, "-p,--param", Parameter::Kind::String, "NAME=VALUE",
                  "Set a stylesheet parameter to a string, any text; once for each parameter");
    addParameters(command, options, "--number", Parameter::Kind::Number, "NAME=VALUE",
                  "Set a parameter to a number");
    addParameters(command, options, "--expression", Parameter::Kind::Expression, "NAME=XPATH",
                  "Set a parameter to what an expression gives over the source");
}

void addJobsOption(CLI::App& command, unsigned& jobs, const std::string& description) {
    constexpr unsigned MOST_JOBS = 256;
    jobs = std::clamp(std::thread::hardware_concurrency(), 1U, MOST_JOBS);
    addNumberOption(command, "-j,--jobs", jobs, MOST_JOBS, "JOBS", description);
}

void addDocumentsOption(CLI::App& command, RunOptions& options) {
    command
        .add_option("--documents", options.documents,
                    "Let further results (exsl:document) be written below this folder, and not "
                    "below that of the result")
        ->type_name("DIRECTORY");
}

void addRunOptions(CLI::App& command, RunOptions& options) {
    constexpr const char* ACCESS = "What documents and stylesheets may reach";
    constexpr const char* MESSAGES = "Messages, on standard error";
    constexpr unsigned MOST = 1'000'000;
    command
        .add_flag("--network", options.network, "Fetch over the network what is asked for there")
        ->group(ACCESS);
    command
        .add_flag("--no-entities", options.noEntities,
                  "Read no DTD and no entity from outside of a document")
        ->group(ACCESS);
    command
        .add_flag("--no-catalogs", options.noCatalogs,
                  "Ask no XML catalogs (XML_CATALOG_FILES, /etc/xml/catalog) for other addresses")
        ->group(ACCESS);
    command
        .add_flag("--sandbox", options.sandbox,
                  "Reach no files but the output and those in the folders of the stylesheets, of "
                  "the sources and of the system's catalogs; needs Landlock in the kernel")
        ->group(ACCESS);
    addNumberOption(command, "--max-memory", options.limits.maxMemory, MOST, "MIB",
                    "Fail where more memory is needed, in MiB")
        .group(LIMITS);
    addNumberOption(command, "--max-seconds", options.limits.maxSeconds, MOST, "N",
                    "Fail where it takes longer")
        .group(LIMITS);
    addNumberOption(command, "--max-output", options.limits.maxOutput, MOST, "MIB",
                    "Fail where the result is larger, in MiB")
        .group(LIMITS);
    addNumberOption(command, "--max-depth", options.limits.maxDepth, MOST, "N",
                    "Fail where templates or elements are nested deeper (100000)")
        .group(LIMITS);
    command
        .add_flag("--excerpt", options.excerpt,
                  "Show the line that an error is about, as on a terminal")
        ->group(MESSAGES);
    command.add_flag("--timing", options.timing, "Report where the time went")->group(MESSAGES);
    command
        .add_flag("--quiet", options.quiet, "Report errors only: no messages, progress or timing")
        ->group(MESSAGES);
}

void addIsolateOption(CLI::App& command, RunOptions& options) {
    command
        .add_flag("--isolate", options.isolate,
                  "Work in a process of its own, so that even a crash is an error like any other; "
                  "so it is with a limit or --sandbox, too")
        ->group(LIMITS);
}

CLI::Option& addNumberOption(CLI::App& command, const std::string& name, unsigned& number,
                             unsigned largest, const std::string& unit,
                             const std::string& description) {
    return *command.add_option(name, number, description)
                ->check(integerUpTo(largest))
                ->type_name(unit);
}
