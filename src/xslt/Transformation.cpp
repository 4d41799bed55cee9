#include <vexa/xslt/Transformation.h>

#include "xslt/CallData.h"
#include "xslt/FurtherResults.h"
#include "xslt/Machine.h"
#include "xslt/OutputWriter.h"
#include "xslt/ResultBuilder.h"
#include "xslt/ResultStream.h"
#include "xslt/Text.h"
#include "xslt/ValueExchange.h"

#include <vexa/xslt/Error.h>

#include <memory>
#include <utility>

#include <xalanc/PlatformSupport/XalanOutputStreamPrintWriter.hpp>
#include <xercesc/util/XMLChar.hpp>

namespace vexa {

namespace {

/** "name" or "{uri}name". @throws Error: Usage */
ExpandedName parseName(const std::string& name) {
    ExpandedName expanded;
    std::string_view local = name;
    if (!name.empty() && name.front() == '{') {
        const auto end = name.find('}');
        if (end == std::string::npos) {
            throw Error(ErrorKind::Usage, "not a name: '" + name + "'");
        }
        expanded.first = name.substr(1, end - 1);
        local.remove_prefix(end + 1);
    }
    const std::u16string utf16 = toUtf16(local);
    if (!xercesc::XMLChar1_0::isValidNCName(utf16.data(), utf16.size())) {
        throw Error(ErrorKind::Usage, "not a name: '" + name + "'");
    }
    expanded.second = local;
    return expanded;
}

/** A result of text only, or of several roots, is no source. */
void refuseWithoutElement(const DocumentData& document, const Operation& operation) {
    if (document.root() != document.tree() || !document.tree()->getDocumentElement()) {
        operation.fail(ErrorKind::Transform, "the source has no document element",
                       {document.uri(), 0, 0});
    }
}

} // namespace

Call::Call(const Data& data) noexcept : m_data(data) {}

std::size_t Call::size() const noexcept {
    return m_data.arguments.size();
}

const Value& Call::argument(std::size_t index) const {
    if (index >= size()) {
        throw Error(ErrorKind::Usage,
                    "the function was called with " + std::to_string(size()) + " arguments");
    }
    return m_data.arguments[index];
}

Node Call::context() const {
    return m_data.context();
}

class Transformation::Data {
public:
    Data(Stylesheet stylesheet, Options options)
        : m_stylesheet(std::move(stylesheet)), m_options(std::move(options)) {
        StylesheetAccess::data(m_stylesheet);
    }

    /** The settings, to be changed: the functions are installed in the machine. */
    RunSettings& settings() {
        refuseCallFromCallback();
        return m_settings;
    }
    void setFunction(ExpandedName name, Function function) {
        settings().functions.insert_or_assign(std::move(name), std::move(function));
        m_machine.reset();
    }
    void setTracer(Tracer* tracer) {
        settings().tracer = tracer;
        m_machine.reset();
    }
    void setHandler(MessageHandler handler) {
        refuseCallFromCallback();
        m_options.onMessage = std::move(handler);
    }

    void setHandler(DocumentHandler handler) {
        refuseCallFromCallback();
        m_onDocument = std::move(handler);
    }

    template <typename Source>
    void write(const Source& source, const Output& output) {
        run(source, [&](Operation& operation, const std::string& /*uri*/, const auto& transform) {
            OutputWriter writer(output, operation);
            ResultStream stream(writer);
            xalanc::XalanOutputStreamPrintWriter printer(stream);
            xalanc::XSLTResultTarget target(&printer, engineMemory());
            FurtherResults furtherResults(m_onDocument, &output, operation);
            transform(target, furtherResults);
            printer.flush();
            operation.throwKept();
            furtherResults.commit();
            writer.commit();
        });
    }

    template <typename Source>
    Document build(const Source& source) {
        return run(source,
                   [&](Operation& operation, const std::string& uri, const auto& transform) {
                       ResultBuilder builder(uri, operation, ResultBuilder::Purpose::Result);
                       xalanc::XSLTResultTarget target(builder, engineMemory());
                       FurtherResults furtherResults(m_onDocument, nullptr, operation);
                       transform(target, furtherResults);
                       operation.throwKept();
                       furtherResults.commit();
                       return DocumentAccess::make(builder.finish());
                   });
    }

private:
    void refuseCallFromCallback() const {
        if (m_isRunning) {
            throw Error(ErrorKind::Usage, "the transformation is running");
        }
    }

    static DocumentAccess::Ptr parsed(const Document& source, DocumentParser& /*parser*/,
                                      Operation& /*operation*/, Sources& /*sources*/) {
        return DocumentAccess::data(source);
    }
    static DocumentAccess::Ptr parsed(const Input& source, DocumentParser& parser,
                                      Operation& operation, Sources& sources) {
        return parser.parse(source, operation, sources);
    }

    /** Calls `work` with the operation, the source's URI, and what transforms into a target. */
    template <typename Source, typename Work>
    auto run(const Source& source, Work work) {
        refuseCallFromCallback();
        const RunningMark mark(m_isRunning);
        Operation operation(m_options);
        try {
            return operation.run(ErrorKind::Transform, [&] {
                Sources sources(operation);
                const DocumentAccess::Ptr document = parsed(source, m_parser, operation, sources);
                refuseWithoutElement(*document, operation);
                if (!m_machine) {
                    m_machine = std::make_unique<Machine>(StylesheetAccess::data(m_stylesheet),
                                                          m_settings, m_parser);
                }
                return work(operation, document->uri(),
                            [&](xalanc::XSLTResultTarget& target, FurtherResults& furtherResults) {
                                m_machine->run(document, target, furtherResults, operation,
                                               sources);
                            });
            });
        } catch (...) {
            m_machine.reset();
            throw;
        }
    }

    class RunningMark {
    public:
        explicit RunningMark(bool& mark) : m_mark(mark) { m_mark = true; }
        RunningMark(const RunningMark&) = delete;
        RunningMark& operator=(const RunningMark&) = delete;
        ~RunningMark() { m_mark = false; }

    private:
        bool& m_mark;
    };

    EngineUse m_engines = useEngines();
    const Stylesheet m_stylesheet;
    Options m_options;
    RunSettings m_settings;
    DocumentHandler m_onDocument;
    DocumentParser m_parser;
    std::unique_ptr<Machine> m_machine;
    bool m_isRunning = false;
};

Transformation::Transformation(Stylesheet stylesheet, Options options)
    : m_data(std::make_unique<Data>(std::move(stylesheet), std::move(options))) {}

Transformation::Transformation(Transformation&&) noexcept = default;

Transformation& Transformation::operator=(Transformation&&) noexcept = default;

Transformation::~Transformation() = default;

Transformation::Data& Transformation::data() {
    if (!m_data) {
        throw Error(ErrorKind::Usage, "the transformation has been moved from");
    }
    return *m_data;
}

Transformation& Transformation::parameter(const std::string& name, Value value) {
    if (value.type() == Value::Type::String) {
        refuseNul(value.string());
    }
    data().settings().parameters.insert_or_assign(parseName(name), std::move(value));
    return *this;
}

Transformation& Transformation::parameter(const std::string& name, const Document& document) {
    return parameter(name, std::vector<Node>{document.root()});
}

Transformation& Transformation::removeParameter(const std::string& name) {
    data().settings().parameters.erase(parseName(name));
    return *this;
}

Transformation& Transformation::function(const std::string& namespaceUri, const std::string& name,
                                         Function function) {
    if (namespaceUri.empty() || !function) {
        throw Error(ErrorKind::Usage, "a function needs a namespace and a body");
    }
    data().setFunction(parseName("{" + namespaceUri + "}" + name), std::move(function));
    return *this;
}

Transformation& Transformation::onMessage(MessageHandler handler) {
    data().setHandler(std::move(handler));
    return *this;
}

Transformation& Transformation::onTrace(Tracer& tracer) {
    data().setTracer(&tracer);
    return *this;
}

Transformation& Transformation::onTrace(std::nullptr_t) {
    data().setTracer(nullptr);
    return *this;
}

Transformation& Transformation::onDocument(DocumentHandler handler) {
    data().setHandler(std::move(handler));
    return *this;
}

void Transformation::to(const Document& source, const Output& output) {
    data().write(source, output);
}

void Transformation::to(const Input& source, const Output& output) {
    data().write(source, output);
}

std::string Transformation::toString(const Document& source) {
    std::string result;
    to(source, Output::text(result));
    return result;
}

std::string Transformation::toString(const Input& source) {
    std::string result;
    to(source, Output::text(result));
    return result;
}

Document Transformation::toDocument(const Document& source) {
    return data().build(source);
}

Document Transformation::toDocument(const Input& source) {
    return data().build(source);
}

} // namespace vexa
