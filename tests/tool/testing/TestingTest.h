/**
 * @file
 * Runs tests of stylesheets.
 */
#pragma once

#include "tool/ToolTest.h"

#include <string>

class TestingTest : public ToolTest {
protected:
    TestingTest() {
        m_folder.write("copy.xsl", stylesheet("<xsl:output omit-xml-declaration='yes'/>"
                                              "<xsl:param name='p' select=\"'-'\"/>"
                                              "<xsl:template match='/'><xsl:copy-of select='*'/>"
                                              "</xsl:template>"));
    }

    /** Writes a test file. */
    void writeTests(const std::string& name, const std::string& sheet, const std::string& cases) {
        m_folder.write(name, "<tests xmlns='http://vexa.example/xslt/test' stylesheet='" + sheet +
                                 "'>\n" + cases + "</tests>\n");
    }

    /** A case on one line. */
    static std::string caseOf(const std::string& name, const std::string& source,
                              const std::string& expectations) {
        return "<case name='" + name + "'><source xmlns=''>" + source + "</source>" + expectations +
               "</case>\n";
    }

    /** The report about one case, without the lines that all reports have. */
    std::string report(const std::string& sheet, const std::string& source,
                       const std::string& expectations, const std::string& options = "") {
        writeTests("a.tests.xml", sheet, caseOf("c", source, expectations));
        const Outcome outcome = tool("test a.tests.xml " + options);
        EXPECT_EQ(outcome.error, "");
        constexpr const char* BEGIN = "TAP version 13\n1..1\n";
        EXPECT_EQ(outcome.output.rfind(BEGIN, 0), 0U) << outcome.output;
        const std::string text = outcome.output.substr(std::string(BEGIN).size());
        const bool isPassed = text.rfind("ok 1 - a.tests.xml: c\n", 0) == 0;
        EXPECT_EQ(outcome.status, isPassed ? 0 : 1);
        constexpr const char* FAILED = "not ok 1 - a.tests.xml: c\n# a.tests.xml:2\n";
        return text.rfind(FAILED, 0) == 0 ? text.substr(std::string(FAILED).size()) : text;
    }

    /** Of a case that is passed. */
    static constexpr const char* PASSED = "ok 1 - a.tests.xml: c\n";
};
