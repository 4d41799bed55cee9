/**
 * @file
 * Streams and files that fail after n bytes, for every n up to the size of a small document.
 */
#include "support/FailingStreams.h"

#include "support/TransformTest.h"

#include <vexa/Dom2Dom.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

const std::string SOURCE = "<a>x<i/></a>";
const std::string RESULT = "<b>x</b>";

class StreamFaultTest : public TransformTest, public ::testing::WithParamInterface<StreamFailure> {
protected:
    void expectTransformerIsUsable(std::size_t n) {
        const auto next = transformStream(SOURCE, m_sheet);
        EXPECT_EQ(next.result, 0) << n << ": " << next.error;
        EXPECT_EQ(next.output, withNul(RESULT)) << n;
    }

    /**
     * Runs an operation with outputs that accept 0, 1, 2 ... bytes, up to the complete output.
     *
     * @param whole     the complete output
     * @param reported  a failure within this number of bytes is reported by the result code; after
     *                  it, only by the state of the stream
     * @param operation returns its result code
     */
    void expectFailuresOfOutput(const std::string& whole, std::size_t reported,
                                const std::function<int(std::ostream&)>& operation) {
        for (std::size_t n = 0; n <= whole.size(); ++n) {
            FailingOutputBuffer buffer(n, GetParam());
            std::ostream output(&buffer);
            EXPECT_EQ(operation(output), n < reported ? -1 : 0) << n;
            EXPECT_EQ(buffer.text(), whole.substr(0, n));
            EXPECT_EQ(output.good(), n == whole.size()) << n;
            expectTransformerIsUsable(n);
        }
    }

    const std::string m_sheet = sheetWithRootTemplate("<b><xsl:value-of select='a'/></b>");
};

} // namespace

TEST_P(StreamFaultTest, ASourceThatFailsIsReported) {
    for (std::size_t n = 0; n < SOURCE.size(); ++n) {
        FailingInputBuffer buffer(SOURCE, n, GetParam());
        std::istream source(&buffer);
        std::ostringstream output;
        EXPECT_EQ(m_transformer.doTransform(source, m_sheet.c_str(), output), -2) << n;
        EXPECT_STRNE(m_transformer.getLastError(), "") << n;
        EXPECT_EQ(output.str(), "") << n;
        expectTransformerIsUsable(n);
    }
}

TEST_P(StreamFaultTest, AFailedSourceGivesNoDocument) {
    for (std::size_t n = 0; n < SOURCE.size(); ++n) {
        FailingInputBuffer buffer(SOURCE, n, GetParam());
        std::istream source(&buffer);
        const auto document = m_transformer.createDom2Dom();
        EXPECT_FALSE(document->InitializeInputSource(source, "broken.xml")) << n;
        EXPECT_STRNE(document->getLastError(), "") << n;
        EXPECT_EQ(document->GetDocument(), nullptr) << n;
        expectTransformerIsUsable(n);
    }
}

TEST_P(StreamFaultTest, AStreamThatThrowsPassesItsExceptionAndTheModeIsNotSet) {
    for (std::size_t n = 0; n < SOURCE.size(); ++n) {
        FailingInputBuffer buffer(SOURCE, n, GetParam());
        std::istream source(&buffer);
        source.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
        const auto document = m_transformer.createDom2Dom();
        EXPECT_ANY_THROW(document->InitializeInputSource(source, "broken.xml")) << n;
        EXPECT_TRUE(document->InitializeInputSource(SOURCE.c_str())) << n;
        expectTransformerIsUsable(n);
    }
}

TEST_P(StreamFaultTest, AFailedOutputHasTheBytesBeforeTheFailure) {
    expectFailuresOfOutput(withNul(RESULT), RESULT.size(), [this](std::ostream& output) {
        std::istringstream source(SOURCE);
        return m_transformer.doTransform(source, m_sheet.c_str(), output);
    });
}

TEST_P(StreamFaultTest, AFailedStreamOutputHasTheBytesBeforeTheFailure) {
    expectFailuresOfOutput(RESULT, RESULT.size(), [this](std::ostream& output) {
        const auto in = m_transformer.createDom2Dom();
        const auto out = m_transformer.createDom2Dom();
        in->InitializeInputSource(SOURCE.c_str());
        out->InitializeOutputTarget(output);
        return m_transformer.doTransform(*in, m_sheet.c_str(), *out);
    });
}

TEST_P(StreamFaultTest, AFailedSerializationHasTheBytesBeforeTheFailure) {
    const auto in = m_transformer.createDom2Dom();
    const auto out = m_transformer.createDom2Dom();
    in->InitializeInputSource(SOURCE.c_str());
    out->InitializeOutputTarget();
    ASSERT_EQ(m_transformer.doTransform(*in, m_sheet.c_str(), *out), 0);
    const std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><b>x</b>";
    expectFailuresOfOutput(withNul(document + '\n'), document.size(),
                           [&](std::ostream& output) { return out->Serialize(output); });
}

TEST_P(StreamFaultTest, AFailedQueryHasTheBytesBeforeTheFailure) {
    const auto in = m_transformer.createDom2Dom();
    in->InitializeInputSource(SOURCE.c_str());
    const auto query = [&](const char* expression) {
        return [&, expression](std::ostream& output) {
            return m_transformer.doXPath(*in, expression, output);
        };
    };
    const std::string node = "<i/>";
    expectFailuresOfOutput(node, node.size(), query("/a/i"));
    expectFailuresOfOutput("text", 0, query("string('text')"));
}

INSTANTIATE_TEST_SUITE_P(, StreamFaultTest,
                         ::testing::Values(StreamFailure::End, StreamFailure::Exception),
                         [](const auto& test) {
                             return test.param == StreamFailure::End ? "ByState" : "ByException";
                         });

using FileFaultTest = TransformTest;

TEST_F(FileFaultTest, AFullDeviceIsReported) {
    const std::string sheet = sheetWithRootTemplate("<b/>");
    EXPECT_EQ(m_transformer.doTransform(source().c_str(), sheet.c_str(), "/dev/full"), -1);
    EXPECT_STRNE(m_transformer.getLastError(), "");
    EXPECT_EQ(transformFile(source(), sheet).output, "<b/>");
}

namespace {

/** Writes a text into a pipe, and closes the pipe. */
void writeInto(const std::string& pipe, const std::string& text) {
    const int file = open(pipe.c_str(), O_WRONLY);
    EXPECT_EQ(write(file, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(file);
}

} // namespace

TEST_F(FileFaultTest, APipeThatIsClosedEarlyIsReported) {
    const std::string sheet = sheetWithRootTemplate("<b/>");
    const std::string pipe = m_folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (std::size_t n = 0; n < SOURCE.size(); ++n) {
        std::thread writer(writeInto, pipe, SOURCE.substr(0, n));
        EXPECT_EQ(transformFile(pipe, sheet).result, -2) << n;
        writer.join();
    }
    EXPECT_EQ(transformFile(source(), sheet).output, "<b/>");
}
