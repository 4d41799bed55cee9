#include "xslt/DocumentParser.h"

#include "xslt/ParserCallbacks.h"

#include "engine/EngineMemory.h"

#include <string>

#include <xalanc/XalanSourceTree/XalanSourceTreeContentHandler.hpp>

namespace {

/**
 * Builds the tree. The engine's own handler copies all of a text for each piece that the parser
 * gives it, and crashes at an unparsed entity without a system id.
 */
class TreeBuilder : public xalanc::XalanSourceTreeContentHandler {
public:
    TreeBuilder(vexa::DocumentData::Tree& tree, Operation& operation)
        : XalanSourceTreeContentHandler(engineMemory(), &tree), m_operation(operation) {}
    TreeBuilder(const TreeBuilder&) = delete;
    TreeBuilder& operator=(const TreeBuilder&) = delete;
    ~TreeBuilder() override { m_operation.returnMemory(m_text.capacity() * sizeof(char16_t)); }

    void startElement(const XMLCh* const uri, const XMLCh* const localName, const XMLCh* const name,
                      const xalanc::AttributesType& attributes) override {
        m_operation.checkDepth(++m_depth);
        addText();
        XalanSourceTreeContentHandler::startElement(uri, localName, name, attributes);
    }
    void endElement(const XMLCh* const uri, const XMLCh* const localName,
                    const XMLCh* const name) override {
        addText();
        XalanSourceTreeContentHandler::endElement(uri, localName, name);
        --m_depth;
    }
    void characters(const XMLCh* const text, const size_type length) override {
        m_operation.poll();
        m_operation.append(m_text, text, length);
    }
    void ignorableWhitespace(const XMLCh* const text, const size_type length) override {
        addText();
        XalanSourceTreeContentHandler::ignorableWhitespace(text, length);
    }
    void comment(const XMLCh* const text, const size_type length) override {
        addText();
        XalanSourceTreeContentHandler::comment(text, length);
    }
    void processingInstruction(const XMLCh* const target, const XMLCh* const data) override {
        addText();
        XalanSourceTreeContentHandler::processingInstruction(target, data);
    }
    void unparsedEntityDecl(const XMLCh* const name, const XMLCh* const publicId,
                            const XMLCh* const systemId, const XMLCh* const notation) override {
        XalanSourceTreeContentHandler::unparsedEntityDecl(name, publicId, systemId ? systemId : u"",
                                                          notation);
    }

private:
    void addText() {
        m_operation.poll();
        if (!m_text.empty()) {
            XalanSourceTreeContentHandler::characters(m_text.data(), m_text.size());
            m_text.clear();
        }
    }

    Operation& m_operation;
    std::size_t m_depth = 0;
    std::u16string m_text;
};

} // namespace

DocumentParser::DocumentPtr DocumentParser::parse(const vexa::Input& input, Operation& operation,
                                                  Sources& sources) {
    const Sources::Opened opened = sources.open(input);
    return parse(*opened.source, opened.uri, operation, sources);
}

DocumentParser::DocumentPtr DocumentParser::parse(const xercesc::InputSource& source,
                                                  const std::string& uri, Operation& operation,
                                                  Sources& sources) {
    if (!m_parser) {
        m_parser = std::make_unique<Parser>();
    }
    bool hasEntities = false;
    ParserErrors errors(operation);
    ExternalEntities entities(sources, [&](const std::string& /*uri*/) { hasEntities = true; });
    m_parser->liaison.setErrorHandler(&errors);
    m_parser->liaison.setXMLEntityResolver(&entities);
    const auto document = std::make_shared<vexa::DocumentData>(uri);
    m_parser->memory.setOperation(&operation);
    document->memory().setOperation(&operation);
    TreeBuilder builder(*document->tree(), operation);
    try {
        m_parser->liaison.parseXMLStream(source, builder, xalanc::XalanDOMString(), &builder,
                                         &builder);
    } catch (...) {
        m_parser.reset();
        throw;
    }
    m_parser->memory.setOperation(nullptr);
    if (hasEntities) {
        m_parser.reset(); // the parser loses memory at each external DTD
    }
    document->seal();
    return document;
}
