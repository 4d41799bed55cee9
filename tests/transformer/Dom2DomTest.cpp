#include "support/InMemoryTest.h"

#include <filesystem>
#include <fstream>

using Dom2DomTest = InMemoryTest;

TEST_P(Dom2DomTest, TakesTheInputRoleOnceWithAText) {
    const Holder holder = m_transformer.createDom2Dom();
    EXPECT_EQ(holder->GetDocument(), nullptr);
    EXPECT_TRUE(holder->InitializeInputSource("<a/>"));
    EXPECT_NE(holder->GetDocument(), nullptr);
    const auto* const document = holder->GetDocument();

    EXPECT_FALSE(holder->InitializeInputSource("<b/>"));
    std::istringstream stream("<b/>");
    EXPECT_FALSE(holder->InitializeInputSource(stream, ""));
    EXPECT_FALSE(holder->InitializeOutputTarget());
    std::ostringstream output;
    EXPECT_FALSE(holder->InitializeOutputTarget(output));
    EXPECT_EQ(holder->GetDocument(), document);
    EXPECT_EQ(queried(*holder, "string(name(/*))"), "a");
}

TEST_P(Dom2DomTest, TakesTheInputRoleWithAStream) {
    const Holder holder = m_transformer.createDom2Dom();
    std::istringstream stream("<a>\xCE\xB1</a>");
    EXPECT_TRUE(holder->InitializeInputSource(stream, "some.xml"));
    EXPECT_EQ(queried(*holder, "string(/a)"), "\xCE\xB1");
    EXPECT_FALSE(holder->InitializeInputSource("<b/>"));
}

TEST_P(Dom2DomTest, KeepsTheInputRoleAfterAFailedParse) {
    const Holder holder = m_transformer.createDom2Dom();
    EXPECT_FALSE(holder->InitializeInputSource("<a>"));
    EXPECT_EQ(holder->GetDocument(), nullptr);
    const std::string reason = holder->getLastError();
    EXPECT_EQ(reason.rfind("SAXParseException: ", 0), 0U) << reason;
    EXPECT_EQ(reason, m_transformer.getLastError());

    EXPECT_FALSE(holder->InitializeOutputTarget());
    EXPECT_FALSE(holder->InitializeInputSource("<a/>"));
    EXPECT_EQ(holder->getLastError(), reason);

    EXPECT_EQ(queried(*parsed("<a/>"), "string(count(/*))"), "1");
}

TEST_P(Dom2DomTest, TakesTheOutputRoleOnce) {
    std::ostringstream output;
    const Holder document = m_transformer.createDom2Dom();
    EXPECT_TRUE(document->InitializeOutputTarget());
    EXPECT_NE(document->GetDocument(), nullptr);
    EXPECT_FALSE(document->InitializeOutputTarget());
    EXPECT_FALSE(document->InitializeOutputTarget(output));
    EXPECT_FALSE(document->InitializeInputSource("<a/>"));

    const Holder stream = m_transformer.createDom2Dom();
    EXPECT_TRUE(stream->InitializeOutputTarget(output));
    EXPECT_EQ(stream->GetDocument(), nullptr);
    EXPECT_FALSE(stream->InitializeOutputTarget());
    EXPECT_FALSE(stream->InitializeInputSource("<a/>"));
    EXPECT_EQ(stream->GetDocument(), nullptr);
}

TEST_P(Dom2DomTest, AFreshHolderGivesTheEnginesMessage) {
    const Holder holder = m_transformer.createDom2Dom();
    ASSERT_NE(holder->getLastError(), nullptr);
    EXPECT_STREQ(holder->getLastError(), "");

    m_transformer.createDom2Dom()->InitializeInputSource("<a>");
    EXPECT_STREQ(holder->getLastError(), m_transformer.getLastError());
    EXPECT_STRNE(holder->getLastError(), "");
}

TEST_P(Dom2DomTest, MayBeMadeFromATransformerDirectly) {
    Dom2Dom holder(&m_transformer);
    EXPECT_TRUE(holder.InitializeInputSource("<a/>"));
}

TEST_P(Dom2DomTest, ReadsTheEncodingThatADocumentDeclares) {
    const Holder holder = parsed("<?xml version='1.0' encoding='ISO-8859-7'?><a>\xE1\xE2\xE3</a>");
    EXPECT_EQ(queried(*holder, "string(/a)"), "\xCE\xB1\xCE\xB2\xCE\xB3");
}

TEST_P(Dom2DomTest, RefusesTextsThatAreNoDocuments) {
    for (const char* text : {"", " ", "text", "<a>", "<a/><b/>", "<a b='1' b='2'/>", "<a>&x;</a>",
                             "<a>\xFF</a>", "\xEF\xBB\xBF", "<a><![CDATA[</a>"}) {
        const Holder holder = m_transformer.createDom2Dom();
        EXPECT_FALSE(holder->InitializeInputSource(text)) << text;
        EXPECT_STRNE(holder->getLastError(), "") << text;
    }
    EXPECT_FALSE(m_transformer.createDom2Dom()->InitializeInputSource(nullptr));
}

TEST_P(Dom2DomTest, FindsADtdAgainstTheSystemId) {
    for (const std::string folder : {"plain", "\xCE\xAC \xCE\xB2"}) {
        std::filesystem::create_directory(m_folder.path(folder));
        m_folder.write(folder + "/d.dtd", "<!ENTITY e 'entity'>");
        const Holder holder = m_transformer.createDom2Dom();
        std::istringstream stream("<!DOCTYPE a SYSTEM 'd.dtd'><a>&e;</a>");
        const std::string systemId = m_folder.path(folder + "/source.xml");
        EXPECT_TRUE(holder->InitializeInputSource(stream, systemId.c_str()))
            << holder->getLastError();
        EXPECT_EQ(queried(*holder, "string(/a)"), "entity");
    }
}

TEST_P(Dom2DomTest, NamesTheSystemIdInItsReasons) {
    const Holder holder = m_transformer.createDom2Dom();
    std::istringstream stream("<a>");
    EXPECT_FALSE(holder->InitializeInputSource(stream, "/no/such/place.xml"));
    EXPECT_NE(std::string(holder->getLastError()).find("/no/such/place.xml"), std::string::npos);

    const Holder withoutId = m_transformer.createDom2Dom();
    std::istringstream good("<a/>");
    EXPECT_TRUE(withoutId->InitializeInputSource(good, nullptr));
}

TEST_P(Dom2DomTest, RefusesAStreamThatFailsHalfWay) {
    const std::string text = "<a>" + std::string(100'000, 'x') + "</a>";
    for (const std::size_t length : {std::size_t{0}, std::size_t{2}, std::size_t{50'000}}) {
        const Holder holder = m_transformer.createDom2Dom();
        std::istringstream stream(text.substr(0, length));
        EXPECT_FALSE(holder->InitializeInputSource(stream, "cut.xml")) << length;
        EXPECT_STRNE(holder->getLastError(), "");
    }
    const Holder holder = m_transformer.createDom2Dom();
    std::ifstream missing(m_folder.path("missing"));
    EXPECT_FALSE(holder->InitializeInputSource(missing, "missing.xml"));
}

TEST_P(Dom2DomTest, MayBeDestroyedInAnyState) {
    std::ostringstream stream;
    m_transformer.createDom2Dom();
    parsed("<a/>");
    output();
    output(stream);
    m_transformer.createDom2Dom()->InitializeInputSource("<a>");
    const Holder in = parsed("<a/>");
    const Holder out = output();
    EXPECT_EQ(transform(*in, sheet("<b/>"), *out), 0);
}

OVER_BOTH_TREES(Dom2DomTest);
