#include "cli/Parameter.h"

#include "base/Errors.h"

#include <gtest/gtest.h>

namespace {

Parameter stringParameter(const std::string& argument) {
    return parseParameter("-p", Parameter::Kind::String, argument);
}

Parameter numberParameter(const std::string& argument) {
    return parseParameter("--number", Parameter::Kind::Number, argument);
}

} // namespace

TEST(ParameterTest, HasANameAndAValue) {
    for (const char* name : {"title", "_x", "a-b.c_1", "\xC3\xA4", "{urn:a=b}title", "{}t"}) {
        const Parameter parameter = stringParameter(std::string(name) + "=1=2");
        EXPECT_EQ(parameter.name, name);
        EXPECT_EQ(parameter.value, "1=2");
    }
    EXPECT_EQ(stringParameter("a=").value, "");
}

TEST(ParameterTest, HasANameThatCanBeOne) {
    for (const char* wrong :
         {"", "a", "=a", "1=a", "-=a", ".a=b", "a b=c", "a\xC3\x97=b", "{urn:a=b", "{urn:a}=b",
          "{urn:a}1=b", "a{b}=c", "a:b=c", "\xFF=a", "a=\xFF"}) {
        EXPECT_THROW(stringParameter(wrong), UsageError) << wrong;
    }
}

TEST(ParameterTest, ANumberIsADecimalNumber) {
    EXPECT_EQ(numberParameter("n=1").number, 1);
    EXPECT_EQ(numberParameter("n=-2.5e1").number, -25);
    for (const char* wrong : {"n=", "n=x", "n=1x", "n= 1", "n=1e999"}) {
        EXPECT_THROW(numberParameter(wrong), UsageError) << wrong;
    }
}
