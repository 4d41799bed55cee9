#include "commands/WorkerCommand.h"

#include "base/Errors.h"
#include "commands/Session.h"
#include "process/FileLimit.h"
#include "worker/Request.h"
#include "worker/RequestPool.h"
#include "worker/StylesheetCache.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <memory>
#include <new>
#include <regex>

namespace {

constexpr const char* DESCRIPTION = "Transform what other programs send, a request a line";

constexpr const char* MORE_HELP =
    R"(Each line of standard input is a request, a JSON object; each line of standard
output is an answer, written at once:

  {"id": ANY, "xml": TEXT or "file": NAME, "stylesheet": NAME,
   "params": {"name": text, number, true or false}, "output": NAME}

  {"id": ANY, "result": TEXT or "output": NAME, "milliseconds": 1.2,
   "messages": [...]}
  {"id": ANY, "error": {"kind", "text", "uri", "line", "column"}, ...}

A stylesheet is compiled once, and again when a file of it has changed. What
goes wrong is an answer; even a crash of the engine is one.

Examples:
  # One request
  echo '{"id": 1, "file": "orders.xml"}' | vexa-xslt worker report.xsl

  # On all processors, in the order of the requests
  generate-requests | vexa-xslt worker report.xsl --ordered

  # Over untrusted input
  generate-requests | vexa-xslt worker report.xsl --sandbox --max-seconds 9)";

struct WorkerOptions {
    /** Empty where each request names one. */
    std::string stylesheet;
    bool ordered = false;
    unsigned jobs = 1;
    RunOptions run;
};

/** Answers requests, in a process of its own. */
class RequestRunner {
public:
    RequestRunner(const WorkerOptions& options, Session& session)
        : m_options(options), m_session(session) {}

    /** Compiles what the command line names. */
    void begin() {
        if (!m_options.stylesheet.empty()) {
            m_stylesheets.get(m_options.stylesheet);
        }
    }

    std::string answer(const std::string& line) {
        const Clock::time_point begin = Clock::now();
        const auto milliseconds = [begin] {
            return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
        };
        Answer answer("null");
        m_session.setEmit([&](const vexa::Diagnostic& message, const std::string& /*text*/) {
            answer.addMessage(message);
        });
        try {
            const Request request = parseRequest(line);
            answer = Answer(request.id);
            check(request);
            std::string result;
            run(request,
                request.output ? vexa::Output::file(*request.output) : vexa::Output::text(result));
            checkSize(result);
            return request.output ? answer.output(*request.output, milliseconds())
                                  : answer.result(result, milliseconds());
        } catch (const vexa::Error& error) {
            return answer.error(error, milliseconds());
        } catch (const std::bad_alloc&) {
            return answer.error("Limit", "out of memory", milliseconds());
        } catch (const std::exception& error) {
            return answer.error("Usage", error.what(), milliseconds());
        }
    }

private:
    using Clock = std::chrono::steady_clock;

    static void refuse(const std::string& text) { throw vexa::Error(vexa::ErrorKind::Usage, text); }

    void check(const Request& request) const {
        if (!request.error.empty()) {
            refuse(request.error);
        }
        if (!request.stylesheet && m_options.stylesheet.empty()) {
            refuse("the field 'stylesheet' is needed, as the command line names none");
        }
        if (request.file == STANDARD_STREAM || request.stylesheet == STANDARD_STREAM) {
            refuse("standard input has the requests");
        }
        if (request.output == STANDARD_STREAM) {
            refuse("standard output has the answers");
        }
    }

    /** Strings in JSON are Unicode. */
    static void checkEncoding(std::string encoding) {
        std::transform(encoding.begin(), encoding.end(), encoding.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        if (!encoding.empty() && encoding != "UTF-8" && encoding != "US-ASCII") {
            throw vexa::Error(vexa::ErrorKind::Output,
                              "the result is in " + encoding + ": it needs the field 'output'");
        }
    }

    /** As JSON it may be six times as long, and an answer cannot be longer than 4 GiB. */
    static void checkSize(const std::string& result) {
        constexpr std::size_t LARGEST_RESULT = std::size_t{512} * 1024 * 1024;
        if (result.size() > LARGEST_RESULT) {
            throw vexa::Error(vexa::ErrorKind::Output,
                              "the result is larger than 512 MiB: it needs the field 'output'");
        }
    }

    /** Strings in JSON are Unicode: the XML declaration of a source is not to name an encoding. */
    static std::string withoutEncoding(std::string xml) {
        static const std::regex DECLARED(
            "^(?:\xEF\xBB\xBF)?<\\?xml\\s[^>]*?(\\sencoding\\s*=\\s*(?:\"[^\"<>]*\"|'[^'<>]*'))",
            std::regex::optimize);
        constexpr std::size_t LONGEST_DECLARATION = 200;
        std::smatch match;
        const std::string begin = xml.substr(0, LONGEST_DECLARATION);
        if (std::regex_search(begin, match, DECLARED)) {
            // Places stay as they are.
            xml.replace(static_cast<std::size_t>(match.position(1)),
                        static_cast<std::size_t>(match.length(1)),
                        static_cast<std::size_t>(match.length(1)), ' ');
        }
        return xml;
    }

    void run(const Request& request, const vexa::Output& output) {
        const auto stylesheet =
            m_stylesheets.get(request.stylesheet.value_or(m_options.stylesheet));
        if (!request.output) {
            checkEncoding(stylesheet.encoding());
        }
        vexa::Transformation run = m_session.prepare(stylesheet);
        const auto source = request.xml ? vexa::Input::text(withoutEncoding(*request.xml))
                                        : InputArgument(*request.file).input();
        const auto document = vexa::Document::parse(source, m_session.operationOptions());
        m_session.setExpressions(run, document);
        for (const Request::Param& param : request.params) {
            if (param.kind == Request::Param::Kind::Text) {
                run.parameter(param.name, param.text);
            } else if (param.kind == Request::Param::Kind::Number) {
                run.parameter(param.name, param.number);
            } else {
                run.parameter(param.name, param.boolean);
            }
        }
        run.to(document, output);
    }

    const WorkerOptions& m_options;
    Session& m_session;
    StylesheetCache m_stylesheets{
        [this](const std::string& name) { return m_session.compile(InputArgument(name)); }};
};

int work(const WorkerOptions& options, const WorkerChannel& channel, bool isFirst) {
    NamedFiles files;
    if (!options.stylesheet.empty()) {
        files.inputs.emplace_back(options.stylesheet);
    }
    Session session(options.run, files, [](const vexa::Diagnostic&, const std::string&) {});
    bool hasStarted = false;
    // Later it costs one request.
    const auto giveUp = [&](const std::string& text) {
        if (isFirst && !hasStarted) {
            channel.send(Report::Kind::GivenUp, text);
        }
        return EXIT_FAILED;
    };
    try {
        enterSandboxIfWanted(options.run, files);
        RequestRunner runner(options, session);
        if (isFirst) {
            runner.begin();
        }
        channel.send(Report::Kind::Started);
        hasStarted = true;
        while (const auto line = channel.nextJob()) {
            channel.send(Report::Kind::Done, runner.answer(*line));
        }
    } catch (const vexa::Error& error) {
        return giveUp(session.describe(error));
    } catch (const std::bad_alloc&) {
        return giveUp(oneLine(options.stylesheet) + ": out of memory");
    } catch (const std::exception& error) {
        return giveUp(oneLine(error.what()));
    }
    return EXIT_DONE;
}

int runWorker(const WorkerOptions& options) {
    if (options.stylesheet == STANDARD_STREAM) {
        throw UsageError(options.stylesheet, "standard input has the requests");
    }
    // One request that a process works on, and one that waits, so that the process need not.
    constexpr std::size_t REQUESTS_AHEAD = 2;
    RequestPool pool({options.stylesheet.empty() ? "worker" : oneLine(options.stylesheet),
                      options.run.limits, workersWithFiles(options.jobs), REQUESTS_AHEAD},
                     options.ordered, [&](const WorkerChannel& channel, bool isFirst) {
                         return work(options, channel, isFirst);
                     });
    pool.run();
    return EXIT_DONE;
}

void define(CLI::App& app, std::function<int()>& command) {
    const auto options = std::make_shared<WorkerOptions>();
    app.footer(MORE_HELP);
    app.add_option("STYLESHEET", options->stylesheet,
                   "The stylesheet of all requests that name none")
        ->type_name("");
    addJobsOption(app, options->jobs,
                  "Work on so many requests at the same time, instead of one for each processor");
    app.add_flag("--ordered", options->ordered,
                 "Write the answers in the order of the requests, and not as they are ready");
    addParameterOptions(app, options->run);
    addDocumentsOption(app, options->run);
    addRunOptions(app, options->run);
    app.callback([options, &command] { command = [options] { return runWorker(*options); }; });
}

} // namespace

const Command WORKER_COMMAND{"worker", DESCRIPTION, define};
