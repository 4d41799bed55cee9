/**
 * @file
 * Where errors and messages say that they happened: the "<" of the instruction.
 */
#include "XsltTest.h"

using vexa::ErrorKind;
using vexa::Input;
using vexa::Options;
using vexa::Stylesheet;
using vexa::Transformation;

namespace {

const std::string BEGIN =
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>";
const std::string END = "</xsl:stylesheet>";

/** The place, as "LINE:COLUMN", of the "<" behind the mark "@", which is taken out of the text. */
std::string takePlaceOfMark(std::string& text) {
    const auto mark = text.find('@');
    text.erase(mark, 1);
    const auto lineStart = mark == 0 ? 0 : text.rfind('\n', mark - 1) + 1;
    const auto line =
        std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(mark), '\n') + 1;
    return std::to_string(line) + ":" + std::to_string(mark - lineStart + 1);
}

struct Case {
    const char* name;
    /** Top-level content with "@" before the "<" where the error is. */
    const char* content;
};

const Case PLACES[] = {
    {"OnOneLine", "<xsl:template match='/'>@<xsl:ERROR/></xsl:template>"},
    {"OnALineOfItsOwn", "\n<xsl:template match='/'>\n\n   @<xsl:ERROR/>\n</xsl:template>\n"},
    {"InAStartTagOfSeveralLines",
     "\n<xsl:template match='/'>\n <b\n  c='d'>@<xsl:ERROR\n\n  />\n</b></xsl:template>\n"},
    {"AfterAComment", "<xsl:template match='/'><!-- one\n two -->@<xsl:ERROR/></xsl:template>"},
    {"AfterAnInstruction", "<xsl:template match='/'><?p one\n two?>@<xsl:ERROR/></xsl:template>"},
    {"AfterText", "<xsl:template match='/'>text\n more@<xsl:ERROR/></xsl:template>"},
    {"AfterCData", "<xsl:template match='/'><![CDATA[<\n<>]]>@<xsl:ERROR/></xsl:template>"},
    {"AfterTextAndCData",
     "<xsl:template match='/'>x<![CDATA[y]]>z<![CDATA[]]>@<xsl:ERROR/></xsl:template>"},
    {"AfterAnEntity", "<xsl:template match='/'>&amp;\n&lt;&#65;@<xsl:ERROR/></xsl:template>"},
    {"AfterATagOfAnotherElement",
     "<xsl:template match='/'><b>\n</b ><c/>@<xsl:ERROR/></xsl:template>"},
    {"AfterMuchText", "<xsl:template match='/'>"
                      "\n0123456789012345678901234567890123456789012345678901234567890123456789"
                      "0123456789012345678901234567890123456789@<xsl:ERROR/></xsl:template>"},
};

void PrintTo(const Case& place, std::ostream* stream) {
    *stream << place.name;
}

class LocationTest : public ::testing::TestWithParam<Case> {
protected:
    /** A stylesheet with an instruction in place of "xsl:ERROR", and where it stands. */
    std::pair<std::string, std::string> sheetWith(const std::string& instruction) const {
        std::string text = BEGIN + GetParam().content + END;
        text.replace(text.find("xsl:ERROR"), 9, instruction);
        const std::string place = takePlaceOfMark(text);
        return {text, place};
    }

    void expectPlace(const std::string& instruction, ErrorKind kind) const {
        const auto [text, place] = sheetWith(instruction);
        const auto error = failureOf([sheetText = text] {
            Transformation(Stylesheet::compile(Input::text(sheetText, "urn:s")))
                .toString(Input::text("<a/>", "urn:source"));
        });
        EXPECT_EQ(error.kind(), kind) << error.what();
        EXPECT_EQ(asText(error.where()), "urn:s:" + place) << error.what();
    }
};

} // namespace

TEST_P(LocationTest, OfAnUnknownInstruction) {
    expectPlace("xsl:nonsense", ErrorKind::Compile);
}

TEST_P(LocationTest, OfAMissingAttribute) {
    expectPlace("xsl:value-of", ErrorKind::Compile);
}

TEST_P(LocationTest, OfAWrongExpression) {
    expectPlace("xsl:value-of select='1 +'", ErrorKind::Compile);
}

TEST_P(LocationTest, OfAWrongExpressionInAnAttributeValueTemplate) {
    expectPlace("b c='{1 +}'", ErrorKind::Compile);
}

TEST_P(LocationTest, OfAnUnknownFunction) {
    expectPlace("xsl:value-of select='nofunction()'", ErrorKind::Compile);
}

TEST_P(LocationTest, OfAnUnknownPrefix) {
    expectPlace("xsl:value-of select='p:a'", ErrorKind::Compile);
}

TEST_P(LocationTest, OfACallOfAnUnknownTemplate) {
    expectPlace("xsl:call-template name='none'", ErrorKind::Transform);
}

TEST_P(LocationTest, OfAnUndeclaredVariable) {
    expectPlace("xsl:value-of select='$none'", ErrorKind::Transform);
}

TEST_P(LocationTest, OfATypeErrorWhileItRuns) {
    expectPlace("xsl:value-of select='count(1 + 1)'", ErrorKind::Transform);
}

TEST_P(LocationTest, OfAnUnknownExtensionFunction) {
    expectPlace("xsl:value-of xmlns:f='urn:f' select='f:none()'", ErrorKind::Compile);
}

TEST_P(LocationTest, OfAFunctionOfTheEngineWithoutItsArguments) {
    expectPlace("xsl:value-of xmlns:e='http://exslt.org/common' select='e:node-set()'",
                ErrorKind::Transform);
}

TEST_P(LocationTest, OfABuiltInFunctionWithoutItsArguments) {
    expectPlace("xsl:value-of xmlns:v='http://vexa.example/xslt/wol' "
                "select='v:GetLocalizedString()'",
                ErrorKind::Transform);
}

TEST_P(LocationTest, OfAMessageThatEndsTheTransform) {
    expectPlace("xsl:message terminate='yes'", ErrorKind::Terminated);
}

TEST_P(LocationTest, OfADeniedDocument) {
    expectPlace("xsl:value-of select='document(\"http://h/\")'", ErrorKind::Denied);
}

TEST_P(LocationTest, OfAMessage) {
    const auto [text, place] = sheetWith("xsl:message");
    std::string where;
    Options options;
    options.onMessage = [&](const vexa::Diagnostic& message) { where = asText(message.where); };
    Transformation(Stylesheet::compile(Input::text(text, "urn:s")), options)
        .toString(Input::text("<a/>"));
    EXPECT_EQ(where, "urn:s:" + place);
}

TEST_P(LocationTest, OfAMissingDocument) {
    const auto [text, place] = sheetWith("xsl:value-of select='document(\"file:///none\")'");
    std::string where;
    Options options;
    options.onMessage = [&](const vexa::Diagnostic& message) { where = asText(message.where); };
    Transformation(Stylesheet::compile(Input::text(text, "urn:s")), options)
        .toString(Input::text("<a/>"));
    EXPECT_EQ(where, "urn:s:" + place);
}

/** The same in a module that another one includes or imports. */
TEST_P(LocationTest, OfAnErrorInAModule) {
    for (const std::string element : {"include", "import"}) {
        for (const char* instruction :
             {"xsl:nonsense", "xsl:value-of select='$none'", "xsl:message terminate='yes'",
              "xsl:value-of select='count(1 + 1)'"}) {
            const auto [text, place] = sheetWith(instruction);
            Options options;
            options.resolver = [module = text](const std::string&, const std::string&) {
                return Input::text(module);
            };
            const auto error = failureOf([&] {
                Transformation(Stylesheet::compile(Input::text(BEGIN + "\n<xsl:" + element +
                                                                   " href='module.xsl'/>" + END,
                                                               "mem:/main.xsl"),
                                                   options))
                    .toString(Input::text("<a/>"));
            });
            EXPECT_EQ(asText(error.where()), "mem:/module.xsl:" + place) << error.what();
        }
    }
}

/** And in the module that includes or imports another one, behind it. */
TEST_P(LocationTest, OfAnErrorInAnIncludingModule) {
    for (const std::string element : {"include", "import"}) {
        for (const char* instruction :
             {"xsl:nonsense", "xsl:value-of select='$none'", "xsl:message terminate='yes'"}) {
            auto [text, place] = sheetWith(instruction);
            const std::string reference = "<xsl:" + element + " href='module.xsl'/>";
            text.insert(BEGIN.size(), reference);
            if (place.rfind("1:", 0) == 0) {
                place = "1:" + std::to_string(std::stoul(place.substr(2)) + reference.size());
            }
            Options options;
            options.resolver = [](const std::string&, const std::string&) {
                return Input::text(BEGIN + END);
            };
            const auto error = failureOf([&] {
                Transformation(Stylesheet::compile(Input::text(text, "mem:/main.xsl"), options))
                    .toString(Input::text("<a/>"));
            });
            EXPECT_EQ(asText(error.where()), "mem:/main.xsl:" + place) << error.what();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, LocationTest, ::testing::ValuesIn(PLACES),
                         [](const auto& test) { return test.param.name; });

TEST(LocationsTest, LinesEndAsInXml) {
    for (const char* lineEnd : {"\n", "\r\n", "\r"}) {
        const std::string text = BEGIN + lineEnd + lineEnd + "  <xsl:nonsense/>" + END;
        const auto error = failureOf([&] { Stylesheet::compile(Input::text(text, "urn:s")); });
        EXPECT_EQ(asText(error.where()), "urn:s:3:3");
    }
}

/** Columns count characters. */
TEST(LocationsTest, CharactersBeyondAsciiAreOneColumnEach) {
    const std::string text = BEGIN + "\n<!-- \xC3\xA4\xE2\x82\xAC --> <xsl:nonsense/>" + END;
    const auto error = failureOf([&] { Stylesheet::compile(Input::text(text, "urn:s")); });
    EXPECT_EQ(asText(error.where()), "urn:s:2:13");
}

TEST(LocationsTest, OfATopLevelElementAndOfTheStylesheetItself) {
    const auto where = [](const std::string& text) {
        return asText(failureOf([&] { Stylesheet::compile(Input::text(text, "urn:s")); }).where());
    };
    EXPECT_EQ(where(BEGIN + "\n <xsl:template/>" + END), "urn:s:2:2");
    EXPECT_EQ(where(BEGIN + "\n\n<xsl:template\nmatch='['/>" + END), "urn:s:3:1");
    EXPECT_EQ(where(BEGIN + "\n <xsl:key name='k' match='a' use='['/>" + END), "urn:s:2:2");
    EXPECT_EQ(where("<!-- c -->\n <xsl:stylesheet "
                    "xmlns:xsl='http://www.w3.org/1999/XSL/Transform'/>"),
              "urn:s:2:2");
    EXPECT_EQ(where("<?xml version='1.0'?>\n<xsl:stylesheet version='1.0' nonsense='1' "
                    "xmlns:xsl='http://www.w3.org/1999/XSL/Transform'/>"),
              "urn:s:2:1");
}

/** Text in an internal entity has no place of its own: that of the reference. */
TEST(LocationsTest, OfAnInstructionInAnInternalEntity) {
    const std::string text = "<!DOCTYPE xsl:stylesheet [<!ENTITY e '<xsl:nonsense/>'>]>\n" + BEGIN +
                             "\n<xsl:template match='/'>\n  &e;</xsl:template>" + END;
    const auto error = failureOf([&] { Stylesheet::compile(Input::text(text, "urn:s")); });
    EXPECT_EQ(error.where().uri, "urn:s");
    EXPECT_EQ(error.where().line, 4U) << error.what();
}

TEST(LocationsTest, AfterAnInternalEntityTheyAreThoseOfTheTextAgain) {
    const std::string text =
        "<!DOCTYPE xsl:stylesheet [<!ENTITY e '<b/>\n\n<c>x</c>'>]>\n" + BEGIN +
        "\n<xsl:template match='/'>&e;\n &e; <xsl:nonsense/></xsl:template>" + END;
    const auto error = failureOf([&] { Stylesheet::compile(Input::text(text, "urn:s")); });
    EXPECT_EQ(asText(error.where()), "urn:s:6:6");
}

TEST(LocationsTest, OfAnInstructionInAnExternalEntity) {
    Options options;
    options.access.externalEntities = true;
    options.resolver = [](const std::string&, const std::string&) {
        return Input::text("<b/>\n <xsl:nonsense/>");
    };
    const std::string text = "<!DOCTYPE xsl:stylesheet [<!ENTITY e SYSTEM 'mem:/part'>]>\n" +
                             BEGIN + "\n<xsl:template match='/'>\n  &e;</xsl:template>" + END;
    const auto error = failureOf([&] { Stylesheet::compile(Input::text(text, "urn:s"), options); });
    EXPECT_EQ(asText(error.where()), "mem:/part:2:2");
}

TEST(LocationsTest, OfASourceThatIsNotWellFormedWhileTransforming) {
    Transformation run(compiledRootTemplate("<b/>"));
    const auto error = failureOf([&] { run.toString(Input::text("<a>\n\n  <b></a>", "urn:d")); });
    EXPECT_EQ(error.kind(), ErrorKind::Parse);
    EXPECT_EQ(error.where().uri, "urn:d");
    EXPECT_EQ(error.where().line, 3U);
}

TEST(LocationsTest, OfAVariableOrParameterWhoseExpressionFails) {
    const auto where = [](const std::string& content) {
        return asText(failureOf([&] {
                          Transformation(
                              Stylesheet::compile(Input::text(BEGIN + content + END, "urn:s")))
                              .toString(Input::text("<a><b/><c/></a>"));
                      }).where());
    };
    const std::string use = "\n<xsl:template match='/'><xsl:copy-of select='$v'/></xsl:template>";
    EXPECT_EQ(where("\n <xsl:variable name='v' select='count(1 + 1)'/>" + use), "urn:s:2:2");
    EXPECT_EQ(where("\n  <xsl:param name='v' select='count(1 + 1)'/>" + use), "urn:s:2:3");
    EXPECT_EQ(where("\n<xsl:template match='/'><xsl:apply-templates>\n"
                    "<xsl:with-param name='p' select='count(1 + 1)'/>"
                    "</xsl:apply-templates></xsl:template>"),
              "urn:s:3:1");
    EXPECT_EQ(where("\n<xsl:template match='/'><xsl:for-each select='*/*'>\n"
                    "<xsl:sort select='count(1 + 1)'/><b/></xsl:for-each></xsl:template>"),
              "urn:s:3:1");
}
