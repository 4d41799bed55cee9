#include "ChainCommand.h"

#include "EngineRun.h"
#include "EngineSession.h"
#include "Failure.h"
#include "HolderInput.h"
#include "OutputFile.h"

#include <vexa/VEXAXslTransformer.h>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

namespace {

constexpr const char* DESCRIPTION = "Run stylesheet after stylesheet over one document, in memory";

constexpr const char* MORE_HELP =
    R"(Each stylesheet works on the result of the one before, without turning it into
text. The last one's output settings say how the result is written. Parameters
go to every stylesheet. An output file appears whole or not at all.

Examples:
  # Keep the open orders only, and turn these into a page
  vexa-xslt chain orders.xml open-only.xsl report.xsl -o open.html

  # As a filter, with a parameter
  generate-orders | vexa-xslt chain - open-only.xsl report.xsl -p title=Open)";

struct ChainOptions {
    std::string source;
    std::vector<std::string> stylesheets;
    std::string output = STANDARD_STREAM;
    CommonOptions common;
};

/** One run of the command. */
class ChainRun {
public:
    explicit ChainRun(const ChainOptions& options)
        : m_options(options), m_source(options.source),
          m_stylesheets(options.stylesheets.begin(), options.stylesheets.end()) {}

    void run();

private:
    void chain(VEXAXslTransformer& transformer);
    void chainTo(VEXAXslTransformer& transformer, const std::string& outputName,
                 std::ostream& result);
    void runStep(VEXAXslTransformer& transformer, const InputName& stylesheet, Dom2Dom& in,
                 Dom2Dom& out, const std::string& outputName);

    const ChainOptions& m_options;
    Source m_source;
    std::vector<InputName> m_stylesheets;
};

void ChainRun::run() {
    m_source.checkReadable();
    NamedFiles files(m_source, m_options.output);
    for (const InputName& stylesheet : m_stylesheets) {
        stylesheet.checkReadable();
        files.inputs.push_back(&stylesheet);
    }
    runWithTransformer(m_options.common, files, "transforms",
                       [this](VEXAXslTransformer& transformer) { chain(transformer); });
}

void ChainRun::chain(VEXAXslTransformer& transformer) {
    if (m_options.output == STANDARD_STREAM) {
        chainTo(transformer, STANDARD_OUTPUT, std::cout);
    } else {
        OutputFile output(m_options.output);
        std::ofstream result(output.writePath(), std::ios::binary);
        chainTo(transformer, m_options.output, result);
        output.commit();
    }
}

void ChainRun::chainTo(VEXAXslTransformer& transformer, const std::string& outputName,
                       std::ostream& result) {
    auto current = parseSource(transformer, m_source, m_options.common.quiet);
    for (const InputName& stylesheet : m_stylesheets) {
        auto next = transformer.createDom2Dom();
        if (&stylesheet == &m_stylesheets.back()) {
            next->InitializeOutputTarget(result);
        } else {
            next->InitializeOutputTarget();
        }
        runStep(transformer, stylesheet, *current, *next, outputName);
        current = std::move(next);
    }
    if (!result.flush()) {
        throw Failure(outputName, systemReason(errno));
    }
}

void ChainRun::runStep(VEXAXslTransformer& transformer, const InputName& stylesheet, Dom2Dom& in,
                       Dom2Dom& out, const std::string& outputName) {
    runEngine(transformer, {stylesheet, m_source, outputName, ""}, m_options.common.quiet,
              [&] { return transformer.doTransform(in, stylesheet.forEngine(), out); });
}

} // namespace

void addChainCommand(CLI::App& app, std::function<void()>& command) {
    const auto options = std::make_shared<ChainOptions>();
    CLI::App* const chain = app.add_subcommand("chain", DESCRIPTION);
    chain->footer(MORE_HELP);
    chain->add_option("SOURCE", options->source, "The document; standard input if it is -")
        ->type_name("")
        ->required();
    chain
        ->add_option("STYLESHEET", options->stylesheets,
                     "The stylesheets, in the order in which they run")
        ->type_name("")
        ->required();
    addOutputOption(*chain, options->output);
    addParameterOption(*chain, options->common);
    addEngineOptions(*chain, options->common);
    addLimitOptions(*chain, options->common.limits);
    chain->callback([options, &command] { command = [options] { ChainRun(*options).run(); }; });
}
