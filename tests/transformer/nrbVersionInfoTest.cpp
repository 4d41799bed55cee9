#include <vexa/TQXslTransformer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <regex>
#include <string>

namespace {

const std::string WHAT = "@(#)";

std::string row(int number) {
    return nrbVersionInfo[number - 1];
}

} // namespace

TEST(nrbVersionInfo, HasNineWhatStrings) {
    ASSERT_EQ(std::size(nrbVersionInfo), 9U);
    for (const char* text : nrbVersionInfo) {
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(std::strncmp(text, WHAT.c_str(), WHAT.size()), 0) << text;
    }
}

TEST(nrbVersionInfo, BeginsAndEndsWithLinesOfEqualLength) {
    EXPECT_EQ(row(1), WHAT + std::string(72, '-') + "\n");
    EXPECT_EQ(row(9), WHAT + " " + std::string(71, '-') + "\n");
    EXPECT_EQ(row(1).size(), 77U);
    EXPECT_EQ(row(9).size(), 77U);
}

TEST(nrbVersionInfo, ContainsProductAndVersion) {
    EXPECT_EQ(row(2), WHAT + " VEXA XSL Transformer");
    EXPECT_TRUE(std::regex_match(row(3), std::regex("@\\(#\\) VEXA XSL Transformer "
                                                    "v[0-9]+\\.[0-9]+\\.[0-9]+-[A-Za-z0-9.]+")));
    EXPECT_TRUE(std::regex_match(
        row(4), std::regex("@\\(#\\) NRB VEXA_XSLTransformer [0-9]+\\.[0-9]+\\.[0-9]+\\.[0-9]+")));
    EXPECT_EQ(row(5), WHAT + " VEXA_XSLTransformer");
    EXPECT_EQ(row(4), WHAT + " NRB VEXA_XSLTransformer " PROJECT_VERSION_TEXT);
}

TEST(nrbVersionInfo, ContainsTheLegalNoticesOnSeparateLines) {
    for (int number : {6, 7, 8}) {
        const std::string text = row(number);
        EXPECT_EQ(text.compare(0, 5, WHAT + " "), 0) << text;
        EXPECT_EQ(text.back(), '\n') << text;
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    }
    const std::string secondNotice = row(7).substr(5);
    ASSERT_GT(row(8).size(), secondNotice.size());
    EXPECT_EQ(row(8).substr(row(8).size() - secondNotice.size()), secondNotice);
}

TEST(nrbVersionInfo, HasNoNewlinesInTheRowsBetween) {
    for (int number : {2, 3, 4, 5}) {
        EXPECT_EQ(row(number).find('\n'), std::string::npos) << row(number);
    }
}
