#include "xslt/MemoryPool.h"
#include "xslt/NamespaceScopes.h"
#include "xslt/Operation.h"
#include "xslt/PackedRecord.h"
#include "xslt/ParserCallbacks.h"
#include "xslt/Sources.h"
#include "xslt/Text.h"

#include <vexa/xslt/Error.h>
#include <vexa/xslt/Records.h>

#include <exception>
#include <type_traits>
#include <utility>
#include <vector>

#include <xercesc/framework/XMLPScanToken.hpp>
#include <xercesc/parsers/SAX2XMLReaderImpl.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace {

/** Packs each record, and passes over what is between them. */
class RecordHandler : public xercesc::DefaultHandler {
public:
    /** @param element "name" or "{uri}name" */
    RecordHandler(const std::string& element, Operation& operation) : m_operation(operation) {
        const auto brace = element.rfind('}');
        const bool hasUri = element.rfind('{', 0) == 0 && brace != std::string::npos;
        if (hasUri) {
            m_uri = toUtf16(element.substr(1, brace - 1));
        }
        m_name = toUtf16(hasUri ? element.substr(brace + 1) : element);
        if (m_name.empty()) {
            operation.fail(vexa::ErrorKind::Usage, "the name of the records is empty");
        }
    }

    /** Of all records. */
    void setUri(const std::string& uri) { m_documentUri = toUtf16(uri); }

    /** Whether a record is complete, or was passed over. */
    bool hasRecord() const { return m_isComplete || m_limit; }
    /** The record, until more is read. @throws vexa::Error: Limit where it was passed over */
    const PackedRecord& take() {
        m_isComplete = false;
        if (m_limit) {
            std::rethrow_exception(std::exchange(m_limit, nullptr));
        }
        return m_record;
    }
    /** Where the last record begins. */
    std::size_t line() const { return m_recordLine; }
    /** What is reported next begins where the parser is. */
    void remember() { m_line = static_cast<std::size_t>(m_locator->getLineNumber()); }

    void setDocumentLocator(const xercesc::Locator* const locator) override { m_locator = locator; }
    void startElement(const XMLCh* const uri, const XMLCh* const local, const XMLCh* const name,
                      const xercesc::Attributes& attributes) override {
        if (m_isInRecord) {
            ++m_depth;
            add([&] { addElement(uri, name, attributes); });
        } else if (m_name == local && (!m_uri || *m_uri == uri)) {
            m_recordLine = m_line;
            m_isInRecord = true;
            m_isPassedOver = false;
            m_operation.restart();
            add([&] { beginRecord(uri, name, attributes); });
        } else {
            m_operation.poll();
            m_namespaces.startElement(attributes);
        }
        remember();
    }
    void endElement(const XMLCh* const /*uri*/, const XMLCh* const /*local*/,
                    const XMLCh* const /*name*/) override {
        if (!m_isInRecord) {
            m_namespaces.endElement();
        } else {
            add([&] { m_record.endElement(); });
            m_isInRecord = m_depth != 0;
            m_isComplete = !m_isInRecord && !m_isPassedOver;
            m_depth -= m_isInRecord ? 1 : 0;
        }
        remember();
    }
    void characters(const XMLCh* const text, const XMLSize_t length) override {
        add([&] { m_record.text({text, length}); });
        remember();
    }
    void ignorableWhitespace(const XMLCh* const text, const XMLSize_t length) override {
        add([&] { m_record.whitespace({text, length}); });
        remember();
    }
    void comment(const XMLCh* const text, const XMLSize_t length) override {
        add([&] { m_record.comment({text, length}); });
        remember();
    }
    void processingInstruction(const XMLCh* const target, const XMLCh* const data) override {
        add([&] { m_record.instruction(target, data); });
        remember();
    }
    void unparsedEntityDecl(const XMLCh* const name, const XMLCh* const publicId,
                            const XMLCh* const systemId, const XMLCh* const notation) override {
        const auto text = [](const XMLCh* given) { return std::u16string(given ? given : u""); };
        m_entities.push_back({text(name), text(publicId), text(systemId), text(notation)});
    }

private:
    struct UnparsedEntity {
        std::u16string name;
        std::u16string publicId;
        std::u16string systemId;
        std::u16string notation;
    };

    /** Adds to the record under way. One that reaches a limit is passed over. */
    template <typename Add>
    void add(Add add) {
        if (!m_isInRecord || m_isPassedOver) {
            m_operation.poll();
            return;
        }
        try {
            m_operation.poll();
            add();
            m_operation.checkLimits();
        } catch (const vexa::Error& error) {
            if (error.kind() != vexa::ErrorKind::Limit) {
                throw;
            }
            m_limit = std::current_exception();
            m_isPassedOver = true;
            m_record.discard();
            m_operation.restart();
        }
    }
    void beginRecord(const XMLCh* const uri, const XMLCh* const name,
                     const xercesc::Attributes& attributes) {
        m_record.begin(m_documentUri);
        for (const UnparsedEntity& entity : m_entities) {
            m_record.unparsedEntity(entity.name, entity.publicId, entity.systemId, entity.notation);
        }
        NamespaceScopes own;
        own.startElement(attributes);
        addAttributes(attributes);
        m_namespaces.visitAll([&](const std::u16string& prefix, const std::u16string& scope) {
            if (!own.declares(prefix) && !scope.empty()) {
                m_record.attribute(xercesc::XMLUni::fgXMLNSURIName,
                                   prefix.empty() ? u"xmlns" : u"xmlns:" + prefix, u"CDATA", scope);
            }
        });
        m_record.startElement(uri, name);
    }
    void addElement(const XMLCh* const uri, const XMLCh* const name,
                    const xercesc::Attributes& attributes) {
        addAttributes(attributes);
        m_record.startElement(uri, name);
    }
    void addAttributes(const xercesc::Attributes& attributes) {
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
            m_record.attribute(attributes.getURI(i), attributes.getQName(i), attributes.getType(i),
                               attributes.getValue(i));
        }
    }
    Operation& m_operation;
    std::optional<std::u16string> m_uri; // none: any
    std::u16string m_name;
    std::u16string m_documentUri;
    const xercesc::Locator* m_locator = nullptr;
    std::size_t m_line = 1;
    std::size_t m_recordLine = 0;
    /** Outside of records. */
    NamespaceScopes m_namespaces;
    std::vector<UnparsedEntity> m_entities;
    bool m_isInRecord = false;
    /** So many of its elements are open within its root. */
    std::size_t m_depth = 0;
    PackedRecord m_record{m_operation};
    bool m_isComplete = false;
    bool m_isPassedOver = false;
    /** Why a record was passed over. */
    std::exception_ptr m_limit;
};

} // namespace

namespace vexa {

class Records::Data {
public:
    Data(const Input& input, const std::string& element, Options options)
        : m_options(std::move(options)), m_handler(element, m_operation), m_input(input) {
        m_operation.run(ErrorKind::Parse, [&] {
            m_opened = m_sources.open(m_input);
            m_handler.setUri(m_opened.uri);
            using xercesc::XMLUni;
            m_memory.setOperation(&m_operation);
            m_reader = std::make_unique<xercesc::SAX2XMLReaderImpl>(&m_memory);
            m_reader->setFeature(XMLUni::fgSAX2CoreNameSpaces, true);
            m_reader->setFeature(XMLUni::fgSAX2CoreNameSpacePrefixes, true);
            m_reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
            // What has come is parsed at once; more may take long.
            XMLSize_t lowWaterMark = 0;
            m_reader->setProperty(XMLUni::fgXercesLowWaterMark, &lowWaterMark);
            m_reader->setContentHandler(&m_handler);
            m_reader->setDTDHandler(&m_handler);
            m_reader->setLexicalHandler(&m_handler);
            m_reader->setErrorHandler(&m_errors);
            m_reader->setXMLEntityResolver(&m_entities);
        });
    }

    /** Makes something of the next record. */
    template <typename Make>
    auto next(Make make) -> std::optional<std::invoke_result_t<Make, const PackedRecord&>> {
        if (m_isAtEnd) {
            return std::nullopt;
        }
        m_isAtEnd = true; // until the record is there
        m_operation.restart();
        m_operation.setPollsLimits(false); // a record ends where it reaches one, and not the parser
        return m_operation.run(ErrorKind::Parse, [&] {
            std::optional<std::invoke_result_t<Make, const PackedRecord&>> made;
            if (read()) {
                m_operation.setPollsLimits(true);
                made = make(m_handler.take());
            }
            return made;
        });
    }

    std::uint64_t count() const { return m_count; }
    std::size_t line() const { return m_handler.line(); }
    std::uint64_t bytesRead() const { return m_sources.bytesRead(); }

private:
    bool read() {
        bool isMore = false;
        if (m_isBegun) {
            isMore = m_reader->parseNext(m_token);
        } else {
            isMore = m_reader->parseFirst(*m_opened.source, m_token);
            m_isBegun = true;
            // White space before the first element is no event: the parser stops in front of it.
            m_handler.remember();
        }
        while (!m_handler.hasRecord() && isMore) {
            isMore = m_reader->parseNext(m_token);
        }
        m_isAtEnd = !m_handler.hasRecord();
        m_count += m_isAtEnd ? 0 : 1;
        return !m_isAtEnd;
    }

    EngineUse m_engines = useEngines();
    Options m_options;
    Operation m_operation{m_options};
    Sources m_sources{m_operation};
    RecordHandler m_handler;
    ParserErrors m_errors{m_operation};
    ExternalEntities m_entities{m_sources, [](const std::string& /*uri*/) {}};
    Input m_input;
    Sources::Opened m_opened;
    MemoryPool m_memory;
    xercesc::XMLPScanToken m_token;
    std::unique_ptr<xercesc::SAX2XMLReaderImpl> m_reader;
    MemoryPool::CleanUp m_cleanUp{m_memory};
    std::uint64_t m_count = 0;
    bool m_isBegun = false;
    bool m_isAtEnd = false;
};

Records::Records(const Input& input, const std::string& element, const Options& options)
    : m_data(std::make_unique<Data>(input, element, options)) {}

Records::Records(Records&& other) noexcept = default;
Records& Records::operator=(Records&& other) noexcept = default;
Records::~Records() = default;

Records::Data& Records::data() const {
    if (!m_data) {
        throw Error(ErrorKind::Usage, "the records are empty");
    }
    return *m_data;
}

std::optional<Document> Records::next() {
    return data().next(
        [](const PackedRecord& record) { return DocumentAccess::make(record.build()); });
}

std::optional<std::string> Records::nextPacked() {
    return data().next([](const PackedRecord& record) { return record.bytes(); });
}

Document Records::unpack(const std::string& packed, const Options& options) {
    const EngineUse engines = useEngines();
    Operation operation(options);
    return operation.run(ErrorKind::Parse, [&] {
        PackedRecord record(operation);
        record.setBytes(packed);
        return DocumentAccess::make(record.build());
    });
}

std::uint64_t Records::count() const {
    return data().count();
}

std::size_t Records::line() const {
    return data().line();
}

std::uint64_t Records::bytesRead() const {
    return data().bytesRead();
}

} // namespace vexa
