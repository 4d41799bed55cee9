#include "BatchCommand.h"

#include "BatchPlan.h"
#include "FileLimit.h"
#include "Foreman.h"
#include "Worker.h"

#include "../EngineSession.h"
#include "../ErrorRoute.h"
#include "../Failure.h"
#include "../FileNames.h"
#include "../HeldSignals.h"
#include "../Timing.h"
#include "../UnfinishedFile.h"

#include <vexa/VEXAXslTransformer.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <memory>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr unsigned MOST_JOBS = 256;
static_assert(MOST_JOBS < MOST_WRITING_THREADS);

constexpr const char* DESCRIPTION = "Run one stylesheet over many documents";

constexpr const char* MORE_HELP =
    R"(The result of orders/may.xml goes to DIRECTORY/may.out: whole or not at all. A
source that fails is told of and does not stop the others. The last line is a
summary. Ctrl-C leaves only whole results.

--max-seconds holds for each source and --max-memory for each worker process.
With these, with --sandbox and with --isolate even a source that crashes the
engine costs only itself.

Examples:
  # Pages for all orders of a folder, in the folder pages
  vexa-xslt batch report.xsl orders*.xml -d pages --suffix .html

  # For all in a tree of folders, however many and whatever their names
  find . -name '*.xml' -print0 |
    vexa-xslt batch report.xsl --files-from - -0 -d pages

  # From strangers, in processes that may fail
  vexa-xslt batch report.xsl orders*.xml -d pages --isolate --max-seconds 60)";

using Workers = std::vector<std::unique_ptr<Worker>>;

unsigned processors() {
    return std::clamp(std::thread::hardware_concurrency(), 1U, MOST_JOBS);
}

/** One run of the command. */
class BatchRun {
public:
    explicit BatchRun(const BatchOptions& options) : m_batch{options, {}, {}} {}

    void run();

private:
    Tally doAll();
    void plan();
    void checkStylesheet() const;
    void makeDirectory() const;
    Tally runInThreads(const HeldSignals& signals);
    Tally runInProcesses(const HeldSignals& signals);
    Workers workers(std::unique_ptr<Worker> (*make)(const Batch&)) const;
    void tell(const Tally& tally) const;

    Batch m_batch;
    Timing m_timing;
};

void BatchRun::run() {
    plan();
    makeDirectory();
    VEXAXslTransformer::m_bUseXercesDOM = m_batch.options.common.useXercesDom;
    tell(doAll());
}

/** Afterwards there is nothing unfinished, and a signal may end the process at once. */
Tally BatchRun::doAll() {
    const HeldSignals signals;
    return m_batch.options.needProcesses() ? runInProcesses(signals) : runInThreads(signals);
}

void BatchRun::plan() {
    const BatchOptions& options = m_batch.options;
    if (options.separatedByNul && options.filesFrom.empty()) {
        throw WrongUsage("-0", "it says how the names in the file of --files-from are separated");
    }
    if (options.sources.empty() && options.filesFrom.empty()) {
        throw WrongUsage("SOURCE", "a source is missing, or --files-from");
    }
    if (options.suffix.find('/') != std::string::npos) {
        throw WrongUsage("--suffix", "a suffix names no folder");
    }
    m_batch.parameters = parseParameters(options.common.parameters);
    checkStylesheet();
    m_batch.jobs = planBatch(options);
}

/** A pipe would give the stylesheet to the first source only. */
void BatchRun::checkStylesheet() const {
    const InputName stylesheet(m_batch.options.stylesheet);
    stylesheet.checkReadable();
    std::error_code ignored;
    if (stylesheet.isLocal() && !fs::is_regular_file(displayName(stylesheet.uri()), ignored)) {
        throw WrongUsage(stylesheet.asTyped(),
                         "a batch reads it for each source; it must be a regular file");
    }
}

void BatchRun::makeDirectory() const {
    const std::string& directory = m_batch.options.directory;
    if (directory.empty()) {
        throw WrongUsage("-d", "the name of the folder is empty");
    }
    toText(directory); // which the engine needs
    std::error_code error;
    std::error_code ignored;
    fs::create_directory(directory, error);
    if (fs::exists(directory, ignored) && !fs::is_directory(directory, ignored)) {
        throw Failure(directory, systemReason(ENOTDIR));
    }
    if (error) {
        throw Failure(directory, systemReason(error.value()));
    }
    if (access(directory.c_str(), W_OK | X_OK) != 0) {
        throw Failure(directory, systemReason(errno));
    }
}

Tally BatchRun::runInThreads(const HeldSignals& signals) {
    // Each text for std::cerr would flush std::cout, in any thread.
    std::cerr.tie(nullptr);
    redirectErrors(nullptr);
    Tally tally;
    {
        const EngineSession session;
        reachOnly(m_batch.options.common.limits, BatchFiles(m_batch).named());
        m_timing.endPhase("start of the engines");
        tally = Foreman(m_batch, signals).run(workers(makeThreadWorker));
        m_timing.endPhase("transforms");
    }
    m_timing.endPhase("stop of the engines");
    return tally;
}

Tally BatchRun::runInProcesses(const HeldSignals& signals) {
    const Tally tally = Foreman(m_batch, signals).run(workers(makeProcessWorker));
    m_timing.endPhase("transforms");
    return tally;
}

Workers BatchRun::workers(std::unique_ptr<Worker> (*make)(const Batch&)) const {
    const std::size_t jobs = m_batch.options.jobs == 0 ? processors() : m_batch.options.jobs;
    Workers workers(workersWithFiles(std::min(jobs, m_batch.jobs.size())));
    std::generate(workers.begin(), workers.end(), [&] { return make(m_batch); });
    return workers;
}

void BatchRun::tell(const Tally& tally) const {
    const CommonOptions& options = m_batch.options.common;
    if (options.timing && !options.quiet) {
        std::cerr << m_timing.report();
    }
    if (tally.done < tally.total) {
        throw std::runtime_error(summary(tally));
    }
    if (!options.quiet) {
        std::cerr << "vexa-xslt: " + summary(tally) + "\n";
    }
}

} // namespace

void addBatchCommand(CLI::App& app, std::function<void()>& command) {
    const auto options = std::make_shared<BatchOptions>();
    CLI::App* const batch = app.add_subcommand("batch", DESCRIPTION);
    batch->footer(MORE_HELP);
    batch->add_option("STYLESHEET", options->stylesheet, "The stylesheet")
        ->type_name("")
        ->required();
    batch->add_option("SOURCE", options->sources, "The documents")->type_name("");
    batch
        ->add_option("-d,--directory", options->directory,
                     "Write the results to this folder, which is made if it is not there")
        ->type_name("DIRECTORY")
        ->required();
    addNumberOption(*batch, "-j,--jobs", options->jobs, MOST_JOBS, "JOBS",
                    "Work on so many sources at the same time, instead of one for each processor");
    batch
        ->add_option("--suffix", options->suffix,
                     "End the names of the results in this instead of .out")
        ->type_name("SUFFIX");
    batch
        ->add_option("--files-from", options->filesFrom,
                     "Take more sources from this file, one a line; from standard input if it is -")
        ->type_name("FILE");
    batch->add_flag("-0,--null", options->separatedByNul,
                    "The names in FILE are separated by NUL, as find -print0 does");
    batch->add_flag("--isolate", options->isolate,
                    "Work in processes, so that a crash of the engine costs one source only");
    addParameterOption(*batch, options->common);
    addEngineOptions(*batch, options->common);
    addLimitOptions(*batch, options->common.limits);
    batch->callback([options, &command] { command = [options] { BatchRun(*options).run(); }; });
}
