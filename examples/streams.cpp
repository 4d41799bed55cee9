// Transforms standard input, and writes the result to standard output:
//
//     streams open-only.xsl < orders.xml > open.xml
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

namespace {

int run(const char* stylesheet) {
    // [streams]
    VEXAXslTransformer transformer;
    std::ostringstream output;
    if (transformer.doTransform(std::cin, stylesheet, output) != 0) {
        std::cerr << transformer.getLastError() << '\n';
        return EXIT_FAILURE;
    }
    std::string result = output.str();
    result.pop_back(); // the NUL that follows every result
    std::cout << result << std::flush;
    // [/streams]
    return std::cout ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: streams STYLESHEET < SOURCE > RESULT\n";
        return EXIT_FAILURE;
    }
    TQXslTransformer_Initialize(nullptr);
    const int status = run(argv[1]);
    TQXslTransformer_Terminate(nullptr);
    return status;
}
