#include "testing/TextDifference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

std::string difference(const std::string& expected, const std::string& actual) {
    const std::string text = textDifference("name", expected, actual);
    constexpr const char* BEGIN = "--- name\n+++ result\n";
    EXPECT_EQ(text.rfind(BEGIN, 0), 0U) << text;
    return text.substr(std::string(BEGIN).size());
}

/** The numbers from and to, a line each. */
std::string numbers(int from, int to) {
    std::string lines;
    for (int i = from; i <= to; ++i) {
        lines += std::to_string(i) + "\n";
    }
    return lines;
}

} // namespace

TEST(TextDifferenceTest, ShowsChangesWithThreeLinesAroundThem) {
    EXPECT_EQ(difference(numbers(1, 9), numbers(1, 4) + "x\n" + numbers(6, 9)),
              "@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+x\n 6\n 7\n 8\n");
    EXPECT_EQ(difference(numbers(1, 20), "0\n" + numbers(1, 19) + "x\n"),
              "@@ -1,3 +1,4 @@\n+0\n 1\n 2\n 3\n@@ -17,4 +18,4 @@\n 17\n 18\n 19\n-20\n+x\n");
}

TEST(TextDifferenceTest, FindsTheLinesThatBothHave) {
    EXPECT_EQ(difference("a\nb\nc\nd\n", "a\nc\nx\nd\n"), "@@ -1,4 +1,4 @@\n a\n-b\n c\n+x\n d\n");
    EXPECT_EQ(difference("a\nb\n", "a\nb\nb\n"), "@@ -1,2 +1,3 @@\n a\n b\n+b\n");
}

TEST(TextDifferenceTest, ShowsAnEmptyText) {
    EXPECT_EQ(difference("", "a\n"), "@@ -0,0 +1,1 @@\n+a\n");
    EXPECT_EQ(difference("a\n", ""), "@@ -1,1 +0,0 @@\n-a\n");
}

TEST(TextDifferenceTest, ShowsWhatCannotBeSeen) {
    EXPECT_EQ(difference("a \n", "a\n"), "@@ -1,1 +1,1 @@\n-a\xC2\xB7\n+a\n");
    EXPECT_EQ(difference("a\n", "a"), "@@ -1,1 +1,1 @@\n-a\n+a\n\\ No newline at end of file\n");
    EXPECT_EQ(difference("a b\n", "a\tb\r\n"), "@@ -1,1 +1,1 @@\n-a b\n+a\\tb\\r\n");
    EXPECT_EQ(difference("a\\tb\n", "a\tb\n"), "@@ -1,1 +1,1 @@\n-a\\\\tb\n+a\\tb\n");
    EXPECT_EQ(difference("a\xC2\xB7\n", "a \n"), "@@ -1,1 +1,1 @@\n-a\\u{B7}\n+a\xC2\xB7\n");
    EXPECT_EQ(difference("\x1B[1m\n", "\xC2\xA0\n"), "@@ -1,1 +1,1 @@\n-\\u{1B}[1m\n+\\u{A0}\n");
    EXPECT_EQ(difference("\xC3\xA4\n", "\xE4\n"), "@@ -1,1 +1,1 @@\n-\xC3\xA4\n+\\xE4\n");
}

TEST(TextDifferenceTest, CutsLongLinesAroundTheFirstDifference) {
    const std::string begin(100'000, 'a');
    const std::string end(100'000, 'z');
    const std::string text = difference(begin + "1" + end + "\n", begin + "2" + end + "\n");
    const std::string dots = "\xE2\x80\xA6";
    EXPECT_EQ(text, "@@ -1,1 +1,1 @@\n-" + dots + std::string(40, 'a') + "1" +
                        std::string(117, 'z') + dots + "\n+" + dots + std::string(40, 'a') + "2" +
                        std::string(117, 'z') + dots + "\n");
}

/** Without a bound these would take minutes. */
TEST(TextDifferenceTest, IsBounded) {
    const std::string text = difference(numbers(1, 200'000), "x\n" + numbers(200'001, 400'000));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 44);
    EXPECT_NE(text.find("\n-20\n-... 480 more lines\n+x\n+200001\n"), std::string::npos) << text;
    EXPECT_EQ(text.rfind("@@ -1,500 +1,500 @@\n-1\n-2\n", 0), 0U) << text.substr(0, 100);
    EXPECT_EQ(text.substr(text.size() - 22), "... there may be more\n");
    EXPECT_EQ(difference(numbers(1, 200'000), numbers(1, 99'999) + numbers(100'001, 200'000)),
              "@@ -99997,7 +99997,6 @@\n 99997\n 99998\n 99999\n-100000\n 100001\n 100002\n "
              "100003\n");
}
