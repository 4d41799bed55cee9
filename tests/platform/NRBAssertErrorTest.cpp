#include <nrb/NRBAssertError.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

TEST(NRBAssertError, StoresTheConditionAndTheLocation) {
    NRBAssertError error(7, "it must hold");
    EXPECT_EQ(error.getLocation().getLine(), 0);
    EXPECT_STREQ(error.getLocation().getFile(), "");
    try {
        error.hurl(NRBFileLocation("SourceUnit", 39), nullptr, "MACRO");
    } catch (const NRBAssertError& caught) {
        EXPECT_EQ(caught.getCode(), 7);
        EXPECT_STREQ(caught.getText(), "it must hold");
        EXPECT_STREQ(caught.what(), "it must hold");
        EXPECT_STREQ(caught.getLocation().getFile(), "SourceUnit");
        EXPECT_EQ(caught.getLocation().getLine(), 39);
        EXPECT_EQ(caught.getDetail(), nullptr);
        EXPECT_STREQ(caught.getOrigin(), "MACRO");
    }
}

TEST(NRBAssertError, IsAStandardException) {
    EXPECT_TRUE((std::is_base_of_v<std::exception, NRBAssertError>));
    EXPECT_THROW(NRBAssertError(0, nullptr).hurl(NRBFileLocation("f", 1), "detail", nullptr),
                 std::exception);
}

TEST(NRBAssertError, OwnsItsTexts) {
    std::string file = "File", detail = "detail";
    NRBAssertError caught(0, "");
    try {
        NRBAssertError(1, "text").hurl(NRBFileLocation(file.c_str(), 1), detail.c_str(), nullptr);
    } catch (const NRBAssertError& error) {
        caught = error;
    }
    file = detail = "gone";
    EXPECT_STREQ(caught.getLocation().getFile(), "File");
    EXPECT_STREQ(caught.getDetail(), "detail");
    EXPECT_EQ(caught.getOrigin(), nullptr);
}
