// A batch as a C program over libxslt would do it: compiles a stylesheet once, and runs it over all
// sources of a list, one after the other.
//
//     libxslt_batch STYLESHEET LIST DIRECTORY
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <libxml/parser.h>
#include <libxslt/transform.h>
#include <libxslt/xsltutils.h>
#include <string>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s STYLESHEET LIST DIRECTORY\n", argv[0]);
        return 2;
    }
    const std::filesystem::path directory = argv[3];
    std::filesystem::create_directory(directory);
    const xsltStylesheetPtr stylesheet =
        xsltParseStylesheetFile(reinterpret_cast<const xmlChar*>(argv[1]));
    std::ifstream list(argv[2]);
    for (std::string name; stylesheet && std::getline(list, name);) {
        const xmlDocPtr source = xmlReadFile(name.c_str(), nullptr, XML_PARSE_NOENT);
        const xmlDocPtr result = xsltApplyStylesheet(stylesheet, source, nullptr);
        const std::string output =
            directory / std::filesystem::path(name).filename().replace_extension(".out");
        if (!result || xsltSaveResultToFilename(output.c_str(), result, stylesheet, 0) < 0) {
            std::fprintf(stderr, "%s: failed\n", name.c_str());
            return 1;
        }
        xmlFreeDoc(result);
        xmlFreeDoc(source);
    }
    xsltFreeStylesheet(stylesheet);
    return stylesheet ? 0 : 1;
}
