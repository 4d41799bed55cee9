/**
 * @file
 * Options that several commands share.
 */
#pragma once

#include "base/Limits.h"
#include "cli/Parameter.h"

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

struct RunOptions {
    std::vector<Parameter> parameters;
    /** The folder of further results; empty for that of the result. */
    std::string documents;
    Limits limits;
    bool network = false;
    bool noEntities = false;
    bool noCatalogs = false;
    bool sandbox = false;
    bool isolate = false;
    /** The command keeps the time limit by itself, for one part of its work after the other. */
    bool limitsParts = false;
    bool timing = false;
    bool quiet = false;
    bool excerpt = false;

    /** Whether a crash has to be survived, or a limit that the work does not keep by itself. */
    bool needProcess() const { return isolate || sandbox || limits.areSet(); }
};

/** Adds an argument, or options, to a command; what they are to fill must outlive the parse. */
void addSourceArgument(CLI::App& command, std::string& source);
void addOutputOption(CLI::App& command, std::string& output);
void addParameterOptions(CLI::App& command, RunOptions& options);
/** How many processes are to work at the same time. */
void addJobsOption(CLI::App& command, unsigned& jobs, const std::string& description);
void addDocumentsOption(CLI::App& command, RunOptions& options);
void addRunOptions(CLI::App& command, RunOptions& options);
/** For commands that do not always work in processes of their own. */
void addIsolateOption(CLI::App& command, RunOptions& options);
/** An integer from 1. */
CLI::Option& addNumberOption(CLI::App& command, const std::string& name, unsigned& number,
                             unsigned largest, const std::string& unit,
                             const std::string& description);
