#include "base/Errors.h"

#include <gtest/gtest.h>

TEST(OneLineTest, JoinsLinesByASpace) {
    EXPECT_EQ(oneLine("a\nb"), "a b");
    EXPECT_EQ(oneLine("a \r\n\t b\n\nc"), "a b c");
    EXPECT_EQ(oneLine("a\rb"), "a b");
}

TEST(OneLineTest, HasNoSpaceAtItsEnds) {
    EXPECT_EQ(oneLine(" \t\na \n"), "a");
    EXPECT_EQ(oneLine("\na"), "a");
    EXPECT_EQ(oneLine(" \n\t"), "");
    EXPECT_EQ(oneLine(""), "");
}

TEST(OneLineTest, LeavesSpacesWithinALine) {
    EXPECT_EQ(oneLine("a  b\tc"), "a  b\tc");
}

TEST(OneLineTest, ReplacesWhatWouldControlATerminal) {
    EXPECT_EQ(oneLine("a\033[2Jb\x7F\x01"), "a?[2Jb??");
    EXPECT_EQ(oneLine("\xC3\xA4"), "\xC3\xA4");
}
