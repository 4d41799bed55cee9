#include "xslt/DocumentParser.h"

#include "xslt/ParserCallbacks.h"

#include "engine/EngineMemory.h"

#include <xalanc/XalanSourceTree/XalanSourceTreeContentHandler.hpp>

namespace {

/** Builds the tree. The engine's own handler crashes at an unparsed entity without a system id. */
class TreeBuilder : public xalanc::XalanSourceTreeContentHandler {
public:
    using XalanSourceTreeContentHandler::XalanSourceTreeContentHandler;

    void unparsedEntityDecl(const XMLCh* const name, const XMLCh* const publicId,
                            const XMLCh* const systemId, const XMLCh* const notation) override {
        XalanSourceTreeContentHandler::unparsedEntityDecl(name, publicId, systemId ? systemId : u"",
                                                          notation);
    }
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
        m_parser = std::make_unique<xalanc::XalanSourceTreeParserLiaison>(engineMemory());
    }
    ParserErrors errors(operation);
    ExternalEntities entities(sources);
    m_parser->setErrorHandler(&errors);
    m_parser->setXMLEntityResolver(&entities);
    const auto document = std::make_shared<vexa::DocumentData>(uri);
    TreeBuilder builder(engineMemory(), document->tree());
    try {
        m_parser->parseXMLStream(source, builder, xalanc::XalanDOMString(), &builder, &builder);
    } catch (...) {
        // What the parser has lost by the error comes back with it.
        m_parser.reset();
        throw;
    }
    document->seal();
    return document;
}
