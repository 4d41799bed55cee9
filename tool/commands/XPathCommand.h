/**
 * @file
 * `vexa-xslt xpath`: one expression over one document.
 */
#pragma once

#include <functional>

namespace CLI {
class App;
}

/** Adds the command; if it is the one asked for, `command` is set to what runs it. */
void addXPathCommand(CLI::App& app, std::function<void()>& command);
