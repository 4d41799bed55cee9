/**
 * @file
 * What a batch is to do: its sources, and the file that each one's result goes to.
 */
#pragma once

#include "cli/RunOptions.h"

#include <string>
#include <vector>

struct BatchOptions {
    std::string stylesheet;
    std::vector<std::string> sources;
    /** A file that lists more sources; empty for none. */
    std::string filesFrom;
    bool separatedByNul = false;
    std::string directory;
    std::string suffix = ".out";
    unsigned jobs = 1;
    RunOptions run;
};

struct BatchJob {
    /** As the user named it. */
    std::string source;
    /** A name in the directory. */
    std::string output;
};

/**
 * The jobs in the order of the command line, those of the list after them.
 *
 * @throws UsageError where two results would go to one file, or one would replace a source
 * @throws Failure where the list cannot be read
 */
std::vector<BatchJob> planBatch(const BatchOptions& options);
