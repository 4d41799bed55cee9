// Runs any number of stylesheets in memory, one after the other:
//
//     pipeline 2025-12-29 orders.xml open-only.xsl line-amounts.xsl totals.xsl
//
// Every stylesheet gets the day as the parameter "since".
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>
#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

namespace {

int failed(const char* name, const char* message) {
    std::cerr << name << ": " << message << '\n';
    return EXIT_FAILURE;
}

int run(const char* since, const char* source, const std::vector<const char*>& stylesheets) {
    // [parameter]
    VEXAXslTransformer transformer;
    transformer.setStylesheetParam("since", since);
    // [/parameter]
    std::ifstream stream(source);
    auto current = transformer.createDom2Dom();
    if (!current->InitializeInputSource(stream, source)) {
        return failed(source, current->getLastError());
    }
    // [pipeline]
    for (const char* const stylesheet : stylesheets) {
        auto next = transformer.createDom2Dom();
        if (stylesheet == stylesheets.back()) {
            next->InitializeOutputTarget(std::cout);
        } else {
            next->InitializeOutputTarget();
        }
        if (transformer.doTransform(*current, stylesheet, *next) != 0) {
            return failed(stylesheet, transformer.getLastError());
        }
        current = std::move(next); // frees the previous document
    }
    // [/pipeline]
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::cerr << "usage: pipeline SINCE SOURCE STYLESHEET...\n";
        return EXIT_FAILURE;
    }
    TQXslTransformer_Initialize(nullptr);
    const int status = run(argv[1], argv[2], {argv + 3, argv + argc});
    TQXslTransformer_Terminate(nullptr);
    return status;
}
