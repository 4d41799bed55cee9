#include "commands/RecordsCommand.h"

#include "base/Descriptor.h"
#include "base/Errors.h"
#include "commands/Session.h"
#include "process/FileLimit.h"
#include "records/RecordOutput.h"
#include "records/RecordPipeline.h"

#include <vexa/xslt/Records.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <fcntl.h>
#include <memory>
#include <new>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char* DESCRIPTION = "Run one stylesheet over each record of a large document";

constexpr const char* MORE_HELP =
    R"(A record is an outermost element of this name. It is transformed as a document
of its own, with the namespaces and the base URI that it has; results follow one
another in the order of the source. Memory is bounded by the largest record, not
by the source. A record that fails is reported, and the others go on. Limits
hold for each record.

Examples:
  # Each order of a document that is larger than memory, as a line of a table
  vexa-xslt records order-line.xsl orders.xml -e order -o orders.csv

  # From a compressed file, into one document
  zcat orders.xml.gz |
    vexa-xslt records open-only.xsl -e order --wrap orders > open.xml

  # Elements of a namespace
  vexa-xslt records order-line.xsl orders.xml \
    -e '{http://vexa.example/orders}order'

  # Over untrusted input
  vexa-xslt records order-line.xsl orders.xml -e order --sandbox --max-seconds 9)";

struct RecordsOptions {
    std::string stylesheet;
    std::string source = STANDARD_STREAM;
    std::string element;
    std::string output = STANDARD_STREAM;
    std::string wrap;
    unsigned jobs = 1;
    RunOptions run;
};

/** Whether it is an element's name without a prefix. */
bool isLocalName(const std::string& name) {
    try {
        const auto document = vexa::Document::parse(vexa::Input::text("<" + name + "/>"));
        return vexa::XPath::compile("local-name(/*)").evaluate(document).string() == name;
    } catch (const vexa::Error&) {
        return false;
    }
}

void checkNames(const RecordsOptions& options) {
    const auto brace = options.element.rfind('}');
    const bool hasUri = options.element.rfind('{', 0) == 0 && brace != std::string::npos;
    if (!isLocalName(hasUri ? options.element.substr(brace + 1) : options.element)) {
        throw UsageError("-e",
                         "expected a local name, or {uri}name, got '" + options.element + "'");
    }
    if (!options.wrap.empty() && !isLocalName(options.wrap)) {
        throw UsageError("--wrap", "expected the name of an element without a prefix, got '" +
                                       options.wrap + "'");
    }
}

/** What is left of the source, if that is known; or 0. */
std::uint64_t sizeOf(const InputArgument& source) {
    struct stat status {};
    const auto path = source.path();
    const bool isThere =
        path ? stat(path->c_str(), &status) == 0 : fstat(STDIN_FILENO, &status) == 0;
    if (!isThere || !S_ISREG(status.st_mode)) {
        return 0;
    }
    const off_t begin = source.isStandardInput() ? lseek(STDIN_FILENO, 0, SEEK_CUR) : 0;
    return static_cast<std::uint64_t>(std::max<off_t>(status.st_size - begin, 0));
}

/** What the source may have to be waited for: it comes from a pipe, or from a terminal. */
Descriptor waitsFor(const InputArgument& source) {
    if (source.isStandardInput()) {
        return Descriptor(dup(STDIN_FILENO));
    }
    // The same pipe once more: only to ask whether it has something.
    struct stat status {};
    const auto path = source.path();
    const bool isPipe = path && stat(path->c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
    return Descriptor(isPipe ? open(path->c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC) : -1);
}

/** Transforms a packed record. */
void transform(const std::string& packed, Session& session, vexa::Transformation& run,
               const WorkerChannel& channel) {
    // A report cannot be longer than 4 GiB.
    constexpr std::uint64_t LARGEST_RESULT = std::uint64_t{2} * 1024 * 1024 * 1024;
    try {
        const auto record = vexa::Records::unpack(packed, session.operationOptions());
        session.setExpressions(run, record);
        const std::string result = run.toString(record);
        if (result.size() > LARGEST_RESULT) {
            channel.send(Report::Kind::Failed, "the result is larger than 2 GiB");
        } else {
            channel.send(Report::Kind::Done, result);
        }
    } catch (const vexa::Error& error) {
        channel.send(Report::Kind::Failed, session.describe(error));
    } catch (const std::bad_alloc&) {
        channel.send(Report::Kind::Failed, "out of memory");
    }
}

/** @throws std::runtime_error where records failed */
void transformAll(const RecordsOptions& options, const NamedFiles& files, Session& session) {
    const InputArgument& source = files.inputs[1];
    vexa::Transformation run = session.prepare(session.compile(files.inputs[0]));
    session.names().setDefault(source.name());
    vexa::Records records(source.input(), options.element, session.operationOptions());
    const Descriptor pipe = waitsFor(source);
    RecordOutput output(options.output, options.wrap);
    RecordPipeline pipeline(
        {source.name(), options.run.limits, workersWithFiles(options.jobs), pipe.get(),
         sizeOf(source), !options.run.quiet},
        records, output,
        [&](const WorkerChannel& channel, bool /*isFirst*/) {
            session.setEmit([&](const vexa::Diagnostic&, const std::string& text) {
                channel.send(Report::Kind::Message, text);
            });
            channel.send(Report::Kind::Started);
            while (const auto packed = channel.nextJob()) {
                transform(*packed, session, run, channel);
            }
            return EXIT_DONE;
        },
        [&](const vexa::Error& error) { return session.describe(error); });
    const bool isWhole = pipeline.run();
    output.finish();
    session.timing().endPhase("records");
    const Tally& tally = pipeline.tally();
    if (tally.failed != 0 || !isWhole) {
        throw std::runtime_error(std::to_string(tally.done) + " of " +
                                 std::to_string(tally.finished()) + " records done" +
                                 (isWhole ? "" : ", then the source broke off"));
    }
    if (tally.finished() == 0) {
        printError(oneLine(source.name()) + ": warning: no element '" + options.element + "'");
    }
}

int runRecords(const RecordsOptions& options) {
    checkNames(options);
    NamedFiles files;
    files.output = options.output;
    files.inputs.emplace_back(options.stylesheet);
    files.inputs.emplace_back(options.source);
    checkFiles(files);
    return runSession(options.run, files, files.inputs[1],
                      [&](Session& session) { transformAll(options, files, session); });
}

void define(CLI::App& app, std::function<int()>& command) {
    const auto options = std::make_shared<RecordsOptions>();
    options->run.isolate = true;
    options->run.limitsParts = true;
    app.footer(MORE_HELP);
    app.add_option("STYLESHEET", options->stylesheet, "The stylesheet; standard input if it is -")
        ->type_name("")
        ->required();
    addSourceArgument(app, options->source);
    app.add_option(
           "-e,--element", options->element,
           "The records are the outermost elements of this name: a local name, or {uri}name")
        ->type_name("ELEMENT")
        ->required();
    addOutputOption(app, options->output);
    app.add_option("--wrap", options->wrap,
                   "Put an element of this name around all results, and leave out the XML "
                   "declaration of each")
        ->type_name("NAME");
    addJobsOption(app, options->jobs,
                  "Transform in so many processes, instead of one for each processor");
    addParameterOptions(app, options->run);
    addDocumentsOption(app, options->run);
    addRunOptions(app, options->run);
    app.callback([options, &command] { command = [options] { return runRecords(*options); }; });
}

} // namespace

const Command RECORDS_COMMAND{"records", DESCRIPTION, define};
