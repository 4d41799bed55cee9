// Transforms each record of a document that may be larger than memory:
//
//     records line.xsl orders.xml order
#include <cstdlib>
#include <iostream>
#include <vexa/xslt.h>

namespace {

// [records]
/** Returns how many records have failed. */
int transformRecords(const vexa::Stylesheet& stylesheet, const char* source, const char* element) {
    vexa::Transformation run(stylesheet);
    vexa::Records records(vexa::Input::file(source), element);
    int failed = 0;
    for (const vexa::Document& record : records) {
        try {
            std::cout << run.toString(record);
        } catch (const vexa::Error& error) {
            std::cerr << source << ':' << records.line() << ": record " << records.count() << ": "
                      << error.text() << '\n';
            ++failed;
        }
    }
    return failed;
}
// [/records]

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: records STYLESHEET SOURCE ELEMENT\n";
        return EXIT_FAILURE;
    }
    try {
        const auto stylesheet = vexa::Stylesheet::compile(vexa::Input::file(argv[1]));
        return transformRecords(stylesheet, argv[2], argv[3]) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const vexa::Error& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
