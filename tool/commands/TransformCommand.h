/**
 * @file
 * `vexa-xslt transform`: one stylesheet over one document.
 */
#pragma once

#include <functional>

namespace CLI {
class App;
}

/** Adds the command; if it is the one asked for, `command` is set to what runs it. */
void addTransformCommand(CLI::App& app, std::function<void()>& command);
