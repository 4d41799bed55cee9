#include "files/SourceExcerpt.h"

#include "support/TestFiles.h"

#include <gtest/gtest.h>

/** The line of an error, with the caret under its column as a terminal shows it. */
class SourceExcerptTest : public ::testing::Test {
protected:
    /** The excerpt of a file with this text. */
    std::string excerpt(const std::string& text, std::size_t line, std::size_t column,
                        std::size_t columns = 80) {
        return sourceExcerpt(m_folder.write("file", text), line, column, columns);
    }

    /** What stands before the caret, behind the number of the line. */
    std::string beforeCaret(const std::string& line, std::size_t column) {
        const std::string text = excerpt(line, 1, column);
        const auto caret = text.rfind("\n    | ");
        EXPECT_EQ(text.back(), '^');
        return text.substr(caret + 7, text.size() - caret - 8);
    }

    TemporaryFolder m_folder;
};

TEST_F(SourceExcerptTest, ShowsALineWithItsNumber) {
    EXPECT_EQ(excerpt("<a>\n<b/>\n</a>", 2, 2), "  2 | <b/>\n    |  ^");
    EXPECT_EQ(excerpt("<a>\n<b/>\n</a>", 3, 1), "  3 | </a>\n    | ^");
    EXPECT_EQ(excerpt("<a>\r\n<b/>\r\n", 2, 1), "  2 | <b/>\n    | ^");
    EXPECT_EQ(excerpt("\xEF\xBB\xBF<a>", 1, 1), "  1 | <a>\n    | ^");
    EXPECT_EQ(excerpt(std::string(9, '\n') + "<a>", 10, 3), "  10 | <a>\n     |   ^");
    EXPECT_EQ(excerpt("<a>", 1, 0), "  1 | <a>");
    EXPECT_EQ(excerpt("<a>\n\n<b/>", 2, 1), "  2 | \n    | ^");
    EXPECT_EQ(excerpt("<a>", 1, 4), "  1 | <a>\n    |    ^");
    EXPECT_EQ(excerpt("<a>", 1, 99), "  1 | <a>\n    |    ^") << "after the end";
}

TEST_F(SourceExcerptTest, CountsColumnsAsATerminalShowsThem) {
    EXPECT_EQ(beforeCaret("\t<a>", 2), "    ");
    EXPECT_EQ(beforeCaret("\xCE\xB1\xCE\xB2<a>", 3), "  ");
    EXPECT_EQ(beforeCaret("\xE4\xBD\xA0\xE5\xA5\xBD<a>", 3), "    ") << "wide";
    EXPECT_EQ(beforeCaret("e\xCC\x81<a>", 3), " ") << "combining";
    EXPECT_EQ(beforeCaret("e\xE2\x83\x9D<a>", 3), " ") << "enclosing";
    EXPECT_EQ(beforeCaret("\xEF\xBC\xA1<a>", 2), "  ") << "of full width";
    EXPECT_EQ(beforeCaret("\xF0\x9F\x98\x80<a>", 2), "  ") << "beyond the 16-bit range";
    EXPECT_EQ(excerpt("\xE2\x80\xAE<a>", 1, 2), "  1 | ?<a>\n    |  ^") << "turns the direction";
    EXPECT_EQ(excerpt("\033[2J<a>", 1, 5), "  1 | ?[2J<a>\n    |     ^") << "a control character";
}

TEST_F(SourceExcerptTest, CutsALongLine) {
    const std::string line = std::string(200, 'a') + "<b/>" + std::string(200, 'c');
    EXPECT_EQ(excerpt(line, 1, 201, 40), "  1 | " + std::string(22, 'a') + "<b/>" +
                                             std::string(7, 'c') + "\n    | " +
                                             std::string(22, ' ') + "^");
    EXPECT_EQ(excerpt(line, 1, 1, 40), "  1 | " + std::string(33, 'a') + "\n    | ^");
    EXPECT_EQ(excerpt(line, 1, 404, 40).substr(0, 12), "  1 | cccccc");
}

TEST_F(SourceExcerptTest, ShowsNothingOfWhatCannotBeShown) {
    EXPECT_EQ(excerpt("<a>", 2, 1), "");
    EXPECT_EQ(excerpt("<a>", 0, 1), "");
    EXPECT_EQ(excerpt("\xFF<a>", 1, 1), "") << "not UTF-8";
    EXPECT_EQ(excerpt(std::string("<\0a\0>\0", 6), 1, 1), "") << "UTF-16";
    EXPECT_EQ(sourceExcerpt(m_folder.path("none"), 1, 1, 80), "");
    EXPECT_EQ(sourceExcerpt(m_folder.path(""), 1, 1, 80), "");
}
