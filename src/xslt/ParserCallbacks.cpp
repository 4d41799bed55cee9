#include "xslt/ParserCallbacks.h"

#include "xslt/Text.h"
#include "xslt/Uri.h"

#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>

namespace {

/** @param place a locator or an exception */
template <typename Place>
vexa::Location toLocation(const Place& place) {
    return {toUtf8(place.getSystemId()), static_cast<std::size_t>(place.getLineNumber()),
            static_cast<std::size_t>(place.getColumnNumber())};
}

} // namespace

void ParserErrors::warning(const xercesc::SAXParseException& exception) {
    report(vexa::Severity::Warning, exception);
}

void ParserErrors::error(const xercesc::SAXParseException& exception) {
    report(vexa::Severity::Error, exception);
}

void ParserErrors::fatalError(const xercesc::SAXParseException& exception) {
    m_operation.fail(vexa::ErrorKind::Parse, cleanText(toUtf8(exception.getMessage())),
                     toLocation(exception));
}

void ParserErrors::report(vexa::Severity severity, const xercesc::SAXParseException& exception) {
    m_operation.report(severity, cleanText(toUtf8(exception.getMessage())), toLocation(exception));
}

xercesc::InputSource* ExternalEntities::resolveEntity(xercesc::XMLResourceIdentifier* identifier) {
    const std::string base = toUtf8(identifier->getBaseURI());
    const std::string uri = resolveUri(toUtf8(identifier->getSystemId()), base);
    const xercesc::Locator* const locator = identifier->getLocator();
    Sources::Opened opened =
        m_sources.open(uri, base, Reference::ExternalEntity,
                       locator ? toLocation(*locator) : vexa::Location{base, 0, 0},
                       toUtf8(identifier->getPublicId()));
    m_onRead(opened.uri);
    return opened.source.release();
}
