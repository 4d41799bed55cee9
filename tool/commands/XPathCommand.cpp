#include "XPathCommand.h"

#include "EngineDiagnostics.h"
#include "EngineSession.h"
#include "FailedFile.h"
#include "Failure.h"
#include "HolderInput.h"
#include "engine/DocumentPrefixes.h"
#include "engine/XmlWriter.h"

#include <vexa/TqXsltFunction.h>
#include <vexa/VEXAXslTransformer.h>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <iostream>
#include <memory>
#include <sstream>

#include <xalanc/XPath/NodeRefListBase.hpp>
#include <xalanc/XPath/XPathEvaluator.hpp>
#include <xalanc/XalanDOM/XalanDocument.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDOMSupport.hpp>

namespace {

constexpr const char* DESCRIPTION = "Evaluate an XPath expression over a document";

constexpr const char* MORE_HELP =
    R"(Prints a string, a number or a boolean as its text, and of a node-set each node
on a line of its own: an attribute as its value, any other node as XML. Nothing
found is nothing printed, and no failure.

Prefixes are those that the document declares. A name without a prefix is in no
namespace, even where the document declares one for such names: then ask for
*[local-name() = "order"] instead of order.

Examples:
  # How many?
  vexa-xslt xpath 'count(//order)' orders.xml

  # Which? One line for each
  vexa-xslt xpath '//order[@state = "open"]/@id' orders.xml

  # Of what comes through a pipe
  curl -s http://host/orders.xml | vexa-xslt xpath 'string(//title)'

  # Where a namespace is declared for names without a prefix
  vexa-xslt xpath 'count(//*[local-name() = "order"])' orders.xml)";

struct XPathOptions {
    std::string expression;
    std::string source = STANDARD_STREAM;
    CommonOptions common;
};

void printNode(const xalanc::XalanNode& node) {
    if (node.getNodeType() == xalanc::XalanNode::ATTRIBUTE_NODE) {
        std::cout << TqXsltFunction::XalanDOMStringToI18NString(node.getNodeValue()).c_str();
    } else {
        // The writer flushes behind each node: straight to standard output, that is a system call
        // each.
        std::ostringstream text;
        writeXml(text, &node, XmlDeclaration::LeftOut);
        std::cout << text.str();
    }
    std::cout << '\n';
}

/** Prints what the library leaves unprinted: several nodes, an attribute, a number, a boolean. */
void printOtherResult(xalanc::XalanDocument* document, const std::string& expression) {
    xalanc::XalanSourceTreeDOMSupport domSupport;
    xalanc::XPathEvaluator evaluator;
    const DocumentPrefixes prefixes(document);
    const xalanc::XObjectPtr result = evaluator.evaluate(
        domSupport, document, xalanc::XalanDOMString(expression.c_str()).c_str(), prefixes);
    if (result->getType() != xalanc::XObject::eTypeNodeSet) {
        std::cout << TqXsltFunction::XalanDOMStringToI18NString(result->str()).c_str() << '\n';
        return;
    }
    const xalanc::NodeRefListBase& nodes = result->nodeset();
    for (xalanc::NodeRefListBase::size_type i = 0; i < nodes.getLength(); ++i) {
        printNode(*nodes.item(i));
    }
}

void evaluate(VEXAXslTransformer& transformer, Source& source, const XPathOptions& options) {
    const auto holder = parseSource(transformer, source, options.common.quiet);
    std::ostringstream text;
    EngineDiagnostics diagnostics(options.common.quiet);
    if (transformer.doXPath(*holder, toText(options.expression), text) != 0) {
        const std::string reason = transformer.getLastError();
        diagnostics.dropReportOf(reason);
        throw Failure(source.name(), reason);
    }
    if (text.tellp() > 0) {
        std::cout << text.str() << '\n';
    } else {
        printOtherResult(holder->GetDocument(), options.expression);
    }
    if (!std::cout.flush()) {
        throw Failure(STANDARD_OUTPUT, systemReason(errno));
    }
}

void runXPath(const XPathOptions& options) {
    Source source(options.source);
    source.checkReadable();
    runWithTransformer(
        options.common, NamedFiles(source), "query",
        [&](VEXAXslTransformer& transformer) { evaluate(transformer, source, options); });
}

} // namespace

void addXPathCommand(CLI::App& app, std::function<void()>& command) {
    const auto options = std::make_shared<XPathOptions>();
    CLI::App* const xpath = app.add_subcommand("xpath", DESCRIPTION);
    xpath->footer(MORE_HELP);
    xpath
        ->add_option("EXPRESSION", options->expression,
                     "The XPath 1.0 expression; in apostrophes, so that the shell leaves it alone")
        ->type_name("")
        ->required();
    addSourceArgument(*xpath, options->source);
    addEngineOptions(*xpath, options->common);
    addLimitOptions(*xpath, options->common.limits);
    xpath->callback([options, &command] { command = [options] { runXPath(*options); }; });
}
