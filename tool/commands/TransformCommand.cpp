#include "commands/TransformCommand.h"

#include "base/Errors.h"
#include "commands/Session.h"
#include "files/StandardOutput.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace {

constexpr const char* DESCRIPTION = "Run one stylesheet over one document";

constexpr const char* MORE_HELP =
    R"(Names are file names, taken literally; a URI (file:, http:) is taken as well.
An output file appears atomically: after a failure, what was there before is
there still. Texts of xsl:message go to standard error.

Examples:
  # A page in a file
  vexa-xslt transform report.xsl orders.xml -o report.html

  # With parameters; to standard output
  vexa-xslt transform report.xsl orders.xml -p title="May's orders"

  # As a filter
  generate-orders | vexa-xslt transform report.xsl > report.html

  # Over untrusted input
  vexa-xslt transform report.xsl orders.xml --sandbox --max-seconds 60)";

struct TransformOptions {
    std::string stylesheet;
    std::string source = STANDARD_STREAM;
    std::string output = STANDARD_STREAM;
    RunOptions run;
};

int runTransform(const TransformOptions& options) {
    NamedFiles files;
    files.output = options.output;
    files.inputs.emplace_back(options.stylesheet);
    files.inputs.emplace_back(options.source);
    checkFiles(files);
    const InputArgument& source = files.inputs[1];
    return runSession(options.run, files, source, [&](Session& session) {
        vexa::Transformation run = session.prepare(session.compile(files.inputs[0]));
        StandardOutput standardOutput;
        session.transform(run, source, outputTo(options.output, standardOutput));
    });
}

void define(CLI::App& app, std::function<int()>& command) {
    const auto options = std::make_shared<TransformOptions>();
    app.footer(MORE_HELP);
    app.add_option("STYLESHEET", options->stylesheet, "The stylesheet; standard input if it is -")
        ->type_name("")
        ->required();
    addSourceArgument(app, options->source);
    addOutputOption(app, options->output);
    addParameterOptions(app, options->run);
    addDocumentsOption(app, options->run);
    addRunOptions(app, options->run);
    addIsolateOption(app, options->run);
    app.callback([options, &command] { command = [options] { return runTransform(*options); }; });
}

} // namespace

const Command TRANSFORM_COMMAND{"transform", DESCRIPTION, define};
