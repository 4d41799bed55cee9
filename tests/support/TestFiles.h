/**
 * @file
 * Files for tests: a folder that is there for one test, and the project's own documents.
 */
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

/** A folder under the system's folder for temporary files; it goes with its content. */
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /** The path of a file in the folder, whether there is one or not. */
    std::string path(const std::string& name) const { return (m_path / name).string(); }

    /** Writes a file into the folder and gives its path. */
    std::string write(const std::string& name, const std::string& content) const;

    /** The names of all that is in the folder, sorted and parted by blanks. */
    std::string list() const;

private:
    std::filesystem::path m_path;
};

/** A whole file. Fails the test if it cannot be read. */
std::string readFile(const std::string& path);

/** The path of a file of the project. */
std::string projectFile(const std::string& name);

/** A stylesheet with the given top-level content; the prefixes vexa, xalan and exsl are bound. */
std::string stylesheet(const std::string& content);

/** A stylesheet with one template, for the document node. */
std::string stylesheetWithRootTemplate(const std::string& content);

/** A stylesheet that calls a function and reads a parameter whose names are beyond ASCII. */
std::string sheetOfAnyScript();

/** Whether two results are the same; where they are not, it shows only where they part. */
::testing::AssertionResult sameBytes(const std::string& actual, const std::string& expected);
