#include "TransformCommand.h"

#include "CommonOptions.h"
#include "EngineDiagnostics.h"
#include "EngineSession.h"
#include "FailedFile.h"
#include "Failure.h"
#include "MemoryFile.h"
#include "NoNetwork.h"
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
    void transformToOutputFile(VEXAXslTransformer& transformer);
    void takeFileRoad(VEXAXslTransformer& transformer, const std::string& outputName,
                      const std::string& writePath);
    void takeStreamRoad(VEXAXslTransformer& transformer, const std::string& outputName,
                        std::ostream& result);
    std::istream& openSource();

    template <typename Road>
    void runEngine(VEXAXslTransformer& transformer, const std::string& outputName,
                   const std::string& writePath, Road road);

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
    if (m_options.output != STANDARD_STREAM) {
        transformToOutputFile(transformer);
    } else if (!m_source.isStream()) {
        // Only the file road can read a URI, and it can write to nothing but a file.
        MemoryFile result(m_options.common.limits.maxMemory);
        takeFileRoad(transformer, STANDARD_OUTPUT, result.path());
        result.copyTo(std::cout);
    } else {
        takeStreamRoad(transformer, STANDARD_OUTPUT, std::cout);
    }
    if (!std::cout.flush()) {
        throw Failure(STANDARD_OUTPUT, systemReason(errno));
    }
}

void TransformRun::transformToOutputFile(VEXAXslTransformer& transformer) {
    OutputFile output(m_options.output);
    if (m_source.document()) {
        takeFileRoad(transformer, m_options.output, output.writePath());
    } else {
        std::ofstream result(output.writePath(), std::ios::binary);
        takeStreamRoad(transformer, m_options.output, result);
        if (!result.flush()) {
            throw Failure(m_options.output, systemReason(errno));
        }
    }
    output.commit();
}

void TransformRun::takeFileRoad(VEXAXslTransformer& transformer, const std::string& outputName,
                                const std::string& writePath) {
    runEngine(transformer, outputName, writePath, [&] {
        return transformer.doTransform(m_source.document()->forEngine(), m_stylesheet.forEngine(),
                                       toText(writePath));
    });
}

void TransformRun::takeStreamRoad(VEXAXslTransformer& transformer, const std::string& outputName,
                                  std::ostream& result) {
    TrailingNulFilter withoutNul(*result.rdbuf());
    std::ostream output(&withoutNul);
    runEngine(transformer, outputName, "", [&] {
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

template <typename Road>
void TransformRun::runEngine(VEXAXslTransformer& transformer, const std::string& outputName,
                             const std::string& writePath, Road road) {
    EngineDiagnostics diagnostics(m_options.common.quiet);
    if (road() == 0) {
        tellRefusedNetwork();
        return;
    }
    const std::string reason = transformer.getLastError();
    const bool isAboutSource = diagnostics.dropReportOf(reason);
    m_source.checkRead();
    const TransformDocuments documents{m_stylesheet, m_source, outputName, writePath};
    throw Failure(failedFile(reason, documents, isAboutSource), readableReason(reason, documents));
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
