#include "support/InMemoryTest.h"

#include <thread>

namespace {

constexpr const char* SOURCE = "<a><i>2.5</i><i>10</i><i>1234.5</i></a>";
/** Sorted as text. */
constexpr const char* RESULT = "10,00|1.234,50|2,50|";

void transformInMemory(const std::string& sheet) {
    VEXAXslTransformer transformer;
    const Dom2DomPtr in = transformer.createDom2Dom();
    std::ostringstream result;
    const Dom2DomPtr out = transformer.createDom2Dom();
    in->InitializeInputSource(SOURCE);
    out->InitializeOutputTarget(result);
    for (int i = 0; i < 20; ++i) {
        result.str("");
        ASSERT_EQ(transformer.doTransform(*in, sheet.c_str(), *out), 0)
            << transformer.getLastError();
        ASSERT_EQ(result.str(), RESULT);
    }
}

} // namespace

using IcuServicesThreadTest = EngineTest;

/** Each in-memory transform has ICU objects of its own, which are not safe to share. */
TEST_F(IcuServicesThreadTest, TwoThreadsSortAndFormatNumbersInMemory) {
    const TemporaryFolder folder;
    const std::string sheet = folder.write(
        "sheet.xsl",
        stylesheet("<xsl:output method='text'/>"
                   "<xsl:decimal-format decimal-separator=',' grouping-separator='.'/>"
                   "<xsl:template match='/'><xsl:for-each select='//i'><xsl:sort lang='de'/>"
                   "<xsl:value-of select=\"format-number(., '#.##0,00')\"/>|</xsl:for-each>"
                   "</xsl:template>"));
    std::thread first(transformInMemory, sheet);
    std::thread second(transformInMemory, sheet);
    first.join();
    second.join();
}
