#include "functions/TqXsltFunctionResAccess.h"

#include "support/Catalogue.h"
#include "support/FunctionTest.h"

#include <nrb/NRBAssertError.h>

#include <memory>
#include <typeinfo>

namespace {

constexpr const char* ARITY_MESSAGE =
    "The FunctionGetLocalizedString() function takes 2 arguments!";

/** The catalogue identifiers of the message numbers 0 to 18. */
constexpr unsigned long IDENTIFIERS[] = {2733166516, 2733212678, 2733417774, 2733463936, 2733088678,
                                         2732897321, 2732835219, 2733171271, 2733325581, 2733459538,
                                         2732710487, 2733449079, 2733522074, 2732756646, 2733153402,
                                         2733338050, 2732875383, 2733060031, 2533174692};

class LocalizedStringTest : public FunctionTest {
protected:
    std::string text(const std::string& number, const std::string& language) {
        return callLeniently(FunctionGetLocalizedString(), {number, language});
    }
};

} // namespace

TEST_F(LocalizedStringTest, MapsEachNumberToItsIdentifier) {
    const FunctionGetLocalizedString function;
    for (int number = 0; number <= 18; ++number) {
        EXPECT_EQ(function.GetMappedResourceId(number), IDENTIFIERS[number]) << number;
    }
    EXPECT_EQ(function.GetMappedResourceId(0), 0xA2E8CFB4UL);
    EXPECT_EQ(function.GetMappedResourceId(18), 0x96FD2DA4UL);
}

TEST_F(LocalizedStringTest, MapsEveryOtherNumberToZero) {
    const FunctionGetLocalizedString function;
    for (int number : {-1, 19, 20, 1000, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(function.GetMappedResourceId(number), 0UL) << number;
    }
}

TEST_F(LocalizedStringTest, ReturnsEveryMessageInEveryLanguage) {
    const auto languages = catalogueLanguages();
    EXPECT_GE(languages.size(), 8U);
    for (const std::string& language : languages) {
        const auto texts = catalogueTexts(language);
        for (int number = 0; number <= 18; ++number) {
            EXPECT_EQ(text(std::to_string(number), language), texts.at(IDENTIFIERS[number]))
                << number << " in " << language;
        }
    }
}

TEST_F(LocalizedStringTest, ReturnsKnownTexts) {
    EXPECT_EQ(text("4", "en"), "Total");
    EXPECT_EQ(text("4", "de"), "Summe");
    EXPECT_EQ(text("16", "fr"), "Page");
    EXPECT_EQ(text("16", "es"), "P\xC3\xA1gina");
    EXPECT_EQ(text("17", "it"), "Tempo trascorso");
    EXPECT_EQ(text("8", "el"),
              "\xCE\x97\xCE\xBC\xCE\xB5\xCF\x81\xCE\xBF\xCE\xBC\xCE\xB7\xCE\xBD\xCE\xAF\xCE\xB1");
    EXPECT_EQ(text("8", "ja"), "\xE6\x97\xA5\xE4\xBB\x98");
    EXPECT_EQ(text("10", "zh"), "\xE9\x87\x91\xE9\xA2\x9D");
}

TEST_F(LocalizedStringTest, FindsTheLanguageOfARegion) {
    for (const char* german : {"de_AT", "de-AT", "DE", "de_CH"}) {
        EXPECT_EQ(text("4", german), "Summe") << german;
    }
    EXPECT_EQ(text("8", "zh-Hant-TW"), text("8", "zh"));
    EXPECT_EQ(text("4", "de_AT@collation=phonebook;currency=EUR"), "Summe");
}

TEST_F(LocalizedStringTest, FallsBackToEnglish) {
    for (const char* unknown :
         {"xx", "", "tlh", "no such language", "../../etc/passwd", "d\xC3\xA9"}) {
        EXPECT_EQ(text("4", unknown), "Total") << unknown;
    }
}

TEST_F(LocalizedStringTest, ReadsTheNumberAtTheBeginningOfAText) {
    EXPECT_EQ(text("abc", "fr"), text("0", "fr"));
    EXPECT_EQ(text("", "fr"), text("0", "fr"));
    EXPECT_EQ(text("3.7", "en"), text("3", "en"));
    EXPECT_EQ(text(" +4x", "en"), "Total");
}

TEST_F(LocalizedStringTest, ReturnsAnEmptyTextForAnUnknownNumber) {
    for (const char* number : {"19", "-1", "4294967296", "-4294967292", "99999999999999999999"}) {
        EXPECT_EQ(text(number, "en"), "") << number;
    }
}

TEST_F(LocalizedStringTest, CanBeCalledInFileAndStreamTransforms) {
    EXPECT_EQ(evaluate("vexa:GetLocalizedString('18', 'en')"), "Created at");
    EXPECT_EQ(evaluate("vexa:GetLocalizedString(19, 'en')"), "");
    EXPECT_EQ(evaluate("vexa:GetLocalizedString(-1, 'en')"), "");
    EXPECT_EQ(evaluate("vexa:GetLocalizedString('abc', 'fr')"), text("0", "fr"));
    EXPECT_EQ(evaluate("vexa:GetLocalizedString(3.7, 'de')"), "Ausstehend");
    EXPECT_EQ(evaluate("vexa:GetLocalizedString(4, //nothing)"), "Total");
    const std::string sheet =
        sheetWithRootTemplate("<b><xsl:value-of select='vexa:GetLocalizedString(4, \"de\")'/></b>");
    EXPECT_EQ(transformStream("<a/>", sheet).output, withNul("<b>Summe</b>"));
}

TEST_F(LocalizedStringTest, ReportsAWrongNumberOfArguments) {
    for (const char* call : {"vexa:GetLocalizedString(5)", "vexa:GetLocalizedString()",
                             "vexa:GetLocalizedString(5, 'en', 1)"}) {
        EXPECT_NE(errorOf(call).find(ARITY_MESSAGE), std::string::npos) << call;
    }
}

TEST_F(LocalizedStringTest, ContinuesWithTheGivenArgumentsIfTheReportReturns) {
    EXPECT_EQ(callLeniently(FunctionGetLocalizedString(), {"4"}), "Total");
    EXPECT_EQ(lenientContext().m_strProblem, ARITY_MESSAGE);
    EXPECT_EQ(lenientContext().m_pNode, contextNode());
    EXPECT_FALSE(lenientContext().m_bHadLocator);
    EXPECT_EQ(callLeniently(FunctionGetLocalizedString(), {"4", "de", "more"}), "Summe");
}

TEST_F(LocalizedStringTest, AssertsThatItHasAFirstArgument) {
    try {
        callWithNull(FunctionGetLocalizedString());
        FAIL() << "no assertion";
    } catch (const NRBAssertError& error) {
        EXPECT_EQ(error.getCode(), 0);
        EXPECT_STREQ(error.getText(), "NRB_ASSERT(args[0].null() == false);");
        EXPECT_STREQ(error.getLocation().getFile(), "TqXsltFunctionResAccess");
        EXPECT_EQ(error.getLocation().getLine(), 39);
        EXPECT_EQ(error.getDetail(), nullptr);
        EXPECT_STREQ(error.getOrigin(), "NRB_THROW");
    }
}

TEST_F(LocalizedStringTest, TreatsANullLanguageAsEmpty) {
    EXPECT_EQ(callWithNull(FunctionGetLocalizedString(), {"4"}), "Total");
}

TEST_F(LocalizedStringTest, ItsErrorTextDiffersFromItsArityMessage) {
    const std::unique_ptr<TqXsltFunction> clone(FunctionGetLocalizedString().clone());
    EXPECT_EQ(typeid(*clone), typeid(FunctionGetLocalizedString));
    EXPECT_EQ(narrow(clone->getError()), "tqfunc:GetLocalizedString() takes one argument");
}
