#include "engine/XmlWriter.h"

#include <xalanc/XMLSupport/FormatterTreeWalker.hpp>

using xalanc::XalanDOMString;

XmlOutput::XmlOutput(std::ostream& os)
    : m_stream(os), m_writer(m_stream, false), m_formatter(m_writer,
                                                           XalanDOMString(), // version
                                                           false,            // indenting
                                                           0,                // indent amount
                                                           XalanDOMString(), // encoding
                                                           XalanDOMString(), // media type
                                                           XalanDOMString(), // doctype system id
                                                           XalanDOMString(), // doctype public id
                                                           true,             // XML declaration
                                                           XalanDOMString(), // standalone
                                                           Formatter::OUTPUT_METHOD_XML,
                                                           true) // data buffering
{}

bool XmlOutput::Formatter::accumDefaultEntity(xalanc::XalanDOMChar c, bool escapeLineFeed) {
    if (FormatterToXML::accumDefaultEntity(c, escapeLineFeed)) {
        return true;
    }
    // The other controls are not XML characters, and an error.
    const bool needsReference = c == u'\t' || c == u'\n' || c == u'\r' || (c >= 0x7F && c <= 0x9F);
    if (needsReference) {
        writeNumberedEntityReference(c);
    }
    return needsReference;
}

void writeXml(std::ostream& os, const xalanc::XalanNode* node, XmlDeclaration declaration) {
    writeXml<xalanc::FormatterTreeWalker>(os, node, declaration);
}
