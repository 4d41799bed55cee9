#include "support/InMemoryTest.h"

#include <filesystem>
#include <fstream>

using Dom2DomTest = InMemoryTest;

TEST_P(Dom2DomTest, SetsTheInputModeOnceWithAText) {
    const Dom2DomPtr document = m_transformer.createDom2Dom();
    EXPECT_EQ(document->GetDocument(), nullptr);
    EXPECT_TRUE(document->InitializeInputSource("<a/>"));
    EXPECT_NE(document->GetDocument(), nullptr);
    const auto* const tree = document->GetDocument();

    EXPECT_FALSE(document->InitializeInputSource("<b/>"));
    std::istringstream stream("<b/>");
    EXPECT_FALSE(document->InitializeInputSource(stream, ""));
    EXPECT_FALSE(document->InitializeOutputTarget());
    std::ostringstream output;
    EXPECT_FALSE(document->InitializeOutputTarget(output));
    EXPECT_EQ(document->GetDocument(), tree);
    EXPECT_EQ(queried(*document, "string(name(/*))"), "a");
}

TEST_P(Dom2DomTest, SetsTheInputModeWithAStream) {
    const Dom2DomPtr document = m_transformer.createDom2Dom();
    std::istringstream stream("<a>\xCE\xB1</a>");
    EXPECT_TRUE(document->InitializeInputSource(stream, "some.xml"));
    EXPECT_EQ(queried(*document, "string(/a)"), "\xCE\xB1");
    EXPECT_FALSE(document->InitializeInputSource("<b/>"));
}

TEST_P(Dom2DomTest, StaysInInputModeAfterAFailedParse) {
    const Dom2DomPtr document = m_transformer.createDom2Dom();
    EXPECT_FALSE(document->InitializeInputSource("<a>"));
    EXPECT_EQ(document->GetDocument(), nullptr);
    const std::string message = document->getLastError();
    EXPECT_EQ(message.rfind("SAXParseException: ", 0), 0U) << message;
    EXPECT_EQ(message, m_transformer.getLastError());

    EXPECT_FALSE(document->InitializeOutputTarget());
    EXPECT_FALSE(document->InitializeInputSource("<a/>"));
    EXPECT_EQ(document->getLastError(), message);

    EXPECT_EQ(queried(*parsed("<a/>"), "string(count(/*))"), "1");
}

TEST_P(Dom2DomTest, SetsTheOutputModeOnce) {
    std::ostringstream output;
    const Dom2DomPtr document = m_transformer.createDom2Dom();
    EXPECT_TRUE(document->InitializeOutputTarget());
    EXPECT_NE(document->GetDocument(), nullptr);
    EXPECT_FALSE(document->InitializeOutputTarget());
    EXPECT_FALSE(document->InitializeOutputTarget(output));
    EXPECT_FALSE(document->InitializeInputSource("<a/>"));

    const Dom2DomPtr stream = m_transformer.createDom2Dom();
    EXPECT_TRUE(stream->InitializeOutputTarget(output));
    EXPECT_EQ(stream->GetDocument(), nullptr);
    EXPECT_FALSE(stream->InitializeOutputTarget());
    EXPECT_FALSE(stream->InitializeInputSource("<a/>"));
    EXPECT_EQ(stream->GetDocument(), nullptr);
}

TEST_P(Dom2DomTest, ReturnsTheEnginesMessageBeforeItsInitialization) {
    const Dom2DomPtr document = m_transformer.createDom2Dom();
    ASSERT_NE(document->getLastError(), nullptr);
    EXPECT_STREQ(document->getLastError(), "");

    m_transformer.createDom2Dom()->InitializeInputSource("<a>");
    EXPECT_STREQ(document->getLastError(), m_transformer.getLastError());
    EXPECT_STRNE(document->getLastError(), "");
}

TEST_P(Dom2DomTest, CanBeConstructedFromATransformer) {
    Dom2Dom document(&m_transformer);
    EXPECT_TRUE(document.InitializeInputSource("<a/>"));
}

TEST_P(Dom2DomTest, ReadsDocumentsInTheirDeclaredEncoding) {
    const Dom2DomPtr document =
        parsed("<?xml version='1.0' encoding='ISO-8859-7'?><a>\xE1\xE2\xE3</a>");
    EXPECT_EQ(queried(*document, "string(/a)"), "\xCE\xB1\xCE\xB2\xCE\xB3");
}

TEST_P(Dom2DomTest, RejectsTextsThatAreNotWellFormed) {
    for (const char* text : {"", " ", "text", "<a>", "<a/><b/>", "<a b='1' b='2'/>", "<a>&x;</a>",
                             "<a>\xFF</a>", "\xEF\xBB\xBF", "<a><![CDATA[</a>"}) {
        const Dom2DomPtr document = m_transformer.createDom2Dom();
        EXPECT_FALSE(document->InitializeInputSource(text)) << text;
        EXPECT_STRNE(document->getLastError(), "") << text;
    }
    EXPECT_FALSE(m_transformer.createDom2Dom()->InitializeInputSource(nullptr));
}

TEST_P(Dom2DomTest, ResolvesADtdAgainstTheSystemId) {
    for (const std::string folder : {"plain", "\xCE\xAC \xCE\xB2"}) {
        std::filesystem::create_directory(m_folder.path(folder));
        m_folder.write(folder + "/d.dtd", "<!ENTITY e 'entity'>");
        const Dom2DomPtr document = m_transformer.createDom2Dom();
        std::istringstream stream("<!DOCTYPE a SYSTEM 'd.dtd'><a>&e;</a>");
        const std::string systemId = m_folder.path(folder + "/source.xml");
        EXPECT_TRUE(document->InitializeInputSource(stream, systemId.c_str()))
            << document->getLastError();
        EXPECT_EQ(queried(*document, "string(/a)"), "entity");
    }
}

TEST_P(Dom2DomTest, ErrorMessagesContainTheSystemId) {
    const Dom2DomPtr document = m_transformer.createDom2Dom();
    std::istringstream stream("<a>");
    EXPECT_FALSE(document->InitializeInputSource(stream, "/no/such/place.xml"));
    EXPECT_NE(std::string(document->getLastError()).find("/no/such/place.xml"), std::string::npos);

    const Dom2DomPtr withoutId = m_transformer.createDom2Dom();
    std::istringstream good("<a/>");
    EXPECT_TRUE(withoutId->InitializeInputSource(good, nullptr));
}

TEST_P(Dom2DomTest, RejectsAStreamThatEndsEarly) {
    const std::string text = "<a>" + std::string(100'000, 'x') + "</a>";
    for (const std::size_t length : {std::size_t{0}, std::size_t{2}, std::size_t{50'000}}) {
        const Dom2DomPtr document = m_transformer.createDom2Dom();
        std::istringstream stream(text.substr(0, length));
        EXPECT_FALSE(document->InitializeInputSource(stream, "cut.xml")) << length;
        EXPECT_STRNE(document->getLastError(), "");
    }
    const Dom2DomPtr document = m_transformer.createDom2Dom();
    std::ifstream missing(m_folder.path("missing"));
    EXPECT_FALSE(document->InitializeInputSource(missing, "missing.xml"));
}

TEST_P(Dom2DomTest, CanBeDestroyedInAnyState) {
    std::ostringstream stream;
    m_transformer.createDom2Dom();
    parsed("<a/>");
    output();
    output(stream);
    m_transformer.createDom2Dom()->InitializeInputSource("<a>");
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, sheet("<b/>"), *out), 0);
}

INSTANTIATE_FOR_BOTH_TREES(Dom2DomTest);
