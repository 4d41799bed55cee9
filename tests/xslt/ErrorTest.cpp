#include "XsltTest.h"

#include <type_traits>

using vexa::Diagnostic;
using vexa::Error;
using vexa::ErrorKind;
using vexa::Location;
using vexa::Severity;

TEST(ErrorTest, HasWhatItWasMadeOf) {
    const Error error(ErrorKind::Denied, "no", {"urn:u", 2, 3},
                      {{Severity::Warning, "before", {"urn:v", 1, 0}}});
    EXPECT_EQ(error.kind(), ErrorKind::Denied);
    EXPECT_EQ(error.text(), "no");
    EXPECT_EQ(asText(error.where()), "urn:u:2:3");
    ASSERT_EQ(error.diagnostics().size(), 1U);
    EXPECT_EQ(error.diagnostics()[0].severity, Severity::Warning);
    EXPECT_EQ(error.diagnostics()[0].text, "before");
    EXPECT_EQ(asText(error.diagnostics()[0].where), "urn:v:1:0");
}

TEST(ErrorTest, WhatLeavesOutWhatIsNotKnown) {
    const auto what = [](const Location& where) {
        return std::string(Error(ErrorKind::Parse, "text", where).what());
    };
    EXPECT_EQ(what({}), "text");
    EXPECT_EQ(what({"urn:u", 0, 0}), "urn:u: text");
    EXPECT_EQ(what({"urn:u", 7, 0}), "urn:u:7: text");
    EXPECT_EQ(what({"urn:u", 7, 9}), "urn:u:7:9: text");
    EXPECT_EQ(what({"", 7, 9}), "7:9: text");
    EXPECT_EQ(what({"urn:u", 0, 9}), "urn:u: text");
}

TEST(ErrorTest, CopiesWithoutThrowing) {
    static_assert(std::is_nothrow_copy_constructible_v<Error>);
    static_assert(std::is_nothrow_copy_assignable_v<Error>);
    static_assert(std::is_base_of_v<std::runtime_error, Error>);
    Error copy(ErrorKind::Usage, "other");
    {
        const Error error(ErrorKind::Output, "full", {"urn:u", 1, 1});
        copy = error;
    }
    EXPECT_EQ(copy.kind(), ErrorKind::Output);
    EXPECT_STREQ(copy.what(), "urn:u:1:1: full");
}

/** An error that was moved from is still an error. */
TEST(ErrorTest, StaysWholeWhenItIsMovedFrom) {
    Error error(ErrorKind::Output, "full");
    const Error other = std::move(error);
    EXPECT_EQ(error.text(), "full"); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(other.text(), "full");
}

TEST(ErrorTest, DiagnosticsHoldWhatCameBeforeTheErrorInOrder) {
    const std::string content = "<xsl:message>one</xsl:message><xsl:message>two</xsl:message>"
                                "<xsl:message terminate='yes'>three</xsl:message>";
    const Error error = failureOf([&] { transformed(content); });
    EXPECT_EQ(error.kind(), ErrorKind::Terminated);
    EXPECT_EQ(error.text(), "three");
    ASSERT_EQ(error.diagnostics().size(), 2U);
    EXPECT_EQ(error.diagnostics()[0].text, "one");
    EXPECT_EQ(error.diagnostics()[1].text, "two");
    EXPECT_EQ(error.diagnostics()[1].severity, Severity::Message);
}

TEST(ErrorTest, DiagnosticsAreThoseOfOneOperation) {
    vexa::Transformation run(compiledRootTemplate(
        "<xsl:message>m</xsl:message><xsl:message terminate='yes'>end</xsl:message>"));
    for (int i = 0; i < 2; ++i) {
        const Error error = failureOf([&] { run.toString(vexa::Input::text("<a/>")); });
        EXPECT_EQ(error.diagnostics().size(), 1U);
    }
}
