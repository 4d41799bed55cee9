#include <vexa/catalog.h>
#include <vexa/xslt.h>

#include <iostream>

#ifdef LIBXML_VERSION
#error "the header of the catalogs includes libxml2"
#endif

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    try {
        // [resolver]
        vexa::Options options;
        options.resolver = vexa::catalogResolver({std::filesystem::path(argv[1])});
        // [/resolver]
        const auto document = vexa::Input::uri("http://catalog.example/document");
        std::cout << vexa::Document::parse(document, options).root().string() << '\n';
        return 0;
    } catch (const vexa::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
