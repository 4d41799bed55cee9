/**
 * @file
 * Any bytes as a stylesheet, through every road.
 */
#include "support/BoundedOutput.h"
#include "support/EngineFaults.h"
#include "support/Library.h"
#include "support/ScratchFile.h"
#include "support/Workbench.h"

#include <cstddef>
#include <cstdint>

namespace {

constexpr const char* SOURCE = "<?p i?><orders xmlns:n='urn:n'><!--c--><order id='a' n:b='2'>x"
                               "<line>10</line><line>9.5</line></order><order id='c'/></orders>";

void runInMemory(VEXAXslTransformer& transformer, const std::string& sheet) {
    Dom2Dom in(&transformer);
    parse(in, SOURCE);
    Dom2Dom document(&transformer);
    document.InitializeOutputTarget();
    transformInMemory(transformer, in, sheet, document);
    serialize(document);

    BoundedOutput text;
    Dom2Dom stream(&transformer);
    stream.InitializeOutputTarget(text);
    transformInMemory(transformer, in, sheet, stream);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (killsAsStylesheet(bytes)) {
        return -1;
    }
    beginInput();
    const std::string sheet = scratchFile("sheet.xsl", bytes);
    VEXAXslTransformer transformer;
    transformer.setStylesheetParam("p", "a value");
    transformStream(transformer, SOURCE, sheet);
    runInMemory(transformer, sheet);
    return 0;
}
