#include "commands/TestCommand.h"

#include "base/Errors.h"
#include "commands/Session.h"
#include "files/ErrorJson.h"
#include "files/OutputPlace.h"
#include "files/ReportFile.h"
#include "testing/CaseCheck.h"
#include "testing/JUnitReport.h"
#include "testing/StepCounter.h"
#include "testing/TapReport.h"
#include "testing/TestFileReader.h"
#include "testing/TestRun.h"
#include "testing/TestSearch.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <new>
#include <numeric>
#include <optional>
#include <set>
#include <variant>

namespace {

constexpr const char* DESCRIPTION = "Test stylesheets";

constexpr const char* MORE_HELP =
    R"(A test file has cases, each with a source, parameters and what is expected:

  <tests stylesheet="report.xsl" xmlns="http://vexa.example/xslt/test">
    <case name="May" source="may.xml">
      <param name="title" value="May"/> <!-- or number="3", select="XPATH" -->
      <expect file="may.html"/>         <!-- the result; as="xml": as a tree -->
      <expect xpath="count(//tr) = 3"/> <!-- true over the result -->
      <expect message="no orders"/>     <!-- a message contains this -->
    </case>
    <case name="no book">
      <source xmlns=""><book/></source>
      <expect error="Terminated" text="no orders"/>
    </case>
  </tests>

Names are relative to the test file. Trees are compared without prefixes and the
order of attributes; white space, comments and processing instructions count.
The report on standard output is TAP 13.

Examples:
  # The cases of a file, and those of all files in a folder
  vexa-xslt test report.tests.xml
  vexa-xslt test .

  # For a build server
  vexa-xslt test . --junit results.xml --coverage stylesheets.info

  # Take the results as they are now for what is expected, before a review
  vexa-xslt test totals.tests.xml --update

  # With limits for each case
  vexa-xslt test . --max-seconds 9 --max-memory 500)";

struct TestOptions {
    std::vector<std::string> paths;
    std::string junit;
    std::string coverage;
    bool update = false;
    RunOptions run;
};

/** Runs the transforms of a test file, in a process of its own. */
class CaseRunner {
public:
    /** @param countsSteps whether coverage is wanted */
    CaseRunner(const TestFile& file, Session& session, bool countsSteps)
        : m_file(file), m_session(session), m_countsSteps(countsSteps) {}

    CaseOutcome run(const TestCase& test) {
        using Kind = Expectation::Kind;
        const bool needsTree = test.expects(Kind::XPath);
        CaseOutcome outcome;
        m_counter.begin(0);
        m_session.setEmit([&](const vexa::Diagnostic& message, const std::string& text) {
            if (message.severity == vexa::Severity::Message) {
                outcome.messages.push_back(message.text);
            } else {
                outcome.warnings.push_back(text);
            }
        });
        try {
            vexa::Transformation run = m_session.prepare(stylesheet());
            beginCounting(run);
            const vexa::Document source = sourceOf(test);
            for (const TestCase::Param& param : test.params) {
                run.parameter(param.name, valueOf(param, source));
            }
            if (test.expects(Kind::File) || test.expects(Kind::Xml) || !needsTree) {
                outcome.result = run.toString(source);
            }
            if (needsTree) {
                beginCounting(run);
                outcome.messages.clear();
                outcome.warnings.clear();
                outcome.tree = run.toDocument(source);
            }
        } catch (const vexa::Error& error) {
            outcome.error = {nameOf(error.kind()), error.text(), m_session.describe(error)};
        } catch (const std::bad_alloc&) {
            outcome.error = {"Limit", "out of memory", oneLine(m_file.name) + ": out of memory"};
        }
        return outcome;
    }

    /** Without what the stylesheet reads by document(). */
    std::set<FileId> filesRead(const TestCase& test) const {
        std::vector<std::string> names =
            m_stylesheet ? m_stylesheet->modules() : std::vector{m_file.stylesheet};
        names.push_back(m_file.name);
        names.push_back(test.source.value_or(m_file.name));
        std::set<FileId> ids;
        for (const std::string& name : names) {
            if (const auto id = InputArgument(name).id()) {
                ids.insert(*id);
            }
        }
        return ids;
    }

    /** Of the last run. */
    Coverage coverage() const {
        Coverage coverage;
        if (!m_counter.counts().empty()) {
            coverage.add(m_stylesheet->instructions(), m_counter.counts());
        }
        return coverage;
    }

private:
    void beginCounting(vexa::Transformation& run) {
        if (m_countsSteps) {
            m_counter.begin(m_stylesheet->instructions().size());
            run.onTrace(m_counter);
        }
    }

    /** Compiled for the first case. An error is one of every case. */
    const vexa::Stylesheet& stylesheet() {
        if (!m_stylesheet && !m_error) {
            try {
                m_stylesheet = m_session.compile(InputArgument(m_file.stylesheet));
            } catch (const vexa::Error& error) {
                m_error = error;
            }
        }
        if (m_error) {
            throw vexa::Error(*m_error);
        }
        return *m_stylesheet;
    }

    vexa::Value valueOf(const TestCase::Param& param, const vexa::Document& source) {
        if (const auto* const value = std::get_if<vexa::Value>(&param.value)) {
            return *value;
        }
        try {
            return std::get<vexa::XPath>(param.value)
                .evaluate(source, m_session.operationOptions());
        } catch (const vexa::Error& error) {
            throw vexa::Error(error.kind(), "<param> " + param.name + ": " + error.text(),
                              error.where());
        }
    }

    vexa::Document sourceOf(const TestCase& test) {
        if (test.source) {
            return m_session.parse(InputArgument(*test.source));
        }
        const std::string uri = InputArgument(m_file.name).uri();
        return vexa::Document::parse(vexa::Input::view(test.inlineSource, uri),
                                     m_session.operationOptions());
    }

    const TestFile& m_file;
    Session& m_session;
    const bool m_countsSteps;
    StepCounter m_counter;
    std::optional<vexa::Stylesheet> m_stylesheet;
    std::optional<vexa::Error> m_error;
};

NamedFiles filesOf(const TestFile& file) {
    NamedFiles files;
    files.inputs.emplace_back(file.name);
    files.inputs.emplace_back(file.stylesheet);
    for (const TestCase& test : file.cases) {
        if (test.source) {
            files.inputs.emplace_back(*test.source);
        }
        for (const Expectation& expectation : test.expectations) {
            if (expectation.isFile()) {
                files.inputs.emplace_back(expectation.text);
            }
        }
    }
    return files;
}

int work(const TestOptions& options, const TestFile& file, const WorkerChannel& channel) {
    using Clock = std::chrono::steady_clock;
    try {
        const NamedFiles files = filesOf(file);
        RunOptions run = options.run;
        run.quiet = false; // messages are not printed, but expected
        Session session(run, files, [](const vexa::Diagnostic&, const std::string&) {});
        enterSandboxIfWanted(run, files);
        CaseRunner runner(file, session, !options.coverage.empty());
        channel.send(Report::Kind::Started);
        while (const auto number = channel.nextJob()) {
            const TestCase& test = file.cases.at(std::stoul(*number));
            const Clock::time_point begin = Clock::now();
            const CaseOutcome outcome = runner.run(test);
            CaseResult result =
                checkCase(test, outcome,
                          options.update ? std::optional(runner.filesRead(test)) : std::nullopt,
                          session.operationOptions());
            result.milliseconds =
                std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
            result.coverage = runner.coverage();
            channel.send(Report::Kind::Done, result.json(),
                         result.outdated.empty() ? "" : outcome.result);
        }
    } catch (const std::exception& error) {
        channel.send(Report::Kind::GivenUp, oneLine(error.what()));
        return EXIT_FAILED;
    }
    return EXIT_DONE;
}

/** What is wrong is reported. @return whether nothing is */
bool readFiles(const TestOptions& options, std::vector<TestFile>& files, NamedFiles& named,
               JUnitReport& junit) {
    RunOptions run = options.run;
    run.limits = {};
    run.sandbox = false;
    Session session(run, {}, [](const vexa::Diagnostic&, const std::string&) {});
    bool areRight = true;
    const auto report = [&](const std::string& name, const std::string& text) {
        printError(text);
        junit.addWrong(name, text);
        areRight = false;
    };
    for (const std::string& path : options.paths) {
        try {
            const FoundTestFiles found = findTestFiles(path);
            for (const Failure& failure : found.failures) {
                report(path, oneLine(failure.what()));
            }
            for (const std::string& name : found.names) {
                try {
                    session.names().add(named.inputs.emplace_back(name));
                    files.push_back(readTestFile(name, options.update, session.operationOptions()));
                    const auto inputs = filesOf(files.back()).inputs;
                    named.inputs.insert(named.inputs.end(), inputs.begin(), inputs.end());
                } catch (const vexa::Error& error) {
                    report(name, session.describe(error));
                }
            }
        } catch (const Failure& failure) {
            report(path, oneLine(failure.what()));
        }
    }
    return areRight;
}

/** Where a report is wanted. An error is reported. @return whether there is none */
bool write(const std::string& name, const std::string& text) {
    try {
        if (!name.empty()) {
            writeReport(name, text);
        }
        return true;
    } catch (const vexa::Error& error) {
        printError(Failure(name, error.text()).what());
        return false;
    }
}

/** For files that would be written anew. */
void markSharedFiles(std::vector<TestFile>& files) {
    std::map<std::filesystem::path, std::set<const TestCase*>> casesByPlace;
    const auto forEach = [&](const auto& handle) {
        for (TestFile& file : files) {
            for (TestCase& test : file.cases) {
                for (Expectation& expectation : test.expectations) {
                    if (expectation.isFile()) {
                        handle(test, expectation, casesByPlace[fullPlace(expectation.text)]);
                    }
                }
            }
        }
    };
    forEach([](const TestCase& test, Expectation& /*expectation*/,
               std::set<const TestCase*>& cases) { cases.insert(&test); });
    forEach([](const TestCase& /*test*/, Expectation& expectation,
               std::set<const TestCase*>& cases) { expectation.isShared = cases.size() > 1; });
}

/** @return whether no case has failed, and the reports are written */
bool runFiles(const TestOptions& options, const std::vector<TestFile>& files, JUnitReport& junit) {
    TapReport tap(std::accumulate(
        files.begin(), files.end(), std::size_t{0},
        [](std::size_t sum, const TestFile& file) { return sum + file.cases.size(); }));
    Coverage coverage;
    for (const TestFile& file : files) {
        junit.begin(file);
        TestRun run(
            file, options.run.limits,
            [&](const WorkerChannel& channel, bool /*isFirst*/) {
                return work(options, file, channel);
            },
            [&](const TestCase& test, const CaseResult& result) {
                tap.add(file, test, result);
                junit.add(test, result);
                coverage.add(result.coverage);
            });
        run.run();
        junit.end();
    }
    const bool hasJunit = write(options.junit, junit.text());
    const bool hasCoverage = write(options.coverage, coverage.lcov());
    return hasJunit && hasCoverage && !tap.hasFailed();
}

int runTests(const TestOptions& options) {
    Timing timing;
    std::vector<TestFile> files;
    NamedFiles named;
    JUnitReport junit;
    const bool areRight = readFiles(options, files, named, junit);
    for (const std::string& report : {options.junit, options.coverage}) {
        if (!report.empty()) {
            named.reports.push_back(report);
        }
    }
    checkFiles(named);
    if (options.update) {
        markSharedFiles(files);
    }
    timing.endPhase("test files");
    const bool arePassed = runFiles(options, files, junit);
    timing.endPhase("cases");
    if (options.run.timing && !options.run.quiet) {
        std::cerr << timing.report();
    }
    return !areRight ? EXIT_USAGE : arePassed ? EXIT_DONE : EXIT_FAILED;
}

void define(CLI::App& app, std::function<int()>& command) {
    const auto options = std::make_shared<TestOptions>();
    app.footer(MORE_HELP);
    app.add_option("PATH", options->paths,
                   "Test files, and folders that are searched to any depth for *.tests.xml")
        ->type_name("")
        ->required();
    app.add_option("--junit", options->junit, "Write a report in JUnit XML to this file, too")
        ->type_name("FILE");
    app.add_option("--coverage", options->coverage,
                   "Write which lines of the stylesheets all cases have executed, in the format "
                   "of LCOV")
        ->type_name("FILE");
    app.add_flag("--update", options->update,
                 "Write the files of <expect file=\"...\"> anew where the result differs");
    addDocumentsOption(app, options->run);
    addRunOptions(app, options->run);
    app.callback([options, &command] { command = [options] { return runTests(*options); }; });
}

} // namespace

const Command TEST_COMMAND{"test", DESCRIPTION, define};
