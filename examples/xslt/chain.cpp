// Runs stylesheets one after the other, in memory, and queries each intermediate document:
//
//     chain 2025-12-29 orders.xml open-only.xsl line-amounts.xsl totals.xsl
#include <cstdlib>
#include <iostream>
#include <vector>
#include <vexa/xslt.h>

namespace {

// [chain]
void chain(const char* since, const char* source, const std::vector<const char*>& stylesheets) {
    vexa::Document document = vexa::Document::parse(vexa::Input::file(source));
    for (std::size_t i = 0; i < stylesheets.size(); ++i) {
        vexa::Transformation run(vexa::Stylesheet::compile(vexa::Input::file(stylesheets[i])));
        run.parameter("since", since); // for all: a stylesheet without this parameter ignores it
        if (i + 1 < stylesheets.size()) {
            document = run.toDocument(document);
        } else {
            run.to(document, vexa::Output::stream(std::cout));
        }
    }
}
// [/chain]

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::cerr << "usage: chain DATE SOURCE STYLESHEET...\n";
        return EXIT_FAILURE;
    }
    try {
        chain(argv[1], argv[2], {argv + 3, argv + argc});
        return EXIT_SUCCESS;
    } catch (const vexa::Error& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
