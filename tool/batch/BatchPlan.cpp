#include "batch/BatchPlan.h"

#include "base/Errors.h"
#include "files/InputArgument.h"
#include "files/OutputPlace.h"
#include "xslt/Uri.h"

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
            throw UsageError(listName, "the names are separated by NUL: give -0");
        }
        if (!name.empty()) {
            names.push_back(name);
        }
    }
    if (list.bad()) {
        throw Failure(listName, systemMessage(EIO));
    }
    return names;
}

std::vector<std::string> namesFrom(const BatchOptions& options) {
    const std::string& name = options.filesFrom;
    if (name == STANDARD_STREAM) {
        return readNames(std::cin, name, options.separatedByNul);
    }
    std::ifstream file(name, std::ios::binary);
    if (!file) {
        throw Failure(name, systemMessage(errno));
    }
    return readNames(file, name, options.separatedByNul);
}

/** The file name of a source: of a URI, what stands last in its path. */
std::string fileName(const std::string& source) {
    const InputArgument argument(source);
    const auto path = argument.path();
    return path ? path->filename().string()
                : fs::path(source.substr(0, source.find_first_of("?#"))).filename().string();
}

BatchJob planJob(const std::string& source, const BatchOptions& options) {
    if (source == STANDARD_STREAM) {
        throw UsageError(source, "batch cannot read a source from standard input");
    }
    const std::string name = fs::path(fileName(source)).stem().string();
    if (name.empty()) {
        throw UsageError(source, "no file name to name the result by");
    }
    return {source, (fs::path(options.directory) / (name + options.suffix)).string()};
}

void refuseSharedOutputs(const std::vector<BatchJob>& jobs) {
    std::unordered_map<std::string, const BatchJob*> byPlace;
    for (const BatchJob& job : jobs) {
        const auto [earlier, isFirst] = byPlace.emplace(outputPlace(job.output).string(), &job);
        if (!isFirst) {
            throw UsageError(job.source, "its result would go to " + job.output + ", as that of " +
                                             earlier->second->source);
        }
    }
}

void refuseReplacedInputs(const std::vector<BatchJob>& jobs, const std::string& stylesheet) {
    std::map<FileId, const BatchJob*> byOutput;
    for (const BatchJob& job : jobs) {
        if (const auto id = fileId(job.output)) {
            byOutput.emplace(*id, &job);
        }
    }
    const auto check = [&](const std::string& input) {
        const auto id = InputArgument(input).id();
        const auto replacing = id ? byOutput.find(*id) : byOutput.end();
        if (replacing != byOutput.end()) {
            throw UsageError(input,
                             "the result of " + replacing->second->source + " would replace it");
        }
    };
    if (!byOutput.empty()) {
        check(stylesheet);
        std::for_each(jobs.begin(), jobs.end(), [&](const BatchJob& job) { check(job.source); });
    }
}

void refuseReplacingReport(const std::vector<BatchJob>& jobs, const BatchOptions& options) {
    const std::string& report = options.report;
    std::error_code ignored;
    if (report.empty() || report == STANDARD_STREAM ||
        (fs::exists(report, ignored) && !fs::is_regular_file(report, ignored))) {
        return;
    }
    const fs::path place = fullPlace(report);
    const auto id = fileId(report);
    const auto check = [&](const std::string& input) {
        if (id && InputArgument(input).id() == id) {
            throw UsageError(report, "the report would replace " + input);
        }
    };
    check(options.stylesheet);
    if (!options.filesFrom.empty()) {
        check(options.filesFrom);
    }
    for (const BatchJob& job : jobs) {
        check(job.source);
        // To compare names is faster.
        if (outputPlace(job.output).filename() == place.filename() &&
            fullPlace(job.output) == place) {
            throw UsageError(report, "the result of " + job.source + " goes there");
        }
    }
}

std::vector<BatchJob> takeShard(std::vector<BatchJob> jobs, unsigned shard, unsigned shards) {
    if (shards == 1) {
        return jobs;
    }
    std::vector<BatchJob> taken;
    for (std::size_t i = shard - 1; i < jobs.size(); i += shards) {
        taken.push_back(std::move(jobs[i]));
    }
    return taken;
}

using Time = std::pair<time_t, long>;

/** When a file was changed; nothing where it is not there. */
std::optional<Time> timeOf(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0
               ? std::optional<Time>({status.st_mtim.tv_sec, status.st_mtim.tv_nsec})
               : std::nullopt;
}

} // namespace

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
    refuseReplacingReport(jobs, options);
    return takeShard(std::move(jobs), options.shard, options.shards);
}

std::vector<std::uint32_t> outdatedJobs(const std::vector<BatchJob>& jobs,
                                        const std::vector<std::string>& modules) {
    Time newest;
    bool areKnown = true;
    for (const std::string& uri : modules) {
        const auto path = pathOfFileUri(uri);
        const auto time = path ? timeOf(path->string()) : std::nullopt;
        areKnown = areKnown && time;
        newest = std::max(newest, time.value_or(newest));
    }
    std::vector<std::uint32_t> outdated;
    for (std::uint32_t i = 0; i < jobs.size(); ++i) {
        const auto path = InputArgument(jobs[i].source).path();
        const auto source = path ? timeOf(path->string()) : std::nullopt;
        const auto result = timeOf(jobs[i].output);
        if (!areKnown || !source || !result || *result <= std::max(*source, newest)) {
            outdated.push_back(i);
        }
    }
    return outdated;
}
