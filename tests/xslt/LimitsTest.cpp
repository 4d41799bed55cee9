/**
 * @file
 * Limits and cancellation end every operation, and the same objects work on.
 */
#include "XsltTest.h"

#include "support/HostileWork.h"
#include "support/MemoryChecker.h"
#include "support/ProcessMemory.h"
#include "support/TestDocuments.h"

#include <atomic>
#include <chrono>
#include <malloc.h>
#include <random>
#include <sstream>
#include <thread>

using std::chrono::milliseconds;
using vexa::CancelSource;
using vexa::Document;
using vexa::Error;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Options;
using vexa::Output;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::XPath;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t MIB = std::size_t{1} << 20;

class EndlessTest : public ::testing::TestWithParam<HostileWork> {};

double millisecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

} // namespace

TEST_P(EndlessTest, EndsAtTheTimeLimit) {
    Options options;
    options.limits.time = milliseconds(50);
    const auto begin = Clock::now();
    const Error error = failureOf([&] { GetParam().run(options); });
    EXPECT_EQ(error.kind(), ErrorKind::Limit) << error.what();
    EXPECT_EQ(error.text(), "the time limit of 50 ms was reached");
    EXPECT_GE(millisecondsSince(begin), 50);
}

TEST_P(EndlessTest, EndsWhereItIsCancelled) {
    CancelSource source;
    Options options;
    options.cancel = source.token();
    std::thread other([&] {
        std::this_thread::sleep_for(milliseconds(30));
        source.cancel();
    });
    const Error error = failureOf([&] { GetParam().run(options); });
    other.join();
    EXPECT_EQ(error.kind(), ErrorKind::Cancelled) << error.what();
    EXPECT_EQ(error.text(), "the operation was cancelled");
}

TEST_P(EndlessTest, DoesNotBeginWhereItIsCancelledBefore) {
    CancelSource source;
    source.cancel();
    Options options;
    options.cancel = source.token();
    EXPECT_EQ(failureOf([&] { GetParam().run(options); }).kind(), ErrorKind::Cancelled);
}

INSTANTIATE_TEST_SUITE_P(, EndlessTest, ::testing::ValuesIn(endlessWork()),
                         [](const auto& some) { return std::string(some.param.name); });

TEST(LimitsTest, TheErrorNamesTheTemplate) {
    Options options;
    options.limits.depth = 100;
    const auto sheet =
        Stylesheet::compile(Input::text(stylesheet(endlessRecursion()), "mem:/sheet"), options);
    const Error error =
        failureOf([&] { Transformation(sheet, options).toString(Input::text("<a/>")); });
    EXPECT_EQ(error.kind(), ErrorKind::Limit);
    EXPECT_EQ(error.text(), "the depth limit of 100 was reached");
    EXPECT_EQ(error.where().uri, "mem:/sheet");
    EXPECT_EQ(error.where().line, 2U);
}

/** Much of the language, for each item; `before` is an instruction that comes before it. */
std::string someWork(const std::string& before = "") {
    return "<xsl:template match='/'><r>"
           "<xsl:for-each select='//i'><xsl:sort select='position()'/>" +
           before +
           "<xsl:variable name='v'><x><xsl:value-of "
           "select='count(preceding::i)'/></x></xsl:variable>"
           "<xsl:copy-of select='$v'/>"
           "<y><xsl:value-of select=\"concat('some text', position())\"/></y>"
           "</xsl:for-each></r></xsl:template>";
}

TEST(LimitsTest, DepthCountsElementsWhileParsing) {
    Options options;
    options.limits.depth = 3;
    EXPECT_EQ(Document::parse(Input::text("<a><b><c/><d/></b><e/></a>"), options).xml(),
              "<a><b><c/><d/></b><e/></a>");
    expectFailure([&] { Document::parse(Input::text("<a><b><c><d/></c></b></a>"), options); },
                  ErrorKind::Limit, "the depth limit of 3 was reached");
    Stylesheet::compile(Input::text(stylesheetWithRootTemplate("<a/>")), options);
    expectFailure(
        [&] {
            Stylesheet::compile(Input::text(stylesheetWithRootTemplate("<a><b/></a>")), options);
        },
        ErrorKind::Limit, "the depth limit of 3 was reached");
}

TEST(LimitsTest, DepthCountsTemplatesThatCallOneAnother) {
    const std::string countdown =
        "<xsl:param name='n'/><xsl:template match='/' name='c'><xsl:param name='l' select='$n'/>"
        "<xsl:if test='$l > 0'><xsl:call-template name='c'><xsl:with-param name='l' "
        "select='$l - 1'/></xsl:call-template></xsl:if><xsl:if test='$l = 0'>end</xsl:if>"
        "</xsl:template>";
    Options options;
    options.limits.depth = 50;
    Transformation run(compiled(countdown), options);
    std::size_t deepest = 0;
    for (int n = 0; n < 100; ++n) {
        try {
            EXPECT_NE(run.parameter("n", n).toString(parsed("<a/>")).find("end"),
                      std::string::npos);
            deepest = static_cast<std::size_t>(n);
        } catch (const Error& error) {
            EXPECT_EQ(error.text(), "the depth limit of 50 was reached");
        }
    }
    EXPECT_GE(deepest, 45U);
    EXPECT_LE(deepest, 50U);
}

TEST(LimitsTest, DepthCountsEachDocumentAlone) {
    Options options;
    options.limits.depth = 6;
    options.resolver = [](const std::string&, const std::string&) {
        return Input::text("<a><a><a><a>not well-formed");
    };
    std::string documents;
    for (int i = 0; i < 5; ++i) {
        documents += "<xsl:copy-of select=\"document('mem:/" + std::to_string(i) + "')\"/>";
    }
    Transformation run(compiledRootTemplate("<r>" + documents + "</r>"), options);
    EXPECT_EQ(run.toString(parsed("<a><b/></a>")), "<r/>");
    EXPECT_EQ(run.toString(Input::text("<a><a><a><a><a><a/></a></a></a></a></a>")), "<r/>");
}

TEST(LimitsTest, OutputCountsTheBytesOfTheResult) {
    Options options;
    options.limits.output = 10;
    std::string text = "old";
    for (const int length : {0, 1, 10, 11, 1'000'000}) {
        Transformation run(compiled("<xsl:output method='text'/><xsl:template match='/'>" +
                                    std::string(static_cast<std::size_t>(length), 'x') +
                                    "</xsl:template>"),
                           options);
        if (length <= 10) {
            EXPECT_EQ(run.toString(parsed("<a/>")).size(), static_cast<std::size_t>(length));
            EXPECT_EQ(run.toDocument(parsed("<a/>")).xml().size(),
                      static_cast<std::size_t>(length));
            continue;
        }
        const auto fails = [&](auto work) {
            expectFailure(work, ErrorKind::Limit, "the output limit of 10 bytes was reached");
        };
        fails([&] { run.toString(parsed("<a/>")); });
        fails([&] { run.to(parsed("<a/>"), Output::text(text)); });
        fails([&] { run.toDocument(parsed("<a/>")); });
        const TemporaryFolder folder;
        fails([&] { run.to(parsed("<a/>"), Output::file(folder.path("result"))); });
        EXPECT_EQ(folder.list(), "");
    }
    EXPECT_EQ(text, "old");
}

namespace {

class FillingMemoryTest : public ::testing::TestWithParam<HostileWork> {};

} // namespace

TEST_P(FillingMemoryTest, EndsAtTheMemoryLimit) {
    Options options;
    options.limits.memory = MIB;
    const Error error = failureOf([&] { GetParam().run(options); });
    EXPECT_EQ(error.kind(), ErrorKind::Limit) << error.what();
    EXPECT_EQ(error.text(), "the memory limit of 1048576 bytes was reached");
}

INSTANTIATE_TEST_SUITE_P(, FillingMemoryTest, ::testing::ValuesIn(workThatFillsMemory()),
                         [](const auto& some) { return std::string(some.param.name); });

/** By what the system counts, from the limit on which the operation succeeds. */
TEST(LimitsTest, MemoryIsExact) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker has its own memory";
    }
    const std::string text = "<a>" + repeated("<i x='1'>text</i>", 100'000) + "</a>";
    Document::parse(Input::text("<a/>"));
    ::malloc_trim(0);
    beginNewPeak();
    const double before = statusKiB("VmRSS:");
    Document::parse(Input::view(text));
    const auto needed = static_cast<std::size_t>(statusKiB("VmHWM:") - before) * 1024;
    ASSERT_GT(needed, 10 * MIB);
    Options options;
    options.limits.memory = needed + needed / 20;
    EXPECT_NO_THROW(Document::parse(Input::view(text), options));
    options.limits.memory = needed - needed / 20;
    expectFailure([&] { Document::parse(Input::view(text), options); }, ErrorKind::Limit, "memory");
}

namespace {

/** An operation of which each allocation may be the one that is too many. */
struct Limited {
    const char* name;
    std::string (*run)(const Options&);
};

const std::string SMALL_SOURCE = "<!DOCTYPE a [<!ENTITY e 'text'><!ATTLIST a b CDATA 'c'>]><a>&e;" +
                                 repeated("<i x='1'>text</i><!--c--><?p i?>", 20) + "</a>";

/** Of many kinds of instructions, with a second document and a message. */
const std::string MUCH_OF_THE_LANGUAGE =
    "<xsl:output indent='yes' cdata-section-elements='y'/><xsl:key name='k' match='i' use='@x'/>"
    "<xsl:strip-space elements='*'/><xsl:decimal-format name='f' decimal-separator=','/>"
    "<xsl:attribute-set name='s'><xsl:attribute name='t'>u</xsl:attribute></xsl:attribute-set>"
    "<xsl:template match='i'><xsl:copy use-attribute-sets='s'><xsl:number level='any'/>"
    "<xsl:copy-of select='@*'/></xsl:copy></xsl:template>"
    "<xsl:template match='/'><r><xsl:for-each select='//i'>"
    "<xsl:sort select='position()' data-type='number' order='descending'/><xsl:sort select='.' "
    "lang='de'/>"
    "<xsl:variable name='v'><x><xsl:value-of select='count(preceding::i)'/></x></xsl:variable>"
    "<xsl:copy-of select='$v'/><y><xsl:value-of select=\"format-number(1.5, '#,0', 'f')\"/></y>"
    "<z n='{count(key(\"k\", 1))}'/><xsl:message>m</xsl:message></xsl:for-each>"
    "<xsl:apply-templates select='//i'/><xsl:copy-of select=\"document('mem:/d')\"/>"
    "</r></xsl:template>";

Options withDocument(const Options& given) {
    Options options = given;
    options.resolver = [](const std::string&, const std::string&) {
        return Input::text("<d><e>text</e></d>", "mem:/d");
    };
    return options;
}

const Limited ALL_LIMITED[] = {
    {"Parsing",
     [](const Options& options) {
         return Document::parse(Input::text(SMALL_SOURCE), options).xml();
     }},
    {"Compiling",
     [](const Options& options) {
         return Stylesheet::compile(Input::text(stylesheet(MUCH_OF_THE_LANGUAGE)), options)
             .method();
     }},
    {"Evaluating",
     [](const Options& options) {
         static const Document source = parsed(SMALL_SOURCE);
         static const XPath path = XPath::compile("concat(count(//i/.. | //i[@x = 1]), //i)");
         return path.evaluate(source, options).string();
     }},
    {"TransformingAText",
     [](const Options& options) {
         static const Stylesheet sheet = compiled(MUCH_OF_THE_LANGUAGE);
         return Transformation(sheet, withDocument(options)).toString(Input::text(SMALL_SOURCE));
     }},
    {"TransformingToADocument",
     [](const Options& options) {
         static const Stylesheet sheet = compiled(MUCH_OF_THE_LANGUAGE);
         static const Document source = parsed(SMALL_SOURCE);
         return Transformation(sheet, withDocument(options)).toDocument(source).xml();
     }},
};

class LimitedTest : public ::testing::TestWithParam<Limited> {};

} // namespace

/** With 16 bytes more each time no allocation is left out: each has a header of that size. */
TEST_P(LimitedTest, AMemoryLimitMayStrikeAnywhere) {
    const std::string expected = GetParam().run({});
    const std::size_t step = isUnderAMemoryChecker() ? 997 : 16;
    std::size_t failures = 0;
    for (std::size_t limit = 1;; limit += step) {
        Options options;
        options.limits.memory = limit;
        try {
            EXPECT_EQ(GetParam().run(options), expected);
            break;
        } catch (const Error& error) {
            ASSERT_EQ(error.kind(), ErrorKind::Limit) << error.what();
            ++failures;
        }
    }
    EXPECT_GT(failures, 5U);
    EXPECT_EQ(GetParam().run({}), expected);
}

INSTANTIATE_TEST_SUITE_P(, LimitedTest, ::testing::ValuesIn(ALL_LIMITED),
                         [](const auto& some) { return std::string(some.param.name); });

/** One Transformation fails and goes on, again and again. */
TEST(LimitsTest, AMemoryLimitMayStrikeEachRun) {
    const Stylesheet sheet = compiled(someWork());
    const Document source = parsed("<a>" + repeated("<i/>", 40) + "</a>");
    const std::string expected = Transformation(sheet).toString(source);
    std::size_t failures = 0;
    bool hasSucceeded = false;
    for (std::size_t limit = 1; !hasSucceeded; limit += 97) {
        Options options;
        options.limits.memory = limit;
        Transformation run(sheet, options);
        for (int i = 0; i < 2; ++i) {
            try {
                EXPECT_EQ(run.toString(source), expected);
                hasSucceeded = true;
            } catch (const Error& error) {
                EXPECT_EQ(error.kind(), ErrorKind::Limit) << error.what();
                ++failures;
            }
        }
    }
    EXPECT_GT(failures, 100U);
}

TEST(LimitsTest, ALimitIsOfOneOperation) {
    const Document source = parsed(manyItems());
    Options options;
    options.limits.memory = 4 * MIB;
    options.limits.output = 100'000;
    options.limits.time = std::chrono::seconds(20);
    options.limits.depth = 100;
    Transformation run(compiled(someWork()), options);
    const std::string first = run.toString(source);
    EXPECT_GT(first.size(), 20'000U);
    for (int i = 0; i < 20; ++i) { // more than the limits, all together
        ASSERT_EQ(run.toString(source), first);
    }
}

/**
 * Every time the error or the right result, and a right result afterwards. Another thread cancels
 * some time after a step of the work; at every second run the work waits for it, so that some are
 * cancelled on any machine.
 */
TEST(LimitsTest, CancelledAtAnyMoment) {
    constexpr int STEPS = 20;
    const Stylesheet sheet = compiled(someWork("<xsl:message/>"));
    const Document source = parsed("<a>" + repeated("<i/>", STEPS) + "</a>");
    const std::string expected = Transformation(sheet).toString(source);
    std::minstd_rand random(1);
    const unsigned times = isUnderAMemoryChecker() ? 20 : 1000;
    unsigned cancelled = 0;
    for (unsigned i = 0; i < times; ++i) {
        CancelSource cancel;
        std::atomic<bool> hasReachedTheStep{false};
        std::atomic<bool> isCancelled{false};
        std::thread other([&, wait = std::chrono::microseconds(random() % 100)] {
            while (!hasReachedTheStep) {
                std::this_thread::yield();
            }
            const auto end = Clock::now() + wait;
            while (Clock::now() < end) {
                std::this_thread::yield();
            }
            cancel.cancel();
            isCancelled = true;
        });
        Options options;
        options.cancel = cancel.token();
        Transformation run(sheet, options);
        run.onMessage([&, step = random() % STEPS](const vexa::Diagnostic&) mutable {
            hasReachedTheStep = hasReachedTheStep || step == 0;
            step -= 1;
            while (i % 2 == 1 && hasReachedTheStep && !isCancelled) {
                std::this_thread::yield();
            }
        });
        try {
            EXPECT_EQ(run.toString(source), expected);
        } catch (const Error& error) {
            EXPECT_EQ(error.kind(), ErrorKind::Cancelled) << error.what();
            ++cancelled;
        }
        hasReachedTheStep = true;
        other.join();
        expectFailure([&] { run.toString(source); }, ErrorKind::Cancelled, "");
    }
    EXPECT_GE(cancelled, times / 2);
    EXPECT_EQ(Transformation(sheet).toString(source), expected);
}

TEST(LimitsTest, EachOfEightThreadsHasItsOwn) {
    const Stylesheet sheet = compiled(someWork());
    const Document source = parsed("<a>" + repeated("<i/>", 100) + "</a>");
    const std::string expected = Transformation(sheet).toString(source);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < 8; ++number) {
        threads.emplace_back([&, number] {
            Options options;
            // Every second thread has too little.
            options.limits.output = number % 2 == 0 ? 100 * (number + 1) : 10 * MIB;
            Transformation run(sheet, options);
            for (int i = 0; i < (isUnderAMemoryChecker() ? 2 : 20); ++i) {
                std::string result;
                try {
                    result = run.toString(source);
                } catch (const Error& error) {
                    result = error.text();
                }
                wrong += result != (number % 2 == 0 ? "the output limit of " +
                                                          std::to_string(options.limits.output) +
                                                          " bytes was reached"
                                                    : expected);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

/** The engine flushes the beginning of the result when it is destroyed. */
TEST(LimitsTest, WhatWasNotWrittenYetIsDropped) {
    Options options;
    options.limits.depth = 100;
    Transformation run(compiled("<xsl:output method='text'/><xsl:template match='/'>begin"
                                "<xsl:apply-templates select='.'/></xsl:template>"),
                       options);
    std::ostringstream stream;
    expectFailure([&] { run.to(parsed("<a/>"), Output::stream(stream)); }, ErrorKind::Limit,
                  "depth");
    EXPECT_EQ(stream.str(), "");
}

TEST(LimitsTest, AnObjectIsUsedAgainAfterALimit) {
    const Document small = parsed("<a><i/></a>");
    const Document large = parsed(manyItems());
    Options options;
    options.limits.output = 1000;
    Transformation run(compiled(someWork()), options);
    const std::string expected = run.toString(small);
    for (int i = 0; i < 3; ++i) {
        expectFailure([&] { run.toString(large); }, ErrorKind::Limit, "output");
        EXPECT_EQ(run.toString(small), expected);
        expectFailure([&] { run.toDocument(large); }, ErrorKind::Limit, "output");
        EXPECT_EQ(run.toDocument(small).xml(), parsed(expected).xml());
    }
}
