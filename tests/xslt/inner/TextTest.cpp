#include "xslt/Text.h"

#include <gtest/gtest.h>

TEST(TextTest, Utf8BecomesUtf16AndBack) {
    const std::pair<std::string, std::u16string> texts[] = {
        {"", u""},
        {"plain", u"plain"},
        {std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
        {"\x7F", u"\x7F"},
        {"\xC2\x80", u"\x80"},
        {"\xC3\xA4\xE2\x82\xAC", u"\u00E4\u20AC"},
        {"\xEF\xBF\xBF", u"\uFFFF"},
        {"\xF0\x90\x80\x80", u"\U00010000"},
        {"a\xF4\x8F\xBF\xBFz", u"a\U0010FFFFz"},
    };
    for (const auto& [utf8, utf16] : texts) {
        EXPECT_EQ(toUtf16(utf8), utf16);
        EXPECT_EQ(toUtf8(utf16), utf8);
    }
}

TEST(TextTest, MalformedSequencesBecomeReplacementCharacters) {
    EXPECT_EQ(toUtf16("a\xFFz"), u"a\uFFFDz");
    EXPECT_EQ(toUtf16("\xC3"), u"\uFFFD");
    EXPECT_EQ(toUtf16("\x80").find(u'\uFFFD'), 0U);
    for (const char* text : {"\xC0\xAF", "\xED\xA0\x80", "\xF5\x80\x80\x80", "\xE2\x82"}) {
        const std::u16string utf16 = toUtf16(text);
        EXPECT_EQ(utf16.find_first_not_of(u'\uFFFD'), std::u16string::npos) << text;
        EXPECT_FALSE(utf16.empty());
    }
}

TEST(TextTest, LoneSurrogatesBecomeReplacementCharacters) {
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(toUtf8(std::u16string(1, char16_t{0xD800})), replacement);
    EXPECT_EQ(toUtf8(std::u16string(1, char16_t{0xDC00}) + u"a"), replacement + "a");
    EXPECT_EQ(toUtf8(std::u16string(2, char16_t{0xD83C})), replacement + replacement);
}

TEST(TextTest, ANullPointerIsEmpty) {
    EXPECT_EQ(toUtf8(static_cast<const char16_t*>(nullptr)), "");
}
