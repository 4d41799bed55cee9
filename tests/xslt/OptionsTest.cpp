#include "XsltTest.h"

#include "support/Listener.h"

#include <sstream>
#include <thread>
#include <utility>

using vexa::CancelSource;
using vexa::CancelToken;
using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Options;
using vexa::Stylesheet;
using vexa::Transformation;

namespace fs = std::filesystem;

TEST(CancelTokenTest, ADefaultTokenIsNeverCancelled) {
    EXPECT_FALSE(CancelToken().cancelled());
    EXPECT_FALSE(Options().cancel.cancelled());
}

TEST(CancelTokenTest, AllTokensOfASourceAreCancelledTogetherAndStayCancelled) {
    CancelSource source;
    const CancelToken before = source.token();
    const CancelToken copy = before;
    CancelSource copiedSource = source;
    EXPECT_FALSE(before.cancelled());
    copiedSource.cancel();
    copiedSource.cancel();
    EXPECT_TRUE(before.cancelled());
    EXPECT_TRUE(copy.cancelled());
    EXPECT_TRUE(source.token().cancelled());
    EXPECT_FALSE(CancelSource().token().cancelled());
}

TEST(CancelTokenTest, ATokenOutlivesItsSource) {
    CancelToken token;
    {
        CancelSource source;
        token = source.token();
        source.cancel();
    }
    EXPECT_TRUE(token.cancelled());
}

TEST(CancelTokenTest, AnyThreadMayCancel) {
    CancelSource source;
    const CancelToken token = source.token();
    std::thread other([&] { source.cancel(); });
    while (!token.cancelled()) {
        std::this_thread::yield();
    }
    other.join();
}

TEST(CancelTokenTest, ASourceThatWasMovedFromCancelsNothing) {
    CancelSource source;
    CancelSource other = std::move(source);
    source.cancel(); // NOLINT(bugprone-use-after-move)
    EXPECT_FALSE(source.token().cancelled());
    EXPECT_FALSE(other.token().cancelled());
    other.cancel();
    EXPECT_TRUE(other.token().cancelled());
}

namespace {

/** A folder "in" that operations may read, next to a file "secret.xml" that they may not. */
class AccessTest : public ::testing::Test {
protected:
    AccessTest() {
        fs::create_directory(m_folder.path("in"));
        fs::create_directory(m_folder.path("in/sub"));
        m_folder.write("secret.xml", "<a>secret</a>");
        m_folder.write("in/open.xml", "<a>open</a>");
        m_folder.write("in/sub/open.xml", "<a>open</a>");
        m_restricted.access.folders = {m_folder.path("in")};
    }

    std::string uri(const std::string& name) const { return "file://" + m_folder.path(name); }

    /** Reads a URI by document(). */
    static std::string read(const std::string& uri, const Options& options) {
        return transformed("<xsl:value-of select=\"document('" + uri + "')\"/>", "<a/>", options);
    }

    template <typename Operation>
    static void expectDenied(Operation operation, const std::string& uri) {
        const vexa::Error error = failureOf(operation);
        EXPECT_EQ(error.kind(), ErrorKind::Denied) << error.what();
        EXPECT_NE(error.text().find(uri), std::string::npos) << error.what();
    }

    TemporaryFolder m_folder;
    Options m_restricted;
};

std::string including(const std::string& href) {
    return stylesheet("<xsl:include href='" + href + "'/>");
}

std::string withExternalSubset(const std::string& uri) {
    return "<!DOCTYPE a SYSTEM '" + uri + "'><a/>";
}

std::string withExternalEntity(const std::string& uri) {
    return "<!DOCTYPE a [<!ENTITY e SYSTEM '" + uri + "'>]><a>&e;</a>";
}

std::string withParameterEntity(const std::string& uri) {
    return "<!DOCTYPE a [<!ENTITY % e SYSTEM '" + uri + "'> %e;]><a/>";
}

Options withExternalEntities() {
    Options options;
    options.access.externalEntities = true;
    return options;
}

Options withResolver(vexa::Resolver resolver) {
    Options options;
    options.resolver = std::move(resolver);
    return options;
}

} // namespace

TEST_F(AccessTest, TheNetworkIsOffUnlessAskedFor) {
    for (const char* uri :
         {"http://localhost:1/a.xml", "https://localhost:1/a.xml", "ftp://localhost:1/a.xml",
          "HTTP://localhost:1/a.xml", "file://elsewhere.example/a.xml"}) {
        expectDenied([&] { read(uri, {}); }, uri);
        expectDenied([&] { Document::parse(Input::uri(uri)); }, uri);
        expectDenied([&] { Stylesheet::compile(Input::uri(uri)); }, uri);
        expectDenied([&] { Stylesheet::compile(Input::text(including(uri))); }, uri);
        expectDenied(
            [&] {
                vexa::XPath::compile("document('" + std::string(uri) + "')")
                    .evaluate(parsed("<a/>"));
            },
            uri);
    }
}

TEST_F(AccessTest, TheNetworkIsUsedWhenAskedFor) {
    const Listener server(std::map<std::string, std::string>{{"/a.xml", "<a>page</a>"}});
    const std::string uri = server.address() + "/a.xml";
    Options options;
    EXPECT_THROW(read(uri, options), vexa::Error);
    EXPECT_EQ(server.requests(), 0);
    options.access.network = true;
    EXPECT_EQ(read(uri, options), "page");
    EXPECT_EQ(Document::parse(Input::uri(uri), options).xml(), "<a>page</a>");
    EXPECT_EQ(server.requests(), 2);
}

/** Port 1 of this machine has no server: an attempt to connect is refused at once. */
TEST_F(AccessTest, AServerThatDoesNotAnswerIsAnInputError) {
    Options options;
    options.access.network = true;
    expectFailure([&] { Document::parse(Input::uri("http://127.0.0.1:1/a.xml"), options); },
                  ErrorKind::Input, "");
    EXPECT_EQ(read("http://127.0.0.1:1/a.xml", options), "");
}

TEST_F(AccessTest, ExternalEntitiesAreOffUnlessAskedFor) {
    const std::string secret = uri("secret.xml");
    for (const std::string& source :
         {withExternalSubset(secret), withExternalEntity(secret), withParameterEntity(secret)}) {
        expectDenied([&] { parsed(source); }, secret);
        expectDenied([&] { transformed("<b/>", source); }, secret);
        expectDenied([&] { Stylesheet::compile(Input::text(source)); }, secret);
        m_folder.write("in/entity.xml", source);
        expectDenied([&] { read(uri("in/entity.xml"), {}); }, secret);
        expectDenied([&] { Stylesheet::compile(Input::text(including(uri("in/entity.xml")))); },
                     secret);
    }
}

TEST_F(AccessTest, ExternalEntitiesThatAreOffAreDeniedBeforeTheResolverIsAsked) {
    bool wasAsked = false;
    const Options options = withResolver([&](const std::string&, const std::string&) {
        wasAsked = true;
        return Input::text("");
    });
    expectDenied([&] { Document::parse(Input::text(withExternalSubset("urn:dtd")), options); },
                 "urn:dtd");
    EXPECT_FALSE(wasAsked);
}

TEST_F(AccessTest, ExternalEntitiesAreReadWhenAskedFor) {
    const Options options = withExternalEntities();
    m_folder.write("in/a.dtd", "<!ATTLIST a x CDATA 'default'><!ENTITY e 'entity'>");
    m_folder.write("in/part.xml", "<b/>part");
    const auto parse = [&](const std::string& text) {
        return Document::parse(Input::text(text, uri("in/base.xml")), options).xml();
    };
    EXPECT_EQ(parse("<!DOCTYPE a SYSTEM 'a.dtd'><a>&e;</a>"), "<a x=\"default\">entity</a>");
    EXPECT_EQ(parse(withExternalEntity("part.xml")), "<a><b/>part</a>");
    EXPECT_EQ(parse(withParameterEntity("a.dtd")), "<a x=\"default\"/>");
}

TEST_F(AccessTest, ExternalEntitiesGoThroughTheResolverAndThePolicy) {
    Options options = withExternalEntities();
    expectDenied([&] { Document::parse(Input::text(withExternalEntity("http://h/e")), options); },
                 "http://h/e");
    options.access.folders = {m_folder.path("in")};
    expectDenied(
        [&] { Document::parse(Input::text(withExternalEntity(uri("secret.xml"))), options); },
        uri("secret.xml"));
    options.resolver = [](const std::string& uri, const std::string& base) {
        return Input::text("<b>" + uri + " " + base + "</b>");
    };
    EXPECT_EQ(Document::parse(Input::text(withExternalEntity("e.xml"), "mem:/b/c"), options).xml(),
              "<a><b>mem:/b/e.xml mem:/b/c</b></a>");
}

TEST_F(AccessTest, AMissingExternalEntityIsAnInputErrorThatNamesIt) {
    const vexa::Error error = failureOf([&] {
        Document::parse(Input::text(withExternalEntity(uri("none.xml"))), withExternalEntities());
    });
    EXPECT_EQ(error.kind(), ErrorKind::Input) << error.what();
    EXPECT_NE(std::string(error.what()).find(uri("none.xml")), std::string::npos) << error.what();
}

TEST_F(AccessTest, EveryFileIsReadWhereNoFoldersAreSet) {
    EXPECT_EQ(read(uri("secret.xml"), {}), "secret");
    EXPECT_EQ(Document::parse(Input::uri(uri("secret.xml"))).root().string(), "secret");
}

TEST_F(AccessTest, OnlyWhatIsBelowAFolderIsRead) {
    EXPECT_EQ(read(uri("in/open.xml"), m_restricted), "open");
    EXPECT_EQ(read(uri("in/sub/open.xml"), m_restricted), "open");
    EXPECT_EQ(read(uri("in/sub/../open.xml"), m_restricted), "open");
    const std::string secret = uri("secret.xml");
    expectDenied([&] { read(secret, m_restricted); }, secret);
    expectDenied([&] { Document::parse(Input::uri(secret), m_restricted); }, secret);
    expectDenied([&] { Stylesheet::compile(Input::uri(secret), m_restricted); }, secret);
    expectDenied([&] { Stylesheet::compile(Input::text(including(secret)), m_restricted); },
                 secret);
    expectDenied(
        [&] {
            vexa::XPath::compile("document('" + secret + "')")
                .evaluate(parsed("<a/>"), m_restricted);
        },
        secret);
    expectDenied([&] { read("file:///etc/passwd", m_restricted); }, "file:///etc/passwd");
    expectDenied([&] { read(uri("none.xml"), m_restricted); }, uri("none.xml")); // says no more
}

TEST_F(AccessTest, DotsDoNotLeaveAFolder) {
    for (const char* path :
         {"in/../secret.xml", "in/%2e%2e/secret.xml", "in/sub/..%2f../secret.xml",
          "in/./.././secret.xml", "in/none/../../secret.xml", "in/none/%2e%2e/%2e%2e/secret.xml"}) {
        expectFailure([&] { read(uri(path), m_restricted); }, ErrorKind::Denied, "secret.xml");
    }
}

TEST_F(AccessTest, LinksAreResolvedBeforeFoldersAreCompared) {
    fs::create_symlink("../secret.xml", m_folder.path("in/link.xml"));
    fs::create_directory_symlink("..", m_folder.path("in/up"));
    fs::create_directory_symlink("in/sub", m_folder.path("alias"));
    expectDenied([&] { read(uri("in/link.xml"), m_restricted); }, "in/link.xml");
    expectDenied([&] { read(uri("in/up/secret.xml"), m_restricted); }, "in/up/secret.xml");
    EXPECT_EQ(read(uri("alias/open.xml"), m_restricted), "open");
    Options options;
    options.access.folders = {m_folder.path("alias")};
    EXPECT_EQ(read(uri("in/sub/open.xml"), options), "open");
    expectDenied([&] { read(uri("in/open.xml"), options); }, "in/open.xml");
}

TEST_F(AccessTest, AFolderIsNoPrefixOfAName) {
    fs::create_directory(m_folder.path("inside"));
    m_folder.write("inside/a.xml", "<a>no</a>");
    expectDenied([&] { read(uri("inside/a.xml"), m_restricted); }, "inside/a.xml");
}

TEST_F(AccessTest, AFolderMayEndWithASlashAndMayBeRelative) {
    Options options;
    options.access.folders = {m_folder.path("in/")};
    EXPECT_EQ(read(uri("in/open.xml"), options), "open");
    expectDenied([&] { read(uri("secret.xml"), options); }, "secret.xml");

    const auto directory = fs::current_path();
    fs::current_path(m_folder.path(""));
    options.access.folders = {"in"};
    EXPECT_EQ(read(uri("in/open.xml"), options), "open");
    expectDenied([&] { read(uri("secret.xml"), options); }, "secret.xml");
    options.access.folders = {"."};
    EXPECT_EQ(read(uri("secret.xml"), options), "secret");
    fs::current_path(directory);
}

TEST_F(AccessTest, SeveralFoldersAreAllowedTogetherAndNoneAllowsNothing) {
    Options options;
    options.access.folders = {m_folder.path("none"), m_folder.path("in/sub"), m_folder.path("in")};
    EXPECT_EQ(read(uri("in/open.xml"), options), "open");
    options.access.folders = std::vector<fs::path>();
    expectDenied([&] { read(uri("in/open.xml"), options); }, "in/open.xml");
    options.access.folders = {""}; // no folder, and not the root
    expectDenied([&] { read(uri("in/open.xml"), options); }, "in/open.xml");
}

TEST_F(AccessTest, TheRootFolderAllowsEveryFile) {
    Options options;
    options.access.folders = {"/"};
    EXPECT_EQ(read(uri("secret.xml"), options), "secret");
}

TEST_F(AccessTest, AFileThatTheHostGivesIsNotUnderThePolicy) {
    const Input secret = Input::file(m_folder.path("secret.xml"));
    EXPECT_EQ(Document::parse(secret, m_restricted).root().string(), "secret");
    Transformation run(compiledRootTemplate("<xsl:value-of select='.'/>"), m_restricted);
    EXPECT_EQ(run.toString(secret), "secret");
    const std::string sheet = m_folder.write("sheet.xsl", copyingStylesheet());
    EXPECT_NO_THROW(Stylesheet::compile(Input::file(sheet), m_restricted));
}

/** The source is known to the run: nothing is opened. */
TEST_F(AccessTest, TheSourceItselfIsReadByItsNameWhateverThePolicy) {
    Transformation run(
        compiledRootTemplate("<xsl:value-of select=\"document('" + uri("secret.xml") + "')\"/>"),
        m_restricted);
    EXPECT_EQ(run.toString(Input::file(m_folder.path("secret.xml"))), "secret");
}

TEST_F(AccessTest, ADenialSaysWhichInstructionAskedForIt) {
    const std::string uri = "http://h.example/x";
    m_folder.write("in/main.xsl", stylesheet("\n<xsl:template match='/'>\n <b><xsl:copy-of\n"
                                             "  select='document(\"" +
                                             uri +
                                             "\")'/></b>"
                                             "</xsl:template>"));
    const auto sheet = Stylesheet::compile(Input::file(m_folder.path("in/main.xsl")));
    const auto error = failureOf([&] { Transformation(sheet).toString(Input::text("<a/>")); });
    EXPECT_EQ(asText(error.where()), this->uri("in/main.xsl") + ":3:5");

    m_folder.write("in/outer.xsl", stylesheet("\n  <xsl:import\n href='" + uri + "'/>"));
    const auto missing =
        failureOf([&] { Stylesheet::compile(Input::file(m_folder.path("in/outer.xsl"))); });
    EXPECT_EQ(missing.kind(), ErrorKind::Denied);
    EXPECT_EQ(asText(missing.where()), this->uri("in/outer.xsl") + ":2:3");
}

/** A denial ends the transform, though the engine alone would go on. */
TEST_F(AccessTest, ADenialLeavesNoResult) {
    Transformation run(compiledRootTemplate("<b/><xsl:if test='document(\"http://h/\")'/><c/>"));
    std::string result = "old";
    expectDenied([&] { run.to(Input::text("<a/>"), vexa::Output::text(result)); }, "http://h/");
    EXPECT_EQ(result, "old");
    expectDenied([&] { run.toDocument(Input::text("<a/>")); }, "http://h/");
}

TEST(ResolverTest, IsAskedForModulesWithTheReferenceResolvedAndItsBase) {
    std::vector<std::string> asked;
    const Options options = withResolver([&](const std::string& uri, const std::string& base) {
        asked.push_back(uri + " from " + base);
        return uri == "mem:/lib/a.xsl" ? Input::text(including("../b.xsl"))
                                       : Input::text(stylesheet(""));
    });
    const auto sheet =
        Stylesheet::compile(Input::text(including("lib/a.xsl"), "mem:/main.xsl"), options);
    EXPECT_EQ(asked, (std::vector<std::string>{"mem:/lib/a.xsl from mem:/main.xsl",
                                               "mem:/b.xsl from mem:/lib/a.xsl"}));
    EXPECT_EQ(sheet.modules(),
              (std::vector<std::string>{"mem:/main.xsl", "mem:/lib/a.xsl", "mem:/b.xsl"}));
}

TEST(ResolverTest, IsAskedForInputUrisOfTheHost) {
    const Options options = withResolver([](const std::string& uri, const std::string& base) {
        return Input::text("<a>" + uri + "," + base + "</a>");
    });
    EXPECT_EQ(Document::parse(Input::uri("mem:x"), options).root().string(), "mem:x,");
    EXPECT_EQ(Document::parse(Input::uri("mem:x"), options).uri(), "mem:x");
}

TEST(ResolverTest, IsAskedForDocuments) {
    const Options options = withResolver([](const std::string& uri, const std::string& base) {
        return Input::text("<a>" + uri + "," + base + "</a>");
    });
    const auto sheet = Stylesheet::compile(
        Input::text(stylesheetWithRootTemplate("<xsl:value-of select='document(\"d.xml\")'/>"
                                               "<xsl:value-of select='document(\"e.xml\", /)'/>"),
                    "mem:/s/main.xsl"));
    EXPECT_EQ(Transformation(sheet, options).toString(Input::text("<a/>", "mem:/d/in.xml")),
              "mem:/s/d.xml,mem:/s/main.xslmem:/d/e.xml,mem:/d/in.xml");
}

/** Once in a run: document() gives the same nodes for the same URI. */
TEST(ResolverTest, IsAskedOncePerDocumentAndRun) {
    int asked = 0;
    const Options options = withResolver([&](const std::string&, const std::string&) {
        ++asked;
        return Input::text("<a/>");
    });
    Transformation run(compiledRootTemplate("<xsl:value-of select='count(document(\"mem:/x\") | "
                                            "document(\"mem:/x\") | document(\"mem:/y/../x\"))'/>"),
                       options);
    EXPECT_EQ(run.toString(Input::text("<a/>")), "1");
    EXPECT_EQ(asked, 1);
    run.toString(Input::text("<a/>"));
    EXPECT_EQ(asked, 2);
}

/** A document that may be missing is asked for again and again: so it is in the language. */
TEST(ResolverTest, WithoutAnAnswerTheUriIsOpenedUnderThePolicy) {
    const TemporaryFolder folder;
    folder.write("a.xml", "<a>real</a>");
    Options options =
        withResolver([](const std::string&, const std::string&) { return std::nullopt; });
    const std::string content =
        "<xsl:value-of select='document(\"file://" + folder.path("a.xml") + "\")'/>";
    EXPECT_EQ(transformed(content, "<a/>", options), "real");
    options.access.folders = {folder.path("none")};
    expectFailure([&] { transformed(content, "<a/>", options); }, ErrorKind::Denied, "a.xml");
}

TEST(ResolverTest, TextViewStreamAndFileAreTheHostsOwnAndNotUnderThePolicy) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", "<a>file</a>");
    std::istringstream stream("<a>stream</a>");
    Options options = withResolver([&](const std::string& uri, const std::string&) {
        return uri == "http://h/text"   ? Input::text("<a>text</a>")
               : uri == "http://h/view" ? Input::view("<a>view</a>")
               : uri == "http://h/file" ? Input::file(path)
                                        : Input::stream(stream);
    });
    options.access.folders = std::vector<fs::path>();
    EXPECT_EQ(transformed("<xsl:for-each select='*/*'>"
                          "<xsl:value-of select='document(concat(\"http://h/\", name()))'/>,"
                          "</xsl:for-each>",
                          "<a><text/><view/><file/><stream/></a>", options),
              "text,view,file,stream,");
}

TEST(ResolverTest, AUriFromItGoesThroughThePolicy) {
    const TemporaryFolder folder;
    folder.write("a.xml", "<a>real</a>");
    const std::string real = "file://" + folder.path("a.xml");
    Options options =
        withResolver([&](const std::string&, const std::string&) { return Input::uri(real); });
    const std::string content = "<xsl:value-of select='document(\"http://h/x\")'/>";
    EXPECT_EQ(transformed(content, "<a/>", options), "real");
    options.access.folders = std::vector<fs::path>();
    expectFailure([&] { transformed(content, "<a/>", options); }, ErrorKind::Denied, real);
    options.resolver = [](const std::string&, const std::string&) {
        return Input::uri("http://elsewhere/x");
    };
    expectFailure([&] { transformed(content, "<a/>", options); }, ErrorKind::Denied,
                  "http://elsewhere/x");
}

TEST(ResolverTest, IsGivenThePublicIdentifierIfItAsksForIt) {
    std::string asked;
    Options options = withResolver(vexa::PublicIdResolver{
        [&](const std::string& uri, const std::string& base, const std::string& publicId) {
            asked += uri + " from " + base + ": " + publicId + "\n";
            return Input::text(publicId.empty() ? "e" : "<!ENTITY e SYSTEM 'e.txt'>");
        }});
    options.access.externalEntities = true;
    const Options withCopy = options;
    const std::string text = "<!DOCTYPE a PUBLIC '-//A//DTD A//EN' 'a.dtd'><a>&e;</a>";
    EXPECT_EQ(Document::parse(Input::text(text, "mem:/b/c"), withCopy).xml(), "<a>e</a>");
    EXPECT_EQ(asked, "mem:/b/a.dtd from mem:/b/c: -//A//DTD A//EN\n"
                     "mem:/b/e.txt from mem:/b/a.dtd: \n");
}

/** What the answer refers to is relative to where the answer really comes from. */
TEST(ResolverTest, TheUriOfTheAnswerIsTheBaseOfWhatItRefersTo) {
    std::vector<std::string> asked;
    const Options options = withResolver([&](const std::string& uri, const std::string& base) {
        asked.push_back(uri + " from " + base);
        if (uri == "http://h/entry.xsl") {
            return Input::text(including("next.xsl"), "mem:/real/entry.xsl");
        }
        if (uri == "mem:/real/next.xsl") {
            return Input::text(stylesheet("<xsl:template match='/'><xsl:value-of "
                                          "select='document(\"data.xml\")'/></xsl:template>"
                                          "<xsl:output omit-xml-declaration='yes'/>"));
        }
        return Input::text("<!DOCTYPE a [<!ENTITY pic SYSTEM 'pic.png' NDATA png>"
                           "<!NOTATION png SYSTEM 'png'>]><a>data</a>",
                           "mem:/other/data.xml");
    });
    const auto sheet = Stylesheet::compile(Input::text(including("http://h/entry.xsl")), options);
    EXPECT_EQ(sheet.modules()[1], "mem:/real/entry.xsl");
    EXPECT_EQ(sheet.modules()[2], "mem:/real/next.xsl");
    EXPECT_EQ(Transformation(sheet, options).toString(Input::text("<a/>")), "data");
    EXPECT_EQ(asked, (std::vector<std::string>{"http://h/entry.xsl from ",
                                               "mem:/real/next.xsl from mem:/real/entry.xsl",
                                               "mem:/real/data.xml from mem:/real/next.xsl"}));
}

TEST(ResolverTest, ADocumentKnowsWhereItReallyComesFrom) {
    std::vector<std::string> asked;
    const Options options = withResolver([&](const std::string& uri, const std::string&) {
        asked.push_back(uri);
        return Input::text("<a href='next.xml'/>", "mem:/real/" + std::to_string(asked.size()));
    });
    transformed("<xsl:if test='document(document(\"http://h/x\")/a/@href)'/>", "<a/>", options);
    EXPECT_EQ(asked, (std::vector<std::string>{"http://h/x", "mem:/real/next.xml"}));
}

TEST(ResolverTest, AnAnswerThatCannotBeReadIsTheErrorOfTheReference) {
    const Options options = withResolver(
        [](const std::string&, const std::string&) { return Input::file("/none/such.xsl"); });
    const auto error = failureOf(
        [&] { Stylesheet::compile(Input::text(including("x.xsl"), "mem:/main.xsl"), options); });
    EXPECT_EQ(error.kind(), ErrorKind::Input);
    EXPECT_NE(error.text().find("mem:/x.xsl"), std::string::npos) << error.what();
    EXPECT_EQ(error.where().uri, "mem:/main.xsl");
}

TEST(ResolverTest, AModuleFromAStreamThatWasReadIsUsage) {
    std::istringstream stream(stylesheet(""));
    const Input once = Input::stream(stream);
    const Options options = withResolver(
        [&](const std::string&, const std::string&) { return std::optional<Input>(once); });
    const std::string twice = stylesheet("<xsl:include href='a'/><xsl:include href='b'/>");
    expectFailure([&] { Stylesheet::compile(Input::text(twice, "mem:/main"), options); },
                  ErrorKind::Usage, "read already");
}

TEST(MessageHandlerTest, IsGivenMessagesInOrderWhileTheTransformRuns) {
    std::string log;
    Options options;
    options.onMessage = [&](const vexa::Diagnostic& message) {
        log += "[" + message.text + "]";
        EXPECT_EQ(message.severity, vexa::Severity::Message);
    };
    Transformation run(compiledRootTemplate("<xsl:message>one</xsl:message><xsl:value-of "
                                            "select='f:f()' xmlns:f='urn:f'/>"
                                            "<xsl:message>two</xsl:message>"),
                       options);
    run.function("urn:f", "f", [&](const vexa::Call&) {
        log += "f";
        return "";
    });
    run.toString(Input::text("<a/>"));
    EXPECT_EQ(log, "[one]f[two]");
}

/** The text of a message is word for word, a part of a document in it as text. */
TEST(MessageHandlerTest, AMessageIsWordForWord) {
    std::string text;
    Options options;
    options.onMessage = [&](const vexa::Diagnostic& message) { text = message.text; };
    transformed("<xsl:message>  \xC3\xA4 &lt;\n\n x </xsl:message>", "<a/>", options);
    EXPECT_EQ(text, "  \xC3\xA4 <\n\n x ");
}

TEST(MessageHandlerTest, AMessageSaysWhereItsInstructionStands) {
    std::string where;
    Options options;
    options.onMessage = [&](const vexa::Diagnostic& message) { where = asText(message.where); };
    const auto sheet = Stylesheet::compile(
        Input::text(stylesheet("\n<xsl:template match='/'>\n\n  <b\n/><xsl:message\n>"
                               "m</xsl:message></xsl:template>"),
                    "urn:s"));
    Transformation(sheet, options).toString(Input::text("<a/>"));
    EXPECT_EQ(where, "urn:s:5:3");
}

TEST(MessageHandlerTest, AMissingDocumentIsOneWarning) {
    std::vector<vexa::Diagnostic> messages;
    Options options;
    options.onMessage = [&](const vexa::Diagnostic& message) { messages.push_back(message); };
    const auto sheet = Stylesheet::compile(
        Input::text(stylesheetWithRootTemplate("<b>\n<xsl:copy-of "
                                               "select='document(\"none.xml\")'/></b>"),
                    "file:///none/s.xsl"));
    EXPECT_EQ(Transformation(sheet, options).toString(Input::text("<a/>")), "<b/>");
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].severity, vexa::Severity::Warning);
    EXPECT_EQ(messages[0].text, "file:///none/none.xml: cannot open: No such file or directory");
    EXPECT_EQ(asText(messages[0].where), "file:///none/s.xsl:2:1");
}

TEST(MessageHandlerTest, AMalformedDocumentIsOneWarning) {
    std::vector<vexa::Diagnostic> messages;
    Options options =
        withResolver([](const std::string&, const std::string&) { return Input::text("<a>\n<b"); });
    options.onMessage = [&](const vexa::Diagnostic& message) { messages.push_back(message); };
    EXPECT_EQ(transformed("<b><xsl:copy-of select='document(\"mem:/x\")'/></b>", "<a/>", options),
              "<b/>");
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].severity, vexa::Severity::Warning);
    EXPECT_EQ(messages[0].where.uri, "mem:/x");
    EXPECT_EQ(messages[0].where.line, 2U);
}
