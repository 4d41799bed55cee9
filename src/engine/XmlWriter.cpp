#include "engine/XmlWriter.h"

#include <xalanc/PlatformSupport/XalanOutputStreamPrintWriter.hpp>
#include <xalanc/PlatformSupport/XalanStdOutputStream.hpp>
#include <xalanc/XMLSupport/FormatterToXML.hpp>
#include <xalanc/XMLSupport/FormatterTreeWalker.hpp>

using xalanc::FormatterToXML;
using xalanc::XalanDOMString;

namespace {

/**
 * The base class throws if a character needs a numeric character reference: a tab or a newline in
 * an attribute, a carriage return, and the control characters from 0x7F to 0x9F.
 */
class NodeFormatter : public FormatterToXML {
public:
    using FormatterToXML::FormatterToXML;

protected:
    bool accumDefaultEntity(xalanc::XalanDOMChar c, bool escapeLineFeed) override {
        if (FormatterToXML::accumDefaultEntity(c, escapeLineFeed)) {
            return true;
        }
        // XML does not allow the other control characters: they are an error.
        const bool isNumbered = c == u'\t' || c == u'\n' || c == u'\r' || (c >= 0x7F && c <= 0x9F);
        if (isNumbered) {
            writeNumberedEntityReference(c);
        }
        return isNumbered;
    }
};

} // namespace

void traverseWithEngine(const xalanc::XalanNode& node, xalanc::FormatterListener& formatter) {
    xalanc::FormatterTreeWalker(formatter).traverseSubtree(&node);
}

void writeXml(std::ostream& os, const xalanc::XalanNode* node, XmlDeclaration declaration,
              Traversal traverse) {
    xalanc::XalanStdOutputStream outputStream(os);
    xalanc::XalanOutputStreamPrintWriter printWriter(outputStream, false);
    const XalanDOMString none;
    NodeFormatter formatter(printWriter,
                            none,  // version
                            false, // indenting
                            0,     // indent amount
                            none,  // encoding
                            none,  // media type
                            none,  // doctype system id
                            none,  // doctype public id
                            true,  // XML declaration
                            none,  // standalone
                            NodeFormatter::OUTPUT_METHOD_XML,
                            true); // data buffering
    if (declaration == XmlDeclaration::LeftOut) {
        formatter.setShouldWriteXMLHeader(false);
    }
    formatter.startDocument();
    if (node) {
        traverse(*node, formatter);
    }
    formatter.endDocument();
}
