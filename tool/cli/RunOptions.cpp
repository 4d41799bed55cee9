#include "CommonOptions.h"

#include "Failure.h"

#include <CLI/CLI.hpp>

#include <string>

#include <xercesc/util/XMLChar.hpp>

namespace {

/** A name without a prefix: for a prefix there is no place to declare it. */
bool isName(const I18NString& text) {
    const auto* const utf16 = static_cast<const char16_t*>(text.getExternalBuffer());
    return xercesc::XMLChar1_0::isValidNCName(utf16, std::char_traits<char16_t>::length(utf16));
}

constexpr const char* LIMITS = "Against hostile input";

/** Without a description, which would show in the help. */
CLI::Validator wholeNumberUpTo(unsigned largest) {
    return CLI::Validator(
        [largest](const std::string& text) {
            const bool isNumber = !text.empty() && text.size() <= std::to_string(largest).size() &&
                                  text.find_first_not_of("0123456789") == std::string::npos;
            const unsigned long number = isNumber ? std::stoul(text) : 0;
            return number >= 1 && number <= largest
                       ? std::string()
                       : text + " is no whole number from 1 to " + std::to_string(largest);
        },
        "");
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

void addParameterOption(CLI::App& command, CommonOptions& options) {
    command
        .add_option(
            "-p,--param", options.parameters,
            "Set the stylesheet parameter NAME to the string VALUE; once for each parameter")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
}

void addEngineOptions(CLI::App& command, CommonOptions& options) {
    constexpr const char* MESSAGES = "Messages, on standard error";
    command.add_flag("--xerces-dom", options.useXercesDom,
                     "Parse the source into the XML parser's own tree, which takes more memory");
    command.add_flag("--timing", options.timing, "Tell where the time went")->group(MESSAGES);
    command
        .add_flag("--quiet", options.quiet,
                  "Tell of errors only: no texts of xsl:message, no timing")
        ->group(MESSAGES);
}

void addLimitOptions(CLI::App& command, Limits& limits) {
    constexpr unsigned MOST_MEBIBYTES = 1'000'000;
    constexpr unsigned MOST_SECONDS = 1'000'000;
    addNumberOption(command, "--max-memory", limits.maxMemory, MOST_MEBIBYTES, "MIB",
                    "Fail where more memory would be needed: address space, in MiB")
        .group(LIMITS);
    addNumberOption(command, "--max-seconds", limits.maxSeconds, MOST_SECONDS, "N",
                    "Fail where it would take longer")
        .group(LIMITS);
    command.add_flag("--no-network", limits.noNetwork, "Fetch nothing over the network")
        ->group(LIMITS);
    command
        .add_flag("--sandbox", limits.sandbox,
                  "Reach no files but the output and those in the folders of the stylesheets and "
                  "of the sources, and no network; needs Landlock in the kernel")
        ->group(LIMITS);
}

CLI::Option& addNumberOption(CLI::App& command, const std::string& name, unsigned& number,
                             unsigned largest, const std::string& unit,
                             const std::string& description) {
    return *command.add_option(name, number, description)
                ->check(wholeNumberUpTo(largest))
                ->type_name(unit);
}

Parameters parseParameters(const std::vector<std::string>& arguments) {
    Parameters parameters;
    for (const std::string& argument : arguments) {
        const auto equals = argument.find('=');
        if (equals == std::string::npos || equals == 0) {
            throw WrongUsage("-p " + argument,
                             "a parameter has the form NAME=VALUE, such as title=Orders");
        }
        const I18NString name = toText(argument.substr(0, equals));
        if (!isName(name)) {
            throw WrongUsage("-p " + argument,
                             "a parameter's name is a plain XML name, such as title");
        }
        const std::string value = argument.substr(equals + 1);
        if (value.find('\'') != std::string::npos) {
            throw WrongUsage("-p " + argument,
                             "a value with an apostrophe cannot be passed to a stylesheet");
        }
        parameters.emplace_back(name, toText(value));
    }
    return parameters;
}

I18NString toText(const std::string& argument) {
    I18NString text(argument.c_str());
    if (text.c_str() != argument) {
        throw WrongUsage(argument, std::string("this is not valid ") +
                                       I18NGetPlatformDefaultEncoding() + " text");
    }
    return text;
}
