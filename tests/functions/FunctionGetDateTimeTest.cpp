#include "functions/FunctionGetDateTime.h"

#include "support/FakeTimeStamp.h"
#include "support/FunctionTest.h"

#include <memory>
#include <typeinfo>

using FunctionGetDateTimeTest = FunctionTest;

namespace {

constexpr const char* NO_ARGUMENTS = "tqfunc:GetDateTime() function takes no arguments!";

std::string at(const std::string& stamp) {
    setTimeStamp(stamp);
    return FunctionGetDateTime().GetDateTime().c_str();
}

} // namespace

TEST_F(FunctionGetDateTimeTest, ReturnsTheTimeOfDayWithLeadingZerosAndNoDate) {
    setTimeStamp("20261121090507004");
    EXPECT_EQ(evaluate("vexa:GetDateTime()"), "09:05:07.004");
    EXPECT_EQ(at("20261231235959999"), "23:59:59.999");
    EXPECT_EQ(at("20260101000000000"), "00:00:00.000");
}

TEST_F(FunctionGetDateTimeTest, CanBeCalledInAStreamTransform) {
    setTimeStamp("20261121140327095");
    const std::string sheet =
        sheetWithRootTemplate("<t><xsl:value-of select='vexa:GetDateTime()'/></t>");
    EXPECT_EQ(transformStream("<a/>", sheet).output, withNul("<t>14:03:27.095</t>"));
}

TEST_F(FunctionGetDateTimeTest, ReadsTheClockInEachCall) {
    EXPECT_EQ(at("20261121140327095"), at("20261121140327095"));
    EXPECT_NE(at("20261121140327095"), at("20261121140327096"));
}

TEST_F(FunctionGetDateTimeTest, ReturnsShorterFieldsForAShortTimeStamp) {
    EXPECT_EQ(at("2026112114032709"), "14:03:27.09");
    EXPECT_EQ(at("202611211403279"), "14:03:27.9");
    EXPECT_EQ(at("20261121140327"), "14:03:27.");
    EXPECT_EQ(at("2026112114032"), "14:03:2.");
    EXPECT_EQ(at("2026112114"), "14::.");
    EXPECT_EQ(at("20261121"), "::.");
    EXPECT_EQ(at(""), "::.");
}

TEST_F(FunctionGetDateTimeTest, ReturnsUpToFiveDigitsOfTheFraction) {
    EXPECT_EQ(at("202611211403270951"), "14:03:27.0951");
    EXPECT_EQ(at("2026112114032709512"), "14:03:27.09512");
    EXPECT_EQ(at("20261121140327095123456"), "14:03:27.09512");
}

TEST_F(FunctionGetDateTimeTest, ReportsArguments) {
    EXPECT_NE(errorOf("vexa:GetDateTime('x')").find(NO_ARGUMENTS), std::string::npos);
    EXPECT_NE(errorOf("vexa:GetDateTime(1, 2)").find(NO_ARGUMENTS), std::string::npos);
}

TEST_F(FunctionGetDateTimeTest, IgnoresTheArgumentsIfTheReportReturns) {
    setTimeStamp("20261121140327095");
    EXPECT_EQ(callLeniently(FunctionGetDateTime(), {"x"}), "14:03:27.095");
    EXPECT_EQ(lenientContext().m_strProblem, NO_ARGUMENTS);
    EXPECT_EQ(lenientContext().m_pNode, contextNode());
    EXPECT_FALSE(lenientContext().m_bHadLocator);
}

TEST_F(FunctionGetDateTimeTest, ItsCloneHasTheSameClassAndErrorText) {
    const std::unique_ptr<TqXsltFunction> clone(FunctionGetDateTime().clone());
    EXPECT_EQ(typeid(*clone), typeid(FunctionGetDateTime));
    EXPECT_EQ(narrow(clone->getError()), NO_ARGUMENTS);
}
