/**
 * @file
 * Any bytes as a source, through every road, into both kinds of tree.
 */
#include "support/EngineFaults.h"
#include "support/Library.h"
#include "support/ScratchFile.h"
#include "support/Workbench.h"

#include <cstddef>
#include <cstdint>
#include <sstream>

namespace {

constexpr const char* COPY = R"xsl(<xsl:stylesheet version="1.0"
    xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:strip-space elements="s"/>
  <xsl:template match="@*|node()">
    <xsl:copy><xsl:apply-templates select="@*|node()"/></xsl:copy>
  </xsl:template>
</xsl:stylesheet>)xsl";

void useDocument(VEXAXslTransformer& transformer, Dom2Dom& in, const std::string& sheet) {
    Dom2Dom out(&transformer);
    out.InitializeOutputTarget();
    transformInMemory(transformer, in, sheet, out);
    serialize(out);
    query(transformer, in, "string(/)");
    query(transformer, in, "//*[last()]");
    query(transformer, out, "/*");
    query(transformer, in, "//@*|//namespace::*|//comment()");
}

void useText(const std::string& text, const std::string& sheet) {
    VEXAXslTransformer transformer;
    Dom2Dom in(&transformer);
    if (parse(in, text)) {
        useDocument(transformer, in, sheet);
    }
    transformStream(transformer, text, sheet);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (killsAsSource(text)) {
        return -1;
    }
    beginInput();
    static const std::string sheet = scratchFile("copy.xsl", COPY);
    for (const bool xerces : {false, true}) {
        VEXAXslTransformer::m_bUseXercesDOM = xerces;
        useText(text, sheet);
    }
    return 0;
}
