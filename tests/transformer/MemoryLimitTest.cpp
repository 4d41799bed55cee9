/**
 * @file
 * An operation that runs out of memory, in a process with a memory limit.
 */
#include "support/EngineTest.h"
#include "support/MemoryChecker.h"
#include "support/TestFiles.h"

#include <vexa/Dom2Dom.h>
#include <vexa/VEXAXslTransformer.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <sstream>
#include <sys/resource.h>

namespace {

void limitMemory() {
    constexpr rlim_t LIMIT = 300u * 1024 * 1024;
    const struct rlimit limit { LIMIT, LIMIT };
    setrlimit(RLIMIT_AS, &limit);
}

/**
 * The engine needs memory to clean up, and terminates the process if there is none left. A host
 * that keeps a reserve gets the report.
 */
void keepMemoryReserve() {
    static std::unique_ptr<char[]> reserve = std::make_unique<char[]>(16u * 1024 * 1024);
    std::set_new_handler([] {
        reserve.reset();
        std::set_new_handler(nullptr);
        throw std::bad_alloc();
    });
}

/** @return 0 if an endless recursion is reported as -5 and the next transform succeeds */
int recurseThenTransform(const char* endless, const char* good) {
    limitMemory();
    keepMemoryReserve();
    VEXAXslTransformer transformer;
    auto in = transformer.createDom2Dom();
    auto out = transformer.createDom2Dom();
    in->InitializeInputSource("<a>x</a>");
    out->InitializeOutputTarget();
    if (transformer.doTransform(*in, endless, *out) != -5 ||
        std::strcmp(transformer.getLastError(), "\nUnhandled Exception\n\n") != 0) {
        return 1;
    }
    std::ostringstream text;
    auto stream = transformer.createDom2Dom();
    stream->InitializeOutputTarget(text);
    return transformer.doTransform(*in, good, *stream) == 0 && text.str() == "<b>x</b>" ? 0 : 2;
}

} // namespace

using MemoryLimitTest = EngineTest;

TEST_F(MemoryLimitTest, AnEndlessRecursionIsReportedAndTheTransformerStaysUsable) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker does not work with a memory limit";
    }
    const TemporaryFolder folder;
    const std::string endless = folder.write(
        "endless.xsl", stylesheet("<xsl:template match='/' name='t'><b><xsl:call-template "
                                  "name='t'/></b></xsl:template>"));
    const std::string good =
        folder.write("good.xsl", stylesheetWithRootTemplate("<b><xsl:value-of select='a'/></b>"));
    ::testing::FLAGS_gtest_death_test_style = "fast";
    EXPECT_EXIT(std::_Exit(recurseThenTransform(endless.c_str(), good.c_str())),
                ::testing::ExitedWithCode(0), "");
}
