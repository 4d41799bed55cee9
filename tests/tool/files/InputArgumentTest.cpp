#include "files/InputArgument.h"

#include <gtest/gtest.h>

TEST(InputArgumentTest, IsAUriWithTheSchemesThatAreKnown) {
    for (const char* uri :
         {"http://h/a", "https://h/a", "ftp://h/a", "file:/a", "file:///a", "HTTP://h/a"}) {
        EXPECT_EQ(InputArgument(uri).uri(), uri);
    }
}

TEST(InputArgumentTest, IsAFileOtherwise) {
    for (const char* name : {"a", "http:a", "https:/a", "ftp:a", "file:a", "x://h/a", "c:a"}) {
        EXPECT_EQ(InputArgument(name).path(), name);
    }
}
