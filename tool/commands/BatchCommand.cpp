#include "commands/BatchCommand.h"

#include "base/Errors.h"
#include "batch/BatchPlan.h"
#include "batch/Scheduler.h"
#include "commands/Session.h"
#include "process/BlockedSignals.h"
#include "process/FileLimit.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <memory>
#include <new>
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
    while (const auto number = channel.nextJob()) {
        const BatchJob& job = jobs[*number];
        try {
            const InputArgument source(job.source);
            session.names().add(source);
            session.transform(run, source, vexa::Output::file(job.output));
            channel.send(Report::Kind::Done);
        } catch (const vexa::Error& error) {
            channel.send(Report::Kind::Failed, failureText(job.source, session.describe(error)));
        } catch (const std::bad_alloc&) {
            channel.send(Report::Kind::Failed, oneLine(job.source) + ": out of memory");
        }
    }
}

int work(const BatchOptions& options, const std::vector<BatchJob>& jobs,
         const WorkerChannel& channel) {
    const NamedFiles files = filesOf(options, jobs);
    Session session(options.run, files, [&](const vexa::Diagnostic&, const std::string& text) {
        channel.send(Report::Kind::Message, text);
    });
    try {
        enterSandboxIfWanted(options.run, files);
        vexa::Transformation run = session.prepare(session.compile(files.inputs.front()));
        channel.send(Report::Kind::Started);
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

Tally runJobs(const BatchOptions& options, const std::vector<BatchJob>& jobs) {
    const BlockedSignals signals;
    Scheduler scheduler(options, jobs, signals,
                        [&](const WorkerChannel& channel) { return work(options, jobs, channel); });
    return scheduler.run(workersWithFiles(std::min<std::size_t>(options.jobs, jobs.size())));
}

int runBatch(const BatchOptions& options) {
    checkOptions(options);
    const std::vector<BatchJob> jobs = planBatch(options);
    makeDirectory(options.directory);
    Timing timing;
    Tally tally;
    try {
        tally = runJobs(options, jobs);
    } catch (const NoWorker& error) {
        printError(error.what());
        return EXIT_FAILED;
    }
    timing.endPhase("transforms");
    if (options.run.timing && !options.run.quiet) {
        std::cerr << timing.report();
    }
    if (tally.done < tally.total) {
        printError(summary(tally));
        return EXIT_FAILED;
    }
    if (!options.run.quiet) {
        std::cerr << "vexa-xslt: " + summary(tally) + "\n";
    }
    return EXIT_DONE;
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
    addParameterOptions(app, options->run);
    addDocumentsOption(app, options->run);
    addRunOptions(app, options->run);
    app.callback([options, &command] { command = [options] { return runBatch(*options); }; });
}

} // namespace

const Command BATCH_COMMAND{"batch", DESCRIPTION, define};
