#include "xslt/ModuleParser.h"

#include "xslt/MemoryPool.h"

#include "engine/ExpressionGuard.h"

#include <utility>

#include <xercesc/framework/XMLDocumentHandler.hpp>
#include <xercesc/framework/XMLPScanToken.hpp>
#include <xercesc/parsers/SAXParser.hpp>

namespace {

/**
 * Stands between the parser and the handler. The parser reports each event to the handler first,
 * and then here as to an advanced handler: so the place where the last event ended is the place
 * where the next one begins.
 */
class BeginningLocator : public xercesc::DocumentHandler,
                         public xercesc::XMLDocumentHandler,
                         public xercesc::Locator {
public:
    BeginningLocator(xercesc::DocumentHandler& handler, Operation& operation)
        : m_handler(handler), m_operation(operation) {}

    // Locator
    const XMLCh* getPublicId() const override { return m_parser->getPublicId(); }
    const XMLCh* getSystemId() const override { return m_parser->getSystemId(); }
    XMLFileLoc getLineNumber() const override { return m_line; }
    XMLFileLoc getColumnNumber() const override { return m_column; }

    // DocumentHandler
    void setDocumentLocator(const xercesc::Locator* const parser) override {
        m_parser = parser;
        m_handler.setDocumentLocator(this);
    }
    // These two are of both interfaces: each comes twice, and the handler forgets where the
    // including module is when it has had two ends.
    void startDocument() override {
        if (!std::exchange(m_hasBegun, true)) {
            m_handler.startDocument();
        }
    }
    void endDocument() override {
        if (!std::exchange(m_hasEnded, true)) {
            m_handler.endDocument();
        }
    }
    void startElement(const XMLCh* const name, xercesc::AttributeList& attributes) override {
        m_operation.checkDepth(++m_depth);
        refuseDeepNesting();
        m_handler.startElement(name, attributes);
    }
    void endElement(const XMLCh* const name) override {
        m_handler.endElement(name);
        --m_depth;
    }
    void characters(const XMLCh* const text, const XMLSize_t length) override {
        m_handler.characters(text, length);
    }
    void ignorableWhitespace(const XMLCh* const text, const XMLSize_t length) override {
        m_handler.ignorableWhitespace(text, length);
    }
    void processingInstruction(const XMLCh* const target, const XMLCh* const data) override {
        m_handler.processingInstruction(target, data);
    }
    void resetDocument() override { m_handler.resetDocument(); }

    // XMLDocumentHandler
    void docCharacters(const XMLCh* const /*text*/, const XMLSize_t /*length*/,
                       const bool /*cdata*/) override {
        remember();
    }
    void docComment(const XMLCh* const /*text*/) override { remember(); }
    void docPI(const XMLCh* const /*target*/, const XMLCh* const /*data*/) override { remember(); }
    void endElement(const xercesc::XMLElementDecl& /*declaration*/, const unsigned int /*uri*/,
                    const bool /*isRoot*/, const XMLCh* const /*prefix*/) override {
        remember();
    }
    void endEntityReference(const xercesc::XMLEntityDecl& /*declaration*/) override { remember(); }
    void ignorableWhitespace(const XMLCh* const /*text*/, const XMLSize_t /*length*/,
                             const bool /*cdata*/) override {
        remember();
    }
    void startElement(const xercesc::XMLElementDecl& /*declaration*/, const unsigned int /*uri*/,
                      const XMLCh* const /*prefix*/,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& /*attributes*/,
                      const XMLSize_t /*count*/, const bool /*isEmpty*/,
                      const bool /*isRoot*/) override {
        remember();
    }
    void startEntityReference(const xercesc::XMLEntityDecl& /*declaration*/) override {
        remember();
    }
    void XMLDecl(const XMLCh* const /*version*/, const XMLCh* const /*encoding*/,
                 const XMLCh* const /*standalone*/, const XMLCh* const /*actual*/) override {
        remember();
    }

    /** The next event begins here. */
    void remember() {
        m_operation.poll();
        m_line = m_parser->getLineNumber();
        m_column = m_parser->getColumnNumber();
    }

private:
    /** The engine recurses for each open element once the stylesheet is read. */
    void refuseDeepNesting() {
        constexpr std::size_t STEP = 100;
        constexpr std::size_t STACK_OF_ELEMENT = 256; // 64 were measured in an optimized build
        if (m_depth <= m_possibleDepth) {
            return;
        }
        m_possibleDepth += STEP;
        if (!hasStackFor(m_possibleDepth * STACK_OF_ELEMENT)) {
            m_operation.fail(vexa::ErrorKind::Compile, "the elements are nested too deeply",
                             toLocation(this));
        }
    }

    xercesc::DocumentHandler& m_handler;
    Operation& m_operation;
    /** How many elements are open. */
    std::size_t m_depth = 0;
    /** So many elements may be open at once. */
    std::size_t m_possibleDepth = 0;
    bool m_hasBegun = false;
    bool m_hasEnded = false;
    const xercesc::Locator* m_parser = nullptr;
    XMLFileLoc m_line = 1;
    XMLFileLoc m_column = 1;
};

} // namespace

void parseModule(const xercesc::InputSource& source, xercesc::DocumentHandler& handler,
                 Operation& operation, Sources& sources, ExternalEntities::Listener onEntity) {
    ParserErrors errors(operation);
    ExternalEntities entities(sources, std::move(onEntity));
    BeginningLocator locator(handler, operation);
    // The parser loses memory at external DTDs and at some failures: it has memory of its own.
    MemoryPool memory;
    memory.setOperation(&operation);
    // The settings that the engine's own parser has for stylesheets: namespaces are left to the
    // handler, which takes some declarations that the parser refuses.
    xercesc::SAXParser parser(nullptr, &memory);
    parser.setDoNamespaces(false);
    parser.setValidationScheme(xercesc::SAXParser::Val_Never);
    parser.setDocumentHandler(&locator);
    parser.installAdvDocHandler(&locator);
    parser.setErrorHandler(&errors);
    parser.setXMLEntityResolver(&entities);
    // White space before the first element is no event: the parser stops in front of the element.
    xercesc::XMLPScanToken token;
    parser.parseFirst(source, token);
    locator.remember();
    while (parser.parseNext(token)) {
    }
}
