#include "commands/ProfileCommand.h"

#include "base/Errors.h"
#include "commands/Session.h"
#include "files/ReportFile.h"
#include "files/StandardOutput.h"
#include "profile/Coverage.h"
#include "profile/Profile.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

namespace {

constexpr const char* DESCRIPTION = "See where a transform spends its time";

constexpr const char* MORE_HELP =
    R"(Prints a table on standard error, a line for each template: how often it was
called, the time spent in it, and with all that it calls, and how many
instructions of the stylesheet it executed. Instructions are the same in each
run: compare these. Functions, global variables and attribute sets are counted
as templates are. The result of the transform goes to -o, or nowhere.

A run that fails, or reaches a limit, has its profile too.

Examples:
  # Which templates cost most?
  vexa-xslt profile report.xsl orders.xml

  # A page with a flame graph and the annotated stylesheet
  vexa-xslt profile report.xsl orders.xml --html profile.html

  # For KCachegrind, or callgrind_annotate
  vexa-xslt profile report.xsl orders.xml --callgrind callgrind.out.report

  # Which lines of the stylesheet are executed?
  vexa-xslt profile report.xsl orders.xml --coverage report.info)";

struct ProfileOptions {
    std::string stylesheet;
    std::string source = STANDARD_STREAM;
    /** Empty where nobody wants it. */
    std::string output;
    std::string html;
    std::string callgrind;
    std::string folded;
    std::string coverage;
    RunOptions run;

    /** The files that are written, without the result. */
    std::vector<std::string> reports() const {
        std::vector<std::string> names;
        for (const std::string* name : {&html, &callgrind, &folded, &coverage}) {
            if (!name->empty()) {
                names.push_back(*name);
            }
        }
        return names;
    }
};

using Clock = std::chrono::steady_clock;

std::uint64_t nanosecondsSince(Clock::time_point begin) {
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - begin).count());
}

std::string lcovOf(const Profiler& profiler) {
    std::vector<std::uint64_t> calls;
    for (const Profiler::Entry& entry : profiler.entries()) {
        calls.push_back(entry.calls);
    }
    Coverage coverage;
    coverage.add(profiler.instructions(), calls);
    return coverage.lcov();
}

void write(const ProfileOptions& options, const Profile& profile) {
    std::cerr << profileTable(profile);
    if (!options.html.empty()) {
        writeReport(options.html, profilePage(profile));
    }
    if (!options.callgrind.empty()) {
        writeReport(options.callgrind, callgrindFile(profile));
    }
    if (!options.folded.empty()) {
        writeReport(options.folded, foldedStacks(profile));
    }
    if (!options.coverage.empty()) {
        writeReport(options.coverage, lcovOf(profile.data));
    }
}

void profile(const ProfileOptions& options, const NamedFiles& files, Session& session) {
    Clock::time_point begin = Clock::now();
    const vexa::Stylesheet stylesheet = session.compile(files.inputs[0]);
    Profiler profiler(stylesheet.instructions());
    Profile result{files.inputs[0].name() + " over " + files.inputs[1].name(),
                   "",
                   0,
                   0,
                   0,
                   stylesheet.modules(),
                   profiler,
                   session.names()};
    result.compile = nanosecondsSince(std::exchange(begin, Clock::now()));
    const vexa::Document source = session.parse(files.inputs[1]);
    result.parse = nanosecondsSince(begin);
    vexa::Transformation run = session.prepare(stylesheet);
    session.setExpressions(run, source);
    run.onTrace(profiler);
    std::optional<vexa::Error> failure;
    StandardOutput standardOutput;
    begin = Clock::now();
    try {
        run.to(source, outputTo(files.output, standardOutput));
    } catch (const vexa::Error& error) {
        failure = error;
        result.outcome = session.describe(error);
        result.outcome.resize(std::min(result.outcome.find('\n'), result.outcome.size()));
    }
    result.transform = nanosecondsSince(begin);
    session.timing().endPhase("transform");
    try {
        write(options, result);
    } catch (...) {
        if (failure) {
            printError(session.describe(*failure));
        }
        throw;
    }
    if (failure) {
        throw vexa::Error(*failure);
    }
}

int runProfile(const ProfileOptions& options) {
    NamedFiles files;
    files.output = options.output.empty() ? "/dev/null" : options.output;
    files.inputs.emplace_back(options.stylesheet);
    files.inputs.emplace_back(options.source);
    files.reports = options.reports();
    checkFiles(files);
    return runSession(options.run, files, files.inputs[1],
                      [&](Session& session) { profile(options, files, session); });
}

void addFileOption(CLI::App& app, const std::string& name, std::string& file,
                   const std::string& description) {
    app.add_option(name, file, description)->type_name("FILE");
}

void define(CLI::App& app, std::function<int()>& command) {
    const auto options = std::make_shared<ProfileOptions>();
    app.footer(MORE_HELP);
    app.add_option("STYLESHEET", options->stylesheet, "The stylesheet; standard input if it is -")
        ->type_name("")
        ->required();
    addSourceArgument(app, options->source);
    app.add_option("-o,--output", options->output,
                   "Write the result to this file, or to standard output if it is -")
        ->type_name("OUTPUT");
    addFileOption(app, "--html", options->html,
                  "Write a page with the table, a flame graph and the annotated stylesheet");
    addFileOption(app, "--callgrind", options->callgrind, "Write a profile for KCachegrind");
    addFileOption(app, "--folded", options->folded,
                  "Write stacks for flame-graph tools, a line each, in nanoseconds");
    addFileOption(app, "--coverage", options->coverage,
                  "Write which lines were executed, in the format of LCOV");
    addParameterOptions(app, options->run);
    addDocumentsOption(app, options->run);
    addRunOptions(app, options->run);
    addIsolateOption(app, options->run);
    app.callback([options, &command] { command = [options] { return runProfile(*options); }; });
}

} // namespace

const Command PROFILE_COMMAND{"profile", DESCRIPTION, define};
