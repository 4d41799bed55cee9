#include "testing/TreeDifference.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string difference(const std::string& expected, const std::string& actual) {
    return treeDifference(vexa::Document::parse(vexa::Input::text(expected)),
                          vexa::Document::parse(vexa::Input::text(actual)));
}

} // namespace

TEST(TreeDifferenceTest, PassesOverWhatDoesNotCount) {
    EXPECT_EQ(difference("<a x='1' y='2'><b/>c<![CDATA[<]]>d</a>",
                         "<?xml version='1.0'?>\n<!DOCTYPE a>\n<a y=\"2\"\nx='&#49;'><b></b>c&lt;d"
                         "</a>\n"),
              "");
    EXPECT_EQ(difference("<a xmlns='urn:x' xmlns:p='urn:y' p:b='1'><c/></a>",
                         "<q:a xmlns:q='urn:x' xmlns:r='urn:y' xmlns:s='urn:s' r:b='1'><q:c/>"
                         "</q:a>"),
              "");
}

TEST(TreeDifferenceTest, ShowsThePathsOfNodes) {
    EXPECT_EQ(difference("<a><b/><b c='1' d='2'/></a>", "<a><b/><b c='3' e='4'/></a>"),
              "/a[1]/b[2]/@c: expected '1', got '3'\n"
              "/a[1]/b[2]/@d: missing, expected '2'\n"
              "/a[1]/b[2]/@e: unexpected '4'\n");
    EXPECT_EQ(difference("<a>x<b/>y </a>", "<a>x<b/>z\n</a>"),
              "/a[1]/text()[2]: expected 'y\xC2\xB7', got 'z\\n'\n");
    EXPECT_EQ(difference("<a><!--x--><?p x?></a>", "<a><!--y--><?p y?></a>"),
              "/a[1]/comment()[1]: expected 'x', got 'y'\n"
              "/a[1]/processing-instruction(p)[1]: expected 'x', got 'y'\n");
    EXPECT_EQ(difference("<a/>", "<b/>"), "/a[1]: expected <a>, got <b>\n");
    EXPECT_EQ(difference("<a xmlns='urn:x'/>", "<a/>"),
              "/a[1]: expected <a> of {urn:x}, got <a>\n");
    EXPECT_EQ(difference("<a><?p x?></a>", "<a>x</a>"),
              "/a[1]/processing-instruction(p)[1]: expected 'x', got 'x'\n");
}

TEST(TreeDifferenceTest, AMissingNodeIsOneDifference) {
    const std::string rows = "<r>1</r><r>2</r><r>3</r>";
    EXPECT_EQ(difference("<a>" + rows + "<r>4</r></a>", "<a>" + rows.substr(8) + "<r>4</r></a>"),
              "/a[1]/r[1]: missing, expected <r>\n");
    EXPECT_EQ(difference("<a>" + rows + "</a>", "<a>" + rows + "<!--x--></a>"),
              "/a[1]/comment()[1]: unexpected 'x'\n");
    EXPECT_EQ(difference("<a> <b/> </a>", "<a><b/> </a>"), "/a[1]/text()[1]: missing, expected "
                                                           "'\xC2\xB7'\n");
}

TEST(TreeDifferenceTest, ShowsTheFirstTen) {
    std::string expected;
    std::string actual;
    for (int i = 0; i < 25; ++i) {
        expected += "<b>1</b>";
        actual += "<b>2</b>";
    }
    const std::string text = difference("<a>" + expected + "</a>", "<a>" + actual + "</a>");
    EXPECT_NE(text.find("/a[1]/b[10]/text()[1]: expected '1', got '2'\n... and 15 more\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(text.find("/a[1]/b[11]"), std::string::npos);
}
