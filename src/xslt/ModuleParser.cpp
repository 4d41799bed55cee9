#include "xslt/ModuleParser.h"

#include "xslt/MemoryPool.h"
#include "xslt/Text.h"

#include "engine/ExpressionGuard.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <xercesc/framework/XMLDocumentHandler.hpp>
#include <xercesc/framework/XMLPScanToken.hpp>
#include <xercesc/parsers/SAXParser.hpp>

namespace {

constexpr std::u16string_view XSLT_NAMESPACE = u"http://www.w3.org/1999/XSL/Transform";

/** Which prefixes stand for the namespace of XSLT where the parser is. */
class XsltPrefixes {
public:
    void startElement(const xercesc::AttributeList& attributes) {
        ++m_depth;
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
            const std::u16string_view name = attributes.getName(i);
            if (name.substr(0, 5) == u"xmlns" && (name.size() == 5 || name[5] == u':')) {
                m_declarations.push_back({m_depth, std::u16string(name.substr(5)),
                                          attributes.getValue(i) == XSLT_NAMESPACE});
            }
        }
    }
    void endElement() {
        while (!m_declarations.empty() && m_declarations.back().depth == m_depth) {
            m_declarations.pop_back();
        }
        --m_depth;
    }
    /** How many elements are open. */
    std::size_t depth() const { return m_depth; }
    /** @param prefix with a colon in front; empty for none */
    bool contain(std::u16string_view prefix) const {
        const auto declaration =
            std::find_if(m_declarations.rbegin(), m_declarations.rend(),
                         [prefix](const Declaration& known) { return known.prefix == prefix; });
        return declaration != m_declarations.rend() && declaration->isXslt;
    }

private:
    struct Declaration {
        std::size_t depth;
        std::u16string prefix;
        bool isXslt;
    };

    std::size_t m_depth = 0;
    std::vector<Declaration> m_declarations;
};

/** The first attribute that xsl:text must not have; null for none. */
const XMLCh* wrongAttributeOfText(const xercesc::AttributeList& attributes) {
    for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
        const std::u16string_view name = attributes.getName(i);
        const std::u16string_view value = attributes.getValue(i);
        const bool isRight = name == u"disable-output-escaping"
                                 ? value == u"yes" || value == u"no"
                                 : name == u"xmlns" || name.find(u':') != std::u16string_view::npos;
        if (!isRight) {
            return attributes.getName(i);
        }
    }
    return nullptr;
}

/** The encoding, if it has a character that XSLT does not allow there; null otherwise. */
const XMLCh* wrongAttributeOfOutput(const xercesc::AttributeList& attributes) {
    const XMLCh* const encoding = attributes.getValue(u"encoding");
    const std::u16string_view name = encoding ? encoding : u"";
    const bool isAscii =
        std::all_of(name.begin(), name.end(), [](char16_t c) { return c <= 0x7E; });
    return isAscii ? nullptr : u"encoding";
}

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
    void startDocument() override { m_handler.startDocument(); }
    void endDocument() override { m_handler.endDocument(); }
    void startElement(const XMLCh* const name, xercesc::AttributeList& attributes) override {
        m_prefixes.startElement(attributes);
        m_operation.checkDepth(m_prefixes.depth());
        refuseDeepNesting();
        refuseWrongAttribute(name, attributes);
        m_handler.startElement(name, attributes);
    }
    void endElement(const XMLCh* const name) override {
        m_handler.endElement(name);
        m_prefixes.endElement();
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
        constexpr std::size_t STACK_OF_ELEMENT = 160; // 65 were measured
        if (m_prefixes.depth() <= m_possibleDepth) {
            return;
        }
        m_possibleDepth += STEP;
        if (!hasStackFor(m_possibleDepth * STACK_OF_ELEMENT)) {
            m_operation.fail(vexa::ErrorKind::Compile, "the elements are nested too deeply",
                             toLocation(this));
        }
    }

    /**
     * The engine crashes at xsl:text with a wrong attribute, and at an encoding whose name is
     * longer in UTF-8 than it can be in ASCII.
     */
    void refuseWrongAttribute(std::u16string_view name,
                              const xercesc::AttributeList& attributes) const {
        const auto colon = name.find(u':');
        const bool hasPrefix = colon != std::u16string_view::npos;
        const std::u16string_view local = name.substr(hasPrefix ? colon + 1 : 0);
        const XMLCh* const wrong = local == u"text"     ? wrongAttributeOfText(attributes)
                                   : local == u"output" ? wrongAttributeOfOutput(attributes)
                                                        : nullptr;
        if (!wrong) {
            return;
        }
        const std::u16string prefix =
            hasPrefix ? u":" + std::u16string(name.substr(0, colon)) : u"";
        if (m_prefixes.contain(prefix)) {
            m_operation.fail(vexa::ErrorKind::Compile,
                             "'" + toUtf8(name) + "' has a wrong attribute '" + toUtf8(wrong) + "'",
                             toLocation(this));
        }
    }

    xercesc::DocumentHandler& m_handler;
    Operation& m_operation;
    XsltPrefixes m_prefixes;
    /** So many elements may be open at once. */
    std::size_t m_possibleDepth = 0;
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
