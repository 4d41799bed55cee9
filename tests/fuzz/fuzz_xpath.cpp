/**
 * @file
 * Any bytes as an XPath expression, over both kinds of tree.
 */
#include "support/EngineFaults.h"
#include "support/Library.h"
#include "support/Workbench.h"

#include <cstddef>
#include <cstdint>

namespace {

constexpr const char* SOURCE =
    "<?p i?><a xmlns:n='urn:n'><!--c--><b id='x' n:b='2'>1</b><n:b xml:lang='en'>t</n:b></a>";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (killsAsExpression(bytes)) {
        return -1;
    }
    beginInput();
    const I18NString expression(bytes.data(), "UTF-8", static_cast<int>(size));
    for (const bool xerces : {false, true}) {
        VEXAXslTransformer::m_bUseXercesDOM = xerces;
        VEXAXslTransformer transformer;
        Dom2Dom in(&transformer);
        parse(in, SOURCE);
        query(transformer, in, expression);
    }
    return 0;
}
