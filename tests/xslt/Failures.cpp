#include "Failures.h"

#include "XsltTest.h"

#include <sstream>
#include <streambuf>

using vexa::Document;
using vexa::Input;
using vexa::Node;
using vexa::Options;
using vexa::Output;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::XPath;

namespace {

Options withResolver(vexa::Resolver resolver) {
    Options options;
    options.access.externalEntities = true;
    options.resolver = std::move(resolver);
    return options;
}

Options withThrowingResolver() {
    return withResolver([](const std::string&, const std::string&) -> std::optional<Input> {
        throw HostFailure();
    });
}

void compile(const std::string& content, const Options& options = {}) {
    Stylesheet::compile(Input::text(stylesheet(content)), options);
}

/** Compiles, parses and transforms anew. */
void transform(const std::string& content, const Options& options = {}) {
    transformed(content, "<a><b/><b/></a>", options);
}

/** Uses one Transformation again and again: kept with its engine between the calls. */
std::function<void()> again(const std::string& content, const Options& options = {}) {
    const auto run = std::make_shared<Transformation>(compiledRootTemplate(content), options);
    run->function("urn:f", "throwing",
                  [](const vexa::Call&) -> vexa::Value { throw HostFailure(); });
    return [run] { run->toString(Input::text("<a><b/><b/></a>")); };
}

class FullBuffer : public std::streambuf {};

std::vector<Failure> makeAll() {
    const std::string call = "<xsl:value-of select='f:throwing()' xmlns:f='urn:f'/>";
    const std::string terminate = "<b/><xsl:message terminate='yes'>end</xsl:message>";
    const std::string reading = "<b><xsl:copy-of select='document(\"mem:/d\")'/></b>";
    const std::string undeclared = "<b><xsl:value-of select='$none'/></b>";
    std::vector<Failure> all;
    const auto add = [&](const char* name, std::function<void()> fail) {
        all.push_back({name, std::move(fail)});
    };
    // Documents.
    add("ParseError", [] { parsed("<a><b>text</b>"); });
    add("ParseErrorInAnEntity", [] { parsed("<!DOCTYPE a [<!ENTITY e '<b>'>]><a>&e;</a>"); });
    add("ParseErrorInADtd", [] { parsed("<!DOCTYPE a [<!ELEMENT >]><a/>"); });
    add("ParseErrorInAnExternalDtd", [] {
        Document::parse(Input::text("<!DOCTYPE a SYSTEM 'mem:/d'><a/>"),
                        withResolver([](const std::string&, const std::string&) {
                            return Input::text("<!ELEMENT a ANY><!nonsense>");
                        }));
    });
    add("ParseErrorOfTheEncoding", [] { parsed("<?xml version='1.0' encoding='nonsense'?><a/>"); });
    add("ParseErrorOfNoText", [] { parsed(""); });
    add("MissingFile", [] { Document::parse(Input::file("/none/such.xml")); });
    add("DirectoryAsFile", [] { Document::parse(Input::file("/tmp")); });
    add("MissingEntity", [] {
        Document::parse(Input::text("<!DOCTYPE a SYSTEM 'file:///none'><a/>"),
                        withResolver(nullptr));
    });
    add("DeniedEntity", [] { parsed("<!DOCTYPE a SYSTEM 'file:///none'><a/>"); });
    add("DeniedUri", [] { Document::parse(Input::uri("http://h/")); });
    add("ThrowingResolverOfAnEntity", [] {
        Document::parse(Input::text("<!DOCTYPE a SYSTEM 'mem:/d'><a/>"), withThrowingResolver());
    });
    add("UsedStream", [] {
        std::istringstream stream("<a/>");
        const Input input = Input::stream(stream);
        Document::parse(input);
        Document::parse(input);
    });
    add("FailingStream", [] {
        std::istream stream(nullptr);
        Document::parse(Input::stream(stream));
    });
    add("DocumentThatCannotBeWritten", [] {
        FullBuffer buffer;
        std::ostream stream(&buffer);
        parsed("<a/>").write(Output::stream(stream));
    });
    // Stylesheets.
    add("StylesheetThatIsNotWellFormed", [] { compile("<xsl:template>"); });
    add("CompileError", [] { compile("<xsl:template match='/'><xsl:nonsense/></xsl:template>"); });
    add("CompileErrorInAnExpression",
        [] { compile("<xsl:template match='/'><xsl:value-of select='a['/></xsl:template>"); });
    add("CompileErrorInAPattern", [] { compile("<xsl:template match='a['/>"); });
    add("CompileErrorOfAFunction",
        [] { compile("<xsl:template match='/'><xsl:value-of select='none()'/></xsl:template>"); });
    add("CompileErrorAtTheEnd",
        [] { compile("<xsl:template name='t'/><xsl:template name='t'/>"); });
    add("MissingModule", [] { compile("<xsl:include href='file:///none'/>"); });
    add("DeniedModule", [] { compile("<xsl:import href='http://h/'/>"); });
    add("ModuleThatIsNotWellFormed", [] {
        compile("<xsl:import href='mem:/m'/>",
                withResolver(
                    [](const std::string&, const std::string&) { return Input::text("<a>"); }));
    });
    add("CompileErrorInAModule", [] {
        compile("<xsl:import href='mem:/m'/>",
                withResolver([](const std::string&, const std::string&) {
                    return Input::text(stylesheet("<xsl:nonsense/>"));
                }));
    });
    add("ThrowingResolverOfAModule",
        [] { compile("<xsl:include href='mem:/m'/>", withThrowingResolver()); });
    // Expressions.
    add("ExpressionThatIsWrong", [] { XPath::compile("a["); });
    add("ExpressionWithAnUnknownPrefix", [] { XPath::compile("p:a"); });
    add("ExpressionWithAnUndeclaredVariable",
        [] { XPath::compile("$none").evaluate(parsed("<a/>")); });
    add("ExpressionWithATypeError",
        [] { XPath::compile("count(string(1))").evaluate(parsed("<a/>")); });
    add("ExpressionWithADeniedDocument",
        [] { XPath::compile("document('http://h/')").evaluate(parsed("<a/>")); });
    // Transforms, each with a new Transformation and with a kept one.
    const auto addBoth = [&](const std::string& name, const std::string& content,
                             const Options& options = {}) {
        add(name.c_str(), [=] { transform(content, options); });
        add((name + "Again").c_str(), again(content, options));
    };
    addBoth("Terminate", terminate);
    addBoth(
        "TerminateDeepInside",
        "<xsl:variable name='v'><b><xsl:for-each select='//b'><xsl:sort select='.'/>"
        "<xsl:attribute name='x'><xsl:message terminate='yes'/></xsl:attribute></xsl:for-each></b>"
        "</xsl:variable><xsl:copy-of select='$v'/>");
    addBoth("UndeclaredVariable", undeclared);
    addBoth("UndeclaredVariableInATree",
            "<xsl:variable name='v'><c><xsl:copy-of select='//b[. = $none]'/></c></xsl:variable>"
            "<xsl:copy-of select='$v'/>");
    addBoth("TypeError", "<b><xsl:value-of select='count(string(1))'/></b>");
    addBoth("UnknownExtensionFunction", "<xsl:value-of select='f:none()' xmlns:f='urn:f'/>");
    addBoth("DeniedDocument", "<b><xsl:copy-of select='document(\"http://h/\")'/></b>");
    addBoth("ThrowingResolverOfADocument", reading, withThrowingResolver());
    addBoth("ThrowingHandlerOfMessages", "<b><xsl:message>m</xsl:message></b>", [] {
        Options options;
        options.onMessage = [](const vexa::Diagnostic&) { throw HostFailure(); };
        return options;
    }());
    addBoth("ThrowingHandlerOfWarnings", reading, [] {
        Options options =
            withResolver([](const std::string&, const std::string&) { return Input::text("<d>"); });
        options.onMessage = [](const vexa::Diagnostic&) { throw HostFailure(); };
        return options;
    }());
    add("ThrowingFunction", again(call));
    add("ThrowingFunctionDeepInside",
        again("<xsl:variable name='v'><b><xsl:for-each select='//b'><c>" + call +
              "</c></xsl:for-each></b></xsl:variable><xsl:copy-of select='$v'/>"));
    add("TransformOfAMalformedSource", [] {
        Transformation run(compiledRootTemplate("<b/>"));
        run.toString(Input::text("<a>"));
    });
    add("TransformWithoutADocumentElement", [] {
        Transformation run(compiledRootTemplate("text"));
        run.toString(run.toDocument(Input::text("<a/>")));
    });
    add("OutputThatCannotBeOpened", [] {
        Transformation run(compiledRootTemplate("<b/>"));
        run.to(Input::text("<a/>"), Output::file("/none/such"));
    });
    add("FullDevice", [] {
        Transformation run(compiledRootTemplate("<b>" + std::string(100'000, 'x') + "</b>"));
        run.to(Input::text("<a/>"), Output::file("/dev/full"));
    });
    add("FullStream", [] {
        FullBuffer buffer;
        std::ostream stream(&buffer);
        Transformation run(compiledRootTemplate("<b/>"));
        run.to(Input::text("<a/>"), Output::stream(stream));
    });
    add("ToDocumentThatFails", [=] {
        Transformation run(compiledRootTemplate("<b/>text" + terminate));
        run.toDocument(Input::text("<a/>"));
    });
    // Use of the interface.
    add("ParameterWithNul", [] {
        Transformation run(compiledRootTemplate("<b/>"));
        run.parameter("p", std::string(1, '\0'));
    });
    add("EmptyNode", [] { Node().xml(); });
    return all;
}

} // namespace

const std::vector<Failure>& allFailures() {
    static const std::vector<Failure> failures = makeAll();
    return failures;
}
