#include "commands/BatchCommand.h"

#include "base/Errors.h"
#include "batch/BatchPlan.h"
#include "batch/BatchReport.h"
#include "batch/Scheduler.h"
#include "commands/Session.h"
#include "process/BlockedSignals.h"
#include "process/FileLimit.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr const char* DESCRIPTION = "Run one stylesheet over many documents";

constexpr const char* MORE_HELP =
    R"(The result of orders/may.xml goes to DIRECTORY/may.out, atomically. A source
that fails is reported and does not stop the others, even where it crashes the
engine: all work is done in processes of their own. The last line is a summary.
Ctrl-C leaves only whole results.

Examples:
  # Pages for all orders of a folder, in the folder pages
  vexa-xslt batch report.xsl orders*.xml -d pages --suffix .html

  # For all in a tree of folders, however many and whatever their names
  find . -name '*.xml' -print0 |
    vexa-xslt batch report.xsl --files-from - -0 -d pages

  # A third of the work on each of three machines; again after it broke off
  vexa-xslt batch report.xsl orders*.xml -d pages --shard 1/3 --newer

  # Over untrusted input
  vexa-xslt batch report.xsl orders*.xml -d pages --sandbox --max-seconds 60)";

void checkOptions(const BatchOptions& options) {
    if (options.separatedByNul && options.filesFrom.empty()) {
        throw UsageError("-0", "it says how the names in the file of --files-from are separated");
    }
    if (options.sources.empty() && options.filesFrom.empty()) {
        throw UsageError("SOURCE", "a source is missing, or --files-from");
    }
    if (options.suffix.find('/') != std::string::npos) {
        throw UsageError("--suffix", "a suffix cannot have a /");
    }
    if (options.directory.empty()) {
        throw UsageError("-d", "empty folder name");
    }
    // A pipe would give the stylesheet to the first worker only.
    const InputArgument stylesheet(options.stylesheet);
    std::error_code ignored;
    const auto path = stylesheet.path();
    if (stylesheet.isStandardInput() ||
        (path && fs::exists(*path, ignored) && !fs::is_regular_file(*path, ignored))) {
        throw UsageError(stylesheet.name(), "each worker reads it: it must be a regular file");
    }
}

void makeDirectory(const std::string& directory) {
    const fs::path path(directory);
    std::error_code error;
    std::error_code ignored;
    fs::create_directory(path, error);
    if (fs::exists(path, ignored) && !fs::is_directory(path, ignored)) {
        throw Failure(directory, systemMessage(ENOTDIR));
    }
    if (error) {
        throw Failure(directory, systemMessage(error.value()));
    }
    if (access(directory.c_str(), W_OK | X_OK) != 0) {
        throw Failure(directory, systemMessage(errno));
    }
}

NamedFiles filesOf(const BatchOptions& options, const std::vector<BatchJob>& jobs) {
    NamedFiles files;
    files.inputs.emplace_back(options.stylesheet);
    files.output = options.directory;
    if (options.run.sandbox) {
        for (const BatchJob& job : jobs) {
            files.inputs.emplace_back(job.source);
        }
    }
    return files;
}

/** A source's name stands before an error in another file. */
std::string failureText(const std::string& sourceName, const std::string& text) {
    const std::string source = oneLine(sourceName);
    return text.rfind(source + ":", 0) == 0 ? text : source + ": " + text;
}

void doJobs(const std::vector<BatchJob>& jobs, Session& session, vexa::Transformation& run,
            const WorkerChannel& channel) {
    using Clock = std::chrono::steady_clock;
    while (const auto number = channel.nextJob()) {
        const BatchJob& job = jobs[std::stoul(*number)];
        const Clock::time_point begin = Clock::now();
        const auto milliseconds = [begin] {
            return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
        };
        try {
            const InputArgument source(job.source);
            session.names().add(source);
            session.transform(run, source, vexa::Output::file(job.output));
            channel.send(Report::Kind::Done, "", doneOutcome(milliseconds()));
        } catch (const vexa::Error& error) {
            channel.send(Report::Kind::Failed, failureText(job.source, session.describe(error)),
                         failedOutcome(milliseconds(), error));
        } catch (const std::bad_alloc&) {
            channel.send(Report::Kind::Failed, oneLine(job.source) + ": out of memory",
                         lostOutcome(milliseconds(), "Crash", "out of memory"));
        }
    }
}

/** Their URIs, one a line. */
std::string modulesOf(const vexa::Stylesheet& stylesheet) {
    std::string uris;
    for (const std::string& uri : stylesheet.modules()) {
        uris.append(uri).append("\n");
    }
    return uris;
}

int work(const BatchOptions& options, const std::vector<BatchJob>& jobs,
         const WorkerChannel& channel) {
    const NamedFiles files = filesOf(options, jobs);
    Session session(options.run, files, [&](const vexa::Diagnostic&, const std::string& text) {
        channel.send(Report::Kind::Message, text);
    });
    try {
        enterSandboxIfWanted(options.run, files);
        const vexa::Stylesheet stylesheet = session.compile(files.inputs.front());
        vexa::Transformation run = session.prepare(stylesheet);
        channel.send(Report::Kind::Started, modulesOf(stylesheet));
        doJobs(jobs, session, run, channel);
    } catch (const vexa::Error& error) {
        channel.send(Report::Kind::GivenUp, session.describe(error));
    } catch (const std::bad_alloc&) {
        channel.send(Report::Kind::GivenUp, options.stylesheet + ": out of memory");
    } catch (const std::exception& error) {
        channel.send(Report::Kind::GivenUp, oneLine(error.what()));
    }
    return EXIT_DONE;
}

Tally runJobs(const BatchOptions& options, const std::vector<BatchJob>& jobs, BatchReport& report) {
    const BlockedSignals signals;
    Scheduler scheduler(options, jobs, report, signals,
                        workersWithFiles(std::min<std::size_t>(options.jobs, jobs.size())),
                        [&](const WorkerChannel& channel, bool /*isFirst*/) {
                            signals.unblock();
                            return work(options, jobs, channel);
                        });
    const Tally tally = scheduler.run();
    report.commit();
    return tally;
}

int runBatch(const BatchOptions& options) {
    checkOptions(options);
    const std::vector<BatchJob> jobs = planBatch(options);
    makeDirectory(options.directory);
    Timing timing;
    Tally tally;
    try {
        BatchReport report(options.report);
        tally = runJobs(options, jobs, report);
    } catch (const vexa::Error& error) {
        printError(options.report + ": " + error.text());
        return EXIT_FAILED;
    } catch (const std::runtime_error& error) {
        printError(error.what());
        return EXIT_FAILED;
    }
    timing.endPhase("transforms");
    if (options.run.timing && !options.run.quiet) {
        std::cerr << timing.report();
    }
    if (tally.done + tally.skipped < tally.total) {
        printError(summary(tally));
        return EXIT_FAILED;
    }
    if (!options.run.quiet) {
        std::cerr << "vexa-xslt: " + summary(tally) + "\n";
    }
    return EXIT_DONE;
}

/** "2/3" */
void readShard(const std::string& text, BatchOptions& options) {
    constexpr const char* DIGITS = "0123456789";
    constexpr std::size_t MOST_DIGITS = 6;
    const auto slash = text.find('/');
    const std::string numbers[] = {text.substr(0, slash),
                                   slash == std::string::npos ? "" : text.substr(slash + 1)};
    const bool areNumbers =
        std::all_of(std::begin(numbers), std::end(numbers), [&](const std::string& number) {
            return !number.empty() && number.size() <= MOST_DIGITS &&
                   number.find_first_not_of(DIGITS) == std::string::npos;
        });
    options.shard = areNumbers ? static_cast<unsigned>(std::stoul(numbers[0])) : 0;
    options.shards = areNumbers ? static_cast<unsigned>(std::stoul(numbers[1])) : 0;
    if (options.shard < 1 || options.shard > options.shards) {
        throw UsageError("--shard",
                         "expected I/N, two integers with 1 <= I <= N, got '" + text + "'");
    }
}

void define(CLI::App& app, std::function<int()>& command) {
    const auto options = std::make_shared<BatchOptions>();
    app.footer(MORE_HELP);
    app.add_option("STYLESHEET", options->stylesheet, "The stylesheet")->type_name("")->required();
    app.add_option("SOURCE", options->sources, "The documents")->type_name("");
    app.add_option("-d,--directory", options->directory,
                   "Write the results to this folder, which is made if it is not there")
        ->type_name("DIRECTORY")
        ->required();
    addJobsOption(app, options->jobs,
                  "Work on so many sources at the same time, instead of one for each processor");
    app.add_option("--suffix", options->suffix,
                   "End the names of the results in this instead of .out")
        ->type_name("SUFFIX");
    app.add_option("--files-from", options->filesFrom,
                   "Take more sources from this file, one a line; from standard input if it is -")
        ->type_name("FILE");
    app.add_flag("-0,--null", options->separatedByNul,
                 "The names in FILE are separated by NUL, as find -print0 does");
    app.add_option_function<std::string>(
           "--shard", [options](const std::string& shard) { readShard(shard, *options); },
           "Take each N-th source only, from the I-th: for N machines that share a list")
        ->type_name("I/N");
    app.add_flag("--newer", options->newer,
                 "Leave out sources with a result that is newer than they and the stylesheet");
    app.add_option("--report", options->report,
                   "Write a line of JSON for each source to this file; to standard output if it "
                   "is -")
        ->type_name("FILE");
    addParameterOptions(app, options->run);
    addDocumentsOption(app, options->run);
    addRunOptions(app, options->run);
    app.callback([options, &command] { command = [options] { return runBatch(*options); }; });
}

} // namespace

const Command BATCH_COMMAND{"batch", DESCRIPTION, define};
