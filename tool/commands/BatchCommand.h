/**
 * @file
 * `vexa-xslt batch`: one stylesheet over many documents.
 */
#pragma once

#include <functional>

namespace CLI {
class App;
}

/** Adds the command; if it is the one asked for, `command` is set to what runs it. */
void addBatchCommand(CLI::App& app, std::function<void()>& command);
