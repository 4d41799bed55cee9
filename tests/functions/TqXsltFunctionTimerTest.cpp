#include "functions/TqXsltFunctionTimer.h"

#include "support/FakeTimeStamp.h"
#include "support/FunctionTest.h"

#include <nrb/NRBAssertError.h>
#include <vexa/TQXslTransformer.h>

#include <memory>
#include <ostream>
#include <typeinfo>

namespace {

constexpr std::uint32_t DAY = 86'400'000;

/** Sets the clock to a time on day 5 of a month. */
void setTime(const std::string& hhmmssmmm) {
    setTimeStamp("20261105" + hhmmssmmm);
}

std::uint32_t countAt(const std::string& stamp) {
    return MyConvertTimeString(I18NString(stamp.c_str()));
}

class TimerTest : public FunctionTest {
protected:
    TimerTest() {
        gmapTimers.clear();
        setTime("120000000");
    }

    std::string create() { return FunctionTimerCreate::TimerCreate().c_str(); }
    std::string start(const char* id) { return FunctionTimerStart::TimerStart(id).c_str(); }
    std::string stop(const char* id) { return FunctionTimerStop::TimerStop(id).c_str(); }
    std::string total(const char* id) { return FunctionTimerTotal::TimerTotal(id).c_str(); }
    std::string reset(const char* id) { return FunctionTimerReset::TimerReset(id).c_str(); }
    std::string destroy(const char* id) { return FunctionTimerDestroy::TimerDestroy(id).c_str(); }

    static bool isAbsent(int id) { return gmapTimers.count(id) == 0; }
    static bool isStopped(int id) { return !isAbsent(id) && gmapTimers.at(id).ulStart == 0; }
    static bool isRunning(int id) { return !isAbsent(id) && gmapTimers.at(id).ulStart != 0; }
};

// ---- The six functions ----

struct TimerRow {
    const char* name;
    const TqXsltFunction& function;
    std::size_t arity;
    const char* arityMessage;
    const char* errorText;
    int assertionLine;
};

std::ostream& operator<<(std::ostream& stream, const TimerRow& row) {
    return stream << row.name;
}

const FunctionTimerCreate CREATE;
const FunctionTimerStart START;
const FunctionTimerStop STOP;
const FunctionTimerTotal TOTAL;
const FunctionTimerReset RESET;
const FunctionTimerDestroy DESTROY;

const TimerRow ROWS[] = {
    {"TimerCreate", CREATE, 0, "The TimerCreate() function takes no arguments!",
     "tqfunc:TimerCreate() takes no arguments!", 0},
    {"TimerStart", START, 1, "tqfunc:TimerStart() function takes 1 argument!",
     "tqfunc:TimerStart() takes a single timer id argument!", 152},
    {"TimerStop", STOP, 1, "The TimerStop() function takes 1 argument!",
     "tqfunc:TimerStop() takes a single timer id argument!", 218},
    {"TimerTotal", TOTAL, 1, "The TimerTotal() function takes 1 argument!",
     "tqfunc:TimerTotal() takes a single timer id argument!", 287},
    {"TimerReset", RESET, 1, "The TimerReset() function takes 1 argument!",
     "tqfunc:TimerReset() takes a single timer id argument!", 364},
    {"TimerDestroy", DESTROY, 1, "The TimerDestroyID() function takes 1 argument!",
     "tqfunc:TimerDestroy() takes a single timer id argument!", 445},
};

class TimerTableTest : public TimerTest, public ::testing::WithParamInterface<TimerRow> {};

} // namespace

TEST_P(TimerTableTest, ReportsAWrongNumberOfArgumentsWithItsOwnMessage) {
    const TimerRow& row = GetParam();
    for (std::size_t count = 0; count <= 3; ++count) {
        if (count == row.arity) {
            continue;
        }
        std::string args;
        for (std::size_t i = 0; i < count; ++i) {
            args += i == 0 ? "'1'" : ", '1'";
        }
        const std::string error = errorOf(std::string("vexa:") + row.name + "(" + args + ")");
        EXPECT_EQ(error.rfind(std::string("XPath error: ") + row.arityMessage, 0), 0U) << error;
    }
    EXPECT_TRUE(gmapTimers.empty());
}

TEST_P(TimerTableTest, ContinuesWithTheGivenArgumentsIfTheReportReturns) {
    const TimerRow& row = GetParam();
    const std::string result = callLeniently(row.function, {"77", "88"});
    EXPECT_EQ(lenientContext().m_strProblem, row.arityMessage);
    EXPECT_FALSE(lenientContext().m_bHadLocator);
    EXPECT_EQ(lenientContext().m_pNode, contextNode());
    EXPECT_NE(result, "");
    EXPECT_TRUE(isAbsent(88));
    const bool usesId = row.arity == 1 && std::string(row.name) != "TimerDestroy";
    EXPECT_EQ(isAbsent(77), !usesId);
}

TEST_P(TimerTableTest, HasItsOwnErrorText) {
    EXPECT_EQ(narrow(GetParam().function.getError()), GetParam().errorText);
}

TEST_P(TimerTableTest, ItsCloneHasTheSameClassAndErrorText) {
    const std::unique_ptr<TqXsltFunction> clone(GetParam().function.clone());
    EXPECT_EQ(typeid(*clone), typeid(GetParam().function));
    EXPECT_EQ(narrow(clone->getError()), GetParam().errorText);
}

TEST_P(TimerTableTest, AssertsThatItHasAFirstArgument) {
    const TimerRow& row = GetParam();
    if (row.arity == 0) {
        EXPECT_NO_THROW(callWithNull(row.function));
        return;
    }
    const auto expectAssertion = [&row](const NRBAssertError& error) {
        EXPECT_EQ(error.getCode(), 0);
        EXPECT_STREQ(error.getText(), "NRB_ASSERT(args[0].null() == false);");
        EXPECT_STREQ(error.getLocation().getFile(), "TqXsltFunctionTimer");
        EXPECT_EQ(error.getLocation().getLine(), row.assertionLine);
        EXPECT_EQ(error.getDetail(), nullptr);
        EXPECT_STREQ(error.getOrigin(), "NRB_THROW");
    };
    try {
        callWithNull(row.function);
        FAIL() << "no assertion";
    } catch (const NRBAssertError& error) {
        expectAssertion(error);
    }
    try {
        callLeniently(row.function, {}); // the arity report returns
        FAIL() << "no assertion";
    } catch (const NRBAssertError& error) {
        expectAssertion(error);
    }
    EXPECT_TRUE(gmapTimers.empty());
}

INSTANTIATE_TEST_SUITE_P(, TimerTableTest, ::testing::ValuesIn(ROWS),
                         [](const auto& test) { return test.param.name; });

// ---- Time ----

TEST(MyConvertTimeString, CountsMillisecondsOfTheMonthPlusOneDay) {
    EXPECT_EQ(countAt("20260101000000000"), DAY);
    EXPECT_EQ(countAt("20260101000000001"), DAY + 1);
    EXPECT_EQ(countAt("20260101000001000"), DAY + 1000);
    EXPECT_EQ(countAt("20260101000100000"), DAY + 60'000);
    EXPECT_EQ(countAt("20260101010000000"), DAY + 3'600'000);
    EXPECT_EQ(countAt("20260102000000000"), 2 * DAY);
    EXPECT_EQ(countAt("20260131235959999"), 2'764'799'999U);
}

TEST(MyConvertTimeString, IgnoresYearAndMonth) {
    EXPECT_EQ(countAt("19990405060708009"), countAt("20261205060708009"));
}

TEST(MyConvertTimeString, TreatsMissingFieldsAsZero) {
    EXPECT_EQ(countAt("20260105101112"), countAt("20260105101112000"));
    EXPECT_EQ(countAt("2026010510"), countAt("20260105100000000"));
    EXPECT_EQ(countAt("202601"), 0U);
    EXPECT_EQ(countAt(""), 0U);
    EXPECT_EQ(countAt("no time"), 0U);
}

TEST(MyCurrentTime, ReadsThePlatformsClock) {
    setTimeStamp("20260102030405006");
    EXPECT_EQ(MyCurrentTime(), 2 * DAY + 3 * 3'600'000U + 4 * 60'000U + 5'006U);
}

TEST(MyTimeElapsed, ReturnsSecondsWithTheirSign) {
    EXPECT_EQ(MyTimeElapsed(2500, 1000), 1.5);
    EXPECT_EQ(MyTimeElapsed(1000, 2500), -1.5);
    EXPECT_EQ(MyTimeElapsed(2'764'799'999U, 0), 2764799.999);
    EXPECT_EQ(MyTimeElapsed(DAY, 31 * DAY), -2592000.0);
}

// ---- Timers ----

TEST_F(TimerTest, CreateReturnsIncreasingNumbers) {
    const int before = gnIndexTimerID;
    EXPECT_EQ(create(), std::to_string(before + 1));
    EXPECT_EQ(create(), std::to_string(before + 2));
    EXPECT_TRUE(isStopped(before + 1));
    EXPECT_EQ(destroy(std::to_string(before + 2).c_str()), "   0.000");
    EXPECT_EQ(create(), std::to_string(before + 3));
}

TEST_F(TimerTest, CreateResetsATimerWithANumberChosenByAStylesheet) {
    const std::string next = std::to_string(gnIndexTimerID + 1);
    stop(next.c_str());
    EXPECT_NE(total(next.c_str()), "   0.000");
    EXPECT_EQ(create(), next);
    EXPECT_EQ(total(next.c_str()), "   0.000");
}

TEST(TimersOfTheProcess, OutliveTheTerminationOfTheLibrary) {
    setTime("120000000");
    TQXslTransformer_Initialize(nullptr);
    const std::string first = FunctionTimerCreate::TimerCreate().c_str();
    FunctionTimerStart::TimerStart(first.c_str());
    TQXslTransformer_Terminate(nullptr);
    TQXslTransformer_Initialize(nullptr);
    EXPECT_STREQ(FunctionTimerCreate::TimerCreate().c_str(),
                 std::to_string(std::stoi(first) + 1).c_str());
    setTime("120001500");
    EXPECT_STREQ(FunctionTimerStop::TimerStop(first.c_str()).c_str(), "   1.500");
    TQXslTransformer_Terminate(nullptr);
}

TEST_F(TimerTest, AnUnknownNumberIsAStoppedTimerAtZero) {
    EXPECT_EQ(total("42"), "   0.000");
    EXPECT_TRUE(isStopped(42));
    EXPECT_EQ(destroy("42"), "   0.000");
    EXPECT_TRUE(isAbsent(42));
    EXPECT_EQ(destroy("43"), "   0.000");
    EXPECT_TRUE(isAbsent(43));
    EXPECT_EQ(reset("44"), "   0.000");
    EXPECT_TRUE(isStopped(44));
    start("45");
    EXPECT_TRUE(isRunning(45));
}

TEST_F(TimerTest, IntervalsAddUp) {
    setTime("120000000");
    start("1");
    setTime("120001500");
    EXPECT_EQ(stop("1"), "   1.500");
    EXPECT_EQ(total("1"), "   1.500");
    setTime("130000000");
    start("1");
    setTime("130000250");
    EXPECT_EQ(stop("1"), "   0.250");
    EXPECT_EQ(total("1"), "   1.750");
    EXPECT_TRUE(isStopped(1));
}

TEST_F(TimerTest, TotalIncludesTheCurrentIntervalAndDoesNotEndIt) {
    start("1");
    setTime("120002000");
    EXPECT_EQ(total("1"), "   2.000");
    EXPECT_TRUE(isRunning(1));
    setTime("120003000");
    EXPECT_EQ(total("1"), "   3.000");
    EXPECT_EQ(stop("1"), "   3.000");
    setTime("120009000");
    EXPECT_EQ(total("1"), "   3.000");
}

TEST_F(TimerTest, StartingARunningTimerDiscardsTheCurrentInterval) {
    start("1");
    setTime("120005000");
    start("1");
    setTime("120006000");
    EXPECT_EQ(stop("1"), "   1.000");
    EXPECT_EQ(total("1"), "   1.000");
}

TEST_F(TimerTest, ResetReturnsTheTotalAndLeavesTheTimerStoppedAtZero) {
    start("1");
    setTime("120001000");
    EXPECT_EQ(reset("1"), "   1.000");
    EXPECT_TRUE(isStopped(1));
    EXPECT_EQ(total("1"), "   0.000");

    start("1");
    setTime("120002500");
    stop("1");
    EXPECT_EQ(reset("1"), "   1.500");
    EXPECT_EQ(total("1"), "   0.000");
}

TEST_F(TimerTest, DestroyReturnsTheTotalAndDeletesTheTimer) {
    start("1");
    setTime("120001000");
    EXPECT_EQ(destroy("1"), "   1.000");
    EXPECT_TRUE(isAbsent(1));
    EXPECT_EQ(total("1"), "   0.000");
}

TEST_F(TimerTest, StoppingAStoppedTimerAddsTheTimeOfTheMonthPlusOneDay) {
    setTimeStamp("20261105120000250");
    const std::string interval = "475200.250"; // 5 days, 12 hours and 0.25 seconds
    EXPECT_EQ(stop("1"), interval);
    EXPECT_EQ(total("1"), interval);
    EXPECT_EQ(stop("1"), interval);
    EXPECT_EQ(total("1"), "950400.500");
    setTimeStamp("20261131235959999");
    EXPECT_EQ(stop("2"), "2764799.999");
}

TEST_F(TimerTest, StartReturnsANegativeNumberLateInAMonth) {
    setTimeStamp("20261101000000000");
    EXPECT_EQ(start("1"), "86400000");
    setTimeStamp("20261124203123647");
    EXPECT_EQ(start("1"), "2147483647");
    setTimeStamp("20261124203123648");
    EXPECT_EQ(start("1"), "-2147483648");
    setTimeStamp("20261125000000000");
    EXPECT_EQ(start("1"), "-2134967296");
    setTimeStamp("20261125000002000");
    EXPECT_EQ(stop("1"), "   2.000");
}

TEST_F(TimerTest, AnIntervalIsCorrectAcrossMidnightAndNegativeAcrossTheEndOfAMonth) {
    setTimeStamp("20261105235959500");
    start("1");
    setTimeStamp("20261106000000250");
    EXPECT_EQ(stop("1"), "   0.750");

    setTimeStamp("20261130235959000");
    start("2");
    setTimeStamp("20261201000001000");
    EXPECT_EQ(stop("2"), "-2591998.000");
    EXPECT_EQ(total("2"), "-2591998.000");
}

TEST_F(TimerTest, ReadsTheNumberAtTheBeginningOfAText) {
    start(" 7abc");
    EXPECT_TRUE(isRunning(7));
    start("abc");
    EXPECT_TRUE(isRunning(0));
    start("");
    start("-3");
    EXPECT_TRUE(isRunning(-3));
    start("+8.9");
    EXPECT_TRUE(isRunning(8));
    start((std::string(50, ' ') + "5").c_str());
    EXPECT_TRUE(isRunning(5));
    start((std::string(29, '0') + "12").c_str()); // the longest text without an allocation
    EXPECT_TRUE(isRunning(12));
    start((std::string(29, '0') + "123").c_str());
    EXPECT_TRUE(isRunning(123));
    start("9\xC3\xA9");
    EXPECT_TRUE(isRunning(9));
    start("\xEF\xBC\x91"); // a full-width digit is not read as a digit
    EXPECT_EQ(gmapTimers.size(), 8U);
}

/** As strtol with a 32-bit long, on every platform. */
TEST_F(TimerTest, ReadsATooLargeNumberAsTheLargest) {
    start("4294967297");
    EXPECT_TRUE(isAbsent(1));
    EXPECT_TRUE(isRunning(2147483647));
    start("-99999999999999999999");
    EXPECT_TRUE(isRunning(-2147483647 - 1));
}

TEST_F(TimerTest, CanBeCalledInFileAndStreamTransforms) {
    const std::string sheet =
        sheetWithRootTemplate("<xsl:variable name='id' select='vexa:TimerCreate()'/>"
                              "<b><xsl:value-of select='vexa:TimerStart($id)'/>|"
                              "<xsl:value-of select='vexa:TimerStop($id)'/>|"
                              "<xsl:value-of select='vexa:TimerTotal($id)'/>|"
                              "<xsl:value-of select='vexa:TimerReset($id)'/>|"
                              "<xsl:value-of select='vexa:TimerDestroy($id)'/></b>");
    const std::string expected = "<b>475200000|   0.000|   0.000|   0.000|   0.000</b>";
    EXPECT_EQ(transformFile(source(), sheet).output, expected);
    EXPECT_EQ(transformStream("<a/>", sheet).output, withNul(expected));
    EXPECT_TRUE(gmapTimers.empty());
}

TEST_F(TimerTest, AreSharedByAllTransformersOfTheProcess) {
    const std::string startSheet =
        sheetWithRootTemplate("<b><xsl:value-of select='vexa:TimerStart(5)'/></b>");
    transformFile(source(), startSheet);
    setTime("120004000");
    VEXAXslTransformer other;
    const std::string stopSheet = m_folder.write(
        "stop.xsl",
        stylesheetWithRootTemplate("<b><xsl:value-of select='vexa:TimerStop(5)'/></b>"));
    std::istringstream input("<a/>");
    std::ostringstream output;
    EXPECT_EQ(other.doTransform(input, stopSheet.c_str(), output), 0);
    EXPECT_EQ(output.str(), withNul("<b>   4.000</b>"));
}
