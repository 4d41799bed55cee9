#include "BatchPlan.h"

#include "../Failure.h"
#include "../FileNames.h"
#include "../OutputFile.h"
#include "../Source.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <sys/stat.h>
#include <unordered_map>

namespace fs = std::filesystem;

namespace {

std::vector<std::string> readNames(std::istream& list, const std::string& listName,
                                   bool separatedByNul) {
    std::vector<std::string> names;
    for (std::string name; std::getline(list, name, separatedByNul ? '\0' : '\n');) {
        if (name.find('\0') != std::string::npos) {
            throw WrongUsage(listName, "its names are separated by NUL; give -0");
        }
        if (!name.empty()) {
            names.push_back(name);
        }
    }
    if (list.bad()) {
        throw Failure(listName, "it cannot be read");
    }
    return names;
}

std::vector<std::string> namesFrom(const BatchOptions& options) {
    Source list(options.filesFrom);
    list.checkReadable();
    return readNames(list.open(), list.name(), options.separatedByNul);
}

/** The file name of a source: of a URI, what stands last in its path. */
std::string fileName(const std::string& source) {
    const InputName name(source);
    std::string path = displayName(name.uri());
    if (!name.isLocal()) {
        path.erase(std::min(path.find_first_of("?#"), path.size()));
    }
    return fs::path(path).filename().string();
}

BatchJob planJob(const std::string& source, const BatchOptions& options) {
    if (source == STANDARD_STREAM) {
        throw WrongUsage(source, "a batch does not read a source from standard input");
    }
    const std::string name = fs::path(fileName(source)).stem().string();
    if (name.empty()) {
        throw WrongUsage(source.empty() ? "''" : source,
                         "it has no file name that a result could be named by");
    }
    return {source, (fs::path(options.directory) / (name + options.suffix)).string()};
}

/** Links followed; the name itself where they lead nowhere, which is told later. */
std::string place(const std::string& output) {
    try {
        return outputPlace(output);
    } catch (const Failure&) {
        return output;
    }
}

void refuseSharedOutputs(const std::vector<BatchJob>& jobs) {
    std::unordered_map<std::string, const BatchJob*> byPlace;
    for (const BatchJob& job : jobs) {
        const auto [earlier, isFirst] = byPlace.emplace(place(job.output), &job);
        if (!isFirst) {
            throw WrongUsage(job.source, "its result would go to " + job.output + ", as that of " +
                                             earlier->second->source + " does");
        }
    }
}

using FileId = std::pair<dev_t, ino_t>;

std::optional<FileId> idOf(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? std::optional<FileId>({status.st_dev, status.st_ino})
                                            : std::nullopt;
}

void refuseReplacedInputs(const std::vector<BatchJob>& jobs, const std::string& stylesheet) {
    std::map<FileId, const BatchJob*> byOutput;
    for (const BatchJob& job : jobs) {
        if (const auto id = idOf(job.output)) {
            byOutput.emplace(*id, &job);
        }
    }
    const auto check = [&](const std::string& input) {
        const auto id = idOf(displayName(InputName(input).uri()));
        const auto replacing = id ? byOutput.find(*id) : byOutput.end();
        if (replacing != byOutput.end()) {
            throw WrongUsage(input, "the result of " + replacing->second->source +
                                        " would take its place");
        }
    };
    if (!byOutput.empty()) {
        check(stylesheet);
        std::for_each(jobs.begin(), jobs.end(), [&](const BatchJob& job) { check(job.source); });
    }
}

} // namespace

BatchFiles::BatchFiles(const Batch& batch)
    : m_named(batch.options.stylesheet, batch.options.directory) {
    m_inputs.emplace_back(batch.options.stylesheet);
    for (const BatchJob& job : batch.jobs) {
        m_inputs.emplace_back(job.source);
    }
    for (const InputName& input : m_inputs) {
        m_named.inputs.push_back(&input);
    }
}

std::vector<BatchJob> planBatch(const BatchOptions& options) {
    std::vector<BatchJob> jobs;
    for (const std::string& source : options.sources) {
        jobs.push_back(planJob(source, options));
    }
    if (!options.filesFrom.empty()) {
        for (const std::string& source : namesFrom(options)) {
            jobs.push_back(planJob(source, options));
        }
    }
    refuseSharedOutputs(jobs);
    refuseReplacedInputs(jobs, options.stylesheet);
    return jobs;
}
