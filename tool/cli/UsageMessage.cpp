#include "cli/UsageMessage.h"

#include "base/Suggestion.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <vector>

namespace {

using Words = std::vector<std::string>;

bool isOption(const std::string& argument) {
    return argument.size() > 1 && argument[0] == '-';
}

Words commandNames(const CLI::App& app) {
    Words names;
    for (const CLI::App* command : app.get_subcommands({})) {
        names.push_back(command->get_name());
    }
    return names;
}

Words longOptions(const CLI::App& command) {
    Words names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

/** "a, b and c", with the word that stands before the last. */
std::string listed(const Words& words, const std::string& beforeLast) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool isLast = i + 1 == words.size();
        text += (i == 0 ? "" : isLast ? " " + beforeLast + " " : ", ") + words[i];
    }
    return text;
}

std::string unknownCommand(const CLI::App& app, const std::string& word) {
    const Words names = commandNames(app);
    const std::string meant = nearestWord(word, names);
    return "unknown command '" + word + "'" +
           (meant.empty() ? "; the commands are " + listed(names, "and") : didYouMean(meant));
}

std::string unknownOption(const CLI::App& command, const std::string& argument) {
    const std::string name = argument.substr(0, argument.find('='));
    const auto commands = command.get_subcommands({});
    const bool isACommands = std::any_of(commands.begin(), commands.end(), [&](const auto* other) {
        return other->get_option_no_throw(name);
    });
    if (isACommands) {
        return name + ": this option belongs after the command";
    }
    const std::string meant = nearestWord(name, longOptions(command));
    const bool mayBeArgument = commands.empty() && meant.empty() && name.rfind("--", 0) != 0;
    return "unknown option '" + name + "'" +
           (mayBeArgument ? "; an argument that begins with - belongs after --"
                          : didYouMean(meant));
}

/** What the parser left over; it counts the mark for the end of the options too. */
Words leftOver(const CLI::App& app) {
    Words words = app.remaining();
    words.erase(std::remove(words.begin(), words.end(), "--"), words.end());
    return words;
}

/** What the parser did not know; empty where that was not the fault. */
std::string unknownArgument(const CLI::App& app, const CLI::App& command) {
    const Words before = app.remaining();
    if (!before.empty() && before.front() != "--") {
        return isOption(before.front()) ? unknownOption(app, before.front())
                                        : unknownCommand(app, before.front());
    }
    // A mistyped option comes first: what would have been its value is then an argument too many.
    const Words unknown = leftOver(command);
    const auto option = std::find_if(unknown.begin(), unknown.end(), isOption);
    return option == unknown.end() ? "" : unknownOption(command, *option);
}

/** The parser's own words name the option, but tell little more. */
const CLI::Option* optionIn(const CLI::App& command, const std::string& words) {
    for (const CLI::Option* option : command.get_options()) {
        if (option->nonpositional() && words.find(option->get_name()) != std::string::npos) {
            return option;
        }
    }
    return nullptr;
}

std::string wrongOption(const CLI::Option& option) {
    const std::string name = option.get_name();
    if (option.get_items_expected_max() == 0) {
        return name + ": no value expected";
    }
    return static_cast<int>(option.count()) > option.get_items_expected_max()
               ? name + ": given more than once"
               : name + ": " + option.get_type_name() + " is missing";
}

} // namespace

std::string usageMessage(const CLI::App& app, const CLI::ParseError& error) {
    const auto asked = app.get_subcommands();
    const CLI::App& command = asked.empty() ? app : *asked.front();
    std::string unknown = unknownArgument(app, command);
    if (!unknown.empty()) {
        return unknown;
    }
    if (asked.empty()) {
        return "a command is missing: " + listed(commandNames(app), "or");
    }
    const Words tooMany = leftOver(command);
    if (dynamic_cast<const CLI::ExtrasError*>(&error) && !tooMany.empty()) {
        return "unexpected argument '" + tooMany.front() + "'";
    }
    if (dynamic_cast<const CLI::ValidationError*>(&error)) {
        return error.what();
    }
    const CLI::Option* const option = optionIn(command, error.what());
    return option ? wrongOption(*option) : error.what();
}
