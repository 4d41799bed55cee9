#include "XsltTest.h"

using vexa::ErrorKind;
using vexa::Input;
using vexa::Options;
using vexa::Stylesheet;
using vexa::Transformation;

namespace {

using Names = std::vector<std::string>;

vexa::Error compileErrorOf(const std::string& content) {
    return failureOf([&] { compiled(content); });
}

/** Answers with stylesheets that include others by their names: "a" -> "b c". */
Options withModules(const std::map<std::string, std::string>& modules) {
    Options options;
    options.resolver = [=](const std::string& uri, const std::string&) -> std::optional<Input> {
        const auto module = modules.find(uri);
        if (module == modules.end()) {
            return std::nullopt;
        }
        return Input::text(stylesheet(module->second));
    };
    return options;
}

Stylesheet compiledMain(const std::map<std::string, std::string>& modules) {
    return Stylesheet::compile(Input::uri("mem:/main"), withModules(modules));
}

} // namespace

TEST(StylesheetTest, WhatIsNotWellFormedIsAParseError) {
    for (const char* text : {"", "x", "<a", "<a b='1' b='2'/>"}) {
        const auto error = failureOf([&] { Stylesheet::compile(Input::text(text, "urn:s")); });
        EXPECT_EQ(error.kind(), ErrorKind::Parse) << text;
        EXPECT_EQ(error.where().uri, "urn:s");
    }
}

TEST(StylesheetTest, WhatIsWrongIsACompileError) {
    for (const char* content : {
             "<xsl:nonsense/>",
             "<xsl:template/>",
             "<xsl:template match='a['/>",
             "<xsl:template match='/'><xsl:value-of/></xsl:template>",
             "<xsl:template match='/'><xsl:value-of select='1 +'/></xsl:template>",
             "<xsl:template match='/'><xsl:value-of select='unknown()'/></xsl:template>",
             "<xsl:template match='/'><xsl:value-of select='count()'/></xsl:template>",
             "<xsl:template match='/'><xsl:value-of select='none:f()'/></xsl:template>",
             "<xsl:template match='/'><xsl:value-of select='none:a'/></xsl:template>",
             "<xsl:template match='/'><xsl:if/></xsl:template>",
             "<xsl:template name='t'/><xsl:template name='t'/>",
             "<xsl:template name='t'/><xsl:template name='t'/>",
             "<xsl:template name='t'><xsl:param name='v'/><xsl:param name='v'/></xsl:template>",
             "<xsl:import/>",
             "<xsl:template match='/'/><xsl:import href='mem:/x'/>",
         }) {
        try {
            compiled(content);
            ADD_FAILURE() << content;
        } catch (const vexa::Error& error) {
            EXPECT_EQ(error.kind(), ErrorKind::Compile) << content << ": " << error.what();
        }
    }
}

/** The engine alone crashes when it tidies up. */
TEST(StylesheetTest, AWrongAttributeOfXslTextIsACompileError) {
    for (const char* attribute :
         {"nonsense='1'", "disable-output-escaping='maybe'", "select='1'"}) {
        const auto error = compileErrorOf("<xsl:template match='/'><b/>\n<xsl:text " +
                                          std::string(attribute) + "/></xsl:template>");
        EXPECT_EQ(error.kind(), ErrorKind::Compile) << error.what();
        EXPECT_EQ(error.where().line, 2U);
        EXPECT_EQ(error.where().column, 1U);
    }
}

/** The engine overflows a buffer at the name of an encoding that is long in UTF-8. */
TEST(StylesheetTest, AnEncodingWithACharacterThatIsNotAsciiIsCompile) {
    std::string name = "UTF-8";
    for (int i = 0; i < 50; ++i) {
        name += "\xEF\xBF\xBD";
    }
    const auto error = compileErrorOf("\n<xsl:output encoding='" + name + "'/>");
    EXPECT_EQ(error.kind(), ErrorKind::Compile);
    EXPECT_EQ(error.text(), "'xsl:output' has a wrong attribute 'encoding'");
    EXPECT_EQ(error.where().line, 2U);
    // Other elements have encodings of their own.
    compiled("<o:output xmlns:o='urn:o' encoding='" + name + "'/>");
}

TEST(StylesheetTest, AnElementOfAnotherNamespaceMayBeCalledText) {
    EXPECT_NO_THROW(compiled(
        "<xsl:template match='/'><text x='1'/><s:text x='1' xmlns:s='urn:s'/>"
        "<xsl:text disable-output-escaping='yes' xml:space='preserve' p:q='1' xmlns:p='urn:p'/>"
        "<b xmlns:xsl='urn:s'><xsl:text x='1'/></b></xsl:template>"));
    for (const char* content :
         {"<z:text x='1' xmlns:z='http://www.w3.org/1999/XSL/Transform'/>",
          "<text x='1' xmlns='http://www.w3.org/1999/XSL/Transform'/>",
          "<b xmlns:xsl='urn:s'/><xsl:text x='1'/>",
          "<b xmlns:z='http://www.w3.org/1999/XSL/Transform'><z:text x='1'/></b>"}) {
        EXPECT_EQ(
            compileErrorOf("<xsl:template match='/'>" + std::string(content) + "</xsl:template>")
                .kind(),
            ErrorKind::Compile);
    }
    // In an imported module too.
    const auto error = failureOf([] {
        compiledMain({{"mem:/main", "<xsl:import href='m'/>"},
                      {"mem:/m", "<xsl:template match='/'><xsl:text x='1'/></xsl:template>"}});
    });
    EXPECT_EQ(error.kind(), ErrorKind::Compile);
    EXPECT_EQ(error.where().uri, "mem:/m");
}

/** The engine alone crashes when it reads them. */
TEST(StylesheetTest, AnIncompletePatternIsACompileError) {
    for (const char* pattern : {"//", "|x", "x|", "x||y", "|", "", " ", "x | ", "a//", "a/", "x|a/",
                                "key('k', '1')//", "/ | //", "a[b]//"}) {
        for (const std::string& content :
             {"<xsl:template match=\"" + std::string(pattern) + "\"/>",
              "<xsl:key name='k' match=\"" + std::string(pattern) + "\" use='1'/>",
              "<xsl:template match='/'><xsl:number count=\"" + std::string(pattern) +
                  "\"/></xsl:template>"}) {
            const auto error = compileErrorOf(content);
            EXPECT_EQ(error.kind(), ErrorKind::Compile) << content << ": " << error.what();
        }
    }
    for (const char* pattern : {"/", "//x", "x|y", "/|x", "x[. = '|']", "x[a/b]", "@*|node()",
                                "a//b", "key('/', '|')", "x | /", "id('//')"}) {
        EXPECT_NO_THROW(compiled("<xsl:template match=\"" + std::string(pattern) + "\"/>"))
            << pattern;
    }
}

TEST(StylesheetTest, ABarInAStringIsNoAlternative) {
    EXPECT_EQ(transformed("<xsl:apply-templates select='/*/*'/></xsl:template>"
                          "<xsl:template match='b[. = \"|\"]'>1</xsl:template>"
                          "<xsl:template match=\"b[. = '/']\">2",
                          "<a><b>|</b><b>/</b><b>3</b></a>"),
              "123");
}

/** Only a call with a literal name is one of the library. */
TEST(StylesheetTest, ThePropertyOfTheVendorIsNamedByALiteral) {
    EXPECT_EQ(transformed("<xsl:value-of select=\"concat(system-property(//name), '-', "
                          "//system-property, '-', system-property ( 'xsl:vendor' ))\"/>",
                          "<a><name>xsl:version</name><system-property>3</system-property></a>"),
              "1-3-VEXA");
    for (const char* wrong : {"system-property('xsl:vendor', 1)", "system-property('xsl:vendor'"}) {
        failureOf(
            [&] { transformed("<xsl:value-of select=\"" + std::string(wrong) + "\"/>", "<a/>"); });
    }
}

TEST(StylesheetTest, AMessageEndsTheTransformOnlyWhereItSaysSo) {
    for (const char* end : {"", " terminate='no'"}) {
        EXPECT_EQ(transformed("<xsl:message" + std::string(end) + ">m</xsl:message>1", "<a/>"),
                  "1");
    }
}

/** The engine alone loses its variables there. */
TEST(StylesheetTest, AFallbackMayBeACallOnly) {
    const std::string text =
        "<xsl:stylesheet version='1.1' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
        "<xsl:output method='text'/><xsl:template match='/'><xsl:variable name='v' select='2'/>"
        "<xsl:new><xsl:fallback><xsl:call-template name='n'/></xsl:fallback></xsl:new>"
        "<xsl:value-of select='$v'/></xsl:template><xsl:template name='n'>1</xsl:template>"
        "</xsl:stylesheet>";
    EXPECT_EQ(Transformation(Stylesheet::compile(Input::text(text))).toString(Input::text("<a/>")),
              "12");
}

TEST(StylesheetTest, NestingThatWouldOverflowTheStackIsACompileError) {
    const std::string deep = std::string(100'000, '(') + "1" + std::string(100'000, ')');
    for (const std::string& content :
         {"<xsl:template match='/'><xsl:value-of select='" + deep + "'/></xsl:template>",
          "<xsl:template match='a[" + deep + "]'/>",
          "<xsl:key name='k' match='a' use='" + deep + "'/>",
          "<xsl:template match='/'><b c='{" + deep + "}'/></xsl:template>",
          "<xsl:variable name='v' select='" + deep + "'/>"}) {
        const auto error = compileErrorOf(content);
        EXPECT_EQ(error.kind(), ErrorKind::Compile);
        EXPECT_NE(error.text().find("nested too deeply"), std::string::npos);
    }
}

TEST(StylesheetTest, AnUndeclaredPrefixIsACompileError) {
    expectFailure([] { Stylesheet::compile(Input::text("<xsl:stylesheet version='1.0'/>")); },
                  ErrorKind::Compile, "xsl");
}

TEST(StylesheetTest, ALiteralResultElementIsAStylesheet) {
    const auto sheet = Stylesheet::compile(
        Input::text("<b xsl:version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
                    "<xsl:value-of select='a'/></b>"));
    EXPECT_EQ(sheet.method(), "");
    EXPECT_EQ(Transformation(sheet).toDocument(Input::text("<a>x</a>")).xml(), "<b>x</b>");
}

TEST(StylesheetTest, AnUnknownFunctionOrPrefixIsNamed) {
    const auto inRootTemplate = [](const std::string& expression) {
        return compileErrorOf("<xsl:template match='/'><xsl:value-of select='" + expression +
                              "'/></xsl:template>")
            .text();
    };
    EXPECT_NE(inRootTemplate("nofunction(1)").find("nofunction"), std::string::npos);
    EXPECT_NE(inRootTemplate("noprefix:a").find("noprefix"), std::string::npos);
    EXPECT_NE(inRootTemplate("noprefix:f()").find("noprefix"), std::string::npos);
}

/** A host may offer it later, to a Transformation. */
TEST(StylesheetTest, AnUnknownExtensionFunctionIsAnErrorWhenItIsCalled) {
    const std::string content = "<xsl:value-of select='f:none()' xmlns:f='urn:f'/>";
    const auto error = failureOf([&] { transformed(content); });
    EXPECT_EQ(error.kind(), ErrorKind::Compile);
    EXPECT_EQ(error.text(), "unknown function 'none' of namespace 'urn:f'");
    EXPECT_EQ(transformed("<xsl:if test='false()'>" + content + "</xsl:if>"), "");
    EXPECT_EQ(transformed("<xsl:value-of select='function-available(\"f:none\")' "
                          "xmlns:f='urn:f'/>"),
              "false");
}

TEST(StylesheetTest, AMissingModuleIsAnInputErrorThatNamesItAndItsReference) {
    const TemporaryFolder folder;
    const std::string path =
        folder.write("main.xsl", stylesheet("\n<!-- c -->\n  <xsl:include href='none.xsl'/>"));
    const auto error = failureOf([&] { Stylesheet::compile(Input::file(path)); });
    EXPECT_EQ(error.kind(), ErrorKind::Input);
    EXPECT_EQ(error.text(),
              "file://" + folder.path("none.xsl") + ": cannot open: No such file or directory");
    EXPECT_EQ(asText(error.where()), "file://" + path + ":3:3");
}

TEST(StylesheetTest, AMissingModuleOfAModuleNamesTheModuleThatWantsIt) {
    const auto error = failureOf([] {
        compiledMain({{"mem:/main", "<xsl:import href='lib/a'/>"},
                      {"mem:/lib/a", "\n<xsl:include href='b'/>"}});
    });
    EXPECT_EQ(error.kind(), ErrorKind::Input);
    EXPECT_NE(error.text().find("mem:/lib/b"), std::string::npos) << error.what();
    EXPECT_EQ(asText(error.where()), "mem:/lib/a:2:1");
}

TEST(StylesheetTest, AnErrorInAModuleIsThere) {
    const auto parse = failureOf([] {
        Options options;
        options.resolver = [](const std::string&, const std::string&) {
            return Input::text("<a>\n</b>");
        };
        Stylesheet::compile(Input::text(stylesheet("<xsl:include href='mem:/m'/>")), options);
    });
    EXPECT_EQ(parse.kind(), ErrorKind::Parse);
    EXPECT_EQ(parse.where().uri, "mem:/m");
    EXPECT_EQ(parse.where().line, 2U);

    const auto compile = failureOf([] {
        compiledMain({{"mem:/main", "<xsl:include href='m'/>"},
                      {"mem:/m", "\n\n <xsl:template match='['/>"}});
    });
    EXPECT_EQ(compile.kind(), ErrorKind::Compile);
    EXPECT_EQ(asText(compile.where()), "mem:/m:3:2");
}

TEST(StylesheetTest, AModuleThatIncludesOrImportsItselfIsACompileError) {
    for (const char* element : {"include", "import"}) {
        const std::string reference = std::string("<xsl:") + element + " href='";
        EXPECT_EQ(failureOf([&] {
                      compiledMain({{"mem:/main", reference + "main'/>"}});
                  }).kind(),
                  ErrorKind::Compile);
        const auto error = failureOf([&] {
            compiledMain(
                {{"mem:/main", reference + "a'/>"}, {"mem:/a", reference + "x/../main'/>"}});
        });
        EXPECT_EQ(error.kind(), ErrorKind::Compile) << error.what();
    }
}

TEST(StylesheetTest, TheUriIsThatOfItsInput) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a b.xsl", copyingStylesheet());
    EXPECT_EQ(Stylesheet::compile(Input::file(path)).uri(), "file://" + folder.path("a%20b.xsl"));
    for (const char* uri : {"", "urn:x", "no uri at all"}) {
        EXPECT_EQ(Stylesheet::compile(Input::text(copyingStylesheet(), uri)).uri(), uri);
    }
}

TEST(StylesheetTest, ModulesAreAllThatWasReadItselfFirstEachOnce) {
    const auto sheet = compiledMain({{"mem:/main", "<xsl:import href='a'/><xsl:include href='b'/>"},
                                     {"mem:/a", "<xsl:import href='c'/>"},
                                     {"mem:/b", "<xsl:import href='c'/>"},
                                     {"mem:/c", ""}});
    EXPECT_EQ(sheet.modules(), (Names{"mem:/main", "mem:/a", "mem:/c", "mem:/b"}));
    EXPECT_EQ(Stylesheet::compile(Input::text(copyingStylesheet(), "urn:x")).modules(),
              Names{"urn:x"});
}

/** For caches: a change of any of them changes the stylesheet. */
TEST(StylesheetTest, ModulesNameExternalEntitiesToo) {
    const TemporaryFolder folder;
    folder.write("part.ent", "<xsl:template match='/' "
                             "xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>x</xsl:template>");
    folder.write("main.dtd", "<!ENTITY part SYSTEM 'part.ent'>");
    const std::string path =
        folder.write("main.xsl", "<!DOCTYPE xsl:stylesheet SYSTEM 'main.dtd'>" +
                                     stylesheet("<xsl:output method='text'/>&part;"));
    Options options;
    options.access.externalEntities = true;
    const auto sheet = Stylesheet::compile(Input::file(path), options);
    EXPECT_EQ(Transformation(sheet).toString(Input::text("<a/>")), "x");
    EXPECT_EQ(sheet.modules(), (Names{"file://" + path, "file://" + folder.path("main.dtd"),
                                      "file://" + folder.path("part.ent")}));
}

/** What a run reads is no part of the stylesheet. */
TEST(StylesheetTest, ModulesDoNotNameDocuments) {
    const auto sheet = compiledRootTemplate("<xsl:copy-of select=\"document('')\"/>");
    EXPECT_EQ(sheet.modules().size(), 1U);
}

TEST(StylesheetTest, OutputSettingsAreThoseOfTheStylesheet) {
    const auto of = [](const std::string& content) {
        const auto sheet = compiled(content);
        return sheet.method() + "," + sheet.encoding() + "," + sheet.mediaType();
    };
    EXPECT_EQ(of(""), ",,");
    EXPECT_EQ(of("<xsl:output/>"), ",,");
    EXPECT_EQ(of("<xsl:output method='xml'/>"), "xml,,");
    EXPECT_EQ(of("<xsl:output method='html' encoding='ISO-8859-1'/>"), "html,ISO-8859-1,");
    EXPECT_EQ(of("<xsl:output method='text' media-type='text/csv'/>"), "text,,text/csv");
    EXPECT_EQ(of("<xsl:output encoding='UTF-16'/><xsl:output media-type='a/b'/>"), ",UTF-16,a/b");
    const auto imported = compiledMain({{"mem:/main", "<xsl:import href='a'/>"
                                                      "<xsl:output encoding='UTF-16'/>"},
                                        {"mem:/a", "<xsl:output method='text'/>"}});
    EXPECT_EQ(imported.method(), "text");
    EXPECT_EQ(imported.encoding(), "UTF-16");
}

TEST(StylesheetTest, CopiesAreTheSameStylesheet) {
    Stylesheet copy;
    {
        const Stylesheet sheet = compiledRootTemplate("<b/>");
        copy = sheet;
    }
    EXPECT_EQ(Transformation(copy).toString(Input::text("<a/>")), "<b/>");
}

TEST(StylesheetTest, WarningsOfTheCompilerGoToTheHandler) {
    std::vector<vexa::Diagnostic> messages;
    Options options;
    options.onMessage = [&](const vexa::Diagnostic& message) { messages.push_back(message); };
    // Not an error in a stylesheet of a later version.
    Stylesheet::compile(Input::text("<xsl:stylesheet version='2.0' "
                                    "xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>\n"
                                    "<xsl:template match='/'/></xsl:stylesheet>",
                                    "urn:s"),
                        options);
    for (const auto& message : messages) {
        EXPECT_EQ(message.severity, vexa::Severity::Warning) << message.text;
        EXPECT_EQ(message.where.uri, "urn:s");
    }
}

TEST(StylesheetTest, AStylesheetThatIsEmptyOrWasMovedFromAnswersWithUsage) {
    Stylesheet full = compiledRootTemplate("<b/>");
    const Stylesheet other = std::move(full);
    EXPECT_EQ(other.method(), "xml");
    for (const Stylesheet& sheet : {Stylesheet(), full}) { // NOLINT(bugprone-use-after-move)
        expectFailure([&] { static_cast<void>(sheet.uri()); }, ErrorKind::Usage, "empty");
        expectFailure([&] { sheet.modules(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { sheet.method(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { sheet.encoding(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { sheet.mediaType(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { Transformation run(sheet); }, ErrorKind::Usage, "empty");
    }
}
