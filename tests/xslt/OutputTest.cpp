#include "XsltTest.h"

#include "support/FailingStreams.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using vexa::ErrorKind;
using vexa::Input;
using vexa::Output;
using vexa::Transformation;

namespace fs = std::filesystem;

namespace {

class OutputTest : public ::testing::Test {
protected:
    void write(const Output& output) { m_run.to(Input::text("<a/>"), output); }
    void writeAndFail(const Output& output) {
        expectFailure([&] { m_failingRun.to(Input::text("<a/>"), output); }, ErrorKind::Terminated,
                      "end");
    }

    TemporaryFolder m_folder;
    Transformation m_run{compiledRootTemplate("<b/>")};
    /** Writes 200,000 bytes before it fails. */
    Transformation m_failingRun{compiledRootTemplate(
        "<b>" + std::string(200'000, 'x') + "</b><xsl:message terminate='yes'>end</xsl:message>")};
};

mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

} // namespace

TEST_F(OutputTest, AFileAppears) {
    write(Output::file(m_folder.path("new.xml")));
    EXPECT_EQ(readFile(m_folder.path("new.xml")), "<b/>");
    EXPECT_EQ(m_folder.list(), "new.xml");
}

TEST_F(OutputTest, APathIsTakenLiterally) {
    write(Output::file(m_folder.path("100%20 \xC3\xA4#?.xml")));
    EXPECT_EQ(m_folder.list(), "100%20 \xC3\xA4#?.xml");
}

TEST_F(OutputTest, ANewFileHasThePermissionsOfTheUmask) {
    const mode_t mask = ::umask(027);
    write(Output::file(m_folder.path("new.xml")));
    EXPECT_EQ(::umask(mask), 027U);
    EXPECT_EQ(modeOf(m_folder.path("new.xml")), 0640U);
}

TEST_F(OutputTest, AFileIsReplacedAndKeepsItsPermissions) {
    const std::string path = m_folder.write("old.xml", "something that is longer");
    fs::permissions(path, fs::perms(0604));
    write(Output::file(path));
    EXPECT_EQ(readFile(path), "<b/>");
    EXPECT_EQ(modeOf(path), 0604U);
    EXPECT_EQ(m_folder.list(), "old.xml");
}

TEST_F(OutputTest, AFileIsAsItWasAfterAFailure) {
    const std::string path = m_folder.write("old.xml", "old");
    writeAndFail(Output::file(path));
    writeAndFail(Output::file(m_folder.path("new.xml")));
    EXPECT_EQ(readFile(path), "old");
    EXPECT_EQ(m_folder.list(), "old.xml");
}

/** A file has no name before it is whole. */
TEST_F(OutputTest, NothingIsLeftOfAProcessThatIsKilled) {
    m_folder.write("old.xml", "old");
    const pid_t child = ::fork();
    if (child == 0) {
        Transformation run(compiledRootTemplate("<b/><xsl:message>now</xsl:message>"));
        run.onMessage([](const vexa::Diagnostic&) { ::raise(SIGKILL); });
        run.to(Input::text("<a/>"), Output::file(m_folder.path("old.xml")));
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(readFile(m_folder.path("old.xml")), "old");
    EXPECT_EQ(m_folder.list(), "old.xml");
}

TEST_F(OutputTest, AReaderOfTheOldFileGoesOnReadingIt) {
    const std::string path = m_folder.write("old.xml", "old");
    std::ifstream reader(path);
    write(Output::file(path));
    std::string text;
    reader >> text;
    EXPECT_EQ(text, "old");
}

TEST_F(OutputTest, ASourceIsReplacedByItsOwnResult) {
    const std::string path = m_folder.write("a.xml", "<a>1</a>");
    Transformation run(compiledRootTemplate("<b><xsl:value-of select='a + 1'/></b>"));
    run.to(Input::file(path), Output::file(path));
    EXPECT_EQ(readFile(path), "<b>2</b>");
}

TEST_F(OutputTest, ASymbolicLinkIsFollowed) {
    fs::create_directory(m_folder.path("sub"));
    m_folder.write("sub/real.xml", "old");
    fs::create_symlink("sub/real.xml", m_folder.path("link.xml"));
    fs::create_symlink("sub/new.xml", m_folder.path("dangling.xml"));
    write(Output::file(m_folder.path("link.xml")));
    write(Output::file(m_folder.path("dangling.xml")));
    EXPECT_TRUE(fs::is_symlink(m_folder.path("link.xml")));
    EXPECT_TRUE(fs::is_symlink(m_folder.path("dangling.xml")));
    EXPECT_EQ(readFile(m_folder.path("sub/real.xml")), "<b/>");
    EXPECT_EQ(readFile(m_folder.path("sub/new.xml")), "<b/>");
}

TEST_F(OutputTest, ARelativePathIsOneOfTheWorkingDirectoryWhenTheOutputIsMade) {
    const auto directory = fs::current_path();
    fs::current_path(m_folder.path(""));
    const Output output = Output::file("new.xml");
    fs::current_path(directory);
    write(output);
    EXPECT_EQ(readFile(m_folder.path("new.xml")), "<b/>");
}

TEST_F(OutputTest, ADeviceIsWrittenToDirectly) {
    write(Output::file("/dev/null"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(OutputTest, AFileThatTheProcessHasOpenIsAppendedTo) {
    const std::string path = m_folder.write("log", "before ");
    const int file = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    write(Output::file("/dev/fd/" + std::to_string(file)));
    write(Output::file("/proc/self/fd/" + std::to_string(file)));
    EXPECT_EQ(::write(file, " after", 6), 6);
    ::close(file);
    EXPECT_EQ(readFile(path), "before <b/><b/> after");
    EXPECT_EQ(m_folder.list(), "log");
}

TEST_F(OutputTest, AFifoIsWrittenToDirectly) {
    const std::string path = m_folder.path("fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::string text;
    std::thread reader([&] { text = readFile(path); });
    write(Output::file(path));
    reader.join();
    EXPECT_EQ(text, "<b/>");
    EXPECT_EQ(m_folder.list(), "fifo");
}

TEST_F(OutputTest, WhatCannotBeWrittenIsAnErrorThatNamesIt) {
    for (const std::string& path :
         {m_folder.path("none/new.xml"), m_folder.path("."), std::string("/dev/full")}) {
        const vexa::Error error = failureOf([&] { write(Output::file(path)); });
        EXPECT_EQ(error.kind(), ErrorKind::Output) << error.what();
        EXPECT_EQ(error.where().uri, "file://" + path);
    }
    EXPECT_EQ(m_folder.list(), "");
    expectFailure([&] { write(Output::file("/proc/self/fd/no")); }, ErrorKind::Output,
                  "cannot create");
    expectFailure([&] { write(Output::file("/dev/full")); }, ErrorKind::Output, "No space left");
    expectFailure([&] { write(Output::file("")); }, ErrorKind::Output, "No such file");
    expectFailure([&] { write(Output::file(m_folder.path("new.xml") + std::string(1, '\0'))); },
                  ErrorKind::Output, "Invalid argument");
    fs::create_symlink("loop", m_folder.path("loop"));
    expectFailure([&] { write(Output::file(m_folder.path("loop"))); }, ErrorKind::Output, "links");
    EXPECT_EQ(m_folder.list(), "loop");
}

TEST_F(OutputTest, AFileThatCannotBePutInItsPlaceIsAnErrorThatNamesIt) {
    const std::string path = m_folder.path("new.xml");
    Transformation run(compiledRootTemplate("<xsl:value-of select='f:f()' xmlns:f='urn:f'/>"));
    run.function("urn:f", "f", [&](const vexa::Call&) { return fs::create_directory(path); });
    const vexa::Error error = failureOf([&] { run.to(Input::text("<a/>"), Output::file(path)); });
    EXPECT_EQ(error.kind(), ErrorKind::Output);
    EXPECT_EQ(std::string(error.what()), "file://" + path + ": cannot replace: Is a directory");
    EXPECT_EQ(m_folder.list(), "new.xml");
}

/** The whole result fits into the buffer, so that only the last step meets the full device. */
TEST_F(OutputTest, AFullDeviceIsNoticedWhateverTheSize) {
    for (const std::size_t size : {1U, 65'535U, 65'536U, 300'000U}) {
        Transformation run(compiledRootTemplate("<b>" + std::string(size, 'x') + "</b>"));
        expectFailure([&] { run.to(Input::text("<a/>"), Output::file("/dev/full")); },
                      ErrorKind::Output, "No space left");
    }
}

TEST_F(OutputTest, AStreamIsWrittenAndFlushed) {
    class Buffer : public std::stringbuf {
    public:
        int m_flushes = 0;

    protected:
        int sync() override {
            ++m_flushes;
            return 0;
        }
    } buffer;
    std::ostream stream(&buffer);
    stream << "before ";
    write(Output::stream(stream));
    EXPECT_EQ(buffer.str(), "before <b/>"); // without a NUL
    EXPECT_EQ(buffer.m_flushes, 1);
}

TEST_F(OutputTest, AStreamThatFailsIsAnError) {
    for (const auto failure : {StreamFailure::End, StreamFailure::Exception}) {
        for (const std::size_t bytes : {0U, 3U}) {
            FailingOutputBuffer buffer(bytes, failure);
            std::ostream stream(&buffer);
            expectFailure([&] { write(Output::stream(stream)); }, ErrorKind::Output, "stream");
        }
    }
    class : public std::stringbuf {
        int sync() override { return -1; }
    } notFlushed;
    std::ostream stream(&notFlushed);
    expectFailure([&] { write(Output::stream(stream)); }, ErrorKind::Output, "stream");
    std::ofstream unopened;
    expectFailure([&] { write(Output::stream(unopened)); }, ErrorKind::Output, "stream");
}

TEST_F(OutputTest, AStreamToldToThrowThrowsToTheHost) {
    FailingOutputBuffer buffer(2, StreamFailure::Exception);
    std::ostream stream(&buffer);
    stream.exceptions(std::ios_base::badbit);
    EXPECT_THROW(write(Output::stream(stream)), DeviceError);
    EXPECT_THROW(parsed("<a/>").write(Output::stream(stream)), std::ios_base::failure);
    write(Output::file(m_folder.path("new.xml"))); // the same object
}

TEST_F(OutputTest, AStringIsReplacedAfterSuccessOnly) {
    std::string text = "old";
    writeAndFail(Output::text(text));
    EXPECT_EQ(text, "old");
    write(Output::text(text));
    EXPECT_EQ(text, "<b/>");
}

TEST_F(OutputTest, AStringIsReplacedByTheResultOfItself) {
    std::string text = "<a>1</a>";
    Transformation run(compiledRootTemplate("<b><xsl:value-of select='a + 1'/></b>"));
    run.to(Input::view(text), Output::text(text));
    EXPECT_EQ(text, "<b>2</b>");
}

TEST_F(OutputTest, BytesAreInTheEncodingOfTheStylesheet) {
    Transformation run(compiled("<xsl:output method='text' encoding='ISO-8859-1'/>"
                                "<xsl:template match='/'>\xC3\xA4</xsl:template>"));
    std::string text;
    std::ostringstream stream;
    run.to(Input::text("<a/>"), Output::text(text));
    run.to(Input::text("<a/>"), Output::stream(stream));
    run.to(Input::text("<a/>"), Output::file(m_folder.path("out")));
    EXPECT_EQ(text, "\xE4");
    EXPECT_EQ(stream.str(), "\xE4");
    EXPECT_EQ(readFile(m_folder.path("out")), "\xE4");
    EXPECT_EQ(run.toString(Input::text("<a/>")), "\xE4");
}

TEST_F(OutputTest, AnOutputThatWasMovedFromAnswersWithUsage) {
    std::string text;
    Output output = Output::text(text);
    const Output other = std::move(output);
    expectFailure([&] { write(output); }, // NOLINT(bugprone-use-after-move)
                  ErrorKind::Usage, "empty");
    write(other);
    EXPECT_EQ(text, "<b/>");
}
