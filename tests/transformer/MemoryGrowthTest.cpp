/**
 * @file
 * In-memory operations leak nothing; file and stream transforms keep their sources. A memory
 * manager of the host counts the blocks.
 */
#include "support/CountingMemoryManager.h"
#include "support/TestFiles.h"
#include "support/TestFunctions.h"

#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

#include <gtest/gtest.h>

#include <sstream>

#include <xercesc/util/PlatformUtils.hpp>

namespace {

class MemoryGrowthTest : public ::testing::Test {
protected:
    MemoryGrowthTest() {
        xercesc::XMLPlatformUtils::Initialize("en_US", nullptr, nullptr, &m_memory);
        TQXslTransformer_Initialize(nullptr);
    }
    ~MemoryGrowthTest() override {
        TQXslTransformer_Terminate(nullptr);
        xercesc::XMLPlatformUtils::Terminate();
        EXPECT_EQ(m_memory.blocks(), 0U);
        EXPECT_EQ(m_memory.foreignBlocks(), 0U);
    }

    CountingMemoryManager m_memory;
    TemporaryFolder m_folder;
};

std::string manyElements() {
    std::string text;
    for (int i = 0; i < 5'000; ++i) {
        text += "<i/>";
    }
    return text;
}

/** A transform, a query and a serialization, and a failed parse, transform and query. */
void runOnce(VEXAXslTransformer& transformer, const std::string& good, const std::string& bad) {
    auto in = transformer.createDom2Dom();
    auto out = transformer.createDom2Dom();
    auto failedOut = transformer.createDom2Dom();
    auto failedIn = transformer.createDom2Dom();
    std::ostringstream text;
    EXPECT_TRUE(in->InitializeInputSource("<a><i>1</i><i>2</i></a>"));
    EXPECT_FALSE(failedIn->InitializeInputSource("<a>"));
    EXPECT_TRUE(out->InitializeOutputTarget());
    EXPECT_TRUE(failedOut->InitializeOutputTarget());
    EXPECT_EQ(transformer.doTransform(*in, good.c_str(), *out), 0);
    EXPECT_EQ(transformer.doTransform(*in, bad.c_str(), *failedOut), -1);
    EXPECT_EQ(transformer.doXPath(*out, "string(/b)", text), 0);
    EXPECT_EQ(text.str(), "[2]");
    EXPECT_EQ(transformer.doXPath(*out, "string(/b", text), -1);
    EXPECT_EQ(out->Serialize(text), 0);
}

} // namespace

TEST_F(MemoryGrowthTest, TheTransformerKeepsTheSourcesOfFileAndStreamTransforms) {
    const std::string sheet = m_folder.write("sheet.xsl", stylesheetWithRootTemplate("<b/>"));
    const std::string source = m_folder.write("source.xml", "<a>" + manyElements() + "</a>");
    const auto transformFile = [&](VEXAXslTransformer& transformer) {
        return transformer.doTransform(source.c_str(), sheet.c_str(), m_folder.path("out").c_str());
    };
    const auto transformStream = [&](VEXAXslTransformer& transformer) {
        std::istringstream in("<a>" + manyElements() + "</a>");
        std::ostringstream out;
        return transformer.doTransform(in, sheet.c_str(), out);
    };
    const auto expectGrowth = [&](const auto& transform) {
        VEXAXslTransformer transformer;
        EXPECT_EQ(transform(transformer), 0);
        const std::size_t blocks = m_memory.blocks();
        EXPECT_EQ(transform(transformer), 0);
        EXPECT_GT(m_memory.blocks(), blocks + 100); // each has about thirty elements
    };
    const std::size_t before = m_memory.blocks();
    expectGrowth(transformFile);
    expectGrowth(transformStream);
    EXPECT_EQ(m_memory.blocks(), before);
}

TEST_F(MemoryGrowthTest, ThousandsOfInMemoryOperationsLeakNothing) {
    const std::string good = m_folder.write(
        "good.xsl",
        stylesheetWithRootTemplate("<b><xsl:value-of select='vexa:B(count(//i))'/></b>"));
    const std::string bad = m_folder.write(
        "bad.xsl", stylesheetWithRootTemplate("<b><c><xsl:message terminate='yes'/></c></b>"));
    VEXAXslTransformer transformer;
    transformer.installExternalFunction("B", BracketFunction());
    for (const bool useXercesDom : {false, true}) {
        VEXAXslTransformer::m_bUseXercesDOM = useXercesDom;
        runOnce(transformer, good, bad);
    }
    const std::size_t blocks = m_memory.blocks();
    for (int i = 0; i < 1000; ++i) { // five operations each
        VEXAXslTransformer::m_bUseXercesDOM = i % 2 != 0;
        runOnce(transformer, good, bad);
    }
    VEXAXslTransformer::m_bUseXercesDOM = false;
    EXPECT_EQ(m_memory.blocks(), blocks);
}
