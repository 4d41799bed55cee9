#include "xslt/NumberText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

using Limits = std::numeric_limits<double>;

TEST(NumberTextTest, EveryNumberIsItsTextAndBack) {
    std::mt19937_64 random(1); // NOLINT(cert-msc51-cpp): the same numbers each time
    int count = 0;
    while (count < 20'000) {
        const std::uint64_t bits = random();
        double number = 0;
        static_assert(sizeof(number) == sizeof(bits));
        std::memcpy(&number, &bits, sizeof(number));
        if (!std::isfinite(number)) {
            continue;
        }
        ++count;
        const std::string text = numberText(number);
        ASSERT_EQ(text.find_first_not_of("-.0123456789"), std::string::npos) << text;
        ASSERT_EQ(textNumber(text), number) << text;
    }
}

TEST(NumberTextTest, TheLargestAndTheSmallestNumberFit) {
    for (const double number : {Limits::max(), Limits::lowest(), Limits::min(),
                                Limits::denorm_min(), -Limits::denorm_min()}) {
        EXPECT_EQ(textNumber(numberText(number)), number);
    }
    EXPECT_LT(numberText(-Limits::denorm_min()).size(), 400U);
}

TEST(NumberTextTest, WholeNumbersHaveNoPoint) {
    EXPECT_EQ(numberText(1e15), "1000000000000000");
    EXPECT_EQ(numberText(-1e22), "-10000000000000000000000");
    EXPECT_EQ(numberText(4294967296.0), "4294967296");
}

TEST(NumberTextTest, ATextTooLargeOrTooSmallIsInfiniteOrZero) {
    const std::string zeros(400, '0');
    EXPECT_EQ(textNumber("1" + zeros), Limits::infinity());
    EXPECT_EQ(textNumber("-1" + zeros), -Limits::infinity());
    EXPECT_EQ(textNumber("-1" + zeros + ".5"), -Limits::infinity());
    EXPECT_EQ(textNumber("0." + zeros + "1"), 0);
    EXPECT_EQ(textNumber("-0." + zeros + "1"), 0);
    EXPECT_TRUE(std::signbit(textNumber("-0." + zeros + "1")));
    EXPECT_EQ(textNumber("." + zeros + "1"), 0);
    EXPECT_EQ(textNumber(zeros + "." + zeros + "1"), 0);
}
