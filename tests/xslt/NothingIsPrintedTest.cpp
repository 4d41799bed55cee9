/**
 * @file
 * Nothing is printed, whatever happens, and no setting of the process is changed.
 */
#include "Failures.h"
#include "XsltTest.h"

#include <clocale>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <locale>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using vexa::Input;
using vexa::Transformation;

namespace {

/** What the process writes to one of its descriptors. */
class CapturedDescriptor {
public:
    explicit CapturedDescriptor(int descriptor)
        : m_descriptor(descriptor), m_saved(::dup(descriptor)), m_file(std::tmpfile()) {
        flush();
        ::dup2(::fileno(m_file), m_descriptor);
    }
    CapturedDescriptor(const CapturedDescriptor&) = delete;
    CapturedDescriptor& operator=(const CapturedDescriptor&) = delete;
    ~CapturedDescriptor() {
        static_cast<void>(finish());
        std::fclose(m_file);
    }

    std::string finish() {
        flush();
        if (m_saved >= 0) {
            ::dup2(m_saved, m_descriptor);
            ::close(m_saved);
            m_saved = -1;
        }
        std::string text;
        std::rewind(m_file);
        for (int c = std::fgetc(m_file); c != EOF; c = std::fgetc(m_file)) {
            text += static_cast<char>(c);
        }
        return text;
    }

private:
    static void flush() {
        std::cout.flush();
        std::cerr.flush();
        std::clog.flush();
        std::fflush(nullptr);
    }

    int m_descriptor;
    int m_saved;
    std::FILE* m_file;
};

/** All that a library could change for its process, as text. */
std::string settingsOfTheProcess() {
    std::ostringstream settings;
    settings << std::setlocale(LC_ALL, nullptr) << '|' << std::locale().name() << '|'
             << std::filesystem::current_path() << '|' << std::cerr.flags() << '|'
             << std::cout.flags() << '|' << std::cerr.rdbuf() << '|' << std::cout.rdbuf();
    const mode_t mask = ::umask(0);
    ::umask(mask);
    settings << '|' << mask;
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action {};
        if (::sigaction(number, nullptr, &action) == 0) {
            settings << '|' << reinterpret_cast<void*>(action.sa_handler);
        }
    }
    sigset_t blocked;
    ::sigprocmask(SIG_SETMASK, nullptr, &blocked);
    for (int number = 1; number < NSIG; ++number) {
        settings << sigismember(&blocked, number);
    }
    for (const auto resource : {RLIMIT_STACK, RLIMIT_AS, RLIMIT_NOFILE, RLIMIT_CORE}) {
        struct rlimit limit {};
        ::getrlimit(resource, &limit);
        settings << '|' << limit.rlim_cur;
    }
    for (char** variable = environ; *variable; ++variable) {
        settings << '|' << *variable;
    }
    settings << '|' << reinterpret_cast<void*>(std::get_terminate()) << '|'
             << reinterpret_cast<void*>(std::get_new_handler());
    return settings.str();
}

} // namespace

class NothingIsPrintedTest : public ::testing::TestWithParam<Failure> {};

TEST_P(NothingIsPrintedTest, AtThisFailure) {
    const Failure& failure = GetParam();
    const std::string before = settingsOfTheProcess();
    CapturedDescriptor output(STDOUT_FILENO);
    CapturedDescriptor errors(STDERR_FILENO);
    std::string outcome = "nothing was thrown";
    try {
        failure.fail();
    } catch (const vexa::Error& error) {
        outcome = error.what();
    } catch (const HostFailure&) {
        outcome = "host";
    }
    EXPECT_EQ(errors.finish(), "") << outcome;
    EXPECT_EQ(output.finish(), "") << outcome;
    EXPECT_NE(outcome, "nothing was thrown");
    EXPECT_EQ(settingsOfTheProcess(), before);
}

INSTANTIATE_TEST_SUITE_P(, NothingIsPrintedTest, ::testing::ValuesIn(allFailures()),
                         [](const auto& test) { return test.param.name; });

TEST(NothingIsPrintedHereTest, WhereNothingFails) {
    const std::string before = settingsOfTheProcess();
    CapturedDescriptor output(STDOUT_FILENO);
    CapturedDescriptor errors(STDERR_FILENO);
    // Messages, warnings of the parser and the engine, and a document that is missing.
    const std::string result =
        transformed("<xsl:message>m</xsl:message><xsl:copy-of select='document(\"file:///none\")'/>"
                    "<b><xsl:text/><xsl:attribute name='late'/></b>t<xsl:attribute name='later'/>",
                    "<!DOCTYPE a [<!ATTLIST a x CDATA 'd' x CDATA 'e'>]><a/>");
    EXPECT_EQ(errors.finish(), "");
    EXPECT_EQ(output.finish(), "");
    EXPECT_EQ(settingsOfTheProcess(), before);
}

/** The expression is wrong: the engine goes on with an empty node-set. */
TEST(NothingIsPrintedHereTest, WhereAStylesheetComposesAnExpression) {
    CapturedDescriptor errors(STDERR_FILENO);
    const std::string result = transformed(
        "<xsl:value-of select='count(d:evaluate(\"a[\"))' xmlns:d='http://exslt.org/dynamic'/>");
    EXPECT_EQ(errors.finish(), "");
    EXPECT_EQ(result, "0");
}

/** The engine composes a pattern from the name of the node, and a wrong one for attributes. */
TEST(NothingIsPrintedHereTest, WhereAnAttributeIsNumbered) {
    const auto number = [](const std::string& nodes) {
        return transformed("<xsl:for-each select='" + nodes + "'><xsl:number/></xsl:for-each>",
                           "<a x='1' y='2' n:z='3' xmlns:n='urn:n'/>");
    };
    CapturedDescriptor errors(STDERR_FILENO);
    EXPECT_EQ(number("/a/@*"), "111");
    const auto error = failureOf([&] { number("/a/namespace::n"); });
    EXPECT_EQ(errors.finish(), "");
    EXPECT_EQ(error.kind(), vexa::ErrorKind::Transform);
    EXPECT_NE(error.text().find("'xmlns'"), std::string::npos) << error.what();
}

/** Without a handler they are with the error all the same. */
TEST(NothingIsPrintedHereTest, MessagesAndWarningsAreWithTheErrorThatEndsTheOperation) {
    std::vector<std::string> heard;
    vexa::Options options;
    options.onMessage = [&](const vexa::Diagnostic& message) { heard.push_back(message.text); };
    const std::string content =
        "<xsl:message>m</xsl:message><xsl:copy-of select='document(\"file:///none\")'/>"
        "<xsl:message terminate='yes'/>";
    for (const vexa::Options& setting : {vexa::Options(), options}) {
        const auto error = failureOf([&] { transformed(content, "<a/>", setting); });
        ASSERT_EQ(error.diagnostics().size(), 2U);
        EXPECT_EQ(error.diagnostics()[0].text, "m");
        EXPECT_EQ(error.diagnostics()[1].severity, vexa::Severity::Warning);
    }
    EXPECT_EQ(heard.size(), 2U);
}
