/**
 * @file
 * The operations of the second interface in any order.
 */
#include "support/BoundedHeap.h"
#include "support/BoundedOutput.h"
#include "support/Check.h"
#include "support/Outcome.h"
#include "support/ScratchFile.h"
#include "support/Silence.h"

#include <vexa/xslt.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

using vexa::Document;
using vexa::Input;
using vexa::Node;
using vexa::Options;
using vexa::Output;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::Value;
using vexa::XPath;

namespace {

constexpr std::size_t MOST_OBJECTS = 6; // of each class
constexpr std::size_t LARGEST_RESULT = std::size_t{32} * 1024;

constexpr const char* SOURCES[] = {
    "<a/>",
    "<a x='1'><b>t</b><b>u</b></a>",
    "<n:a xmlns:n='urn:n'><!--c--><?p i?><n:b>\xF0\x9F\x98\x80</n:b></n:a>",
    "<!DOCTYPE a [<!ENTITY e 'text'><!ATTLIST a d CDATA 'v' i ID #IMPLIED>]>"
    "<a i='a'>&e;<![CDATA[<]]>&#13;&#9;</a>",
    "<!DOCTYPE a SYSTEM 'mem:/dtd'><a/>",
    "<!DOCTYPE a [<!ENTITY e SYSTEM 'mem:/e'>]><a>&e;</a>",
    "<a><b></a>",
    "",
    "text",
    "<?xml version='1.0' encoding='no-such'?><a/>",
    "<!DOCTYPE a [<!NOTATION n SYSTEM 'n'><!ENTITY u SYSTEM '' NDATA n>]><a/>",
    "<?xml version='1.1'?><a>&#1;</a>",
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
    "<xsl:template name='included'/></xsl:stylesheet>"};

constexpr const char* TEMPLATES[] = {
    "<out><xsl:copy-of select='/'/></out>",
    "<xsl:copy-of select='node()'/>",
    "text only",
    "",
    "<a/><b/>",
    "<!--c--><xsl:comment>c</xsl:comment><xsl:processing-instruction name='p'/><a/>",
    "<a><xsl:message terminate='yes'>end</xsl:message></a>",
    "<a><xsl:message>go on</xsl:message></a>",
    "<a><xsl:message><xsl:value-of select='f:f(1)'/></xsl:message></a>",
    "<a><xsl:value-of select='f:f(., 1, \"t\", true(), //@*)'/></a>",
    "<a><xsl:for-each select='//*'><xsl:copy-of select='f:f(.)'/></xsl:for-each></a>",
    "<a><xsl:copy-of select='f:f(document(\"mem:/d\"))'/></a>",
    "<a><xsl:copy-of select='document(f:f())'/></a>",
    ("<xsl:variable name='v'><b x='{f:f()}'>t<!--c--></b><b/></xsl:variable>"
     "<a><xsl:copy-of select='f:f($v)'/><xsl:copy-of select='e:node-set($v)/b'/></a>"),
    "<a><xsl:for-each select='//*[f:f(.)]'><xsl:sort select='f:f()'/><c/></xsl:for-each></a>",
    "<a p='{$p}'><xsl:for-each select='//*'><xsl:sort/><xsl:number/></xsl:for-each></a>",
    "<a><xsl:copy-of select='$p'/></a>",
    "<a><xsl:copy-of select='$p[1] | //*[1]'/></a>",
    "<a><xsl:value-of select=\"format-number(1234.5, '#,##0.00')\"/></a>",
    "<a><xsl:apply-templates select=\"document('')//*\" mode='m'/></a>",
    "<a><xsl:copy-of select=\"document('mem:/d', /)\"/></a>",
    "<a><xsl:copy-of select=\"document('http://h/')\"/></a>",
    "<a><xsl:copy-of select=\"document('file:///none')\"/></a>",
    "<a><xsl:copy-of select=\"key('k', 'b')\"/><xsl:copy-of select=\"id('a')\"/></a>",
    "<a xsl:use-attribute-sets='s'><n:b xmlns:n='urn:m'/></a>",
    "<a><xsl:attribute name='n:x' namespace='urn:{name(*)}'>&#13;&#9;'\"</xsl:attribute></a>",
    "<a><xsl:attribute name='x' namespace='urn:x'>made-up prefix</xsl:attribute></a>",
    "<a><xsl:value-of select='count(string(1))'/></a>",
    "<a><xsl:value-of select='$none'/></a>",
    "<a><xsl:call-template name='none'/></a>",
    "<a><xsl:value-of select='x:evaluate(\"//b\")'/></a>",
    "<a><xsl:value-of select='f:none()'/></a>",
    "<a><xsl:text disable-output-escaping='yes'>&lt;b></xsl:text>]]&gt;</a>",
    "<a>"};

constexpr const char* TOP_LEVEL[] = {
    "",
    "<xsl:output method='html'/>",
    "<xsl:output method='text' encoding='ISO-8859-1'/>",
    "<xsl:output indent='yes' encoding='UTF-16' doctype-system='d' standalone='yes'/>",
    "<xsl:output cdata-section-elements='a b' omit-xml-declaration='yes'/>",
    "<xsl:output encoding='no-such'/>",
    "<xsl:include href='mem:/m'/>",
    "<xsl:import href='http://h/'/>",
    "<xsl:strip-space elements='*'/><xsl:decimal-format NaN='none'/>",
    "<xsl:variable name='g' select='f:f(/)'/>",
    "<xsl:template match='b[f:f()]' mode='m'/>"};

constexpr const char* EXPRESSIONS[] = {"/",
                                       "//*",
                                       "string(//b[1])",
                                       "count(//*)",
                                       "1 = 1",
                                       "//@*",
                                       "$p",
                                       "n:b",
                                       "",
                                       "id('a')",
                                       "//none",
                                       "string(",
                                       "/a|//b",
                                       "f:f(1)",
                                       "$p | //*",
                                       "//namespace::*",
                                       "$p/..//text()",
                                       "document('mem:/d')",
                                       "0 div 0",
                                       "$q[1]",
                                       "name($p)",
                                       "document('')/a",
                                       "count(1)",
                                       "key('k', 1)",
                                       "..",
                                       "//node()",
                                       "-0",
                                       "document('http://h/')"};

struct Name {
    const char* text;
    bool isName;

    std::string key() const { return std::string_view(text) == "{}p" ? "p" : text; }
};
constexpr Name NAMES[] = {{"p", true},   {"{urn:n}p", true}, {"q", true},
                          {"{}p", true}, {"p p", false},     {"{urn:n", false},
                          {"", false},   {"a:p", false},     {"{urn:n}", false}};

constexpr const char* FUNCTION_NAMES[] = {"f", "none"};

/** For transformations that callbacks use. */
constexpr const char* NESTED[] = {"<out><xsl:copy-of select='.'/></out>",
                                  "<a><xsl:value-of select='f:f()'/></a>",
                                  "<a><xsl:message terminate='yes'/></a>", "text"};

const std::string UNTOUCHED = "as it was";

std::string sheetWith(const std::string& topLevel, const std::string& content) {
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
           "xmlns:f='urn:f' xmlns:e='http://exslt.org/common' "
           "xmlns:x='http://xml.apache.org/xalan'>" +
           topLevel +
           "<xsl:param name='p'/><xsl:key name='k' match='*' use='name()'/>"
           "<xsl:attribute-set name='s'><xsl:attribute name='x'>1</xsl:attribute>"
           "</xsl:attribute-set><xsl:template match='/'>" +
           content + "</xsl:template></xsl:stylesheet>";
}

/** What callbacks of the operation under way have to do with its end. */
struct Callbacks {
    /** The host's call must get it. */
    bool haveThrown = false;
    /** What one has returned may be refused as a wrong use. */
    bool mayBeWrong = false;
    Transformation* running = nullptr;
    /** What functions have kept. */
    std::vector<Value> kept;
};
Callbacks g_callbacks;

[[noreturn]] void throwOutOfCallback() {
    g_callbacks.haveThrown = true;
    throw HostFailure();
}

bool isUsage(const std::function<void()>& use) {
    try {
        use();
        return false;
    } catch (const vexa::Error& error) {
        return error.kind() == vexa::ErrorKind::Usage;
    }
}

/** The transformation that calls back refuses all. */
void useWhatIsRunning() {
    if (Transformation* const run = g_callbacks.running) {
        static const Document document = Document::parse(Input::text("<a/>"));
        require(isUsage([&] { run->removeParameter("p"); }) &&
                    isUsage([&] { run->onMessage(nullptr); }) &&
                    isUsage([&] { run->toString(document); }),
                "a callback cannot use the transformation that calls it");
    }
}

/** How an operation with objects that may be empty has to end. */
enum class Usage { Never, Possible, Sure };

Usage usageIf(bool isEmpty) {
    return isEmpty ? Usage::Sure : Usage::Never;
}

/** Does an operation, which returns a text, and checks how it ends. */
template <typename Operation>
Outcome attempt(Usage usage, Operation operation) {
    g_callbacks.haveThrown = false;
    g_callbacks.mayBeWrong = false;
    const Outcome outcome = outcomeOf(operation);
    if (outcome.end == Outcome::End::OutOfResources) {
        return outcome;
    }
    require((outcome.end == Outcome::End::HostFailure) == g_callbacks.haveThrown,
            "what a callback throws reaches the host");
    const bool isUsage = outcome.end == Outcome::End::Usage;
    require(isUsage || usage != Usage::Sure, "wrong use is refused");
    require(!isUsage || usage != Usage::Never || g_callbacks.mayBeWrong,
            "only wrong use is refused as such");
    return outcome;
}

std::string describe(const Value& value) {
    std::string text =
        value.string() + (value.boolean() ? " true " : " false ") + std::to_string(value.number());
    if (value.type() == Value::Type::NodeSet) {
        for (const Node& node : value.nodes()) {
            text += '\n' + node.name() + ' ' + node.xml();
        }
    }
    return text;
}

/** What differs where one tree is not like another. */
std::string describe(const Document& document) {
    static const XPath shape =
        XPath::compile("concat(count(//node()), ' ', count(//@*), ' ', count(//namespace::*), ' ', "
                       "count(//text()), ' ', name(/*), ' ', namespace-uri(/*), ' ', string(/))");
    return shape.evaluate(document).string() + document.xml();
}

/** A document out of a transform is what a parser makes of its text, if it can. */
void requireLikeParsed(const Document& document, const std::string& xml) {
    Document parsed;
    const Outcome outcome = attempt(Usage::Never, [&] {
        parsed = Document::parse(Input::view(xml, document.uri()));
        return std::string();
    });
    if (outcome.end == Outcome::End::Success) {
        require(parsed.xml() == xml, "a result in memory and its text are the same document");
        require(describe(parsed) == describe(document),
                "a result in memory is what a parser makes of its text");
    }
}

std::string contentOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

template <typename T>
struct Slot {
    T object;
    bool isEmpty = false;
};

/** A transformation, and what makes another one like it. */
struct Run {
    explicit Run(const Stylesheet& sheet, const Options& options)
        : sheet(sheet), options(options), transformation(sheet, options) {}

    Transformation makeAnother() const {
        Transformation another(sheet, options);
        for (const auto& [name, value] : parameters) {
            another.parameter(name, value);
        }
        for (const auto& [name, function] : functions) {
            another.function("urn:f", name, function);
        }
        return another;
    }

    Stylesheet sheet;
    Options options;
    std::map<std::string, Value> parameters;
    std::map<std::string, vexa::Function> functions;
    Transformation transformation;
    bool isEmpty = false;
};

/** A document, or an input that is made anew for each operation. */
struct Source {
    const Document* document = nullptr;
    std::function<Input()> makeInput;
    Usage usage = Usage::Never;

    template <typename Work>
    auto use(Work work) const {
        return document ? work(*document) : work(makeInput());
    }
};

class Session {
public:
    explicit Session(FuzzedDataProvider& input) : m_input(input) {
        add<Document>({Document::parse(Input::view(SOURCES[1], "mem:/first"))});
        add<Value>({"first"});
        const std::string text = sheetWith("", m_input.PickValueInArray(TEMPLATES));
        attempt(Usage::Never, [&] {
            add<Stylesheet>({Stylesheet::compile(Input::view(text, "mem:/first"))});
            return pool<Stylesheet>().back().object.uri();
        });
        makeRun();
    }

    void step() {
        static constexpr void (Session::*STEPS[])() = {
            &Session::parse,          &Session::parse,
            &Session::lookAtDocument, &Session::change<Document>,
            &Session::lookAtNode,     &Session::change<Node>,
            &Session::compile,        &Session::compile,
            &Session::lookAtSheet,    &Session::change<Stylesheet>,
            &Session::makeRun,        &Session::makeRun,
            &Session::transform,      &Session::transform,
            &Session::transform,      &Session::toDocument,
            &Session::toDocument,     &Session::setParameter,
            &Session::setParameter,   &Session::removeParameter,
            &Session::setFunction,    &Session::setFunction,
            &Session::setHandler,     &Session::moveRun,
            &Session::dropRun,        &Session::makeValue,
            &Session::makeValue,      &Session::lookAtValue,
            &Session::change<Value>,  &Session::makeExpression,
            &Session::evaluate,       &Session::evaluate,
            &Session::change<XPath>,  &Session::takeWhatFunctionsKept};
        (this->*STEPS[number(std::size(STEPS))])();
        g_callbacks.running = nullptr;
    }

private:
    template <typename T>
    using Pool = std::vector<Slot<T>>;

    // Documents and nodes

    void parse() {
        const Source source = anyInput();
        const Options options = anyOptions();
        Document document;
        const Outcome outcome = attempt(source.usage, [&] {
            document = Document::parse(source.makeInput(), options);
            return document.xml();
        });
        if (outcome.end == Outcome::End::Success) {
            add<Document>({document});
        }
    }

    void lookAtDocument() {
        Slot<Document>* const slot = any<Document>();
        if (!slot) {
            return;
        }
        const Document& document = slot->object;
        const Usage usage = usageIf(slot->isEmpty);
        attempt(usage, [&] { return document.uri(); });
        const Outcome xml = attempt(usage, [&] { return document.xml(); });
        const Target target = anyTarget();
        const Outcome written = attempt(usageIf(slot->isEmpty || target == Target::Empty), [&] {
            return write(target, [&](const Output& out) { document.write(out, false); });
        });
        require(written.end != Outcome::End::Success || written.isLike(xml),
                "a document is written as it is told");
        attempt(usage, [&] {
            add<Node>({document.root()});
            return std::string();
        });
    }

    void lookAtNode() {
        if (const Slot<Node>* const slot = any<Node>()) {
            const Node& node = slot->object;
            const Usage usage = usageIf(slot->isEmpty);
            attempt(usage, [&] { return std::to_string(static_cast<int>(node.type())); });
            attempt(usage, [&] { return node.name(); });
            attempt(usage, [&] { return node.localName(); });
            attempt(usage, [&] { return node.namespaceUri(); });
            attempt(usage, [&] { return node.string(); });
            attempt(usage, [&] { return node.xml(); });
        }
    }

    void takeWhatFunctionsKept() {
        for (const Value& value : std::exchange(g_callbacks.kept, {})) {
            add<Value>({value});
            keepNodes(value);
        }
    }

    void keepNodes(const Value& value) {
        if (value.type() == Value::Type::NodeSet) {
            for (std::size_t i = 0; i < value.nodes().size() && i < 3; ++i) {
                add<Node>({value.nodes()[i]});
            }
        }
    }

    // Stylesheets

    void compile() {
        const bool isText = m_input.ConsumeBool();
        const std::string text =
            sheetWith(m_input.PickValueInArray(TOP_LEVEL), m_input.PickValueInArray(TEMPLATES));
        const Source source =
            isText ? Source{nullptr, [&] { return Input::view(text, "mem:/s"); }} : anyInput();
        const Options options = anyOptions();
        Stylesheet sheet;
        const Outcome outcome = attempt(source.usage, [&] {
            sheet = Stylesheet::compile(source.makeInput(), options);
            return sheet.uri();
        });
        if (outcome.end == Outcome::End::Success) {
            add<Stylesheet>({sheet});
        }
    }

    void lookAtSheet() {
        if (const Slot<Stylesheet>* const slot = any<Stylesheet>()) {
            const Stylesheet& sheet = slot->object;
            const Usage usage = usageIf(slot->isEmpty);
            attempt(usage, [&] { return sheet.uri(); });
            attempt(usage, [&] { return sheet.modules().front(); });
            attempt(usage, [&] { return sheet.method(); });
            attempt(usage, [&] { return sheet.encoding() + sheet.mediaType(); });
        }
    }

    // Transformations

    void makeRun() {
        const Slot<Stylesheet>* const slot = any<Stylesheet>();
        if (!slot) {
            return;
        }
        const Options options = anyOptions();
        attempt(usageIf(slot->isEmpty), [&] {
            auto run = std::make_unique<Run>(slot->object, options);
            m_runs.resize(std::min(m_runs.size(), MOST_OBJECTS - 1));
            m_runs.push_back(std::move(run));
            return std::string();
        });
    }

    void transform() {
        Run* const run = anyRun();
        if (!run) {
            return;
        }
        const Source source = anySource();
        const Target target = anyTarget();
        const Usage usage = run->isEmpty              ? Usage::Sure
                            : target == Target::Empty ? std::max(source.usage, Usage::Possible)
                                                      : source.usage;
        const bool isGood = checkRun(*run, usage, [&](Transformation& transformation) {
            return write(target, [&](const Output& out) {
                source.use([&](const auto& in) { transformation.to(in, out); });
            });
        });
        if (!isGood) {
            checkAfterFailure(*run);
        }
    }

    void toDocument() {
        Run* const run = anyRun();
        if (!run) {
            return;
        }
        const Source source = anySource();
        const Usage usage = run->isEmpty ? Usage::Sure : source.usage;
        std::optional<Document> result;
        const bool isGood = checkRun(*run, usage, [&](Transformation& transformation) {
            result = source.use([&](const auto& in) { return transformation.toDocument(in); });
            return result->xml();
        });
        if (!isGood) {
            checkAfterFailure(*run);
            return;
        }
        const std::string xml = result->xml();
        requireLikeParsed(*result, xml);
        if (xml.size() <= LARGEST_RESULT) {
            add<Document>({*result});
        }
    }

    void checkAfterFailure(Run& run) {
        checkRun(run, usageIf(run.isEmpty), [](Transformation& transformation) {
            return transformation.toString(Input::view(SOURCES[1], "mem:/after"));
        });
    }

    /** Does the same with a transformation that has done nothing before; whether both succeed. */
    template <typename Work>
    bool checkRun(Run& run, Usage usage, Work work) {
        g_callbacks.running = &run.transformation;
        const Outcome outcome = attempt(usage, [&] { return work(run.transformation); });
        if (run.isEmpty) {
            return false;
        }
        Transformation another = run.makeAnother();
        g_callbacks.running = &another;
        const Outcome expected = attempt(usage, [&] { return work(another); });
        require(outcome.isLike(expected), "a transformation does what a new one does");
        return outcome.end == Outcome::End::Success && expected.end == Outcome::End::Success;
    }

    void setParameter() {
        Run* const run = anyRun();
        const Slot<Value>* const slot = any<Value>();
        if (!run || !slot) {
            return;
        }
        const Name& name = m_input.PickValueInArray(NAMES);
        const Usage usage = usageIf(run->isEmpty || slot->isEmpty || !name.isName ||
                                    slot->object.string().find('\0') != std::string::npos);
        const Outcome outcome = attempt(usage, [&] {
            run->transformation.parameter(name.text, slot->object);
            return std::string();
        });
        if (outcome.end == Outcome::End::Success) {
            run->parameters.insert_or_assign(name.key(), slot->object);
        }
    }

    void removeParameter() {
        if (Run* const run = anyRun()) {
            const Name& name = m_input.PickValueInArray(NAMES);
            attempt(usageIf(run->isEmpty || !name.isName), [&] {
                run->transformation.removeParameter(name.text);
                return std::string();
            });
            run->parameters.erase(name.key());
        }
    }

    void setFunction() {
        Run* const run = anyRun();
        if (!run) {
            return;
        }
        const std::string name = m_input.PickValueInArray(FUNCTION_NAMES);
        const vexa::Function function = anyFunction();
        const bool isWrong = run->isEmpty || !function;
        attempt(usageIf(isWrong), [&] {
            run->transformation.function("urn:f", name, function);
            return std::string();
        });
        if (!isWrong) {
            run->functions.insert_or_assign(name, function);
        }
    }

    void setHandler() {
        if (Run* const run = anyRun()) {
            run->options.onMessage = anyHandler();
            attempt(usageIf(run->isEmpty), [&] {
                run->transformation.onMessage(run->options.onMessage);
                return std::string();
            });
        }
    }

    void moveRun() {
        Run* const from = anyRun();
        Run* const to = anyRun();
        if (!from || from == to) {
            return;
        }
        Transformation moved(std::move(from->transformation));
        to->transformation = std::move(moved);
        to->sheet = from->sheet;
        to->options = from->options;
        to->parameters = from->parameters;
        to->functions = from->functions;
        to->isEmpty = std::exchange(from->isEmpty, true);
    }

    void dropRun() {
        if (!m_runs.empty()) {
            m_runs.erase(m_runs.begin() + static_cast<std::ptrdiff_t>(number(m_runs.size())));
        }
    }

    // Values and expressions

    void makeValue() {
        std::vector<Node> nodes;
        bool isWrong = false;
        const auto make = [&]() -> Value {
            switch (number(9)) {
            case 0:
                return m_input.PickValueInArray(SOURCES);
            case 1:
                return std::string("a\0b", 3);
            case 2:
                isWrong = true;
                return static_cast<const char*>(nullptr);
            case 3:
                return m_input.ConsumeBool();
            case 4:
                return m_input.ConsumeIntegral<int>();
            case 5:
                return m_input.ConsumeFloatingPoint<double>();
            case 6:
                return "it's \"\x01\xFF\xED\xA0\x80 \xF0\x9F\x98\x80";
            default:
                for (std::size_t i = number(4); i > 0; --i) {
                    if (const Slot<Node>* const slot = any<Node>()) {
                        nodes.push_back(slot->object);
                        isWrong = isWrong || slot->isEmpty;
                    }
                }
                return nodes;
            }
        };
        const Outcome outcome = attempt(Usage::Possible, [&] {
            add<Value>({make()});
            return std::string();
        });
        require(outcome.end == Outcome::End::OutOfResources ||
                    (outcome.end == Outcome::End::Usage) == isWrong,
                "a value of something empty is refused");
    }

    void lookAtValue() {
        if (const Slot<Value>* const slot = any<Value>()) {
            const Value& value = slot->object;
            const Usage usage = usageIf(slot->isEmpty);
            attempt(usage, [&] { return describe(value); });
            attempt(usageIf(slot->isEmpty || value.type() != Value::Type::NodeSet), [&] {
                return std::to_string(value.nodes().size() + Value(value).nodes().size());
            });
        }
    }

    void makeExpression() {
        const std::string text = m_input.PickValueInArray(EXPRESSIONS);
        attempt(Usage::Never, [&] {
            add<XPath>({XPath::compile(text, {{"n", "urn:n"}, {"f", "urn:f"}})});
            return std::string();
        });
    }

    void evaluate() {
        const Slot<XPath>* const expression = any<XPath>();
        const Slot<Document>* const document = any<Document>();
        const Slot<Node>* const node = any<Node>();
        if (!expression || !document || !node) {
            return;
        }
        const bool isOfNode = m_input.ConsumeBool();
        const Options options = anyOptions();
        vexa::Variables variables;
        Usage usage = Usage::Never;
        if (const Slot<Value>* const value = any<Value>()) {
            variables.emplace("p", value->object);
            // The expression may have no use for it.
            usage = Usage::Possible;
        }
        if (expression->isEmpty || (isOfNode ? node->isEmpty : document->isEmpty)) {
            usage = Usage::Sure;
        }
        std::optional<Value> result;
        const auto evaluateOnce = [&] {
            return attempt(usage, [&] {
                result = isOfNode
                             ? expression->object.evaluate(node->object, options, variables)
                             : expression->object.evaluate(document->object, options, variables);
                return describe(*result);
            });
        };
        const Outcome outcome = evaluateOnce();
        require(outcome.isLike(evaluateOnce()), "an expression gives the same again");
        if (outcome.end == Outcome::End::Success && result) {
            add<Value>({*result});
            keepNodes(*result);
        }
    }

    // Callbacks and options: they do the same each time.

    vexa::Function anyFunction() {
        switch (number(14)) {
        case 0:
            return nullptr;
        case 1:
            return [](const vexa::Call&) -> Value { throwOutOfCallback(); };
        case 2:
            return [](const vexa::Call&) { return "a string"; };
        case 3:
            return [](const vexa::Call& call) { return call.size(); };
        case 4:
            return [](const vexa::Call& call) -> Value {
                return call.size() > 0 && call.argument(0).boolean();
            };
        case 5:
            return [](const vexa::Call& call) -> Value {
                return call.size() > 0 ? call.argument(0) : std::vector<Node>{call.context()};
            };
        case 6:
            return [](const vexa::Call& call) -> Value {
                if (g_callbacks.kept.size() < MOST_OBJECTS) {
                    for (std::size_t i = 0; i < call.size(); ++i) {
                        g_callbacks.kept.push_back(call.argument(i));
                    }
                    g_callbacks.kept.push_back(std::vector<Node>{call.context()});
                }
                return "kept";
            };
        case 7:
            if (const Slot<Value>* const slot = any<Value>()) {
                return [value = slot->object](const vexa::Call&) {
                    g_callbacks.mayBeWrong = true; // it may be empty
                    return value;
                };
            }
            return [](const vexa::Call&) { return std::vector<Node>(); };
        case 8:
            return [nested = anyNestedRun()](const vexa::Call&) {
                return nested->toString(Input::view(SOURCES[1]));
            };
        case 9:
            return [nested = anyNestedRun()](const vexa::Call&) -> Value {
                return std::vector<Node>{nested->toDocument(Input::view(SOURCES[1])).root()};
            };
        case 10:
            return [](const vexa::Call& call) -> Value {
                useWhatIsRunning();
                require(isUsage([&] { call.argument(call.size()); }),
                        "an argument that is not there is refused");
                return true;
            };
        case 11:
            return [](const vexa::Call&) {
                g_callbacks.mayBeWrong = true;
                return std::string(2, '\0');
            };
        case 12:
            return [](const vexa::Call& call) {
                static const XPath expression = XPath::compile("..//* | //text()");
                return expression.evaluate(call.context());
            };
        default:
            return [](const vexa::Call&) -> Value {
                throw vexa::Error(vexa::ErrorKind::Transform, "a host's own");
            };
        }
    }

    vexa::MessageHandler anyHandler() {
        switch (number(6)) {
        case 0:
            return [](const vexa::Diagnostic&) { throwOutOfCallback(); };
        case 1:
            return [](const vexa::Diagnostic&) { useWhatIsRunning(); };
        case 2:
            return [nested = anyNestedRun()](const vexa::Diagnostic&) {
                nested->toString(Input::view(SOURCES[1]));
            };
        case 3:
            return [](const vexa::Diagnostic& diagnostic) { std::string(diagnostic.text); };
        default:
            return nullptr;
        }
    }

    vexa::Resolver anyResolver() {
        using Answer = std::optional<Input>;
        const char* const text = m_input.PickValueInArray(SOURCES);
        switch (number(9)) {
        case 0:
            return [](const std::string&, const std::string&) -> Answer { throwOutOfCallback(); };
        case 1:
            return [](const std::string&, const std::string&) { return std::nullopt; };
        case 2:
        case 3:
            return [=](const std::string&, const std::string&) { return Input::view(text); };
        case 4:
            return [](const std::string&, const std::string&) { return Input::file("/none"); };
        case 5:
            return [](const std::string&, const std::string&) { return Input::uri("http://h/"); };
        case 6:
            return [nested = anyNestedRun()](const std::string&, const std::string&) {
                return Input::text(nested->toString(Input::view(SOURCES[1])));
            };
        default:
            return nullptr;
        }
    }

    Options anyOptions() {
        Options options;
        options.access.externalEntities = m_input.ConsumeBool();
        if (m_input.ConsumeBool()) {
            options.access.folders.emplace();
        }
        options.limits = fuzzingLimits();
        options.resolver = anyResolver();
        options.onMessage = anyHandler();
        return options;
    }

    /** Another transformation for a callback, which keeps it. */
    std::shared_ptr<Transformation> anyNestedRun() {
        const auto nested = std::make_shared<Transformation>(
            Stylesheet::compile(Input::text(sheetWith("", m_input.PickValueInArray(NESTED)))));
        if (m_input.ConsumeBool()) {
            nested->function("urn:f", "f",
                             [](const vexa::Call&) -> Value { throwOutOfCallback(); });
        }
        return nested;
    }

    // Sources and targets

    Source anySource() {
        if (m_input.ConsumeBool()) {
            return anyInput();
        }
        const Slot<Document>* const slot = any<Document>();
        return slot ? Source{&slot->object, {}, usageIf(slot->isEmpty)} : anyInput();
    }

    Source anyInput() {
        const char* const text = m_input.PickValueInArray(SOURCES);
        switch (number(9)) {
        case 0:
        case 1:
            return {nullptr, [=] { return Input::text(text, "mem:/text"); }};
        case 2:
            return {nullptr, [=] { return Input::view(text); }};
        case 3:
            return {nullptr, [=, this_ = this] {
                        this_->m_stream.clear();
                        this_->m_stream.str(text);
                        return Input::stream(this_->m_stream, "mem:/stream");
                    }};
        case 4:
            return {nullptr, [=, this_ = this] {
                        this_->m_stream.setstate(std::ios_base::badbit);
                        return Input::stream(this_->m_stream, "mem:/stream");
                    }};
        case 5:
            return {nullptr, [=] { return Input::file(scratchFile("source % .xml", text)); }};
        case 6:
            return {nullptr, [] { return Input::file("/none/such.xml"); }};
        case 7:
            return {nullptr, [] { return Input::uri("http://h/"); }};
        default:
            return {nullptr,
                    [=] {
                        Input input = Input::text(text);
                        Input(std::move(input));
                        return input;
                    },
                    Usage::Sure};
        }
    }

    enum class Target { Text, Stream, FullStream, File, FullFile, NoFile, Empty };

    Target anyTarget() { return static_cast<Target>(number(7)); }

    /** Gives what was written. After a failure, what must not change has not. */
    template <typename To>
    static std::string write(Target target, To to) {
        std::string text = UNTOUCHED;
        BoundedOutput stream(target == Target::FullStream ? 4 : 256 * 1024);
        std::string file;
        try {
            switch (target) {
            case Target::Text:
                to(Output::text(text));
                return text;
            case Target::Stream:
            case Target::FullStream:
                to(Output::stream(stream));
                return stream.text();
            case Target::File:
                file = scratchFile("result", UNTOUCHED);
                to(Output::file(file));
                return contentOf(file);
            case Target::FullFile:
                to(Output::file("/dev/full"));
                return "";
            case Target::NoFile:
                to(Output::file("/none/such"));
                break;
            case Target::Empty: {
                Output output = Output::text(text);
                Output(std::move(output));
                to(output);
                break;
            }
            }
        } catch (...) {
            require(text == UNTOUCHED, "a text is as it was after a failure");
            require(file.empty() || contentOf(file) == UNTOUCHED,
                    "a file is as it was after a failure");
            throw;
        }
        require(false, "nothing is written to what is not there");
        return "";
    }

    // Objects

    template <typename T>
    Pool<T>& pool() {
        return std::get<Pool<T>>(m_pools);
    }

    template <typename T>
    Slot<T>* any() {
        Pool<T>& objects = pool<T>();
        return objects.empty() ? nullptr : &objects[number(objects.size())];
    }

    template <typename T>
    void add(Slot<T> slot) {
        Pool<T>& objects = pool<T>();
        if (objects.size() < MOST_OBJECTS) {
            objects.push_back(std::move(slot));
        } else {
            objects[number(objects.size())] = std::move(slot);
        }
    }

    /** What objects can do without knowing what they are. */
    template <typename T>
    void change() {
        const std::size_t way = number(5);
        if constexpr (std::is_default_constructible_v<T>) {
            if (way == 0) {
                add<T>({T(), true});
                return;
            }
        }
        Slot<T>* const from = any<T>();
        Slot<T>* const to = any<T>();
        if (!from) {
            return;
        }
        switch (way) {
        case 1:
            *to = *from;
            break;
        case 2: {
            Slot<T> moved{std::move(from->object), from->isEmpty};
            from->isEmpty = true;
            *to = std::move(moved);
            break;
        }
        case 3:
            add(Slot<T>(*from));
            break;
        default:
            pool<T>().erase(pool<T>().begin() + (from - pool<T>().data()));
        }
    }

    Run* anyRun() { return m_runs.empty() ? nullptr : m_runs[number(m_runs.size())].get(); }

    std::size_t number(std::size_t count) {
        return m_input.ConsumeIntegralInRange<std::size_t>(0, count - 1);
    }

    FuzzedDataProvider& m_input;
    std::tuple<Pool<Document>, Pool<Node>, Pool<Stylesheet>, Pool<XPath>, Pool<Value>> m_pools;
    std::vector<std::unique_ptr<Run>> m_runs;
    std::istringstream m_stream;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    requireSilence();
    const BoundedHeap heap;
    g_callbacks = {};
    try {
        Session session(input);
        for (int i = 0; i < 60 && input.remaining_bytes() > 0; ++i) {
            session.step();
        }
    } catch (const std::bad_alloc&) {
        // In the fuzzer itself.
    }
    g_callbacks = {};
    return 0;
}
