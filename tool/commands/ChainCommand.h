/**
 * @file
 * `vexa-xslt chain`: stylesheet after stylesheet over one document, in memory.
 */
#pragma once

#include <functional>

namespace CLI {
class App;
}

/** Adds the command; if it is the one asked for, `command` is set to what runs it. */
void addChainCommand(CLI::App& app, std::function<void()>& command);
