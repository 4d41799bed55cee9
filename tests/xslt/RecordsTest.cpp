#include "XsltTest.h"

#include "support/FailingStreams.h"

#include <chrono>
#include <sstream>
#include <thread>
#include <utility>
#include <vector>

using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Options;
using vexa::Records;
using vexa::Transformation;
using vexa::XPath;

namespace {

/** The records as XML, one on each line. */
std::string all(const std::string& text, const std::string& element, const Options& options = {}) {
    Records records(Input::text(text, "urn:source"), element, options);
    std::string result;
    for (const Document& record : records) {
        result += record.xml() + "\n";
    }
    return result;
}

/** The same by way of bytes. */
std::string allPacked(const std::string& text, const std::string& element) {
    Records records(Input::text(text, "urn:source"), element);
    std::string result;
    while (const auto packed = records.nextPacked()) {
        result += Records::unpack(*packed).xml() + "\n";
    }
    return result;
}

/** A record with one of everything. */
const char* const SOURCE_WITH_ALL =
    "<!DOCTYPE a [<!ELEMENT r ANY><!ELEMENT w (v*)><!ATTLIST r k ID #IMPLIED><!NOTATION n SYSTEM "
    "'n'>"
    "<!ENTITY pic SYSTEM 'file:///pic' NDATA n>]><a xmlns:p='urn:p' xmlns='urn:d'>"
    "<r k='one' p:x='\xCE\xB1'> t<![CDATA[<]]>&amp;<?p i?><!--c--><w> <v/></w><p:e "
    "xmlns=''/></r></a>";

/** A source without an end: each record is larger than the one before. */
class EndlessSource : public std::streambuf {
protected:
    int_type underflow() override {
        m_text = m_count == 0 ? "<all>" : "<r>" + std::string(m_count * 1000, 'x') + "</r>";
        ++m_count;
        setg(m_text.data(), m_text.data(), m_text.data() + m_text.size());
        return traits_type::to_int_type(m_text.front());
    }

private:
    std::size_t m_count = 0;
    std::string m_text;
};

/** Each piece comes some time after the one before. */
class SlowSource : public std::streambuf {
public:
    explicit SlowSource(std::vector<std::string> pieces) : m_pieces(std::move(pieces)) {}

protected:
    int_type underflow() override {
        if (m_next == m_pieces.size()) {
            return traits_type::eof();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        std::string& piece = m_pieces[m_next++];
        setg(piece.data(), piece.data(), piece.data() + piece.size());
        return traits_type::to_int_type(piece.front());
    }

private:
    std::vector<std::string> m_pieces;
    std::size_t m_next = 0;
};

} // namespace

TEST(RecordsTest, AreTheOutermostElementsOfAName) {
    EXPECT_EQ(all("<a><r>1</r>text<b><r>2<r>3</r></r></b><!--c--><r/><s/></a>", "r"),
              "<r>1</r>\n<r>2<r>3</r></r>\n<r/>\n");
    EXPECT_EQ(all("<r><r/></r>", "r"), "<r><r/></r>\n");
    EXPECT_EQ(all("<a/>", "r"), "");
}

TEST(RecordsTest, MayBeNamedWithTheirNamespace) {
    const std::string source = "<a xmlns:p='urn:p' xmlns:q='urn:q'><p:r/><q:r/><r/></a>";
    EXPECT_EQ(all(source, "{urn:q}r"), "<q:r xmlns:p=\"urn:p\" xmlns:q=\"urn:q\"/>\n");
    EXPECT_EQ(all(source, "{}r"), "<r xmlns:p=\"urn:p\" xmlns:q=\"urn:q\"/>\n");
    Records records(Input::text(source), "r");
    while (records.next()) {
    }
    EXPECT_EQ(records.count(), 3U);
}

TEST(RecordsTest, HaveTheNamespacesThatAreInScope) {
    const std::string source = "<a xmlns='urn:d' xmlns:p='urn:1'><b xmlns:p='urn:2' xmlns=''>"
                               "<r x='p:n'><p:e/></r></b><r xmlns:p='urn:3'/></a>";
    Records records(Input::text(source), "r");
    const auto namespaceOf = [](const Document& record, const std::string& prefix) {
        return XPath::compile("string(/*/namespace::*[name() = '" + prefix + "'])")
            .evaluate(record)
            .string();
    };
    const Document first = *records.next();
    EXPECT_EQ(namespaceOf(first, "p"), "urn:2");
    EXPECT_EQ(namespaceOf(first, ""), "");
    EXPECT_EQ(XPath::compile("namespace-uri(/*/*)").evaluate(first).string(), "urn:2");
    const Document second = *records.next();
    EXPECT_EQ(namespaceOf(second, "p"), "urn:3");
    EXPECT_EQ(XPath::compile("namespace-uri(/*)").evaluate(second).string(), "urn:d");
    EXPECT_FALSE(records.next());
}

TEST(RecordsTest, KeepWhatTheDocumentHasInside) {
    EXPECT_EQ(all("<a><r x='1'> t <![CDATA[<]]>&amp;<?p i?><!--c--></r></a>", "r"),
              "<r x=\"1\"> t &lt;&amp;<?p i?><!--c--></r>\n");
}

TEST(RecordsTest, KeepUnparsedEntitiesAndIds) {
    Records records(Input::text("<!DOCTYPE a [<!ATTLIST r k ID #IMPLIED><!NOTATION n SYSTEM 'n'>"
                                "<!ENTITY pic SYSTEM 'file:///pic' NDATA n><!ENTITY t 'text'>]>"
                                "<a><r k='one'>&t;</r><r k='two'/></a>",
                                "file:///d/source.xml"),
                    "r");
    Transformation run(compiled("<xsl:output method='text'/><xsl:template match='/'>"
                                "<xsl:value-of select=\"unparsed-entity-uri('pic')\"/>,"
                                "<xsl:value-of select=\"count(id('one'))\"/>,"
                                "<xsl:value-of select='.'/></xsl:template>"));
    EXPECT_EQ(run.toString(*records.next()), "file:///pic,1,text");
    EXPECT_EQ(run.toString(*records.next()), "file:///pic,0,");
}

TEST(RecordsTest, HaveTheUriOfTheDocument) {
    TemporaryFolder folder;
    folder.write("other.xml", "<o>other</o>");
    folder.write("source.xml", "<a><r/></a>");
    Records records(Input::file(folder.path("source.xml")), "r");
    const Document record = *records.next();
    EXPECT_EQ(record.uri(), Document::parse(Input::file(folder.path("source.xml"))).uri());
    Transformation run(compiled("<xsl:output method='text'/><xsl:template match='/'>"
                                "<xsl:value-of select=\"document('other.xml', .)\"/>"
                                "</xsl:template>"));
    EXPECT_EQ(run.toString(record), "other");
}

TEST(RecordsTest, TellWhereTheyBegin) {
    const std::string source = "<a>\n\n<r>\n</r><r\n x='1'/>\n<b/>\n<r/></a>";
    Records records(Input::text(source), "r");
    EXPECT_EQ(records.line(), 0U);
    std::vector<std::size_t> lines;
    while (records.next()) {
        lines.push_back(records.line());
    }
    EXPECT_EQ(lines, (std::vector<std::size_t>{3, 4, 7}));
    EXPECT_EQ(records.bytesRead(), source.size());
    Records all(Input::text("<?xml version='1.0'?>\n<!-- x -->\n\n<a\n/>"), "a");
    ASSERT_TRUE(all.next());
    EXPECT_EQ(all.line(), 4U);
}

TEST(RecordsTest, CanBeMoved) {
    Records first(Input::text("<a><r>1</r><r>2</r></a>"), "r");
    EXPECT_EQ(first.next()->xml(), "<r>1</r>");
    Records second(std::move(first));
    EXPECT_EQ(second.next()->xml(), "<r>2</r>");
    expectFailure([&] { first.next(); }, ErrorKind::Usage, "empty");
    expectFailure([&] { first.count(); }, ErrorKind::Usage, "empty");
    first = std::move(second);
    EXPECT_EQ(first.count(), 2U);
    EXPECT_FALSE(first.next());
}

TEST(RecordsTest, OutliveTheirReader) {
    std::optional<Document> record;
    {
        Records records(Input::text("<a><r>1</r></a>"), "r");
        record = records.next();
    }
    EXPECT_EQ(record->xml(), "<r>1</r>");
}

TEST(RecordsTest, ComeBeforeTheErrorBehindThem) {
    Records records(Input::text("<a><r>1</r>\n<r>2</b></a>", "urn:source"), "r");
    EXPECT_EQ(records.next()->xml(), "<r>1</r>");
    const auto error = failureOf([&] { records.next(); });
    EXPECT_EQ(error.kind(), ErrorKind::Parse);
    EXPECT_EQ(error.where().uri, "urn:source");
    EXPECT_EQ(error.where().line, 2U);
    EXPECT_FALSE(records.next());
    EXPECT_EQ(records.count(), 1U);
}

TEST(RecordsTest, BreakOffWithTheirSource) {
    Records cut(Input::text("<a><r>1</r><r>"), "r");
    EXPECT_TRUE(cut.next());
    EXPECT_EQ(failureOf([&] { cut.next(); }).kind(), ErrorKind::Parse);
    EXPECT_EQ(failureOf([] { all("", "r"); }).kind(), ErrorKind::Parse);
    EXPECT_EQ(failureOf([] { Records(Input::file("/no/such"), "r"); }).kind(), ErrorKind::Input);
}

TEST(RecordsTest, NeedAName) {
    for (const char* name : {"", "{urn:u}"}) {
        expectFailure([&] { Records(Input::text("<a/>"), name); }, ErrorKind::Usage, "empty");
    }
}

TEST(RecordsTest, ReadNoFurtherThanTheyAreAsked) {
    EndlessSource source;
    std::istream stream(&source);
    Records records(Input::stream(stream), "r");
    for (std::size_t i = 1; i <= 100; ++i) {
        ASSERT_EQ(records.next()->root().string().size(), i * 1000);
    }
    EXPECT_LT(records.bytesRead(), 101U * 102U / 2 * 1000 + 200'000);
}

TEST(RecordsTest, AreUnderTheLimitsEach) {
    Options options;
    options.limits.memory = 1 << 20;
    EndlessSource source;
    std::istream stream(&source);
    Records records(Input::stream(stream), "r", options);
    const auto error = failureOf([&] {
        while (records.next()) {
        }
    });
    EXPECT_EQ(error.kind(), ErrorKind::Limit);
    EXPECT_GT(records.count(), 50U); // together they are larger than the limit
    options.limits = {};
    options.limits.depth = 3;
    EXPECT_EQ(all("<a><b><c><r><x><y/></x></r></c></b></a>", "r", options), "<r><x><y/></x></r>\n");
}

TEST(RecordsTest, GoOnBehindOneThatReachesALimit) {
    const auto expectSecond = [](const std::string& second, const Options& options) {
        const std::string source =
            "<a xmlns:p='urn:p'><r>1</r>\n<r>" + second + "</r>\n<r><p:e/></r></a>";
        Records records(Input::text(source), "r", options);
        EXPECT_TRUE(records.next());
        EXPECT_EQ(failureOf([&] { records.next(); }).kind(), ErrorKind::Limit);
        EXPECT_EQ(records.line(), 2U);
        EXPECT_EQ(records.next()->xml(), "<r xmlns:p=\"urn:p\"><p:e/></r>");
        EXPECT_FALSE(records.next());
        EXPECT_EQ(records.count(), 3U);
    };
    Options options;
    options.limits.depth = 3;
    expectSecond("<x><y><z><r>2</r></z></y></x>", options);
    options.limits = {};
    options.limits.memory = 8 << 20;
    std::string large;
    for (int i = 0; i < 100'000; ++i) {
        large += "<e>text</e>";
    }
    expectSecond(large, options);
    expectSecond(std::string(16 << 20, 'x'), options);
}

TEST(RecordsTest, AreUnderTheAccessPolicy) {
    const std::string source = "<!DOCTYPE a SYSTEM 'file:///none.dtd'><a><r/></a>";
    EXPECT_EQ(failureOf([&] { all(source, "r"); }).kind(), ErrorKind::Denied);
}

TEST(RecordsTest, CanBeCancelled) {
    vexa::CancelSource cancel;
    Options options;
    options.cancel = cancel.token();
    EndlessSource source;
    std::istream stream(&source);
    Records records(Input::stream(stream), "r", options);
    EXPECT_TRUE(records.next());
    cancel.cancel();
    EXPECT_EQ(failureOf([&] { records.next(); }).kind(), ErrorKind::Cancelled);
}

TEST(RecordsTest, GiveTheSameAsTheRecordAsADocument) {
    const std::string record = "<o:r xmlns:o=\"urn:o\" n=\"1\"><o:i>\xCE\xB1</o:i></o:r>";
    const auto sheet = compiled("<xsl:template match='/'><xsl:copy-of select='.'/>"
                                "<xsl:value-of select='count(//node())'/></xsl:template>");
    Transformation run(sheet);
    const std::string source = "<all>" + record + record + "</all>";
    Records records(Input::text(source), "r");
    for (const Document& each : records) {
        EXPECT_EQ(run.toString(each), run.toString(Input::text(record)));
    }
    EXPECT_EQ(records.count(), 2U);
}

TEST(RecordsTest, CanBePackedForAnotherProcess) {
    const std::string expected = all(SOURCE_WITH_ALL, "r");
    ASSERT_NE(expected.find("<p:e xmlns=\"\"/>"), std::string::npos) << expected;
    EXPECT_EQ(allPacked(SOURCE_WITH_ALL, "r"), expected);
    EXPECT_EQ(allPacked("<a><r>1</r><r>2</r></a>", "r"), "<r>1</r>\n<r>2</r>\n");
    EXPECT_EQ(allPacked("<a/>", "r"), "");
    Records records(Input::text(SOURCE_WITH_ALL, "file:///d/source.xml"), "r");
    const Document record = Records::unpack(*records.nextPacked());
    EXPECT_EQ(record.uri(), "file:///d/source.xml");
    EXPECT_EQ(records.count(), 1U);
    Transformation run(compiled("<xsl:output method='text'/><xsl:template match='/'>"
                                "<xsl:value-of select=\"unparsed-entity-uri('pic')\"/>,"
                                "<xsl:value-of select=\"count(id('one'))\"/></xsl:template>"));
    EXPECT_EQ(run.toString(record), "file:///pic,1");
}

TEST(RecordsTest, AreUnderTheLimitsWherePacked) {
    Records records(Input::text("<a><r><x><y/></x></r></a>"), "r");
    const std::string packed = *records.nextPacked();
    Options options;
    options.limits.depth = 2;
    EXPECT_EQ(failureOf([&] { Records::unpack(packed, options); }).kind(), ErrorKind::Limit);
    options.limits = {};
    options.limits.memory = 8 << 20;
    Records large(Input::text("<a><r>" + std::string(16 << 20, 'x') + "</r><r/></a>"), "r",
                  options);
    EXPECT_EQ(failureOf([&] { large.nextPacked(); }).kind(), ErrorKind::Limit);
    EXPECT_EQ(Records::unpack(large.nextPacked().value()).xml(), "<r/>");
}

TEST(RecordsTest, AreUnderTheTimeLimitFromTheirStartTagOn) {
    Options options;
    options.limits.time = std::chrono::milliseconds(200);
    SlowSource source({"<a>", "<x/>", "<x/>", "<r>1</r>", "<x/>", "<r>2", "<i/>", "<i/>", "<i/>",
                       "</r>", "<x/>", "<r>3</r>", "</a>"});
    std::istream stream(&source);
    Records records(Input::stream(stream), "r", options);
    EXPECT_EQ(records.next().value().xml(), "<r>1</r>");
    EXPECT_EQ(failureOf([&] { records.next(); }).kind(), ErrorKind::Limit);
    EXPECT_EQ(records.next().value().xml(), "<r>3</r>");
    EXPECT_FALSE(records.next());
}

TEST(RecordsTest, EndWhereTheParserReachesALimit) {
    Options options;
    options.limits.memory = 8 << 20;
    Records records(Input::text("<a><r/><r x='" + std::string(16 << 20, 'x') + "'/><r/></a>"), "r",
                    options);
    EXPECT_TRUE(records.next());
    EXPECT_EQ(failureOf([&] { records.next(); }).kind(), ErrorKind::Limit);
    EXPECT_FALSE(records.next());
    EXPECT_EQ(records.count(), 1U);
}

TEST(RecordsTest, AreRefusedWhereTheirBytesAreDamaged) {
    Records records(Input::text(SOURCE_WITH_ALL), "r");
    const std::string packed = *records.nextPacked();
    const auto expectDamaged = [](const std::string& bytes) {
        expectFailure([&] { Records::unpack(bytes); }, ErrorKind::Usage, "damaged");
    };
    for (std::size_t length = 0; length < packed.size(); ++length) {
        expectDamaged(packed.substr(0, length & ~std::size_t{1}));
    }
    expectDamaged(packed + std::string(2, '\0'));
    expectDamaged(packed + "x");
    expectDamaged("<r/>");
    // A byte that is another one gives a record or an error.
    for (std::size_t i = 0; i < packed.size(); ++i) {
        std::string bytes = packed;
        bytes[i] = static_cast<char>(bytes[i] ^ 3);
        try {
            Records::unpack(bytes).xml();
        } catch (const vexa::Error& error) {
            EXPECT_NE(error.kind(), ErrorKind::Parse) << error.what();
        }
    }
}
