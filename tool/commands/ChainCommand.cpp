#include "commands/ChainCommand.h"

#include "commands/Session.h"
#include "files/StandardOutput.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace {

constexpr const char* DESCRIPTION = "Run stylesheet after stylesheet over one document, in memory";

constexpr const char* MORE_HELP =
    R"(Each stylesheet works on the result of the one before, without turning it into
text. The last one's output settings say how the result is written. Parameters
go to every stylesheet. An output file appears atomically.

Examples:
  # Keep the open orders only, and turn these into a page
  vexa-xslt chain orders.xml open-only.xsl report.xsl -o open.html

  # As a filter, with a parameter
  generate-orders | vexa-xslt chain - open-only.xsl report.xsl -p title=Open)";

struct ChainOptions {
    std::string source;
    std::vector<std::string> stylesheets;
    std::string output = STANDARD_STREAM;
    RunOptions run;
};

/** Of a document without one no stylesheet makes anything. */
void requireElement(const vexa::Document& result, const InputArgument& stylesheet) {
    const vexa::XPath hasElement = vexa::XPath::compile("boolean(/*)");
    if (!hasElement.evaluate(result).boolean()) {
        throw vexa::Error(vexa::ErrorKind::Transform, "the result has no document element",
                          {stylesheet.uri(), 0, 0});
    }
}

void runChain(Session& session, const NamedFiles& files) {
    std::vector<vexa::Transformation> runs;
    for (std::size_t i = 1; i < files.inputs.size(); ++i) {
        runs.push_back(session.prepare(session.compile(files.inputs[i])));
    }
    vexa::Document document = session.parse(files.inputs[0]);
    for (vexa::Transformation& run : runs) {
        session.setExpressions(run, document);
    }
    StandardOutput standardOutput;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        vexa::Transformation& run = runs[i];
        if (&run == &runs.back()) {
            run.to(document, outputTo(files.output, standardOutput));
        } else {
            document = run.toDocument(document);
            requireElement(document, files.inputs[i + 1]);
        }
        session.timing().endPhase("transform");
    }
}

int runChain(const ChainOptions& options) {
    NamedFiles files;
    files.output = options.output;
    files.inputs.emplace_back(options.source);
    for (const std::string& stylesheet : options.stylesheets) {
        files.inputs.emplace_back(stylesheet);
    }
    checkFiles(files);
    return runSession(options.run, files, files.inputs[0],
                      [&](Session& session) { runChain(session, files); });
}

void define(CLI::App& app, std::function<int()>& command) {
    const auto options = std::make_shared<ChainOptions>();
    app.footer(MORE_HELP);
    app.add_option("SOURCE", options->source, "The document; standard input if it is -")
        ->type_name("")
        ->required();
    app.add_option("STYLESHEET", options->stylesheets,
                   "The stylesheets, in the order in which they run")
        ->type_name("")
        ->required();
    addOutputOption(app, options->output);
    addParameterOptions(app, options->run);
    addDocumentsOption(app, options->run);
    addRunOptions(app, options->run);
    addIsolateOption(app, options->run);
    app.callback([options, &command] { command = [options] { return runChain(*options); }; });
}

} // namespace

const Command CHAIN_COMMAND{"chain", DESCRIPTION, define};
