#include "XmlWriter.h"

#include <xalanc/PlatformSupport/XalanOutputStreamPrintWriter.hpp>
#include <xalanc/PlatformSupport/XalanStdOutputStream.hpp>
#include <xalanc/XMLSupport/FormatterToXML.hpp>
#include <xalanc/XMLSupport/FormatterTreeWalker.hpp>

using xalanc::FormatterToXML;
using xalanc::XalanDOMString;

void writeXml(std::ostream& os, const xalanc::XalanNode* node, XmlDeclaration declaration) {
    xalanc::XalanStdOutputStream outputStream(os);
    xalanc::XalanOutputStreamPrintWriter printWriter(outputStream, false);
    const XalanDOMString none;
    FormatterToXML formatter(printWriter,
                             none,  // version
                             false, // indenting
                             0,     // indent amount
                             none,  // encoding
                             none,  // media type
                             none,  // doctype system id
                             none,  // doctype public id
                             true,  // XML declaration
                             none,  // standalone
                             FormatterToXML::OUTPUT_METHOD_XML,
                             true); // data buffering
    xalanc::FormatterTreeWalker walker(formatter);
    if (declaration == XmlDeclaration::LeftOut) {
        formatter.setShouldWriteXMLHeader(false);
    }
    formatter.startDocument();
    if (node) {
        walker.traverseSubtree(node);
    }
    formatter.endDocument();
}
