#include <iostream>
#include <memory>
#include <string>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLException.hpp>

namespace {

/** Parses an untrusted document without storing anything of it. */
class Gate : public xercesc::DefaultHandler {
public:
    void startDTD(const XMLCh*, const XMLCh*, const XMLCh*) override {
        throw xercesc::SAXException("it has a document type declaration");
    }
    void startElement(const XMLCh*, const XMLCh*, const XMLCh*,
                      const xercesc::Attributes& attributes) override {
        if (++m_depth > 1000 || attributes.getLength() > 1000) {
            throw xercesc::SAXException("it is too deep, or has too many attributes");
        }
    }
    void endElement(const XMLCh*, const XMLCh*, const XMLCh*) override { --m_depth; }

private:
    int m_depth = 0;
};

std::string text(const XMLCh* message) {
    return reinterpret_cast<const char*>(xercesc::TranscodeToStr(message, "UTF-8").str());
}

/** Why the document is refused; empty if it is accepted. */
std::string refusal(const char* file) {
    const std::unique_ptr<xercesc::SAX2XMLReader> reader(
        xercesc::XMLReaderFactory::createXMLReader());
    Gate gate;
    reader->setContentHandler(&gate);
    reader->setLexicalHandler(&gate);
    reader->setErrorHandler(&gate);
    try {
        const I18NString name(file);
        reader->parse(
            xercesc::LocalFileInputSource(static_cast<const XMLCh*>(name.getExternalBuffer())));
        return "";
    } catch (const xercesc::SAXException& reason) {
        return text(reason.getMessage());
    } catch (const xercesc::XMLException& reason) {
        return text(reason.getMessage());
    }
}

} // namespace

int main(int, char** files) { // source, stylesheet, output
    TQXslTransformer_Initialize(nullptr);
    std::string error = refusal(files[1]);
    if (error.empty()) {
        VEXAXslTransformer::m_bUseXercesDOM = true; // fast for a text of many pieces
        VEXAXslTransformer transformer;
        transformer.doTransform(files[1], files[2], files[3]);
        error = transformer.getLastError();
    }
    std::cerr << error;
    TQXslTransformer_Terminate(nullptr);
    return error.empty() ? 0 : 1;
}
