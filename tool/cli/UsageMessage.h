/**
 * @file
 * What is wrong with a command line, and what to do about it.
 */
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

/** Why the command line could not be parsed: without where to read on. */
std::string usageMessage(const CLI::App& app, const CLI::ParseError& error);
