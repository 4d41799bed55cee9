/**
 * @file
 * Files for tests: a temporary folder, and files of the project.
 */
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

/** A temporary folder. The destructor deletes it with its content. */
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /** The path of a file in the folder. The file need not exist. */
    std::string path(const std::string& name) const { return (m_path / name).string(); }

    /** Writes a file into the folder and returns its path. */
    std::string write(const std::string& name, const std::string& content) const;

    /** The names of all files in the folder, sorted and separated by spaces. */
    std::string list() const;

private:
    std::filesystem::path m_path;
};

/** The content of a file. Fails the test if the file cannot be read. */
std::string readFile(const std::string& path);

/** The path of a file of the project. */
std::string projectFile(const std::string& name);

/** A stylesheet with the given top-level content; the prefixes vexa, xalan and exsl are bound. */
std::string stylesheet(const std::string& content);

/** A stylesheet with one template, for the document node. */
std::string stylesheetWithRootTemplate(const std::string& content);

/** A stylesheet that calls a function and reads a parameter with non-ASCII names. */
std::string sheetInAnyScript();

/** Compares two results. A failure shows only the first difference. */
::testing::AssertionResult sameBytes(const std::string& actual, const std::string& expected);
