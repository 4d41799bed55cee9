#include "SameDocument.h"

#include "TestFiles.h"

#include <memory>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>

namespace {

class Document {
public:
    explicit Document(const std::string& text) {
        // HandlerBase throws an exception for fatal errors.
        m_parser.setErrorHandler(&m_handler);
        m_parser.setDoNamespaces(true);
        m_parser.setLoadExternalDTD(false);
        const std::string withoutNul = text.substr(0, text.find('\0'));
        const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(withoutNul.data()),
                                                withoutNul.size(), "text");
        m_parser.parse(source);
        root()->normalize();
    }

    xercesc::DOMElement* root() { return m_parser.getDocument()->getDocumentElement(); }

private:
    xercesc::HandlerBase m_handler;
    xercesc::XercesDOMParser m_parser;
};

} // namespace

::testing::AssertionResult sameDocument(const std::string& actual, const std::string& expected) {
    try {
        Document left(actual), right(expected);
        if (left.root()->isEqualNode(right.root())) {
            return ::testing::AssertionSuccess();
        }
        const auto difference = sameBytes(actual, expected);
        return ::testing::AssertionFailure() << "another document: " << difference.message();
    } catch (const xercesc::SAXException&) {
        return ::testing::AssertionFailure()
               << "not well-formed: " << actual.substr(0, 200) << " or " << expected.substr(0, 200);
    }
}
