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

bool xercesIsRunning() {
    return xercesc::XMLPlatformUtils::fgMemoryManager != nullptr;
}

bool xalanIsRunning() {
    return !xalanc::XSLTEngineImpl::getXalanXSLNameSpaceURL().empty();
}

bool enginesAreRunning() {
    EXPECT_TRUE(!xercesIsRunning() || xalanIsRunning());
    return xercesIsRunning();
}

int start(const char* ignored = nullptr) {
    return TQXslTransformer_Initialize(ignored);
}

int stop(const char* ignored = nullptr) {
    return TQXslTransformer_Terminate(ignored);
}

/** A whole small life: a transformer that transforms. */
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

TEST(TQXslTransformer, TwoStartsNeedTwoStops) {
    EXPECT_FALSE(enginesAreRunning());
    EXPECT_EQ(start(), 0);
    EXPECT_TRUE(enginesAreRunning());
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_TRUE(enginesAreRunning());
    useOnce();
    EXPECT_EQ(stop(), 0);
    EXPECT_FALSE(enginesAreRunning());
}

TEST(TQXslTransformer, AStopWithoutAStartIsCountedAndTakesAwayTheNextStart) {
    EXPECT_EQ(stop(), 0);
    EXPECT_FALSE(enginesAreRunning());
    EXPECT_EQ(start(), 0);
    EXPECT_FALSE(enginesAreRunning());

    EXPECT_EQ(start(), 0);
    EXPECT_TRUE(enginesAreRunning());
    EXPECT_EQ(stop(), 0);
    EXPECT_FALSE(enginesAreRunning());
}

TEST(TQXslTransformer, ManyStopsWithoutAStartTakeAwayAsManyStarts) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(stop(), 0);
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(start(), 0);
        EXPECT_FALSE(enginesAreRunning());
    }
    start();
    EXPECT_TRUE(enginesAreRunning());
    stop();
}

TEST(TQXslTransformer, TakesNoNoticeOfItsArgument) {
    for (const char* argument : {static_cast<const char*>(nullptr), "", "any text", "\xFF\xFE"}) {
        EXPECT_EQ(start(argument), 0);
        EXPECT_TRUE(enginesAreRunning());
        EXPECT_EQ(stop(argument), 0);
        EXPECT_FALSE(enginesAreRunning());
    }
}

TEST(TQXslTransformer, MayBeStartedUsedAndStoppedAgainAndAgain) {
    for (int i = 0; i < 5; ++i) {
        start();
        useOnce();
        stop();
        EXPECT_FALSE(enginesAreRunning());
    }
}

TEST(TQXslTransformer, AThreadThatStartsFindsTheEnginesFullyUp) {
    for (int round = 0; round < 20; ++round) {
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([] {
                start();
                EXPECT_TRUE(xalanIsRunning());
                stop();
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_FALSE(enginesAreRunning());
    }
}

TEST(TQXslTransformer, LeavesAHostsOwnXercesAndItsMemoryManagerAlone) {
    CountingMemoryManager memory;
    xercesc::XMLPlatformUtils::Initialize("en_US", nullptr, nullptr, &memory);
    const auto before = memory.blocks();
    start();
    useOnce();
    EXPECT_GT(memory.allocations(), before);
    stop();
    EXPECT_TRUE(xercesIsRunning());
    EXPECT_EQ(memory.blocks(), before);
    xercesc::XMLPlatformUtils::Terminate();
    EXPECT_EQ(memory.blocks(), 0U);
    EXPECT_FALSE(enginesAreRunning());
}

TEST(TQXslTransformer, AStartThatThrowsDoesNotCountAndIsTriedAgain) {
    CountingMemoryManager memory;
    xercesc::XMLPlatformUtils::Initialize("en_US", nullptr, nullptr, &memory);
    memory.refuseAfter(0);
    EXPECT_THROW(start(), xercesc::OutOfMemoryException);
    memory.refuseNoMore();

    // On another thread: the lock of the failed start is free again.
    std::thread([] { EXPECT_EQ(start(), 0); }).join();
    EXPECT_TRUE(xalanIsRunning());
    useOnce();
    EXPECT_EQ(stop(), 0);
    xercesc::XMLPlatformUtils::Terminate();
    EXPECT_FALSE(enginesAreRunning());
    EXPECT_EQ(memory.blocks(), 0U);
}

TEST(TQXslTransformer, IsFoundByItsPlainNames) {
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "TQXslTransformer_Initialize"),
              reinterpret_cast<void*>(&TQXslTransformer_Initialize));
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "TQXslTransformer_Terminate"),
              reinterpret_cast<void*>(&TQXslTransformer_Terminate));
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "nrbVersionInfo"), &nrbVersionInfo);
}
