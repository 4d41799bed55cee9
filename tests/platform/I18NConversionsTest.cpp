#include <nrb/I18NString.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

TEST(I18NExternalBufferToUTF16, ReturnsAViewOfTheBuffer) {
    const I18NString text("\xCE\xB1");
    const char16_t* utf16 = nullptr;
    I18NExternalBufferToUTF16(utf16, text.getExternalBuffer(), false);
    EXPECT_EQ(utf16, text.getExternalBuffer());
    EXPECT_EQ(utf16, std::u16string(u"\u03B1"));
}

TEST(I18NUTF16ToExternalBuffer, ReturnsAViewOfTheText) {
    const char16_t* const utf16 = u"\u03B1";
    const void* buffer = nullptr;
    I18NUTF16ToExternalBuffer(buffer, utf16, false);
    EXPECT_EQ(buffer, utf16);
}

TEST(I18NConversions, ReturnAnEmptyTextForNull) {
    const char16_t* utf16 = nullptr;
    I18NExternalBufferToUTF16(utf16, nullptr, false);
    ASSERT_NE(utf16, nullptr);
    EXPECT_EQ(*utf16, u'\0');

    const void* buffer = nullptr;
    I18NUTF16ToExternalBuffer(buffer, nullptr, false);
    EXPECT_TRUE(I18NString(buffer, -1, nullptr, nullptr).empty());
}

TEST(I18NConversions, ReturnACopyOnRequest) {
    std::u16string text = u"abc";
    const void* buffer = nullptr;
    I18NUTF16ToExternalBuffer(buffer, text.c_str(), true);
    const char16_t* utf16 = nullptr;
    I18NExternalBufferToUTF16(utf16, buffer, true);
    text[0] = u'x';
    EXPECT_EQ(utf16, std::u16string(u"abc"));
    EXPECT_EQ(static_cast<const char16_t*>(buffer), std::u16string(u"abc"));
    std::free(const_cast<char16_t*>(utf16));
    std::free(const_cast<void*>(buffer));
}
