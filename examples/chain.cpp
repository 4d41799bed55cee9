// Runs two stylesheets in memory, one after the other, and queries the intermediate document.
//
//     chain orders.xml open-only.xsl report.xsl > report.html
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

namespace {

int chain(const char* sourceFile, const char* firstSheet, const char* secondSheet) {
    VEXAXslTransformer transformer;
    auto source = transformer.createDom2Dom();
    auto between = transformer.createDom2Dom();
    auto result = transformer.createDom2Dom();

    std::ifstream stream(sourceFile);
    if (!source->InitializeInputSource(stream, sourceFile)) {
        std::cerr << source->getLastError() << '\n';
        return EXIT_FAILURE;
    }
    // [two stylesheets]
    between->InitializeOutputTarget();
    result->InitializeOutputTarget(std::cout);
    if (transformer.doTransform(*source, firstSheet, *between) != 0 ||
        transformer.doTransform(*between, secondSheet, *result) != 0 ||
        transformer.doXPath(*between, "string(count(//*))", std::cerr) != 0) {
        std::cerr << transformer.getLastError() << '\n';
        return EXIT_FAILURE;
    }
    // [/two stylesheets]
    std::cerr << " elements between the two\n";
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: chain SOURCE STYLESHEET STYLESHEET\n";
        return EXIT_FAILURE;
    }
    TQXslTransformer_Initialize(nullptr);
    const int status = chain(argv[1], argv[2], argv[3]);
    TQXslTransformer_Terminate(nullptr);
    return status;
}
