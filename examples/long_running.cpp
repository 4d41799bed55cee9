// The pattern of a process that runs on and on: a fresh transformer after every so many transforms,
// as each keeps what it has parsed. A thousand transforms, renewed after every hundred:
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
/** Gives the transformer to use, a fresh one after every so many uses. */
class RenewedTransformer {
public:
    explicit RenewedTransformer(unsigned long usesOfEach) : m_usesOfEach(usesOfEach) {}

    VEXAXslTransformer& forNextUse() {
        if (m_uses++ % m_usesOfEach == 0) {
            m_transformer.reset(); // the old one goes first: never two at once
            m_transformer = std::make_unique<VEXAXslTransformer>();
            m_transformer->setStylesheetParam("title", "Orders"); // each one is configured anew
            ++m_renewals;
        }
        return *m_transformer;
    }
    unsigned long renewals() const { return m_renewals; }

private:
    std::unique_ptr<VEXAXslTransformer> m_transformer;
    const unsigned long m_usesOfEach;
    unsigned long m_uses = 0;
    unsigned long m_renewals = 0;
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
    // What is in memory needs no renewal: it goes with its holders, here at the closing brace.
    auto page = transformer.createDom2Dom();
    auto again = transformer.createDom2Dom();
    std::ifstream inAgain(source);
    std::ostringstream outAgain;
    if (!page->InitializeInputSource(inAgain, source) || !again->InitializeOutputTarget(outAgain) ||
        transformer.doTransform(*page, stylesheet, *again) != 0) {
        std::cerr << transformer.getLastError() << '\n';
        return 0;
    }
    // [/holders]
    return out.str().size();
}

int run(const char* source, const char* stylesheet, unsigned long transforms, unsigned long each) {
    RenewedTransformer renewed(each);
    for (unsigned long i = 0; i < transforms; ++i) {
        if (transformOnce(renewed.forNextUse(), source, stylesheet) == 0) {
            return EXIT_FAILURE;
        }
    }
    std::cout << transforms << " rounds, " << renewed.renewals() << " transformers\n";
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
