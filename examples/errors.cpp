// Causes every result code on purpose, and shows how a host can react:
//
//     errors errors.xsl
//
// The advice is printed on standard output, the error messages on standard error.
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/TqXsltFunction.h>
#include <vexa/VEXAXslTransformer.h>

#include <xercesc/util/XMLURL.hpp>

namespace {

/** vexa:HostOf(address): does not catch the exceptions that are thrown inside it. */
class FunctionHostOf : public TqXsltFunction {
public:
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode* node,
                               const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override {
        if (args.size() != 1) {
            context.problem(context.eXPATH, context.eError, getError(), locator, node);
        }
        const xercesc::XMLURL url(args[0]->str(context).c_str()); // throws an XMLException
        if (!url.getHost() || !*url.getHost()) {
            throw std::runtime_error("the address names no host");
        }
        return context.getXObjectFactory().createString(url.getHost());
    }
    FunctionHostOf* clone() const override { return new FunctionHostOf(*this); }
    xalanc::XalanDOMString getError() const override {
        return xalanc::XalanDOMString("HostOf() takes one address");
    }
};

// [advice]
const char* advice(int result) {
    switch (result) {
    case 0:
        return "use the result";
    case -1:
        return "fix the stylesheet or the expression; check whether the result can be written";
    case -2:
        return "fix or find the document or the stylesheet that the error message names";
    case -3:
        return "read the error message: another error of the XML parser";
    case -4:
        return "use a new in-memory document for the result";
    default:
        return "check the memory and your own extension functions";
    }
}
// [/advice]

class AllResultCodes {
public:
    explicit AllResultCodes(const char* stylesheet) : m_stylesheet(stylesheet) {
        m_transformer.installExternalFunction("HostOf", FunctionHostOf());
    }

    void causeAll() {
        query("string(/address");           // a bracket is missing
        transformFiles("no-such-file.xml"); // nothing to read
        transform("<address>pigeon://loft</address>");
        transformTwiceIntoOneDocument();
        transform("<address>file:///home</address>");
        transformStream("<address>file:///home</address>");
        transform("<address>http://vexa.example/</address>"); // the transformer is still usable
    }

private:
    void print(int result) {
        std::cout << result << ": " << advice(result) << '\n';
        if (result != 0) {
            std::cerr << m_transformer.getLastError() << '\n';
        }
    }

    void query(const char* expression) {
        auto document = m_transformer.createDom2Dom();
        document->InitializeInputSource("<address/>");
        print(m_transformer.doXPath(*document, expression, std::cerr));
    }

    void transformFiles(const char* source) {
        print(m_transformer.doTransform(source, m_stylesheet, "/dev/null"));
    }

    void transform(const char* text) {
        auto source = m_transformer.createDom2Dom();
        auto result = m_transformer.createDom2Dom();
        source->InitializeInputSource(text);
        result->InitializeOutputTarget();
        print(m_transformer.doTransform(*source, m_stylesheet, *result));
    }

    void transformTwiceIntoOneDocument() {
        auto source = m_transformer.createDom2Dom();
        auto result = m_transformer.createDom2Dom();
        source->InitializeInputSource("<address>http://vexa.example/</address>");
        result->InitializeOutputTarget();
        print(m_transformer.doTransform(*source, m_stylesheet, *result));
        print(m_transformer.doTransform(*source, m_stylesheet, *result));
    }

    void transformStream(const char* text) {
        // [exceptions pass]
        std::istringstream source(text);
        std::ostringstream result;
        try {
            print(m_transformer.doTransform(source, m_stylesheet, result));
        } catch (const std::exception& failure) { // thrown by the extension function
            std::cout << "exception: " << failure.what() << '\n';
        }
        // [/exceptions pass]
    }

    VEXAXslTransformer m_transformer;
    const char* m_stylesheet;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: errors STYLESHEET\n";
        return EXIT_FAILURE;
    }
    TQXslTransformer_Initialize(nullptr);
    AllResultCodes(argv[1]).causeAll();
    TQXslTransformer_Terminate(nullptr);
    return EXIT_SUCCESS;
}
