/**
 * @file
 * What a batch is to do: its sources, and the file that each one's result goes to.
 */
#pragma once

#include "cli/RunOptions.h"

#include <cstdint>
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
    /** Takes each source whose number leaves the rest `shard - 1` when it is divided by this. */
    unsigned shards = 1;
    unsigned shard = 1;
    /** Leaves out what has a result that is newer. */
    bool newer = false;
    /** Where what became of each source is written; empty for nowhere. */
    std::string report;
    RunOptions run;
};

struct BatchJob {
    /** As the user named it. */
    std::string source;
    /** A name in the directory. */
    std::string output;
};

/**
 * The jobs of the shard in the order of the command line, those of the list after them.
 *
 * @throws UsageError where two results of the whole list would go to one file, or one would replace
 * a source, or the report would replace a source, the list, the stylesheet or a result
 * @throws Failure where the list cannot be read
 */
std::vector<BatchJob> planBatch(const BatchOptions& options);

/**
 * Those that have no result which is newer than the source and all of the modules.
 *
 * @param modules URIs; one that is no local file makes all results out of date
 * @return numbers of jobs
 */
std::vector<std::uint32_t> outdatedJobs(const std::vector<BatchJob>& jobs,
                                        const std::vector<std::string>& modules);
