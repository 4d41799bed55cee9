#include "XsltTest.h"

#include "support/Listener.h"

#include <vexa/catalog.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <libxml/catalog.h>
#include <libxml/globals.h>
#include <libxml/parser.h>

using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Options;
using vexa::Stylesheet;
using vexa::Transformation;

namespace fs = std::filesystem;

namespace {

std::string catalog(const std::string& entries) {
    return "<catalog xmlns='urn:oasis:names:tc:entity:xmlns:xml:catalog'>" + entries + "</catalog>";
}

class CatalogTest : public ::testing::Test {
protected:
    CatalogTest() {
        fs::create_directory(m_folder.path("files"));
        m_folder.write("files/data.xml", "<d>mapped</d>");
    }
    ~CatalogTest() override { unsetenv("XML_CATALOG_FILES"); }
    CatalogTest(const CatalogTest&) = delete;
    CatalogTest& operator=(const CatalogTest&) = delete;

    std::string uri(const std::string& name) const { return "file://" + m_folder.path(name); }

    /** Writes a catalog under a name of its own: libxml2 would not read a file again. */
    fs::path write(const std::string& text) {
        return m_folder.write("catalog" + std::to_string(++m_catalogs) + ".xml", text);
    }

    /** Has the operations ask a catalog with these entries. */
    void use(const std::string& entries) {
        m_options.resolver = vexa::catalogResolver({write(catalog(entries))});
    }

    /** The URI of the document that is read for a URI, or the kind of the error. */
    std::string read(const std::string& asked) const {
        try {
            return Document::parse(Input::uri(asked), m_options).uri();
        } catch (const vexa::Error& error) {
            return error.kind() == ErrorKind::Denied ? "denied: " + error.text() : error.what();
        }
    }

    TemporaryFolder m_folder;
    Options m_options;

private:
    int m_catalogs = 0;
};

struct Mapping {
    const char* entry;
    const char* asked;
};

} // namespace

TEST_F(CatalogTest, MapsUris) {
    m_folder.write("files/next.xml", catalog("<system systemId='http://x/data.xml' uri='data.xml'/>"
                                             "<uri name='http://x/uri.xml' uri='data.xml'/>"));
    for (const auto& [entry, asked] : std::vector<Mapping>{
             {"<system systemId='http://x/a.xml' uri='files/data.xml'/>", "http://x/a.xml"},
             {"<uri name='http://x/a.xml' uri='files/data.xml'/>", "http://x/a.xml"},
             {"<uri name='urn:x:a' uri='files/data.xml'/>", "urn:x:a"},
             {"<rewriteSystem systemIdStartString='http://x/' rewritePrefix='files/'/>",
              "http://x/data.xml"},
             {"<rewriteURI uriStartString='http://x/' rewritePrefix='files/'/>",
              "http://x/data.xml"},
             {"<delegateSystem systemIdStartString='http://x/' catalog='files/next.xml'/>",
              "http://x/data.xml"},
             {"<delegateURI uriStartString='http://x/' catalog='files/next.xml'/>",
              "http://x/uri.xml"},
             {"<nextCatalog catalog='files/next.xml'/>", "http://x/data.xml"},
             {"<nextCatalog catalog='files/next.xml'/>", "http://x/uri.xml"},
             {"<group xml:base='files/'><uri name='http://x/a.xml' uri='data.xml'/></group>",
              "http://x/a.xml"},
             {"<rewriteSystem systemIdStartString='file:///none/' rewritePrefix='files/'/>",
              "file:///none/data.xml"}}) {
        use(entry);
        EXPECT_EQ(read(asked), uri("files/data.xml")) << entry;
        EXPECT_EQ(read("http://other/"), "denied: network access denied: http://other/") << entry;
    }
}

TEST_F(CatalogTest, FindsADtdByItsPublicIdentifier) {
    m_folder.write("files/a.dtd", "<!ENTITY e SYSTEM 'e.txt'><!ATTLIST a b CDATA 'c'>");
    m_folder.write("files/e.txt", "text");
    m_folder.write("files/delegate.xml",
                   catalog("<public publicId='-//A//DTD A//EN' uri='a.dtd'/>"));
    const Input source = Input::text("<!DOCTYPE a PUBLIC '-//A//DTD  A//EN' 'none.dtd'><a>&e;</a>",
                                     "http://far/a.xml");
    for (const char* entry :
         {"<public publicId='-//A//DTD A//EN' uri='files/a.dtd'/>",
          "<delegatePublic publicIdStartString='-//A//' catalog='files/delegate.xml'/>",
          "<system systemId='http://far/none.dtd' uri='files/a.dtd'/>"}) {
        use(entry);
        m_options.access.externalEntities = true;
        EXPECT_EQ(Document::parse(source, m_options).xml(), "<a b=\"c\">text</a>") << entry;
        m_options.access.externalEntities = false;
        expectFailure([&] { Document::parse(source, m_options); }, ErrorKind::Denied,
                      "http://far/none.dtd");
    }
}

TEST_F(CatalogTest, AMappedFileIsTheBaseOfWhatItRefersTo) {
    m_folder.write("files/main.xsl", stylesheet("<xsl:import href='part.xsl'/>"
                                                "<xsl:output omit-xml-declaration='yes'/>"));
    m_folder.write("files/part.xsl",
                   stylesheet("<xsl:template match='/'><r><xsl:value-of select=\"document("
                              "'data.xml')\"/> <xsl:value-of select=\"document('beside.xml', "
                              "document('http://x/sub/source.xml'))\"/></r></xsl:template>"));
    fs::create_directory(m_folder.path("files/sub"));
    m_folder.write("files/sub/source.xml", "<s/>");
    m_folder.write("files/sub/beside.xml", "<b>beside</b>");
    use("<rewriteURI uriStartString='http://x/' rewritePrefix='files/'/>");

    const auto sheet = Stylesheet::compile(Input::uri("http://x/main.xsl"), m_options);
    EXPECT_EQ(sheet.modules(),
              (std::vector<std::string>{uri("files/main.xsl"), uri("files/part.xsl")}));
    EXPECT_EQ(Transformation(sheet, m_options).toString(Input::uri("http://x/sub/source.xml")),
              "<r>mappedbeside</r>");

    const auto including = Stylesheet::compile(
        Input::text(stylesheet("<xsl:include href='http://x/main.xsl'/>")), m_options);
    EXPECT_EQ(including.modules().back(), uri("files/part.xsl"));
}

TEST_F(CatalogTest, ReadsTheCatalogsThatTheEnvironmentLists) {
    m_folder.write("one.xml", catalog("<uri name='http://x/1' uri='files/data.xml'/>"
                                      "<uri name='http://x/both' uri='files/data.xml'/>"));
    m_folder.write("two.xml", catalog("<uri name='http://x/2' uri='files/data.xml'/>"
                                      "<uri name='http://x/both' uri='none.xml'/>"));
    const std::string list = m_folder.path("missing.xml") + "  " + m_folder.path("one.xml") + "\n" +
                             uri("two.xml") + " http://127.0.0.1:9/three.xml ";
    setenv("XML_CATALOG_FILES", list.c_str(), 1);
    m_options.resolver = vexa::catalogResolver();
    setenv("XML_CATALOG_FILES", "", 1);
    for (const char* asked : {"http://x/1", "http://x/2", "http://x/both"}) {
        EXPECT_EQ(read(asked), uri("files/data.xml"));
    }
    m_options.resolver = vexa::catalogResolver();
    EXPECT_EQ(read("http://x/1"), "denied: network access denied: http://x/1");
}

TEST_F(CatalogTest, AnExistingFileIsNotLookedUp) {
    m_folder.write("own.xml", "<own/>");
    const std::string entry = "<system systemId='" + uri("own.xml") + "' uri='files/data.xml'/>";
    use(entry);
    EXPECT_EQ(read(uri("own.xml")), uri("own.xml"));
    fs::remove(m_folder.path("own.xml"));
    EXPECT_EQ(read(uri("own.xml")), uri("files/data.xml"));
}

TEST_F(CatalogTest, FilesMayHaveAnyName) {
    const std::string folder = "a b \xC3\xBC %20/";
    fs::create_directory(m_folder.path(folder));
    m_folder.write(folder + "my data.xml", "<a/>");
    m_folder.write(folder + "next.xml", catalog("<uri name='http://x/' uri='my%20data.xml'/>"));
    m_options.resolver = vexa::catalogResolver({fs::path(
        m_folder.write(folder + "catalog.xml", catalog("<nextCatalog catalog='next.xml'/>")))});
    EXPECT_EQ(read("http://x/"), "file://" + m_folder.path("a%20b%20%C3%BC%20%2520/my%20data.xml"));
}

/** A catalog is no way around what a host has denied. */
TEST_F(CatalogTest, WhatACatalogGivesIsUnderTheAccessPolicy) {
    fs::create_directory(m_folder.path("allowed"));
    fs::create_symlink("../files/data.xml", m_folder.path("allowed/link.xml"));
    use("<uri name='http://x/file' uri='files/data.xml'/>"
        "<uri name='http://x/link' uri='allowed/link.xml'/>"
        "<uri name='http://x/far' uri='http://y/far.xml'/>");
    EXPECT_EQ(read("http://x/far"), "denied: network access denied: http://y/far.xml");
    m_options.access.folders = {m_folder.path("allowed")};
    EXPECT_EQ(read("http://x/file"), "denied: file access denied: " + uri("files/data.xml"));
    EXPECT_EQ(read("http://x/link"), "denied: file access denied: " + uri("allowed/link.xml"));
    m_options.access.folders = {m_folder.path("files")};
    EXPECT_EQ(read("http://x/file"), uri("files/data.xml"));
}

TEST_F(CatalogTest, NoCatalogIsFetchedOverTheNetwork) {
    const Listener server(
        {{"/next.xml", catalog("<uri name='http://x/' uri='data.xml'/>")}, {"/data.xml", "<a/>"}});
    m_options.access.network = true;
    use("<nextCatalog catalog='" + server.address() + "/next.xml'/><uri name='http://y/' uri='" +
        server.address() + "/data.xml'/>");
    EXPECT_EQ(read("http://y/"), server.address() + "/data.xml");
    EXPECT_EQ(server.requests(), 1);
    m_options.access.network = false;
    EXPECT_EQ(read("http://x/"), "denied: network access denied: http://x/");
    EXPECT_EQ(server.requests(), 1);
}

TEST_F(CatalogTest, WhatIsBrokenIsPassedOverInSilence) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const std::string entry = "<uri name='http://x/' uri='files/data.xml'/>";
    for (const std::string& text :
         {std::string(), std::string("no catalog"), std::string("<catalog"), "<other>" + entry,
          catalog("<uri/><nextCatalog/><uri name='http://x/' uri='a b'/>"),
          catalog(entry) + "<more/>", catalog("<nextCatalog catalog='files'/>"),
          catalog("<nextCatalog catalog='missing.xml'/>"), std::string("<\0\xFF", 3)}) {
        m_options.resolver = vexa::catalogResolver(
            {write(text), m_folder.path("files"), fs::path(), write(catalog(entry))});
        EXPECT_EQ(read("http://x/"), uri("files/data.xml")) << text;
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(CatalogTest, CatalogsThatReferToOneAnotherEnd) {
    const auto write = [&](const std::string& name, const std::string& one,
                           const std::string& other) {
        std::string entries;
        for (const std::string& next : {one, other}) {
            for (const char* begin :
                 {"<delegateURI uriStartString='http://x/'",
                  "<delegateSystem systemIdStartString='http://x/'",
                  "<delegatePublic publicIdStartString='-//'", "<nextCatalog"}) {
                entries.append(begin).append(" catalog='").append(next).append("'/>");
            }
        }
        m_folder.write(name, catalog(entries));
    };
    write("a.xml", "a.xml", "b.xml");
    write("b.xml", "c.xml", "a.xml");
    write("c.xml", "b.xml", "c.xml");
    testing::internal::CaptureStderr();
    const auto resolver = vexa::catalogResolver({fs::path(m_folder.path("a.xml"))});
    m_options.resolver = resolver;
    EXPECT_EQ(read("http://x/a"), "denied: network access denied: http://x/a");
    EXPECT_EQ(read("http://y/a"), "denied: network access denied: http://y/a");
    EXPECT_FALSE(resolver.resolve("http://x/a", "", "-//A//DTD A//EN"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

namespace {

void onError(void* /*context*/, xmlErrorPtr /*error*/) {}

xmlParserInputBufferPtr onOpen(const char* uri, xmlCharEncoding encoding) {
    return __xmlParserInputBufferCreateFilename(uri, encoding);
}

} // namespace

TEST_F(CatalogTest, LeavesTheHostsSettingsOfLibxml2) {
    m_folder.write("broken.xml", "<catalog");
    int context = 0;
    xmlSetStructuredErrorFunc(&context, onError);
    xmlParserInputBufferCreateFilenameValue = onOpen;
    EXPECT_EQ(xmlReadMemory("<a", 2, "host.xml", nullptr, 0), nullptr);
    use("<nextCatalog catalog='broken.xml'/><uri name='http://x/' uri='files/data.xml'/>");
    EXPECT_EQ(read("http://x/"), uri("files/data.xml"));

    EXPECT_EQ(xmlStructuredError, &onError);
    EXPECT_EQ(xmlStructuredErrorContext, &context);
    EXPECT_EQ(xmlParserInputBufferCreateFilenameValue, &onOpen);
    ASSERT_NE(xmlGetLastError(), nullptr);
    EXPECT_STREQ(xmlGetLastError()->file, "host.xml");
    xmlChar* const ownAnswer = xmlCatalogResolveURI(BAD_CAST "http://x/");
    EXPECT_EQ(ownAnswer, nullptr);
    xmlFree(ownAnswer);
    xmlResetLastError();
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    xmlParserInputBufferCreateFilenameValue = nullptr;
}

TEST_F(CatalogTest, ThreadsShareAResolver) {
    m_folder.write("next.xml", catalog("<uri name='http://x/' uri='files/data.xml'/>"));
    use("<nextCatalog catalog='next.xml'/>");
    parsed("<a/>"); // begins the engine, whose locks helgrind does not know
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            for (int round = 0; round < 20; ++round) {
                EXPECT_EQ(read("http://x/"), uri("files/data.xml"));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}
