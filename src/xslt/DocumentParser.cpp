#include "xslt/DocumentParser.h"

#include "xslt/ParserCallbacks.h"
#include "xslt/TreeBuilder.h"

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
