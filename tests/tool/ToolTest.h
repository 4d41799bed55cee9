/**
 * @file
 * Runs vexa-xslt as a user would, in a folder of its own.
 */
#pragma once

#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <string>

class ToolTest : public ::testing::Test {
protected:
    struct Outcome {
        int status;
        std::string output;
        std::string error;
    };

    ToolTest();

    /** Runs a shell command in the test's folder; "vexa-xslt" in it is the program under test. */
    Outcome shell(const std::string& command);

    /** Runs "vexa-xslt ARGUMENTS". */
    Outcome tool(const std::string& arguments) { return shell("vexa-xslt " + arguments); }

    /** Expects one line on standard error, nothing on standard output, and this exit status. */
    void expectFailure(const Outcome& outcome, int status, const std::string& begin,
                       const std::string& part = "");

    /** Writes "sheet.xsl" with a template for the document node. */
    void writeSheet(const std::string& content);

    /** Makes what is there, and may be read and written, but cannot be opened. */
    void makeSocket(const std::string& name) const;

    /** What a file in the test's folder holds. */
    std::string file(const std::string& name) const { return readFile(m_folder.path(name)); }

    /** The permission bits of a file in the test's folder. */
    unsigned permissions(const std::string& name) const;

    TemporaryFolder m_folder;
};
