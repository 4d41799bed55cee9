#include <vexa/TQXslTransformer.h>

#include <vexa/VEXAXslTransformer.h>

#include "support/BareEngine.h"
#include "support/CountingMemoryManager.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <thread>
#include <vector>

#include <xalanc/XSLT/XSLTEngineImpl.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace {

bool isXercesInitialized() {
    return xercesc::XMLPlatformUtils::fgMemoryManager != nullptr;
}

bool isXalanInitialized() {
    return !xalanc::XSLTEngineImpl::getXalanXSLNameSpaceURL().empty();
}

bool areEnginesInitialized() {
    EXPECT_TRUE(!isXercesInitialized() || isXalanInitialized());
    return isXercesInitialized();
}

int initialize(const char* ignored = nullptr) {
    return TQXslTransformer_Initialize(ignored);
}

int terminate(const char* ignored = nullptr) {
    return TQXslTransformer_Terminate(ignored);
}

/** Creates a transformer and runs a transform. */
void useOnce() {
    const TemporaryFolder folder;
    const std::string source = folder.write("a.xml", "<a>x</a>");
    const std::string sheet =
        folder.write("a.xsl", stylesheetWithRootTemplate("<b><xsl:value-of select='a'/></b>"));
    VEXAXslTransformer transformer;
    EXPECT_EQ(transformer.doTransform(source.c_str(), sheet.c_str(), folder.path("out").c_str()), 0)
        << transformer.getLastError();
    EXPECT_EQ(readFile(folder.path("out")), "<b>x</b>");
}

} // namespace

TEST(TQXslTransformer, TwoInitializationsNeedTwoTerminations) {
    EXPECT_FALSE(areEnginesInitialized());
    EXPECT_EQ(initialize(), 0);
    EXPECT_TRUE(areEnginesInitialized());
    EXPECT_EQ(initialize(), 0);
    EXPECT_EQ(terminate(), 0);
    EXPECT_TRUE(areEnginesInitialized());
    useOnce();
    EXPECT_EQ(terminate(), 0);
    EXPECT_FALSE(areEnginesInitialized());
}

TEST(TQXslTransformer, ATerminationWithoutInitializationIsCounted) {
    EXPECT_EQ(terminate(), 0);
    EXPECT_FALSE(areEnginesInitialized());
    EXPECT_EQ(initialize(), 0);
    EXPECT_FALSE(areEnginesInitialized());

    EXPECT_EQ(initialize(), 0);
    EXPECT_TRUE(areEnginesInitialized());
    EXPECT_EQ(terminate(), 0);
    EXPECT_FALSE(areEnginesInitialized());
}

TEST(TQXslTransformer, ManyTerminationsWithoutInitializationAreCounted) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(terminate(), 0);
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(initialize(), 0);
        EXPECT_FALSE(areEnginesInitialized());
    }
    initialize();
    EXPECT_TRUE(areEnginesInitialized());
    terminate();
}

TEST(TQXslTransformer, IgnoresItsArgument) {
    for (const char* argument : {static_cast<const char*>(nullptr), "", "any text", "\xFF\xFE"}) {
        EXPECT_EQ(initialize(argument), 0);
        EXPECT_TRUE(areEnginesInitialized());
        EXPECT_EQ(terminate(argument), 0);
        EXPECT_FALSE(areEnginesInitialized());
    }
}

TEST(TQXslTransformer, CanBeInitializedAndTerminatedRepeatedly) {
    for (int i = 0; i < 5; ++i) {
        initialize();
        useOnce();
        terminate();
        EXPECT_FALSE(areEnginesInitialized());
    }
}

TEST(TQXslTransformer, AThreadReturnsWithInitializedEngines) {
    for (int round = 0; round < 20; ++round) {
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([] {
                initialize();
                EXPECT_TRUE(isXalanInitialized());
                terminate();
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_FALSE(areEnginesInitialized());
    }
}

TEST(TQXslTransformer, KeepsTheHostsXercesAndItsMemoryManager) {
    CountingMemoryManager memory;
    xercesc::XMLPlatformUtils::Initialize("en_US", nullptr, nullptr, &memory);
    const auto before = memory.blocks();
    initialize();
    useOnce();
    EXPECT_GT(memory.allocations(), before);
    terminate();
    EXPECT_TRUE(isXercesInitialized());
    EXPECT_EQ(memory.blocks(), before);
    xercesc::XMLPlatformUtils::Terminate();
    EXPECT_EQ(memory.blocks(), 0U);
    EXPECT_FALSE(areEnginesInitialized());
}

TEST(TQXslTransformer, AnInitializationThatThrowsDoesNotCountAndCanBeRepeated) {
    CountingMemoryManager memory;
    xercesc::XMLPlatformUtils::Initialize("en_US", nullptr, nullptr, &memory);
    memory.failAfter(0);
    EXPECT_THROW(initialize(), xercesc::OutOfMemoryException);
    memory.stopFailing();

    // In another thread: the failed initialization has released the lock.
    std::thread([] { EXPECT_EQ(initialize(), 0); }).join();
    EXPECT_TRUE(isXalanInitialized());
    useOnce();
    EXPECT_EQ(terminate(), 0);
    xercesc::XMLPlatformUtils::Terminate();
    EXPECT_FALSE(areEnginesInitialized());
    EXPECT_EQ(memory.blocks(), 0U);
}

TEST(TQXslTransformer, ExportsPlainNames) {
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "TQXslTransformer_Initialize"),
              reinterpret_cast<void*>(&TQXslTransformer_Initialize));
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "TQXslTransformer_Terminate"),
              reinterpret_cast<void*>(&TQXslTransformer_Terminate));
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "nrbVersionInfo"), &nrbVersionInfo);
}
