#include "tool/TrailingNulFilter.h"

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <string>

namespace {

/** Takes this many characters, as a disk does that is nearly full. */
class SmallBuffer : public std::streambuf {
public:
    explicit SmallBuffer(std::streamsize room) : m_nRoom(room) {}

private:
    int_type overflow(int_type character) override {
        return m_nRoom-- > 0 ? traits_type::not_eof(character) : traits_type::eof();
    }

    std::streamsize m_nRoom;
};

/** What is handed on of two pieces of text. */
std::string filtered(const std::string& first, const std::string& second) {
    std::ostringstream result;
    TrailingNulFilter filter(*result.rdbuf());
    std::ostream output(&filter);
    output << first << second;
    EXPECT_TRUE(output.flush());
    return result.str();
}

/** Whether so much room is enough for the text. */
bool fits(std::streamsize room, const std::string& first, const std::string& second) {
    SmallBuffer small(room);
    TrailingNulFilter filter(small);
    std::ostream output(&filter);
    output << first << second;
    return output.good();
}

} // namespace

using std::string_literals::operator""s;

TEST(TrailingNulFilterTest, TakesTheLastNulAwayAndNoOther) {
    EXPECT_EQ(filtered("ab", "\0"s), "ab");
    EXPECT_EQ(filtered("ab\0"s, ""), "ab");
    EXPECT_EQ(filtered("a\0"s, "b\0"s), "a\0b"s);
    EXPECT_EQ(filtered("a\0\0"s, "\0"s), "a\0\0"s);
    EXPECT_EQ(filtered("ab", ""), "ab");
}

TEST(TrailingNulFilterTest, TakesCharactersOneByOne) {
    std::ostringstream result;
    TrailingNulFilter filter(*result.rdbuf());
    for (const char c : "a\0b"s + '\0') {
        EXPECT_EQ(filter.sputc(c), static_cast<unsigned char>(c));
    }
    EXPECT_EQ(result.str(), "a\0b"s);
}

TEST(TrailingNulFilterTest, TellsWhereATextFindsNoRoom) {
    EXPECT_FALSE(fits(1, "ab", ""));
    EXPECT_TRUE(fits(2, "ab", "\0"s));
    EXPECT_FALSE(fits(2, "ab\0"s, "c")); // no room for the NUL that was held back
    EXPECT_FALSE(fits(3, "ab\0"s, "c"));
    EXPECT_TRUE(fits(4, "ab\0"s, "c"));
}

TEST(TrailingNulFilterTest, TakesASingleCharacterOnlyWhereThereIsRoom) {
    SmallBuffer full(0);
    TrailingNulFilter filter(full);
    EXPECT_EQ(filter.sputc('a'), std::char_traits<char>::eof());
}
