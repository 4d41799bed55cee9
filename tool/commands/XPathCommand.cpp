#include "commands/XPathCommand.h"

#include "base/Errors.h"
#include "commands/Session.h"
#include "files/StandardOutput.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace {

constexpr const char* DESCRIPTION = "Evaluate an XPath expression over a document";

constexpr const char* MORE_HELP =
    R"(Prints a string, a number or a boolean as its text, and of a node-set each node
on a line of its own: an attribute or a namespace as its value, any other node
as XML. An empty node-set prints nothing, and is no failure.

The prefixes that the document declares are known. A name without a prefix is
in no namespace, even where the document declares one for such names: bind it
to a prefix with -n.

Examples:
  # How many?
  vexa-xslt xpath 'count(//order)' orders.xml

  # Which? One line for each
  vexa-xslt xpath '//order[@state = "open"]/@id' orders.xml

  # Of what comes through a pipe
  curl -s http://host/orders.xml | vexa-xslt xpath 'string(//title)'

  # Where a namespace is declared for names without a prefix
  vexa-xslt xpath 'count(//o:order)' orders.xml -n o=urn:orders)";

struct XPathOptions {
    std::string expression;
    std::string source = STANDARD_STREAM;
    std::vector<std::string> namespaces;
    RunOptions run;
};

vexa::Namespaces readNamespaces(const std::vector<std::string>& arguments) {
    vexa::Namespaces namespaces;
    for (const std::string& argument : arguments) {
        const Parameter binding = parseParameter("-n", Parameter::Kind::String, argument);
        if (binding.value.empty() || binding.name.front() == '{') {
            throw UsageError("-n " + argument, "expected PREFIX=URI, such as o=urn:orders");
        }
        namespaces[binding.name] = binding.value;
    }
    return namespaces;
}

/** Prints lines, as far as the limit allows. */
class Printer {
public:
    explicit Printer(const Limits& limits) : m_limits(limits) {}

    void print(const std::string& text) {
        constexpr std::size_t MEBIBYTE = std::size_t{1024} * 1024;
        m_nPrinted += text.size() + 1;
        if (m_limits.maxOutput != 0 && (m_nPrinted - 1) / MEBIBYTE >= m_limits.maxOutput) {
            throw Failure("expression", outputLimitText(m_limits));
        }
        m_output << text << '\n';
    }

    void finish() { m_output.flush(); }

private:
    const Limits& m_limits;
    StandardOutput m_output;
    std::size_t m_nPrinted = 0;
};

void printValue(const vexa::Value& value, Printer& printer) {
    if (value.type() != vexa::Value::Type::NodeSet) {
        printer.print(value.string());
        return;
    }
    for (const vexa::Node& node : value.nodes()) {
        printer.print(node.xml());
    }
}

int runXPath(const XPathOptions& options) {
    NamedFiles files;
    files.inputs.emplace_back(options.source);
    requireUtf8("expression", options.expression);
    const vexa::Namespaces namespaces = readNamespaces(options.namespaces);
    return runSession(options.run, files, files.inputs[0], [&](Session& session) {
        const vexa::Document source = session.parse(files.inputs[0]);
        const vexa::Value value = session.evaluate(options.expression, source, namespaces);
        session.timing().endPhase("expression");
        Printer printer(options.run.limits);
        printValue(value, printer);
        printer.finish();
    });
}

void define(CLI::App& app, std::function<int()>& command) {
    const auto options = std::make_shared<XPathOptions>();
    app.footer(MORE_HELP);
    app.add_option("EXPRESSION", options->expression,
                   "The XPath 1.0 expression; in apostrophes, so that the shell leaves it alone")
        ->type_name("")
        ->required();
    addSourceArgument(app, options->source);
    app.add_option("-n,--namespace", options->namespaces,
                   "Bind a prefix of the expression; once for each prefix")
        ->type_name("PREFIX=URI")
        ->allow_extra_args(false);
    addRunOptions(app, options->run);
    addIsolateOption(app, options->run);
    app.callback([options, &command] { command = [options] { return runXPath(*options); }; });
}

} // namespace

const Command XPATH_COMMAND{"xpath", DESCRIPTION, define};
