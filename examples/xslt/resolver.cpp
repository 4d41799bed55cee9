// Serves stylesheets, their modules and documents from memory, under URIs of the host's own, and
// refuses everything else:
//
//     resolver
#include <cstdlib>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <vexa/xslt.h>

namespace {

// [files]
const std::map<std::string, std::string> FILES = {
    {"mem:/sheets/page.xsl", R"(
        <xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
          <xsl:include href="name.xsl"/>
          <xsl:output omit-xml-declaration="yes"/>
          <xsl:template match="/">
            <page><xsl:apply-templates select="orders/order/@customer"/></page>
          </xsl:template>
        </xsl:stylesheet>)"},
    {"mem:/sheets/name.xsl", R"(
        <xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
          <xsl:template match="@customer">
            <xsl:value-of select="document('../data/customers.xml')//customer[@id = current()]"/>
          </xsl:template>
        </xsl:stylesheet>)"},
    {"mem:/data/customers.xml", "<customers><customer id='c1'>Grebe</customer></customers>"},
};
// [/files]

// [resolver]
std::optional<vexa::Input> fromMemory(const std::string& uri, const std::string& /*base*/) {
    const auto file = FILES.find(uri);
    if (file == FILES.end()) {
        return std::nullopt; // not ours: opened under the access policy
    }
    return vexa::Input::view(file->second, uri);
}
// [/resolver]

void run() {
    // [options]
    vexa::Options options;
    options.resolver = fromMemory;
    options.access.folders.emplace(); // a list without folders: no file at all

    const auto page = vexa::Stylesheet::compile(vexa::Input::uri("mem:/sheets/page.xsl"), options);
    vexa::Transformation transformation(page, options);
    const auto source = vexa::Input::text("<orders><order customer='c1'/></orders>");
    std::cout << transformation.toString(source) << '\n';

    for (const std::string& module : page.modules()) {
        std::cout << "read: " << module << '\n';
    }

    for (const char* uri :
         {"mem:/sheets/none.xsl", "file:///etc/passwd", "http://vexa.example/a"}) {
        try {
            vexa::Document::parse(vexa::Input::uri(uri), options);
        } catch (const vexa::Error& error) {
            const bool isDenied = error.kind() == vexa::ErrorKind::Denied;
            std::cout << (isDenied ? "denied: " : "failed: ") << error.text() << '\n';
        }
    }
    // [/options]
}

} // namespace

int main() {
    try {
        run();
        return EXIT_SUCCESS;
    } catch (const vexa::Error& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
