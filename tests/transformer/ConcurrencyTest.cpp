#include "support/BareEngine.h"
#include "support/EngineTest.h"
#include "support/TestFiles.h"
#include "support/TestFunctions.h"

#include <vexa/VEXAXslTransformer.h>

#include <sstream>
#include <thread>
#include <vector>

namespace {

/** Runs many transforms in one thread, with its own transformer, parameter and function. */
void work(const std::string& name, const std::string& sheet) {
    const TemporaryFolder folder;
    const std::string source = folder.write("a.xml", "<a>" + name + "</a>");
    const std::string output = folder.path("out");
    const std::string expected = "<b>" + name + ":[" + name + "] Summe 12</b>";
    VEXAXslTransformer transformer;
    transformer.setStylesheetParam("p", name.c_str());
    transformer.installExternalFunction("B", BracketFunction());
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(transformer.doTransform(source.c_str(), sheet.c_str(), output.c_str()), 0)
            << transformer.getLastError();
        ASSERT_EQ(readFile(output), expected);

        std::istringstream input("<a>" + name + "</a>");
        std::ostringstream result;
        ASSERT_EQ(transformer.doTransform(input, sheet.c_str(), result), 0);
        ASSERT_EQ(result.str(), expected + '\0');
    }
}

} // namespace

using ConcurrencyTest = EngineTest;

TEST_F(ConcurrencyTest, TwoThreadsWithOneTransformerEachAreIndependent) {
    const TemporaryFolder folder;
    const std::string sheet = folder.write(
        "b.xsl", stylesheet("<xsl:output omit-xml-declaration='yes'/><xsl:param name='p'/>"
                            "<xsl:template match='/'><b><xsl:value-of select='$p'/>:"
                            "<xsl:value-of select='vexa:B(a)'/><xsl:value-of select='concat("
                            "\" \", vexa:GetLocalizedString(4, \"de\"), \" \", "
                            "string-length(vexa:GetDateTime()))'/></b></xsl:template>"));
    std::vector<std::thread> threads;
    for (const char* name : {"one", "two"}) {
        threads.emplace_back(work, name, sheet);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}
