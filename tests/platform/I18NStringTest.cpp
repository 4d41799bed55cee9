#include <nrb/I18NString.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <stdexcept>
#include <thread>
#include <unicode/ucnv.h>
#include <vector>

namespace {

std::u16string utf16(const I18NString& text) {
    return static_cast<const char16_t*>(text.getExternalBuffer());
}

I18NString fromUtf16(const char16_t* text) {
    return I18NString(text, -1, nullptr, nullptr);
}

std::string inEncoding(const I18NString& text, const char* encoding) {
    int length = 0;
    const char* const bytes = text.c_str(encoding, &length);
    return std::string(bytes, static_cast<std::size_t>(length));
}

} // namespace

TEST(I18NString, IsEmptyIfConstructedWithoutText) {
    for (const I18NString& text :
         {I18NString(), I18NString(""), I18NString(static_cast<const char*>(nullptr)),
          I18NString(nullptr, -1, nullptr, nullptr), I18NString("abc", nullptr, 0)}) {
        EXPECT_TRUE(text.empty());
        EXPECT_STREQ(text.c_str(), "");
        EXPECT_EQ(utf16(text), u"");
    }
}

TEST(I18NString, ConvertsNarrowTextFromTheDefaultEncoding) {
    EXPECT_EQ(utf16("\xCE\xB1\xE4\xBD\xA0\xF0\x9F\x98\x80"), u"\u03B1\u4F60\U0001F600");
}

TEST(I18NString, ReadsOnlyTheGivenNumberOfBytes) {
    EXPECT_EQ(I18NString("abcdef", nullptr, 3), I18NString("abc"));
    EXPECT_EQ(I18NString("abc", nullptr, -1), I18NString("abc"));
    int length = 0;
    I18NString("a\0b", nullptr, 3).c_str(nullptr, &length);
    EXPECT_EQ(length, 3);
}

TEST(I18NString, ConvertsFromAndToAllEncodingsOfIcu) {
    EXPECT_EQ(utf16(I18NString("\xE1", "ISO-8859-7")), u"\u03B1");
    EXPECT_EQ(utf16(I18NString("\xE1", "iso8859_7")), u"\u03B1");
    EXPECT_EQ(utf16(I18NString("\x82\xA0", "Shift_JIS")), u"\u3042");
    EXPECT_EQ(utf16(I18NString("\x20\xAC", "UTF-16BE", 2)), u"\u20AC");

    const I18NString euro("\xE2\x82\xAC");
    EXPECT_EQ(inEncoding(euro, "windows-1252"), "\x80");
    EXPECT_EQ(inEncoding(euro, "UTF-8"), "\xE2\x82\xAC");
    EXPECT_EQ(inEncoding(euro, "UTF-16LE"), std::string("\xAC\x20", 2));
}

TEST(I18NString, ThrowsForAnUnknownEncoding) {
    for (const char* name : {"no-such-encoding", ""}) {
        try {
            I18NString("x", name);
            FAIL() << name;
        } catch (const std::invalid_argument& error) {
            EXPECT_EQ(error.what(), "I18NString: unknown encoding \"" + std::string(name) + "\"");
        }
        EXPECT_THROW(I18NString("x").c_str(name), std::invalid_argument);
    }
}

TEST(I18NString, ConvertsMalformedBytesToReplacementCharacters) {
    EXPECT_EQ(utf16("a\xFFz"), u"a\uFFFDz");
    EXPECT_EQ(utf16("a\xE2\x82"), u"a\uFFFD");
    EXPECT_EQ(utf16("\xC0\xAF"), u"\uFFFD\uFFFD"); // an overlong encoding of "/"
    EXPECT_EQ(utf16(I18NString("a\xFFz", "Shift_JIS")), u"a\uFFFDz");
    EXPECT_EQ(utf16(I18NString("a\x80z", "US-ASCII")), u"a\uFFFDz");
    EXPECT_EQ(utf16(I18NString("a\0b", "UTF-16LE", 3)), u"a\uFFFD");
}

TEST(I18NString, SubstitutesCharactersThatAnEncodingDoesNotHave) {
    const I18NString text("x\xCE\xB1y");
    EXPECT_EQ(inEncoding(text, "ISO-8859-1"), "x?y");
    EXPECT_EQ(inEncoding(text, "US-ASCII"), "x?y");

    EXPECT_EQ(inEncoding(text, "Shift_JIS"), "x\x83\xBFy");
    EXPECT_EQ(inEncoding(I18NString("\xF0\x9F\x98\x80"), "Shift_JIS"), "?");
}

TEST(I18NString, WritesALoneSurrogateAsAReplacementCharacter) {
    const I18NString text = fromUtf16(u"a\xD800z");
    EXPECT_EQ(utf16(text), u"a\xD800z");
    EXPECT_STREQ(text.c_str(), "a\xEF\xBF\xBDz");
    EXPECT_EQ(inEncoding(text, "UTF-16LE"), std::string("a\0\xFD\xFFz\0", 6));
    EXPECT_EQ(inEncoding(text, "UTF-16").size(), 8U); // exactly one byte order mark
    EXPECT_EQ(inEncoding(text, "CESU-8"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(inEncoding(text, "US-ASCII"), "a?z");
    EXPECT_EQ(inEncoding(fromUtf16(u"a\xD800"), "CESU-8"), "a\xEF\xBF\xBD");
    EXPECT_EQ(inEncoding(fromUtf16(u"\xDC00z"), "CESU-8"), "\xEF\xBF\xBDz");
    EXPECT_STREQ(fromUtf16(u"\xDC00\xD800").c_str(), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(I18NString, WritesEveryEncodingOfIcu) {
    const I18NString text = fromUtf16(u"a\u03B1\u4F60\U0001F600\xD800z");
    for (int32_t i = 0; i < ucnv_countAvailable(); ++i) {
        const char* const name = ucnv_getAvailableName(i);
        const I18NString back(text.c_str(name), name);
        EXPECT_FALSE(text.c_str(name) == nullptr) << name;
    }
    EXPECT_EQ(inEncoding(I18NString("x"), "x11-compound-text"), "x");
}

TEST(I18NString, CachesANarrowFormUntilTheTextChanges) {
    I18NString text("\xC3\xA9t\xC3\xA9");
    const char* const narrow = text.c_str();
    const char* const latin = text.c_str("ISO-8859-1");
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(text.c_str(), narrow);
        EXPECT_EQ(text.c_str("ISO-8859-1"), latin);
    }
    EXPECT_STREQ(narrow, "\xC3\xA9t\xC3\xA9");
    EXPECT_STREQ(latin, "\xE9t\xE9");

    text += "!";
    EXPECT_STREQ(text.c_str(), "\xC3\xA9t\xC3\xA9!");
    text = "other";
    EXPECT_STREQ(text.c_str(), "other");
}

TEST(I18NString, CanBeAssignedItsOwnNarrowForm) {
    I18NString text("self");
    text = text.c_str();
    EXPECT_STREQ(text.c_str(), "self");
    text += text;
    EXPECT_STREQ(text.c_str(), "selfself");
    text = *&text;
    EXPECT_STREQ(text.c_str(), "selfself");
    I18NString& same = text;
    text = std::move(same);
    EXPECT_STREQ(text.c_str(), "selfself");
}

TEST(I18NString, ReturnsNarrowFormsOfOneConstantStringInTwoThreads) {
    for (int round = 0; round < 200; ++round) {
        const I18NString text("\xCE\xB1\xCE\xB2\xCE\xB3");
        std::vector<std::thread> threads;
        for (int i = 0; i < 2; ++i) {
            threads.emplace_back([&text] {
                const char* const narrow = text.c_str();
                EXPECT_STREQ(narrow, "\xCE\xB1\xCE\xB2\xCE\xB3");
                EXPECT_STREQ(text.c_str("ISO-8859-7"), "\xE1\xE2\xE3");
                EXPECT_EQ(text.c_str(), narrow);
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
}

TEST(I18NString, IsCopiedAndMovedAsAValue) {
    const I18NString original("text");
    const char* const narrow = original.c_str();
    I18NString copy(original);
    copy += "!";
    EXPECT_STREQ(narrow, "text");

    I18NString moved(std::move(copy));
    EXPECT_STREQ(moved.c_str(), "text!");
    EXPECT_TRUE(copy.empty()); // guaranteed by I18NString
    EXPECT_STREQ(copy.c_str(), "");

    copy.c_str();
    copy = std::move(moved);
    EXPECT_STREQ(copy.c_str(), "text!");
    EXPECT_STREQ(moved.c_str(), "");
}

TEST(I18NString, IsConcatenatedAndAppended) {
    const I18NString left("a"), right("b");
    EXPECT_EQ(left + right, I18NString("ab"));
    EXPECT_EQ("<" + left + ">", I18NString("<a>"));
    I18NString text;
    text += left;
    text += right;
    EXPECT_EQ(text, I18NString("ab"));
}

TEST(I18NString, IsOrderedByUtf16CodeUnits) {
    EXPECT_LT(I18NString("B"), I18NString("a"));
    EXPECT_LT(I18NString("a"), I18NString("aa"));
    EXPECT_FALSE(I18NString("a") < I18NString("a"));
    // U+1F600 begins with the unit D83D, which comes before U+FF21.
    EXPECT_LT(I18NString("\xF0\x9F\x98\x80"), I18NString("\xEF\xBC\xA1"));
    EXPECT_NE(I18NString("a"), I18NString("b"));
}

TEST(I18NString, ReturnsASubstringWithClampedPositions) {
    const I18NString text("0123456789");
    EXPECT_EQ(text.substring(2, 4), I18NString("23"));
    EXPECT_EQ(text.substring(0, 10), text);
    EXPECT_EQ(text.substring(8, 99), I18NString("89"));
    EXPECT_TRUE(text.substring(10, 12).empty());
    EXPECT_TRUE(text.substring(99, 100).empty());
    EXPECT_TRUE(text.substring(4, 2).empty());
    EXPECT_EQ(text.substring(-3, 2), I18NString("01"));
    EXPECT_TRUE(text.substring(-3, -1).empty());
    EXPECT_TRUE(I18NString().substring(0, 1).empty());
}

TEST(I18NString, ReadsAnExternalBufferByLengthOrUpToTheTerminator) {
    EXPECT_EQ(utf16(I18NString(u"abc", -1, nullptr, nullptr)), u"abc");
    EXPECT_EQ(utf16(I18NString(u"abc", 2, nullptr, nullptr)), u"ab");
    const I18NString original("\xCE\xB1");
    EXPECT_EQ(I18NString(original.getExternalBuffer(), -1, nullptr, nullptr), original);
}

TEST(I18NString, UsesUserDefinedConverters) {
    const auto describe = [](const void* input, int length, void* context) {
        return std::u16string(static_cast<const char*>(input)[0] == 'x' ? u"x:" : u"?") +
               (length < 0 ? u"all" : u"some") + (context ? u"+" : u"-");
    };
    int context = 0;
    EXPECT_EQ(utf16(I18NString("x", "ignored", 1, describe)), u"x:some-");
    EXPECT_EQ(utf16(I18NString("x", -1, describe, &context)), u"x:all+");

    const I18NString text("abc");
    const auto mask = [](const char16_t* utf16, int length, const char* encoding) {
        return std::string(static_cast<std::size_t>(length), '#') + (encoding ? encoding : "") +
               (utf16[length] == u'\0' ? "." : "");
    };
    EXPECT_STREQ(text.c_str(nullptr, nullptr, mask), "###.");
    EXPECT_STREQ(text.c_str("enc", nullptr, mask), "###enc.");
    EXPECT_STREQ(text.c_str(), "abc");
}

TEST(I18NGetPlatformDefaultEncoding, ReturnsTheEncodingOfNarrowText) {
    const char* const name = I18NGetPlatformDefaultEncoding();
    EXPECT_EQ(I18NString("\xCE\xB1", name), I18NString("\xCE\xB1"));
    EXPECT_STREQ(name, "UTF-8");
}
