/**
 * @file
 * Writes nodes as XML text.
 */
#pragma once

#include <iosfwd>

#include <xalanc/PlatformSupport/XalanOutputStreamPrintWriter.hpp>
#include <xalanc/PlatformSupport/XalanStdOutputStream.hpp>
#include <xalanc/XMLSupport/FormatterToXML.hpp>
#include <xalanc/XalanDOM/XalanNode.hpp>

enum class XmlDeclaration { Written, LeftOut };

/** Formats output events as XML text in the engine's default encoding, UTF-8, not indented. */
class XmlOutput {
public:
    explicit XmlOutput(std::ostream& os);
    XmlOutput(const XmlOutput&) = delete;
    XmlOutput& operator=(const XmlOutput&) = delete;

    xalanc::FormatterToXML& formatter() { return m_formatter; }

private:
    /**
     * The formatter of the engine throws an exception for a character that needs a character
     * reference: a tab or a newline in an attribute, a carriage return, and the controls from 0x7F
     * to 0x9F.
     */
    class Formatter : public xalanc::FormatterToXML {
    public:
        using FormatterToXML::FormatterToXML;

    protected:
        bool accumDefaultEntity(xalanc::XalanDOMChar c, bool escapeLineFeed) override;
    };

    xalanc::XalanStdOutputStream m_stream;
    xalanc::XalanOutputStreamPrintWriter m_writer;
    Formatter m_formatter;
};

/**
 * Writes a node and its subtree. `Walker` reports them to the formatter.
 *
 * @param node null: only the XML declaration is written
 * @throws xalanc::XSLException if writing to the stream fails
 * @throws xercesc::SAXException for a character that XML does not allow
 */
template <typename Walker>
void writeXml(std::ostream& os, const xalanc::XalanNode* node, XmlDeclaration declaration) {
    XmlOutput output(os);
    xalanc::FormatterToXML& formatter = output.formatter();
    Walker walker(formatter);
    if (declaration == XmlDeclaration::LeftOut) {
        formatter.setShouldWriteXMLHeader(false);
    }
    formatter.startDocument();
    if (node) {
        walker.traverseSubtree(node);
    }
    formatter.endDocument();
}

/** The same by the engine's own walker, which reports attributes in the reverse of their order. */
void writeXml(std::ostream& os, const xalanc::XalanNode* node, XmlDeclaration declaration);
