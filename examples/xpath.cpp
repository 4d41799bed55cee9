// Parses a document once, and evaluates several XPath expressions:
//
//     xpath orders-small.xml
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

namespace {

// [query]
std::string query(VEXAXslTransformer& transformer, Dom2Dom& document, const char* expression) {
    std::ostringstream text;
    if (transformer.doXPath(document, expression, text) != 0) {
        throw std::runtime_error(transformer.getLastError());
    }
    return text.str();
}
// [/query]

void queryAll(const char* source) {
    VEXAXslTransformer transformer;
    auto document = transformer.createDom2Dom();
    std::ifstream stream(source);
    if (!document->InitializeInputSource(stream, source)) {
        throw std::runtime_error(document->getLastError());
    }
    // [expressions]
    for (const char* const expression : {
             "string(/*/@asOf)",                                   // a string
             "string(count(//cat:product))",                       // a number
             "string(//cat:product/@price > 60)",                  // a boolean
             "//cat:category[@id = 'tea']/cat:name[lang('el')]",   // one node, as XML
             "string(//cat:product[@price > 60]/cat:gloss)",       // the text of the first node
             "string(//*[local-name() = 'order'][last()]/@state)", // a namespace without a prefix
             "count(//cat:product)", // a number without string(): prints nothing
         }) {
        std::cout << expression << " is " << query(transformer, *document, expression) << '\n';
    }
    // [/expressions]
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: xpath SOURCE\n";
        return EXIT_FAILURE;
    }
    int status = EXIT_SUCCESS;
    TQXslTransformer_Initialize(nullptr);
    try {
        queryAll(argv[1]);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        status = EXIT_FAILURE;
    }
    TQXslTransformer_Terminate(nullptr);
    return status;
}
