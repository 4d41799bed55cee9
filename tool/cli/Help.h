/**
 * @file
 * How the help is laid out.
 */
#pragma once

#include <memory>
#include <string>

namespace CLI {
class App;
class FormatterBase;
} // namespace CLI

/** The layout: what it does, how it is called, arguments, commands, options, and what else helps.
 */
std::shared_ptr<CLI::FormatterBase> helpLayout();

/** The help for the command that was asked for, its headings in their style on a terminal. */
std::string helpText(const CLI::App& app);
