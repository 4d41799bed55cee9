#include "ToolTest.h"

#include <algorithm>
#include <cstdlib>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

ToolTest::ToolTest() {
    m_folder.write("ok.xml", "<a>x</a>");
    m_folder.write("ok.xsl", stylesheetWithRootTemplate("<b><xsl:value-of select='a'/></b>"));
}

ToolTest::Outcome ToolTest::shell(const std::string& command) {
    const TemporaryFolder streams;
    const std::string script = streams.write("script", "cd '" + m_folder.path("") +
                                                           "'\n"
                                                           "PATH='" TOOL_FOLDER "':\"$PATH\"\n" +
                                                           command + "\n");
    const int status = std::system(("bash '" + script + "' </dev/null >'" + streams.path("out") +
                                    "' 2>'" + streams.path("err") + "'")
                                       .c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(streams.path("out")),
            readFile(streams.path("err"))};
}

void ToolTest::expectFailure(const Outcome& outcome, int status, const std::string& begin,
                             const std::string& part) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error.rfind("vexa-xslt: " + begin, 0), 0U) << outcome.error;
    EXPECT_NE(outcome.error.find(part), std::string::npos) << outcome.error;
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1) << outcome.error;
    EXPECT_EQ(outcome.error.back(), '\n');
}

void ToolTest::writeSheet(const std::string& content) {
    m_folder.write("sheet.xsl", stylesheetWithRootTemplate(content));
}

void ToolTest::makeSocket(const std::string& name) const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    m_folder.path(name).copy(address.sun_path, sizeof address.sun_path - 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(descriptor);
}

unsigned ToolTest::permissions(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(stat(m_folder.path(name).c_str(), &status), 0);
    return status.st_mode & 07777;
}
