#include "XsltTest.h"

#include "support/FailingStreams.h"
#include "support/SameDocument.h"

#include <sstream>

using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Node;
using vexa::Output;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::XPath;

namespace {

Document result(const std::string& content, const std::string& source = "<a/>",
                const std::string& uri = {}) {
    return Transformation(compiled(content)).toDocument(Input::text(source, uri));
}

/** The result of a template for the root node. */
Document resultOfRoot(const std::string& content, const std::string& source = "<a/>") {
    return result("<xsl:template match='/'>" + content + "</xsl:template>", source);
}

} // namespace

TEST(DocumentTest, WhatIsNotWellFormedIsAParseErrorWithItsPlace) {
    const vexa::Error error = failureOf([] { parsed("<a>\n <b>\n</a>", "urn:d"); });
    EXPECT_EQ(error.kind(), ErrorKind::Parse);
    EXPECT_EQ(error.where().uri, "urn:d");
    EXPECT_EQ(error.where().line, 3U);
    EXPECT_GT(error.where().column, 0U);
    EXPECT_FALSE(error.text().empty());
    for (const char* text : {"", " ", "x", "<a", "<a/><b/>", "<a>&none;</a>", "<a b='1' b='2'/>",
                             "<p:a/>", "\xFF\xFE", "<a>\x01</a>", "<a>&#0;</a>"}) {
        EXPECT_EQ(failureOf([&] { parsed(text); }).kind(), ErrorKind::Parse) << text;
    }
    EXPECT_EQ(failureOf([] { parsed(std::string("<a>\0</a>", 8)); }).kind(), ErrorKind::Parse);
}

TEST(DocumentTest, WhatIsInvalidOnlyIsParsed) {
    EXPECT_EQ(parsed("<!DOCTYPE a [<!ELEMENT a EMPTY>]><a><b/></a>").xml(), "<a><b/></a>");
}

TEST(DocumentTest, InternalEntitiesAndDefaultsArePartOfIt) {
    EXPECT_EQ(parsed("<!DOCTYPE a [<!ATTLIST a x CDATA 'd'><!ENTITY e '<b/>t'>]><a>&e;</a>").xml(),
              "<a x=\"d\"><b/>t</a>");
}

/** The engine alone crashes here. */
TEST(DocumentTest, AnUnparsedEntityMayHaveAnEmptySystemId) {
    EXPECT_EQ(
        parsed("<!DOCTYPE a [<!NOTATION J SYSTEM 'j'><!ENTITY pic SYSTEM '' NDATA J>]><a/>").xml(),
        "<a/>");
}

TEST(DocumentTest, XmlIsUtf8WithoutADeclaration) {
    EXPECT_EQ(parsed("<?xml version='1.0' encoding='ISO-8859-1'?>\n<a>\xE4</a>\n").xml(),
              "<a>\xC3\xA4</a>");
}

TEST(DocumentTest, WriteGivesTheSameWithOrWithoutADeclaration) {
    const Document document = parsed("<a>\xC3\xA4</a>");
    std::ostringstream stream;
    document.write(Output::stream(stream), false);
    EXPECT_EQ(stream.str(), document.xml());
    std::string text;
    document.write(Output::text(text));
    EXPECT_EQ(text, "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xC3\xA4</a>");
    const TemporaryFolder folder;
    document.write(Output::file(folder.path("a.xml")));
    EXPECT_EQ(readFile(folder.path("a.xml")), text);
    EXPECT_EQ(folder.list(), "a.xml");
}

TEST(DocumentTest, WhatIsWrittenIsParsedAgainAsTheSame) {
    for (const char* text :
         {"<a b='&#9;&#10;&#13;\"&lt;&amp;' c=\"'\">&#13;&lt;&gt;&amp;]]&gt;</a>",
          "<a>&#x85;&#x7F;&#x2028;&#x1F30A;</a>", "<a xmlns='urn:d'><b xmlns=''/></a>",
          "<!--c--><?p d?><a><!----><?q?></a><!--e-->",
          "<p:a xmlns:p='urn:p' p:x='1'><p:b xmlns:p='urn:q'/></p:a>"}) {
        const std::string xml = parsed(text).xml();
        EXPECT_EQ(parsed(xml).xml(), xml);
        EXPECT_TRUE(sameDocument(xml, text)) << xml;
    }
    EXPECT_EQ(parsed("<a><![CDATA[]]]]><![CDATA[>]]></a>").xml(), "<a>]]&gt;</a>");
}

/** XML 1.1 has characters that XML 1.0 has not. */
TEST(DocumentTest, ADocumentThatXml10CannotHoldIsNotWritten) {
    const Document document = parsed("<?xml version='1.1'?><a>&#1;</a>");
    EXPECT_EQ(document.root().string(), "\x01");
    std::string text = "old";
    expectFailure([&] { document.write(Output::text(text)); }, ErrorKind::Output, "invalid");
    expectFailure([&] { document.xml(); }, ErrorKind::Output, "invalid");
    expectFailure([&] { document.root().xml(); }, ErrorKind::Output, "invalid");
    EXPECT_EQ(text, "old");
}

TEST(DocumentTest, AFailureToWriteIsOutput) {
    const Document document = parsed("<a/>");
    expectFailure([&] { document.write(Output::file("/dev/full")); }, ErrorKind::Output,
                  "No space left");
    expectFailure([&] { document.write(Output::file("/none/such")); }, ErrorKind::Output,
                  "No such file");
    for (const auto failure : {StreamFailure::End, StreamFailure::Exception}) {
        FailingOutputBuffer buffer(3, failure);
        std::ostream stream(&buffer);
        expectFailure([&] { document.write(Output::stream(stream)); }, ErrorKind::Output, "stream");
    }
}

TEST(DocumentTest, CopiesAreTheSameDocument) {
    Document copy;
    {
        const Document document = parsed("<a>x</a>", "urn:a");
        copy = document;
    }
    EXPECT_EQ(copy.uri(), "urn:a");
    EXPECT_EQ(copy.root().string(), "x");
}

TEST(DocumentTest, TheRootIsAboveTheDocumentElement) {
    const Node root = parsed("<!--c--><a/>").root();
    EXPECT_EQ(root.type(), Node::Type::Root);
    EXPECT_EQ(XPath::compile("count(node())").evaluate(root).number(), 2);
}

TEST(DocumentTest, ADocumentThatIsEmptyOrWasMovedFromAnswersWithUsage) {
    Document full = parsed("<a/>");
    const Document other = std::move(full);
    EXPECT_EQ(other.xml(), "<a/>");
    Transformation run(compiledRootTemplate(""));
    std::string text = "old";
    for (const Document& document : {Document(), full}) { // NOLINT(bugprone-use-after-move)
        expectFailure([&] { static_cast<void>(document.uri()); }, ErrorKind::Usage, "empty");
        expectFailure([&] { document.xml(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { document.root(); }, ErrorKind::Usage, "empty");
        expectFailure([&] { document.write(Output::text(text)); }, ErrorKind::Usage, "empty");
        expectFailure([&] { run.toString(document); }, ErrorKind::Usage, "empty");
        expectFailure([&] { run.toDocument(document); }, ErrorKind::Usage, "empty");
        expectFailure([&] { run.to(document, Output::text(text)); }, ErrorKind::Usage, "empty");
        expectFailure([&] { run.parameter("p", document); }, ErrorKind::Usage, "empty");
        expectFailure([&] { XPath::compile("1").evaluate(document); }, ErrorKind::Usage, "empty");
    }
    EXPECT_EQ(text, "old");
}

// Documents that transforms have built.

TEST(ResultDocumentTest, HasTheUriOfItsSource) {
    EXPECT_EQ(result("", "<a>x</a>", "urn:s").uri(), "urn:s");
    Transformation run(compiledRootTemplate("<b/>"));
    EXPECT_EQ(run.toDocument(parsed("<a/>", "no uri")).uri(), "no uri");
    const TemporaryFolder folder;
    EXPECT_EQ(run.toDocument(Input::file(folder.write("a b.xml", "<a/>"))).uri(),
              "file://" + folder.path("a%20b.xml"));
}

TEST(ResultDocumentTest, IsTheTreeBeforeSerialisation) {
    EXPECT_EQ(result("<xsl:output indent='yes'/><xsl:template match='/'><b><c/><d/></b>"
                     "</xsl:template>")
                  .xml(),
              "<b><c/><d/></b>");
    EXPECT_EQ(result("<xsl:output method='html'/><xsl:template match='/'><html><head/>"
                     "<body><br/></body></html></xsl:template>")
                  .xml(),
              "<html><head/><body><br/></body></html>");
    EXPECT_EQ(result("<xsl:output cdata-section-elements='b'/><xsl:template match='/'>"
                     "<b>&lt;x</b></xsl:template>")
                  .xml(),
              "<b>&lt;x</b>");
    EXPECT_EQ(result("<xsl:output doctype-system='x.dtd' encoding='UTF-16'/>"
                     "<xsl:template match='/'><b/></xsl:template>")
                  .xml(),
              "<b/>");
}

TEST(ResultDocumentTest, HasNoEscapingMarks) {
    const Document document =
        resultOfRoot("<b>a<xsl:text disable-output-escaping='yes'>&lt;c/></xsl:text>d</b>");
    EXPECT_EQ(document.xml(), "<b>a&lt;c/&gt;d</b>");
    EXPECT_EQ(XPath::compile("count(/b/node())").evaluate(document).number(), 1);
}

TEST(ResultDocumentTest, TextIsOneNodeAsAfterParsing) {
    const Document document =
        result("<xsl:output cdata-section-elements='b'/><xsl:template match='/'><b>a<xsl:value-of "
               "select=\"'b'\"/><xsl:text>c</xsl:text><xsl:copy-of select='a/text()'/></b>"
               "</xsl:template>",
               "<a>d</a>");
    EXPECT_EQ(XPath::compile("count(/b/text())").evaluate(document).number(), 1);
    EXPECT_EQ(document.root().string(), "abcd");
}

TEST(ResultDocumentTest, ATextAloneCanBeReadAndWritten) {
    const Document document = result("<xsl:output method='text'/><xsl:template match='/'>"
                                     "one &lt; two</xsl:template>");
    EXPECT_EQ(document.root().string(), "one < two");
    EXPECT_EQ(document.xml(), "one &lt; two");
    EXPECT_EQ(XPath::compile("count(node())").evaluate(document).number(), 1);
    std::string text;
    document.write(Output::text(text), false);
    EXPECT_EQ(text, "one &lt; two");
}

TEST(ResultDocumentTest, SeveralRootsCanBeReadAndWritten) {
    const Document document = resultOfRoot(
        "<!-- not copied --><xsl:comment>c</xsl:comment><p:b xmlns:p='urn:p' x='1'>1</p:b>t"
        "<c/><xsl:processing-instruction name='p'>d</xsl:processing-instruction>u");
    EXPECT_EQ(document.xml(), "<!--c--><p:b xmlns:p=\"urn:p\" x=\"1\">1</p:b>t<c/><?p d?>u");
    EXPECT_EQ(document.root().type(), Node::Type::Root);
    EXPECT_EQ(document.root().string(), "1tu");
    EXPECT_EQ(XPath::compile("count(node())").evaluate(document).number(), 6);
    EXPECT_EQ(XPath::compile("string(p:b/@x)", {{"p", "urn:p"}}).evaluate(document).string(), "1");
    EXPECT_EQ(XPath::compile("name(c/preceding-sibling::*)").evaluate(document).string(), "p:b");
}

TEST(ResultDocumentTest, ExpressionsFromTheRootWorkOverSeveralRoots) {
    const Document document = resultOfRoot("<b>1</b><c>2</c>");
    const auto value = [&](const char* expression) {
        return XPath::compile(expression).evaluate(document).string();
    };
    EXPECT_EQ(value("/c"), "2");
    EXPECT_EQ(value("//c"), "2");
    EXPECT_EQ(value("count(/)"), "1");
    EXPECT_EQ(value("count(//*)"), "2");
    EXPECT_EQ(value("string(/)"), "12");
    const Node second = XPath::compile("c").evaluate(document).nodes().front();
    EXPECT_EQ(XPath::compile("count(ancestor::node())").evaluate(second).number(), 1);
    EXPECT_EQ(XPath::compile("string(/b)").evaluate(second).string(), "1");
    EXPECT_EQ(XPath::compile("..").evaluate(second).nodes().front().type(), Node::Type::Root);
}

TEST(ResultDocumentTest, ATextOrSeveralRootsAreNoSource) {
    Transformation copy(Stylesheet::compile(Input::text(copyingStylesheet())));
    for (const char* content :
         {"text", "<b/><c/>", "<b/>t", "t<b/>", "", "<!--x-->", "<xsl:comment>c</xsl:comment>"}) {
        const Document document = resultOfRoot(content);
        expectFailure([&] { copy.toString(document); }, ErrorKind::Transform, "document element");
        expectFailure([&] { copy.toDocument(document); }, ErrorKind::Transform, "document element");
    }
    EXPECT_EQ(copy.toString(Input::text("<a/>")), "<a/>");
}

TEST(ResultDocumentTest, NothingCanBeReadAndWritten) {
    const Document document = resultOfRoot("");
    EXPECT_EQ(document.xml(), "");
    EXPECT_EQ(document.root().string(), "");
    for (const char* expression : {"count(//a)", "count(/*)", "count(/node())", "number(/a = 1)"}) {
        EXPECT_EQ(XPath::compile(expression).evaluate(document).number(), 0) << expression;
    }
    std::string text;
    document.write(Output::text(text));
    EXPECT_EQ(text, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
}

TEST(ResultDocumentTest, WhiteSpaceAroundTheDocumentElementIsText) {
    EXPECT_EQ(resultOfRoot("<b/><xsl:text>\n</xsl:text>").xml(), "<b/>\n");
    EXPECT_EQ(resultOfRoot("<xsl:text>\n</xsl:text><b/>").xml(), "\n<b/>");
}

TEST(ResultDocumentTest, BehavesAsASourceAsItsTextDoes) {
    const std::string source =
        "<r xmlns:p='urn:p'><p:i n='2'>b</p:i><p:i n='1'>a<!--c--></p:i>text<?pi d?></r>";
    const std::string sheet = stylesheet(
        "<xsl:key name='k' match='*[@n]' use='@n'/><xsl:strip-space elements='*'/>"
        "<xsl:template match='/'><o><xsl:for-each select='//@* | //namespace::* | //node()'>"
        "<n><xsl:value-of select='concat(name(), \"=\", .)'/></n></xsl:for-each>"
        "<xsl:for-each select='r/*'><xsl:sort select='@n'/><xsl:copy-of select='.'/>"
        "<xsl:number/></xsl:for-each><k><xsl:value-of select='key(\"k\", 1)'/></k>"
        "<xsl:copy-of select='/'/></o></xsl:template>");
    Transformation run(Stylesheet::compile(Input::text(sheet)));
    const Document built = Transformation(Stylesheet::compile(Input::text(copyingStylesheet())))
                               .toDocument(Input::text(source));
    EXPECT_EQ(run.toString(built), run.toString(Input::text(source)));
    EXPECT_EQ(run.toString(built), run.toString(Input::text(built.xml())));
}

/** Each step takes the document of the one before. */
TEST(ResultDocumentTest, GoesOnInMemory) {
    Transformation add(compiledRootTemplate("<n><xsl:value-of select='n + 1'/></n>"));
    Document document = parsed("<n>0</n>");
    for (int i = 0; i < 10; ++i) {
        document = add.toDocument(document);
    }
    EXPECT_EQ(document.xml(), "<n>10</n>");
}

TEST(ResultDocumentTest, OutlivesEverythingThatMadeIt) {
    Document document;
    {
        Transformation run(compiledRootTemplate("<b><xsl:copy-of select='a'/></b>"));
        document = run.toDocument(parsed("<a>x</a>"));
    }
    EXPECT_EQ(document.xml(), "<b><a>x</a></b>");
}

/** What is missing is the fault of the place that refers to it. */
TEST(DocumentTest, AMissingEntityOrDtdIsAnErrorOfItsReference) {
    vexa::Options options;
    options.access.externalEntities = true;
    const std::pair<const char*, std::size_t> documents[] = {
        {"<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///none/e'>]>\n\n<a>&e;</a>", 3},
        {"\n<!DOCTYPE a SYSTEM 'file:///none/e'><a/>", 2}};
    for (const auto& [text, line] : documents) {
        const vexa::Error error = failureOf(
            [&, source = text] { Document::parse(Input::text(source, "mem:/d"), options); });
        EXPECT_EQ(error.kind(), ErrorKind::Input);
        EXPECT_EQ(error.text(), "file:///none/e: cannot open: No such file or directory");
        EXPECT_EQ(error.where().uri, "mem:/d");
        EXPECT_EQ(error.where().line, line);
    }
}
