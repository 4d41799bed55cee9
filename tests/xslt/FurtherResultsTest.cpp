#include "XsltTest.h"

#include <filesystem>
#include <map>
#include <stdexcept>

using vexa::DocumentSettings;
using vexa::ErrorKind;
using vexa::Input;
using vexa::Options;
using vexa::Output;
using vexa::Stylesheet;
using vexa::Transformation;

/** What a stylesheet writes beside its result. */
class FurtherResultsTest : public ::testing::Test {
protected:
    static Stylesheet compiledWith(const std::string& instructions, const std::string& root = {}) {
        return Stylesheet::compile(Input::text(
            "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
            "xmlns:exsl='http://exslt.org/common' xmlns:s='http://icl.com/saxon' "
            "extension-element-prefixes='exsl s' " +
            root + "><xsl:template match='/'>" + instructions +
            "</xsl:template></xsl:stylesheet>"));
    }

    /** Runs it with results in memory. */
    std::string run(const std::string& instructions, const std::string& root = {}) {
        Transformation run(compiledWith(instructions, root));
        writeToMemory(run);
        return body(run.toString(Input::text("<a><b>1</b><b>2</b></a>")));
    }

    void writeToMemory(Transformation& run) {
        run.onDocument([this](const std::string& href, const std::string& base,
                              const DocumentSettings& settings) {
            m_calls += href + " in '" + base + "' " + settings.method + "\n";
            return Output::text(m_results[href]);
        });
    }
    /** With files in the folder. */
    void writeToFolder(Transformation& run) {
        run.onDocument([this](const std::string& href, const std::string& base,
                              const DocumentSettings& /*settings*/) {
            m_calls += href + " in '" + base.substr(base.rfind('/') + 1) + "'\n";
            return Output::file(m_folder.path(href));
        });
    }

    /** What follows the XML declaration. */
    static std::string body(const std::string& text) {
        return text.rfind("<?xml", 0) == 0 ? text.substr(text.find("?>") + 2) : text;
    }

    TemporaryFolder m_folder;
    std::map<std::string, std::string> m_results;
    std::string m_calls;
};

TEST_F(FurtherResultsTest, AreWrittenWhereTheHostSays) {
    EXPECT_EQ(run("<m><xsl:for-each select='//b'><exsl:document href='{.}.xml'><d>"
                  "<xsl:value-of select='.'/></d></exsl:document></xsl:for-each>end</m>"),
              "<m>end</m>");
    EXPECT_EQ(m_results.size(), 2U);
    EXPECT_EQ(m_results["1.xml"], "<?xml version=\"1.0\" encoding=\"UTF-8\"?><d>1</d>");
    EXPECT_EQ(m_results["2.xml"], "<?xml version=\"1.0\" encoding=\"UTF-8\"?><d>2</d>");
    EXPECT_EQ(m_calls, "1.xml in '' \n2.xml in '' \n");
}

TEST_F(FurtherResultsTest, HaveOutputSettingsOfTheirOwn) {
    run("<exsl:document href='t' method='text'><a>&lt;<b/>&amp;</a></exsl:document>"
        "<exsl:document href='h' method='html' indent='no'><p>1<br/></p></exsl:document>"
        "<exsl:document href='x' omit-xml-declaration='yes' standalone='no' doctype-system='s' "
        "doctype-public='p'><e/></exsl:document>"
        "<exsl:document href='l' encoding='ISO-8859-1'>\xC3\xA4\xE2\x82\xAC</exsl:document>"
        "<exsl:document href='i' method='xml' indent='yes'><e><f/></e></exsl:document>");
    EXPECT_EQ(m_results["t"], "<&");
    EXPECT_EQ(m_results["h"], "<p>1<br></p>");
    EXPECT_EQ(m_results["x"], "<!DOCTYPE e PUBLIC \"p\" \"s\">\n<e/>");
    EXPECT_EQ(m_results["l"], "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\xE4&#8364;");
    EXPECT_EQ(body(m_results["i"]), "\n<e>\n<f/>\n</e>\n");
    EXPECT_EQ(m_calls, "t in '' text\nh in '' html\nx in '' \nl in '' \ni in '' xml\n");
}

TEST_F(FurtherResultsTest, AreHtmlWhereTheyBeginWithIt) {
    run("<exsl:document href='h' indent='no'><HTML><br/></HTML></exsl:document>"
        "<exsl:document href='x' method='xml'><html><br/></html></exsl:document>"
        "<exsl:document href='n'><html xmlns='urn:n'><br/></html></exsl:document>"
        "<exsl:document href='t'>1<html><br/></html></exsl:document>"
        "<exsl:document href='o'><htm/><html/></exsl:document><exsl:document href='e'/>");
    EXPECT_EQ(m_results["h"], "<HTML><br></HTML>");
    EXPECT_EQ(body(m_results["x"]), "<html><br/></html>");
    EXPECT_EQ(body(m_results["n"]), "<html xmlns=\"urn:n\"><br/></html>");
    EXPECT_EQ(body(m_results["t"]), "1<html><br/></html>");
    EXPECT_EQ(body(m_results["o"]), "<htm/><html/>");
    EXPECT_EQ(body(m_results["e"]), "");
}

TEST_F(FurtherResultsTest, DeclareTheirNamespacesThemselves) {
    EXPECT_EQ(run("<p:m q:x='1'><exsl:document href='d'><p:d><q:e p:y='2'/><f/></p:d><p:g/>"
                  "</exsl:document></p:m>",
                  "xmlns:p='urn:p' xmlns:q='urn:q'"),
              "<p:m xmlns:p=\"urn:p\" xmlns:q=\"urn:q\" q:x=\"1\"/>");
    EXPECT_EQ(body(m_results["d"]), "<p:d xmlns:p=\"urn:p\"><q:e p:y=\"2\" xmlns:q=\"urn:q\"/>"
                                    "<f/></p:d><p:g xmlns:p=\"urn:p\"/>");
}

TEST_F(FurtherResultsTest, DeclareNoNamespaceTwiceAndNotThatOfXml) {
    run("<m xmlns='urn:d'><exsl:document href='d'><q:e p:y='2' xml:lang='en' q:z='3'><f/></q:e>"
        "</exsl:document></m><exsl:document href='n'><e xml:lang='en' q:z='3' xmlns:r='urn:r'/>"
        "</exsl:document>",
        "xmlns:p='urn:p' xmlns:q='urn:q'");
    const vexa::Document document = vexa::Document::parse(Input::text(m_results["d"]));
    const auto value = [&](const std::string& expression) {
        return vexa::XPath::compile(expression, {{"p", "urn:p"}, {"q", "urn:q"}, {"d", "urn:d"}})
            .evaluate(document)
            .string();
    };
    EXPECT_EQ(value("concat(/q:e/@p:y, /q:e/@q:z, /q:e/@xml:lang, count(/q:e/d:f))"), "23en1");
    EXPECT_EQ(m_results["d"].find("xmlns:xml"), std::string::npos);
    EXPECT_EQ(m_results["d"].find("xmlns:q"), m_results["d"].rfind("xmlns:q"));
    EXPECT_EQ(m_results["d"].find("xmlns:p"), m_results["d"].rfind("xmlns:p"));
    EXPECT_EQ(vexa::XPath::compile("string(/e[@xml:lang = 'en']/@q:z)", {{"q", "urn:q"}})
                  .evaluate(vexa::Document::parse(Input::text(m_results["n"])))
                  .string(),
              "3");
}

TEST_F(FurtherResultsTest, MayStandInEachOtherAndInVariables) {
    EXPECT_EQ(run("<m><exsl:document href='o'><o>1<exsl:document href='i'><i/></exsl:document>2"
                  "</o></exsl:document><xsl:variable name='v'>x<exsl:document href='v'><v/>"
                  "</exsl:document>y</xsl:variable><xsl:value-of select='$v'/>"
                  "</m>"),
              "<m>xy</m>");
    EXPECT_EQ(body(m_results["o"]), "<o>12</o>");
    EXPECT_EQ(body(m_results["i"]), "<i/>");
    EXPECT_EQ(body(m_results["v"]), "<v/>");
}

TEST_F(FurtherResultsTest, AreThoseOfXslt11Too) {
    EXPECT_EQ(run("<m><xsl:document href='d' method='text'>t</xsl:document></m>"), "<m/>");
    EXPECT_EQ(m_results["d"], "t");
}

TEST_F(FurtherResultsTest, MayDeclareNamespaces) {
    run("<exsl:document href='d' xmlns='urn:d' xmlns:p='urn:p'><d/></exsl:document>");
    EXPECT_EQ(vexa::XPath::compile("count(/d:d)", {{"d", "urn:d"}})
                  .evaluate(vexa::Document::parse(Input::text(m_results["d"])))
                  .number(),
              1);
}

// The DocBook stylesheets put base.dir before all names of files where saxon:output is available.
TEST_F(FurtherResultsTest, AreThoseOfSaxonToo) {
    EXPECT_EQ(run("<m x=\"{element-available('s:output')}\" y=\"{element-available('s:none')}\">"
                  "<s:output href='h'>1</s:output><s:output file='f'>2</s:output></m>"),
              "<m x=\"true\" y=\"false\"/>");
    EXPECT_EQ(body(m_results["h"]), "1");
    EXPECT_EQ(body(m_results["f"]), "2");
}

TEST_F(FurtherResultsTest, AreAvailableAsAnElement) {
    EXPECT_EQ(run("<m x=\"{element-available('exsl:document')}\" "
                  "y=\"{element-available('exsl:none')}\"/>"
                  "<exsl:document href='d'><xsl:fallback>no</xsl:fallback>1</exsl:document>"),
              "<m x=\"true\" y=\"false\"/>");
    EXPECT_EQ(body(m_results["d"]), "1");
}

TEST_F(FurtherResultsTest, AreDeniedWithoutAHandler) {
    const Stylesheet sheet = compiledWith("\n<exsl:document href='d.xml'/>");
    const auto error = failureOf([&] { Transformation(sheet).toString(Input::text("<a/>")); });
    EXPECT_EQ(error.kind(), ErrorKind::Denied);
    EXPECT_EQ(error.text(), "the document 'd.xml' may not be written");
    EXPECT_EQ(error.where().line, 2U);
}

TEST_F(FurtherResultsTest, AreRelativeToTheResultTheyStandIn) {
    Transformation run(compiledWith("<m><exsl:document href='o'><exsl:document href='i'/>"
                                    "</exsl:document><exsl:document href='p'/></m>"));
    writeToFolder(run);
    run.to(Input::text("<a/>"), Output::file(m_folder.path("main")));
    EXPECT_EQ(m_calls, "o in 'main'\ni in 'o'\np in 'main'\n");
    EXPECT_EQ(m_folder.list(), "i main o p");
}

TEST_F(FurtherResultsTest, AppearAllOrNone) {
    m_folder.write("1", "before");
    const std::string one = "<exsl:document href='1'>new</exsl:document>";
    const std::string two = "<exsl:document href='2'>new</exsl:document>";
    for (const std::string end :
         {"<xsl:message terminate='yes'/>", "<xsl:value-of select='$none'/>",
          "<exsl:document href='1'/>", "<exsl:document href='main'/>",
          "<exsl:document href='none/x'/>", "<exsl:document href='.'/>"}) {
        Transformation run(compiledWith(one + two + end));
        writeToFolder(run);
        failureOf([&] { run.to(Input::text("<a/>"), Output::file(m_folder.path("main"))); });
        EXPECT_EQ(m_folder.list(), "1") << end;
        EXPECT_EQ(readFile(m_folder.path("1")), "before") << end;
    }
    Transformation run(compiledWith(one + two));
    writeToFolder(run);
    run.to(Input::text("<a/>"), Output::file(m_folder.path("main")));
    EXPECT_EQ(m_folder.list(), "1 2 main");
    EXPECT_EQ(body(readFile(m_folder.path("1"))), "new");
}

TEST_F(FurtherResultsTest, AreNotWrittenTwice) {
    std::filesystem::create_symlink("1", m_folder.path("link"));
    for (const char* again : {"1", "./1", "link"}) {
        Transformation run(compiledWith("<exsl:document href='1'/>\n<exsl:document href='" +
                                        std::string(again) + "'/>"));
        writeToFolder(run);
        const auto error = failureOf([&] { run.toString(Input::text("<a/>")); });
        EXPECT_EQ(error.kind(), ErrorKind::Output);
        EXPECT_EQ(error.text(), "the document '" + std::string(again) + "' is written twice");
        EXPECT_EQ(error.where().line, 2U);
    }
}

TEST_F(FurtherResultsTest, FollowNoEndlessLink) {
    std::filesystem::create_symlink("loop", m_folder.path("loop"));
    Transformation run(compiledWith("<exsl:document href='loop'/>"));
    writeToFolder(run);
    expectFailure([&] { run.toString(Input::text("<a/>")); }, ErrorKind::Output,
                  "Too many levels of symbolic links");
    EXPECT_EQ(m_folder.list(), "loop");
}

TEST_F(FurtherResultsTest, CountForTheLimits) {
    Options options;
    options.limits.output = 100;
    Transformation run(
        compiledWith("<exsl:document href='1'>" + std::string(90, 'x') + "</exsl:document>"),
        options);
    writeToFolder(run);
    expectFailure([&] { run.toString(Input::text("<a/>")); }, ErrorKind::Limit, "output limit");
    EXPECT_EQ(m_folder.list(), "");
}

TEST_F(FurtherResultsTest, LetTheExceptionsOfTheHandlerPass) {
    const Stylesheet sheet = compiledWith("<exsl:document href='1'/>");
    Transformation run(sheet);
    run.onDocument([](const auto&...) -> Output { throw std::range_error("mine"); });
    EXPECT_THROW(run.toString(Input::text("<a/>")), std::range_error);
    writeToMemory(run);
    run.toString(Input::text("<a/>"));
    EXPECT_EQ(m_results.size(), 1U);
    run.onDocument([](const auto&...) -> Output {
        throw vexa::Error(ErrorKind::Input, "mine", {"urn:mine", 3, 4});
    });
    const auto error = failureOf([&] { run.toString(Input::text("<a/>")); });
    EXPECT_EQ(error.kind(), ErrorKind::Input);
    EXPECT_EQ(std::string(error.what()), "urn:mine:3:4: mine");
    run.onDocument({});
    expectFailure([&] { run.toString(Input::text("<a/>")); }, ErrorKind::Denied, "");
}

TEST_F(FurtherResultsTest, StandBesideADocument) {
    Transformation run(compiledWith("<m><exsl:document href='d'><d/></exsl:document></m>"));
    writeToMemory(run);
    EXPECT_EQ(run.toDocument(Input::text("<a/>")).root().xml(), "<m/>");
    EXPECT_EQ(body(m_results["d"]), "<d/>");
}
