/**
 * @file
 * What a batch is to do: its sources, and the file that each one's result goes to.
 */
#pragma once

#include "../CommonOptions.h"
#include "../NamedFiles.h"

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
    unsigned jobs = 0;
    bool isolate = false;
    CommonOptions common;

    /** Whether each worker is a process of its own; limits are those of a process. */
    bool needProcesses() const { return isolate || common.limits.needChild(); }
};

struct BatchJob {
    /** As the user named it. */
    std::string source;
    /** A name in the directory. */
    std::string output;
};

struct Batch {
    BatchOptions options;
    Parameters parameters;
    std::vector<BatchJob> jobs;
};

/** The files that a batch names. */
class BatchFiles {
public:
    explicit BatchFiles(const Batch& batch);

    /** As long as this lives. */
    const NamedFiles& named() const { return m_named; }

private:
    std::vector<InputName> m_inputs;
    NamedFiles m_named;
};

/**
 * The jobs in the order of the command line, those of the list behind.
 *
 * @throws WrongUsage where two results would go to one file, or one would replace a source
 * @throws Failure where the list cannot be read
 */
std::vector<BatchJob> planBatch(const BatchOptions& options);
