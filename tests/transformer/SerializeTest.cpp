#include "support/InMemoryTest.h"

#include <fstream>
#include <ios>

using SerializeTest = InMemoryTest;

TEST_P(SerializeTest, WritesDeclarationResultNewlineAndNul) {
    const Dom2DomPtr in = parsed("<a>x</a>");
    const Dom2DomPtr out = output();
    EXPECT_EQ(transform(*in, sheet("<b i='1'><c/><xsl:value-of select='a'/></b>"), *out), 0);
    EXPECT_EQ(serialized(*out), asSerialized("<b i=\"1\"><c/>x</b>"));
}

TEST_P(SerializeTest, WritesTheSameTextAgain) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    transform(*in, sheet("<b>&lt;&amp; \xCE\xB1 \xF0\x9F\x98\x80</b>"), *out);
    const std::string text = serialized(*out);
    EXPECT_EQ(text, asSerialized("<b>&lt;&amp; \xCE\xB1 \xF0\x9F\x98\x80</b>"));
    EXPECT_EQ(serialized(*out), text);
}

TEST_P(SerializeTest, WritesCharactersThatAParserWouldChangeAsReferences) {
    const std::string element = "<b c=\"&#9;&#10;&#13;\">&#13;&#127;&#133;\t\n</b>";
    const Dom2DomPtr in = parsed(element);
    const Dom2DomPtr out = output();
    transform(*in, sheet("<xsl:copy-of select='/'/>"), *out);
    EXPECT_EQ(serialized(*out), asSerialized(element));
}

TEST_P(SerializeTest, LeavesOutNodesOutsideTheDocumentElement) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    transform(*in,
              sheet("<xsl:comment>before</xsl:comment><b/><xsl:processing-instruction "
                    "name='after'/>"),
              *out);
    EXPECT_EQ(serialized(*out), asSerialized("<b/>"));
    EXPECT_EQ(queried(*out, "string(/comment())"), "before");
}

TEST_P(SerializeTest, WritesOnlyNewlineAndNulInOtherModes) {
    const std::string trailer("\n\0", 2);
    EXPECT_EQ(serialized(*parsed("<a/>")), trailer);
    EXPECT_EQ(serialized(*m_transformer.createDom2Dom()), trailer);
    std::ostringstream stream;
    EXPECT_EQ(serialized(*output(stream)), trailer);
    const Dom2DomPtr failed = m_transformer.createDom2Dom();
    failed->InitializeInputSource("<a>");
    EXPECT_EQ(serialized(*failed), trailer);
}

TEST_P(SerializeTest, WritesOnlyTheDeclarationForAnOutputWithoutAResult) {
    EXPECT_EQ(serialized(*output()), asSerialized(""));
}

TEST_P(SerializeTest, FlushesTheStream) {
    class Flushes : public std::stringbuf {
    public:
        int count = 0;

    private:
        int sync() override {
            ++count;
            return 0;
        }
    };
    Flushes buffer;
    std::ostream stream(&buffer);
    EXPECT_EQ(parsed("<a/>")->Serialize(stream), 0);
    EXPECT_EQ(buffer.count, 1);
}

TEST_P(SerializeTest, ClearsTheStreamsErrorStateFirst) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    transform(*in, sheet("<b/>"), *out);
    std::ostringstream stream;
    stream.setstate(std::ios::failbit);
    EXPECT_EQ(out->Serialize(stream), 0);
    EXPECT_EQ(stream.str(), asSerialized("<b/>"));

    std::ostringstream other;
    other.setstate(std::ios::failbit);
    EXPECT_EQ(in->Serialize(other), 0);
    EXPECT_TRUE(other.good());
}

TEST_P(SerializeTest, ReportsAStreamThatCannotBeWritten) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    transform(*in, sheet("<b>" + std::string(50'000, 'x') + "</b>"), *out);
    std::ofstream full("/dev/full");
    EXPECT_EQ(out->Serialize(full), -1);
    const std::string message = out->getLastError();
    EXPECT_EQ(message.rfind("\nXSLException Type is: XalanStdOutputStreamWriteException\n", 0), 0U)
        << message;
    EXPECT_STREQ(m_transformer.getLastError(), "");

    // A success does not clear the error message.
    EXPECT_EQ(serialized(*out).size(), asSerialized("<b></b>").size() + 50'000);
    EXPECT_EQ(out->getLastError(), message);
}

TEST_P(SerializeTest, PassesOtherExceptionsToTheCaller) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    transform(*in, sheet("<b>" + std::string(50'000, 'x') + "</b>"), *out);
    std::ofstream full("/dev/full");
    full.exceptions(std::ios::badbit | std::ios::failbit);
    EXPECT_THROW(out->Serialize(full), std::ios_base::failure);
    EXPECT_EQ(serialized(*out).size(), asSerialized("<b></b>").size() + 50'000);
}

INSTANTIATE_FOR_BOTH_TREES(SerializeTest);
