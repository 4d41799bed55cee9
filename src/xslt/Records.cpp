#include "xslt/DocumentData.h"
#include "xslt/MemoryPool.h"
#include "xslt/NamespaceScopes.h"
#include "xslt/Operation.h"
#include "xslt/ParserCallbacks.h"
#include "xslt/Sources.h"
#include "xslt/Text.h"
#include "xslt/TreeBuilder.h"

#include <vexa/xslt/Error.h>
#include <vexa/xslt/Records.h>

#include <exception>
#include <utility>
#include <vector>

#include <xercesc/framework/XMLPScanToken.hpp>
#include <xercesc/parsers/SAX2XMLReaderImpl.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace {

/** The attributes of an element, and declarations of namespaces behind them. */
class ExtendedAttributes : public xercesc::Attributes {
public:
    explicit ExtendedAttributes(const xercesc::Attributes& original) : m_original(original) {}

    void addDeclaration(const std::u16string& prefix, const std::u16string& uri) {
        m_more.push_back({prefix.empty() ? u"xmlns" : u"xmlns:" + prefix,
                          prefix.empty() ? u"xmlns" : prefix, uri});
    }

    XMLSize_t getLength() const override { return m_original.getLength() + m_more.size(); }
    const XMLCh* getURI(const XMLSize_t index) const override {
        return isOriginal(index) ? m_original.getURI(index) : xercesc::XMLUni::fgXMLNSURIName;
    }
    const XMLCh* getLocalName(const XMLSize_t index) const override {
        return isOriginal(index) ? m_original.getLocalName(index) : more(index).local.c_str();
    }
    const XMLCh* getQName(const XMLSize_t index) const override {
        return isOriginal(index) ? m_original.getQName(index) : more(index).name.c_str();
    }
    const XMLCh* getType(const XMLSize_t index) const override {
        return isOriginal(index) ? m_original.getType(index) : u"CDATA";
    }
    const XMLCh* getValue(const XMLSize_t index) const override {
        return isOriginal(index) ? m_original.getValue(index) : more(index).uri.c_str();
    }
    // The builder asks by index only.
    bool getIndex(const XMLCh* const uri, const XMLCh* const local,
                  XMLSize_t& index) const override {
        return m_original.getIndex(uri, local, index);
    }
    int getIndex(const XMLCh* const uri, const XMLCh* const local) const override {
        return m_original.getIndex(uri, local);
    }
    bool getIndex(const XMLCh* const name, XMLSize_t& index) const override {
        return m_original.getIndex(name, index);
    }
    int getIndex(const XMLCh* const name) const override { return m_original.getIndex(name); }
    const XMLCh* getType(const XMLCh* const uri, const XMLCh* const local) const override {
        return m_original.getType(uri, local);
    }
    const XMLCh* getType(const XMLCh* const name) const override {
        return m_original.getType(name);
    }
    const XMLCh* getValue(const XMLCh* const uri, const XMLCh* const local) const override {
        return m_original.getValue(uri, local);
    }
    const XMLCh* getValue(const XMLCh* const name) const override {
        return m_original.getValue(name);
    }

private:
    struct Declaration {
        std::u16string name;
        std::u16string local;
        std::u16string uri;
    };

    bool isOriginal(XMLSize_t index) const { return index < m_original.getLength(); }
    const Declaration& more(XMLSize_t index) const {
        return m_more[index - m_original.getLength()];
    }

    const xercesc::Attributes& m_original;
    std::vector<Declaration> m_more;
};

/** Builds a tree of each record, and passes over what is between them. */
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
    void setUri(const std::string& uri) { m_documentUri = uri; }

    /** Whether a record is complete, or was passed over. */
    bool hasRecord() const { return m_complete || m_limit; }
    /** The record. @throws vexa::Error: Limit where it was passed over */
    std::shared_ptr<vexa::DocumentData> take() {
        if (m_limit) {
            std::rethrow_exception(std::exchange(m_limit, nullptr));
        }
        return std::exchange(m_complete, nullptr);
    }
    /** Where the last record begins. */
    std::size_t line() const { return m_recordLine; }

    void setDocumentLocator(const xercesc::Locator* const locator) override { m_locator = locator; }
    void startElement(const XMLCh* const uri, const XMLCh* const local, const XMLCh* const name,
                      const xercesc::Attributes& attributes) override {
        if (m_isInRecord) {
            ++m_depth;
            add([&](TreeBuilder& tree) { tree.startElement(uri, local, name, attributes); });
        } else if (m_name == local && (!m_uri || *m_uri == uri)) {
            beginRecord(uri, local, name, attributes);
        } else {
            m_operation.poll();
            m_namespaces.startElement(attributes);
        }
        remember();
    }
    void endElement(const XMLCh* const uri, const XMLCh* const local,
                    const XMLCh* const name) override {
        if (!m_isInRecord) {
            m_namespaces.endElement();
        } else {
            add([&](TreeBuilder& tree) { tree.endElement(uri, local, name); });
            if (m_depth == 0) {
                endRecord();
            } else {
                --m_depth;
            }
        }
        remember();
    }
    void characters(const XMLCh* const text, const XMLSize_t length) override {
        add([&](TreeBuilder& tree) { tree.characters(text, length); });
        remember();
    }
    void ignorableWhitespace(const XMLCh* const text, const XMLSize_t length) override {
        add([&](TreeBuilder& tree) { tree.ignorableWhitespace(text, length); });
        remember();
    }
    void comment(const XMLCh* const text, const XMLSize_t length) override {
        add([&](TreeBuilder& tree) { tree.comment(text, length); });
        remember();
    }
    void processingInstruction(const XMLCh* const target, const XMLCh* const data) override {
        add([&](TreeBuilder& tree) { tree.processingInstruction(target, data); });
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
        if (!m_builder) {
            m_operation.poll();
            return;
        }
        try {
            add(*m_builder);
        } catch (const vexa::Error& error) {
            if (error.kind() != vexa::ErrorKind::Limit) {
                throw;
            }
            m_limit = std::current_exception();
            m_builder.reset();
            m_document.reset();
            m_operation.restart();
        }
    }
    void beginRecord(const XMLCh* const uri, const XMLCh* const local, const XMLCh* const name,
                     const xercesc::Attributes& attributes) {
        m_recordLine = m_line;
        m_isInRecord = true;
        m_document = std::make_shared<vexa::DocumentData>(m_documentUri);
        m_document->memory().setOperation(&m_operation);
        m_builder = std::make_unique<TreeBuilder>(*m_document->tree(), m_operation);
        m_builder->startDocument();
        for (const UnparsedEntity& entity : m_entities) {
            m_builder->unparsedEntityDecl(entity.name.c_str(), entity.publicId.c_str(),
                                          entity.systemId.c_str(), entity.notation.c_str());
        }
        NamespaceScopes own;
        own.startElement(attributes);
        ExtendedAttributes extended(attributes);
        m_namespaces.visitAll([&](const std::u16string& prefix, const std::u16string& scope) {
            if (!own.declares(prefix) && !scope.empty()) {
                extended.addDeclaration(prefix, scope);
            }
        });
        add([&](TreeBuilder& tree) { tree.startElement(uri, local, name, extended); });
    }
    void endRecord() {
        m_isInRecord = false;
        if (m_builder) {
            m_builder->endDocument();
            m_builder.reset();
            m_document->seal();
            m_complete = std::move(m_document);
        }
    }
    /** What is reported next begins where this ended. */
    void remember() { m_line = static_cast<std::size_t>(m_locator->getLineNumber()); }

    Operation& m_operation;
    std::optional<std::u16string> m_uri; // none: any
    std::u16string m_name;
    std::string m_documentUri;
    const xercesc::Locator* m_locator = nullptr;
    std::size_t m_line = 1;
    std::size_t m_recordLine = 0;
    /** Outside of records. */
    NamespaceScopes m_namespaces;
    std::vector<UnparsedEntity> m_entities;
    bool m_isInRecord = false;
    /** So many of its elements are open within its root. */
    std::size_t m_depth = 0;
    /** The record under way; null while it is passed over. */
    std::shared_ptr<vexa::DocumentData> m_document;
    std::unique_ptr<TreeBuilder> m_builder;
    std::shared_ptr<vexa::DocumentData> m_complete;
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
            m_reader->setContentHandler(&m_handler);
            m_reader->setDTDHandler(&m_handler);
            m_reader->setLexicalHandler(&m_handler);
            m_reader->setErrorHandler(&m_errors);
            m_reader->setXMLEntityResolver(&m_entities);
        });
    }

    std::optional<Document> next() {
        if (m_isAtEnd) {
            return std::nullopt;
        }
        m_isAtEnd = true; // until the record is there
        m_operation.restart();
        return m_operation.run(ErrorKind::Parse, [&] { return read(); });
    }

    std::uint64_t count() const { return m_count; }
    std::size_t line() const { return m_handler.line(); }
    std::uint64_t bytesRead() const { return m_sources.bytesRead(); }

private:
    std::optional<Document> read() {
        bool isMore = m_isBegun ? m_reader->parseNext(m_token)
                                : m_reader->parseFirst(*m_opened.source, m_token);
        m_isBegun = true;
        while (!m_handler.hasRecord() && isMore) {
            isMore = m_reader->parseNext(m_token);
        }
        if (!m_handler.hasRecord()) {
            return std::nullopt;
        }
        ++m_count;
        m_isAtEnd = false;
        return DocumentAccess::make(m_handler.take());
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
    return data().next();
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
