#include "XsltTest.h"

#include "support/FailingStreams.h"

#include <fstream>
#include <sstream>

using vexa::Document;
using vexa::ErrorKind;
using vexa::Input;

namespace {

std::string contentOf(const Input& input) {
    return Document::parse(input).root().string();
}

} // namespace

TEST(InputTest, AFileIsRead) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", "<a>text</a>");
    EXPECT_EQ(contentOf(Input::file(path)), "text");
}

TEST(InputTest, APathIsTakenLiterally) {
    const TemporaryFolder folder;
    for (const char* name : {"100%.xml", "a b.xml", "a%20b.xml", "#1?x=y.xml", "\xC3\xA4.xml",
                             "a:b.xml", "\\.xml", "\xFF.xml"}) {
        const std::string path = folder.write(name, "<a>" + std::to_string(*name) + "</a>");
        EXPECT_EQ(contentOf(Input::file(path)), std::to_string(*name)) << name;
    }
}

TEST(InputTest, TheUriOfAFileIsAbsoluteAndPercentEncoded) {
    const TemporaryFolder folder;
    const Document document =
        Document::parse(Input::file(folder.write("a b%\xC3\xA4#.xml", "<a/>")));
    EXPECT_EQ(document.uri(), "file://" + folder.path("a%20b%25%C3%A4%23.xml"));
}

TEST(InputTest, ARelativePathIsOneOfTheWorkingDirectoryWhenTheInputIsMade) {
    const TemporaryFolder folder;
    folder.write("a.xml", "<a>here</a>");
    const auto directory = std::filesystem::current_path();
    std::filesystem::current_path(folder.path(""));
    const Input input = Input::file("a.xml");
    std::filesystem::current_path(directory);
    EXPECT_EQ(contentOf(input), "here");
    EXPECT_EQ(Document::parse(input).uri(), "file://" + folder.path("a.xml"));
}

TEST(InputTest, NothingIsReadBeforeAnOperationNeedsIt) {
    const TemporaryFolder folder;
    const Input input = Input::file(folder.path("later.xml"));
    folder.write("later.xml", "<a>now</a>");
    EXPECT_EQ(contentOf(input), "now");
}

TEST(InputTest, AFileThatCannotBeReadIsAnErrorThatNamesIt) {
    const TemporaryFolder folder;
    for (const std::string& path : {folder.path("none.xml"), folder.path("")}) {
        const vexa::Error error = failureOf([&] { Document::parse(Input::file(path)); });
        EXPECT_EQ(error.kind(), ErrorKind::Input) << path;
        EXPECT_EQ(error.where().uri, "file://" + path);
    }
    expectFailure([&] { Document::parse(Input::file(folder.path("none.xml"))); }, ErrorKind::Input,
                  "No such file");
    expectFailure([] { Document::parse(Input::file("")); }, ErrorKind::Input, "");
}

TEST(InputTest, ATextIsKept) {
    std::string text = "<a>text</a>";
    const Input input = Input::text(text);
    text.assign(text.size(), 'x');
    EXPECT_EQ(contentOf(input), "text");
    EXPECT_EQ(contentOf(input), "text"); // again and again
}

TEST(InputTest, AViewIsNotCopied) {
    std::string text = "<a>text</a>";
    const Input input = Input::view(text);
    text = "<a>TEXT</a>";
    EXPECT_EQ(contentOf(input), "TEXT");
    EXPECT_EQ(contentOf(Input::view(std::string_view("<a>b</a>garbage", 8))), "b");
}

TEST(InputTest, TheUriOfATextAViewAndAStreamIsWhatTheHostGaveWordForWord) {
    for (const char* uri : {"", "urn:x", "not a uri %", "http://h/%7Ea?b#c", "sub/dir.xml"}) {
        std::istringstream stream("<a/>");
        EXPECT_EQ(Document::parse(Input::text("<a/>", uri)).uri(), uri);
        EXPECT_EQ(Document::parse(Input::view("<a/>", uri)).uri(), uri);
        EXPECT_EQ(Document::parse(Input::stream(stream, uri)).uri(), uri);
        const vexa::Error error = failureOf([&] { Document::parse(Input::text("<a>", uri)); });
        EXPECT_EQ(error.where().uri, uri);
    }
}

TEST(InputTest, TheUriOfATextIsTheBaseOfWhatItRefersTo) {
    const TemporaryFolder folder;
    folder.write("other.xml", "<o>other</o>");
    const std::string base = "file://" + folder.path("none.xsl");
    const auto run = [&](const std::string& href) {
        const auto sheet = vexa::Stylesheet::compile(Input::text(
            stylesheetWithRootTemplate("<xsl:value-of select='document(\"" + href + "\")'/>"),
            base));
        return vexa::Transformation(sheet).toString(Input::text("<a/>"));
    };
    EXPECT_EQ(run("other.xml"), "other");
    EXPECT_EQ(run("./x/../other.xml"), "other");
}

TEST(InputTest, WithoutAUriReferencesAreRelativeToTheWorkingDirectory) {
    const TemporaryFolder folder;
    folder.write("other.xml", "<o>other</o>");
    const auto directory = std::filesystem::current_path();
    std::filesystem::current_path(folder.path(""));
    const std::string result = transformed("<xsl:value-of select='document(\"other.xml\")'/>");
    const std::string ofSource =
        transformed("<xsl:value-of select='document(\"other.xml\", /)'/>", "<a/>");
    std::filesystem::current_path(directory);
    EXPECT_EQ(result, "other");
    EXPECT_EQ(ofSource, "other");
}

TEST(InputTest, AStreamIsReadToItsEndOnce) {
    std::string text = "<a>";
    for (int i = 0; i < 20'000; ++i) {
        text += "0123456789";
    }
    std::istringstream stream(text + "</a>\n\n");
    const Input input = Input::stream(stream);
    const Input copy = input;
    EXPECT_EQ(contentOf(input).size(), 200'000U);
    EXPECT_EQ(stream.rdbuf()->in_avail(), 0);
    expectFailure([&] { Document::parse(input); }, ErrorKind::Usage, "read already");
    expectFailure([&] { Document::parse(copy); }, ErrorKind::Usage, "read already");
}

TEST(InputTest, AStreamThatFailsIsAnError) {
    FailingInputBuffer buffer("<a>text</a>", 5, StreamFailure::Exception);
    std::istream stream(&buffer);
    expectFailure([&] { Document::parse(Input::stream(stream, "urn:s")); }, ErrorKind::Input,
                  "stream");

    std::ifstream unopened("/none/such/file");
    const vexa::Error error = failureOf([&] { Document::parse(Input::stream(unopened, "urn:u")); });
    EXPECT_EQ(error.kind(), ErrorKind::Input) << error.what();
    EXPECT_EQ(error.where().uri, "urn:u");
}

/** A stream told to throw at its end can be read all the same. */
TEST(InputTest, AStreamToldToThrowThrowsItsFailuresOnly) {
    std::istringstream stream("<a>text</a>");
    stream.exceptions(std::ios_base::failbit | std::ios_base::badbit | std::ios_base::eofbit);
    EXPECT_EQ(contentOf(Input::stream(stream)), "text");

    FailingInputBuffer buffer("<a>text</a>", 5, StreamFailure::Exception);
    std::istream failing(&buffer);
    failing.exceptions(std::ios_base::badbit);
    EXPECT_THROW(Document::parse(Input::stream(failing)), DeviceError);
}

TEST(InputTest, AUriOfAFileIsDecoded) {
    const TemporaryFolder folder;
    folder.write("a b.xml", "<a>blank</a>");
    EXPECT_EQ(contentOf(Input::uri("file://" + folder.path("a%20b.xml"))), "blank");
    EXPECT_EQ(contentOf(Input::uri("file://localhost" + folder.path("a%20b.xml"))), "blank");
    EXPECT_EQ(contentOf(Input::uri("file:" + folder.path("x/../a%20b.xml"))), "blank");
}

TEST(InputTest, ARelativeUriIsOneOfTheWorkingDirectory) {
    const TemporaryFolder folder;
    folder.write("a b.xml", "<a>here</a>");
    const auto directory = std::filesystem::current_path();
    std::filesystem::current_path(folder.path(""));
    const Document document = Document::parse(Input::uri("a%20b.xml"));
    std::filesystem::current_path(directory);
    EXPECT_EQ(document.root().string(), "here");
    EXPECT_EQ(document.uri(), "file://" + folder.path("a%20b.xml"));
}

/** "%00" would end the path for the system, and not for the access policy. */
TEST(InputTest, AUriWithANulNamesNoFile) {
    const TemporaryFolder folder;
    folder.write("a.xml", "<a/>");
    expectFailure([&] { Document::parse(Input::uri("file://" + folder.path("a.xml%00.txt"))); },
                  ErrorKind::Input, "");
    expectFailure(
        [&] { Document::parse(Input::file(folder.path("a.xml") + std::string(1, '\0'))); },
        ErrorKind::Input, "");
}

TEST(InputTest, AUriOfAnUnknownKindCannotBeRead) {
    expectFailure([] { Document::parse(Input::uri("gopher://h/x")); }, ErrorKind::Input, "");
    expectFailure([] { Document::parse(Input::uri("")); }, ErrorKind::Input, "");
}

TEST(InputTest, TheEncodingIsThatOfTheDocument) {
    EXPECT_EQ(contentOf(Input::text("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE4</a>")),
              "\xC3\xA4");
    EXPECT_EQ(contentOf(Input::text(std::string("\xFF\xFE<\0a\0>\0\xE4\0<\0/\0a\0>\0", 18))),
              "\xC3\xA4");
    EXPECT_EQ(contentOf(Input::text("\xEF\xBB\xBF<a>\xF0\x9F\x8C\x8A</a>")), "\xF0\x9F\x8C\x8A");
}

TEST(InputTest, AnInputThatWasMovedFromAnswersWithUsage) {
    Input input = Input::text("<a/>");
    const Input other = std::move(input);
    EXPECT_EQ(contentOf(other), "");
    expectFailure([&] { Document::parse(input); }, // NOLINT(bugprone-use-after-move)
                  ErrorKind::Usage, "empty");
}
