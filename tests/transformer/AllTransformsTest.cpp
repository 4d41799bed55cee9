/**
 * @file
 * A stylesheet gives the same document in file, stream and in-memory transforms.
 */
#include "support/InMemoryTest.h"
#include "support/SameDocument.h"
#include "support/TestDocuments.h"

#include <fstream>
#include <set>
#include <tuple>
#include <vector>

namespace {

/** The attributes of the tag that begins at `position`, which is moved to the end of the tag. */
std::set<std::string> readAttributes(const std::string& text, std::size_t& position) {
    std::set<std::string> attributes;
    std::string attribute;
    for (bool quoted = false; quoted || text[position] != '>'; ++position) {
        const char c = text[position];
        quoted ^= c == '"';
        if (c == ' ' && !quoted) {
            attributes.insert(attribute);
            attribute.clear();
        } else {
            attribute += c;
        }
    }
    attributes.insert(attribute);
    return attributes;
}

/**
 * The text with sorted attributes in each tag: an in-memory transform compiles the stylesheet from
 * a tree, and the engine then writes attributes in another order.
 */
std::string withSortedAttributes(const std::string& text) {
    std::string sorted;
    for (std::size_t i = 0; i < text.size(); ++i) {
        sorted += text[i];
        if (text[i] == '<' && text[i + 1] != '!') {
            for (const std::string& attribute : readAttributes(text, ++i)) {
                sorted += attribute + ' ';
            }
        }
    }
    return sorted;
}

/** All documents, and the report that calls built-in functions: this program sets their clock. */
std::vector<TestDocument> documentsForAllTransforms() {
    auto documents = testDocuments();
    documents.push_back({"LocalisedOrders", projectFile("samples/orders.xml"),
                         projectFile("samples/report-localised.xsl")});
    return documents;
}

class AllTransformsTest : public EngineTest,
                          public ::testing::WithParamInterface<std::tuple<TestDocument, Tree>> {
protected:
    AllTransformsTest() {
        VEXAXslTransformer::m_bUseXercesDOM = std::get<Tree>(GetParam()) == Tree::Xerces;
        std::ifstream source(document().source, std::ios::binary);
        EXPECT_TRUE(m_in->InitializeInputSource(source, document().source.c_str()))
            << m_in->getLastError();
    }
    ~AllTransformsTest() override { VEXAXslTransformer::m_bUseXercesDOM = false; }

    const TestDocument& document() const { return std::get<TestDocument>(GetParam()); }

    std::string transformFile(const std::string& sheet) {
        const std::string output = m_folder.path("out");
        EXPECT_EQ(
            m_transformer.doTransform(document().source.c_str(), sheet.c_str(), output.c_str()), 0)
            << m_transformer.getLastError();
        return readFile(output);
    }

    std::string transformStream(const std::string& sheet) {
        std::ifstream source(document().source, std::ios::binary);
        std::ostringstream output;
        EXPECT_EQ(m_transformer.doTransform(source, sheet.c_str(), output), 0)
            << m_transformer.getLastError();
        return output.str();
    }

    std::string inMemoryToText(const std::string& sheet) {
        std::ostringstream text;
        const Dom2DomPtr out = m_transformer.createDom2Dom();
        EXPECT_TRUE(out->InitializeOutputTarget(text));
        EXPECT_EQ(m_transformer.doTransform(*m_in, sheet.c_str(), *out), 0)
            << m_transformer.getLastError();
        return text.str();
    }

    std::string inMemoryToDocument(const std::string& sheet) {
        const Dom2DomPtr out = m_transformer.createDom2Dom();
        EXPECT_TRUE(out->InitializeOutputTarget());
        EXPECT_EQ(m_transformer.doTransform(*m_in, sheet.c_str(), *out), 0)
            << m_transformer.getLastError();
        std::ostringstream text;
        EXPECT_EQ(out->Serialize(text), 0) << out->getLastError();
        return text.str();
    }

    /** The stylesheet with XML as its output method, so that its result can be parsed. */
    std::string sheetForXml() {
        return m_folder.write("xml.xsl", stylesheet("<xsl:import href='file://" + document().sheet +
                                                    "'/><xsl:output method='xml' indent='no' "
                                                    "encoding='UTF-8'/>"));
    }

    TemporaryFolder m_folder;
    VEXAXslTransformer m_transformer;
    Dom2DomPtr m_in = m_transformer.createDom2Dom();
};

} // namespace

TEST_P(AllTransformsTest, GiveTheSameText) {
    const std::string expected = transformFile(document().sheet);
    EXPECT_GT(expected.size(), 1000U);
    EXPECT_TRUE(sameBytes(transformStream(document().sheet), expected + '\0'));
    EXPECT_TRUE(sameBytes(withSortedAttributes(inMemoryToText(document().sheet)),
                          withSortedAttributes(expected)));
}

TEST_P(AllTransformsTest, GiveTheSameDocument) {
    const std::string sheet = sheetForXml();
    const std::string expected = transformFile(sheet);
    EXPECT_TRUE(sameDocument(transformStream(sheet), expected));
    EXPECT_TRUE(sameDocument(inMemoryToText(sheet), expected));
    EXPECT_TRUE(sameDocument(inMemoryToDocument(sheet), expected));
}

INSTANTIATE_TEST_SUITE_P(, AllTransformsTest,
                         ::testing::Combine(::testing::ValuesIn(documentsForAllTransforms()),
                                            ::testing::Values(Tree::Xalan, Tree::Xerces)),
                         [](const auto& test) {
                             return std::string(std::get<TestDocument>(test.param).name) +
                                    (std::get<Tree>(test.param) == Tree::Xalan ? "InXalanSourceTree"
                                                                               : "InXercesDom");
                         });
