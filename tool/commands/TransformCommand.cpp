#include "TransformCommand.h"

#include "CommonOptions.h"
#include "EngineRun.h"
#include "EngineSession.h"
#include "Failure.h"
#include "MemoryFile.h"
#include "OutputFile.h"
#include "Source.h"
#include "TrailingNulFilter.h"

#include <vexa/VEXAXslTransformer.h>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

namespace {

constexpr const char* DESCRIPTION = "Run one stylesheet over one document";

constexpr const char* MORE_HELP =
    R"(Names are file names, taken literally; a URI (file:, http:) is taken as well.
An output file appears whole or not at all: after a failure, what was there
before is there still. Texts of xsl:message go to standard error.

Examples:
  # A page in a file
  vexa-xslt transform report.xsl orders.xml -o report.html

  # With parameters; to standard output
  vexa-xslt transform report.xsl orders.xml -p title=May -p currency=EUR

  # As a filter
  generate-orders | vexa-xslt transform report.xsl > report.html

  # Over the document of a stranger
  vexa-xslt transform report.xsl orders.xml --no-network --max-seconds 60)";

struct TransformOptions {
    std::string stylesheet;
    std::string source = STANDARD_STREAM;
    std::string output = STANDARD_STREAM;
    CommonOptions common;
};

/** One run of the command. */
class TransformRun {
public:
    explicit TransformRun(const TransformOptions& options);

    void run();

private:
    void transform(VEXAXslTransformer& transformer);
    void streamToFile(VEXAXslTransformer& transformer);
    void takeStreamRoad(VEXAXslTransformer& transformer, const std::string& outputName,
                        std::ostream& result);
    std::istream& openSource();

    const TransformOptions& m_options;
    InputName m_stylesheet;
    Source m_source;
};

TransformRun::TransformRun(const TransformOptions& options)
    : m_options(options), m_stylesheet(options.stylesheet), m_source(options.source) {}

void TransformRun::run() {
    m_stylesheet.checkReadable();
    m_source.checkReadable();
    NamedFiles files(m_source, m_options.output);
    files.inputs.push_back(&m_stylesheet);
    runWithTransformer(m_options.common, files, "transform",
                       [this](VEXAXslTransformer& transformer) { transform(transformer); });
}

void TransformRun::transform(VEXAXslTransformer& transformer) {
    const bool quiet = m_options.common.quiet;
    if (m_options.output != STANDARD_STREAM && m_source.document()) {
        transformToFile(transformer, m_stylesheet, m_source, m_options.output, quiet);
    } else if (m_options.output != STANDARD_STREAM) {
        streamToFile(transformer);
    } else if (!m_source.isStream()) {
        // Only the file road can read a URI, and it can write to nothing but a file.
        MemoryFile result(m_options.common.limits.maxMemory);
        takeFileRoad(transformer, {m_stylesheet, m_source, STANDARD_OUTPUT, result.path()}, quiet);
        result.copyTo(std::cout);
    } else {
        takeStreamRoad(transformer, STANDARD_OUTPUT, std::cout);
    }
    if (!std::cout.flush()) {
        throw Failure(STANDARD_OUTPUT, systemReason(errno));
    }
}

void TransformRun::streamToFile(VEXAXslTransformer& transformer) {
    OutputFile output(m_options.output);
    std::ofstream result(output.writePath(), std::ios::binary);
    takeStreamRoad(transformer, m_options.output, result);
    if (!result.flush()) {
        throw Failure(m_options.output, systemReason(errno));
    }
    output.commit();
}

void TransformRun::takeStreamRoad(VEXAXslTransformer& transformer, const std::string& outputName,
                                  std::ostream& result) {
    TrailingNulFilter withoutNul(*result.rdbuf());
    std::ostream output(&withoutNul);
    runEngine(transformer, {m_stylesheet, m_source, outputName, ""}, m_options.common.quiet, [&] {
        return transformer.doTransform(openSource(), m_stylesheet.forEngine(), output);
    });
}

std::istream& TransformRun::openSource() {
    std::istream& stream = m_source.open();
    if (m_source.document()) {
        // A stream has no base of its own: from its folder, the source's DTD and entities are
        // found.
        const std::filesystem::path path = displayName(m_source.document()->uri());
        std::error_code ignored;
        std::filesystem::current_path(path.parent_path(), ignored);
    }
    return stream;
}

} // namespace

void addTransformCommand(CLI::App& app, std::function<void()>& command) {
    const auto options = std::make_shared<TransformOptions>();
    CLI::App* const transform = app.add_subcommand("transform", DESCRIPTION);
    transform->footer(MORE_HELP);
    transform->add_option("STYLESHEET", options->stylesheet, "The stylesheet")
        ->type_name("")
        ->required();
    addSourceArgument(*transform, options->source);
    addOutputOption(*transform, options->output);
    addParameterOption(*transform, options->common);
    addEngineOptions(*transform, options->common);
    addLimitOptions(*transform, options->common.limits);
    transform->callback(
        [options, &command] { command = [options] { TransformRun(*options).run(); }; });
}
