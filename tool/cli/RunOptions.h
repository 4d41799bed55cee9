/**
 * @file
 * Options that several commands share.
 */
#pragma once

#include "Limits.h"

#include <nrb/I18NString.h>

#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI
class VEXAXslTransformer;

struct CommonOptions {
    std::vector<std::string> parameters;
    bool useXercesDom = false;
    bool timing = false;
    bool quiet = false;
    Limits limits;
};

using Parameters = std::vector<std::pair<I18NString, I18NString>>;

/** Adds an argument, or options, to a command; what they are to fill must outlive the parse. */
void addSourceArgument(CLI::App& command, std::string& source);
void addOutputOption(CLI::App& command, std::string& output);
void addParameterOption(CLI::App& command, CommonOptions& options);
void addEngineOptions(CLI::App& command, CommonOptions& options);
void addLimitOptions(CLI::App& command, Limits& limits);
/** A whole number from 1. */
CLI::Option& addNumberOption(CLI::App& command, const std::string& name, unsigned& number,
                             unsigned largest, const std::string& unit,
                             const std::string& description);

/**
 * Takes NAME=VALUE arguments apart.
 * @throws WrongUsage for one that has another form or that the library cannot pass on
 */
Parameters parseParameters(const std::vector<std::string>& arguments);

/** A command-line argument as a text. @throws WrongUsage where it is not in the default encoding */
I18NString toText(const std::string& argument);
