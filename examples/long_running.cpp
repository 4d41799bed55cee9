// The pattern of a long-running process: a transformer keeps every source that it has parsed, so
// create a new one at regular intervals. A thousand transforms, a new transformer every hundred:
//
//     long_running orders-small.xml report.xsl 1000 100
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

namespace {

// [renewed transformer]
/** Provides the transformer to use, and recreates it after a number of uses. */
class RecreatedTransformer {
public:
    explicit RecreatedTransformer(unsigned long usesOfEach) : m_usesOfEach(usesOfEach) {}

    VEXAXslTransformer& forNextUse() {
        if (m_uses++ % m_usesOfEach == 0) {
            m_transformer.reset(); // destroy the old one first: never two at a time
            m_transformer = std::make_unique<VEXAXslTransformer>();
            m_transformer->setStylesheetParam("title", "Orders"); // configure each one
            ++m_created;
        }
        return *m_transformer;
    }
    unsigned long created() const { return m_created; }

private:
    std::unique_ptr<VEXAXslTransformer> m_transformer;
    const unsigned long m_usesOfEach;
    unsigned long m_uses = 0;
    unsigned long m_created = 0;
};
// [/renewed transformer]

/** @return the size of the result; 0 after a failure */
std::size_t transformOnce(VEXAXslTransformer& transformer, const char* source,
                          const char* stylesheet) {
    std::ifstream in(source);
    std::ostringstream out;
    if (transformer.doTransform(in, stylesheet, out) != 0) {
        std::cerr << transformer.getLastError() << '\n';
        return 0;
    }
    // [holders]
    // In memory nothing is kept: the in-memory documents are destroyed at the end of this block.
    auto document = transformer.createDom2Dom();
    auto result = transformer.createDom2Dom();
    std::ifstream documentStream(source);
    std::ostringstream resultStream;
    if (!document->InitializeInputSource(documentStream, source) ||
        !result->InitializeOutputTarget(resultStream) ||
        transformer.doTransform(*document, stylesheet, *result) != 0) {
        std::cerr << transformer.getLastError() << '\n';
        return 0;
    }
    // [/holders]
    return out.str().size();
}

int run(const char* source, const char* stylesheet, unsigned long transforms, unsigned long each) {
    RecreatedTransformer recreated(each);
    for (unsigned long i = 0; i < transforms; ++i) {
        if (transformOnce(recreated.forNextUse(), source, stylesheet) == 0) {
            return EXIT_FAILURE;
        }
    }
    std::cout << transforms << " rounds, " << recreated.created() << " transformers\n";
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    const unsigned long transforms = argc == 5 ? std::strtoul(argv[3], nullptr, 10) : 0;
    const unsigned long each = argc == 5 ? std::strtoul(argv[4], nullptr, 10) : 0;
    if (transforms == 0 || each == 0) {
        std::cerr << "usage: long_running SOURCE STYLESHEET TRANSFORMS USES_OF_EACH\n";
        return EXIT_FAILURE;
    }
    TQXslTransformer_Initialize(nullptr);
    const int status = run(argv[1], argv[2], transforms, each);
    TQXslTransformer_Terminate(nullptr);
    return status;
}
