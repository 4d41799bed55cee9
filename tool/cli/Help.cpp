#include "cli/Help.h"

#include "base/Terminal.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t PAGE_WIDTH = 79;

using Options = std::vector<const CLI::Option*>;

/** One entry: a name, and beside it what it means, in as many lines as that needs. */
std::string entry(const std::string& name, const std::string& meaning, std::size_t column) {
    std::string text;
    std::string line = "  " + name;
    line.resize(std::max(line.size() + 1, column), ' ');
    std::istringstream words(meaning);
    for (std::string word; words >> word;) {
        const bool isFirst = line.back() == ' ';
        if (!isFirst && line.size() + 1 + word.size() > PAGE_WIDTH) {
            text += line + "\n";
            line = std::string(column, ' ');
        }
        line += (line.back() == ' ' ? "" : " ") + word;
    }
    return text + line + "\n";
}

/** "-o, --output OUTPUT"; a long name without a short one stands under the other long ones. */
std::string signature(const CLI::Option& option) {
    std::string text =
        option.get_snames().empty() ? "    " : "-" + option.get_snames().front() + ", ";
    text += "--" + option.get_lnames().front();
    return option.get_type_size() == 0 ? text : text + " " + option.get_type_name();
}

class HelpLayout : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode /*mode*/) const override {
        return app->get_description() + ".\n\n" + make_usage(app, name) + make_positionals(app) +
               make_subcommands(app, CLI::AppFormatMode::Normal) + options(*app) + "\n" +
               app->get_footer() + "\n";
    }

    std::string make_usage(const CLI::App* app, std::string name) const override {
        std::string line = "Usage: " + name;
        if (!app->get_subcommands({}).empty()) {
            return line + " COMMAND ARGUMENTS [OPTIONS]\n";
        }
        for (const CLI::Option* argument : arguments(*app)) {
            line += " " + make_option_usage(argument);
        }
        return line + " [OPTIONS]\n";
    }

    std::string make_positionals(const CLI::App* app) const override {
        constexpr std::size_t COLUMN = 14;
        std::string text;
        for (const CLI::Option* argument : arguments(*app)) {
            text += entry(argument->get_name(true), argument->get_description(), COLUMN);
        }
        return text.empty() ? text : "\nArguments:\n" + text;
    }

    std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode /*mode*/) const override {
        constexpr std::size_t COLUMN = 14;
        std::string text;
        for (const CLI::App* command : app->get_subcommands({})) {
            text += entry(command->get_name(), command->get_description(), COLUMN);
        }
        return text.empty() ? text : "\nCommands:\n" + text;
    }

private:
    static Options arguments(const CLI::App& app) {
        return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
    }

    /** Group by group; the help's own option closes the first. */
    static std::string options(const CLI::App& app) {
        const bool hasValues =
            !app.get_options([](const CLI::Option* option) {
                    return option->nonpositional() && option->get_type_size() > 0;
                })
                 .empty();
        const std::size_t column = hasValues ? 31 : 19;
        std::string text;
        for (const std::string& group : app.get_groups()) {
            Options members = app.get_options([&](const CLI::Option* option) {
                return option->nonpositional() && option->get_group() == group;
            });
            std::stable_partition(members.begin(), members.end(), [&](const CLI::Option* option) {
                return option != app.get_help_ptr();
            });
            text += "\n" + group + ":\n";
            for (const CLI::Option* option : members) {
                text += entry(signature(*option), option->get_description(), column);
            }
        }
        return text;
    }
};

} // namespace

std::shared_ptr<CLI::FormatterBase> helpLayout() {
    return std::make_shared<HelpLayout>();
}

std::string helpText(const CLI::App& app) {
    std::string text;
    std::istringstream lines(app.help());
    for (std::string line; std::getline(lines, line);) {
        const bool isIndented = line.empty() || line[0] == ' ';
        const auto colon = line.find(':');
        const bool isHeading = colon + 1 == line.size() || line.rfind("Usage:", 0) == 0;
        text += isIndented || !isHeading
                    ? line
                    : styled(line.substr(0, colon + 1), Style::Heading, STDOUT_FILENO) +
                          line.substr(colon + 1);
        text += "\n";
    }
    return text;
}
