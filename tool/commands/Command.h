/**
 * @file
 * A command of the program.
 */
#pragma once

#include <functional>

namespace CLI {
class App;
}

struct Command {
    const char* name;
    const char* description;
    /** Adds the command's arguments and options; if it is asked for, `run` is set to its work. */
    void (*define)(CLI::App& app, std::function<int()>& run);
};
