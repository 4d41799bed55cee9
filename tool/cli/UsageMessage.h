/**
 * @file
 * What is wrong with a command line, in words that tell what to do about it.
 */
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

/** Why the command line could not be parsed: "NAME: reason", without where to read on. */
std::string usageReason(const CLI::App& app, const CLI::ParseError& error);
