// A component that its host loads and unloads: it links the library, which is loaded and unloaded
// with it.
#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

#include <iostream>
#include <sstream>
#include <string>

namespace {

std::string transformStream(VEXAXslTransformer& transformer, const char* stylesheet) {
    std::istringstream source("<a>2</a>");
    std::ostringstream result;
    return transformer.doTransform(source, stylesheet, result) == 0 ? result.str().c_str()
                                                                    : transformer.getLastError();
}

std::string transformInMemory(VEXAXslTransformer& transformer, const char* stylesheet) {
    const auto source = transformer.createDom2Dom();
    const auto document = transformer.createDom2Dom();
    std::ostringstream result;
    source->InitializeInputSource("<a>3</a>");
    document->InitializeOutputTarget();
    const bool isDone = transformer.doTransform(*source, stylesheet, *document) == 0 &&
                        transformer.doXPath(*document, "string(/timer)", result) == 0;
    return isDone ? result.str() : transformer.getLastError();
}

} // namespace

/** Each transform creates two timers: one runs on, and one has been stopped. */
extern "C" [[gnu::visibility("default")]] void runComponent(const char* stylesheet) {
    TQXslTransformer_Initialize(nullptr);
    {
        VEXAXslTransformer transformer;
        std::cout << transformStream(transformer, stylesheet) << '\n'
                  << transformInMemory(transformer, stylesheet) << std::endl;
    }
    TQXslTransformer_Terminate(nullptr);
}
