/**
 * @file
 * A file that appears whole or not at all.
 */
#pragma once

#include <string>

/**
 * The place for a result. A regular file is written beside its place, and takes it when the result
 * is complete; until then, and after a failure, what was there before stays as it was. Anything
 * that is no regular file (a device, a FIFO) is written to directly. A symbolic link is followed.
 *
 * One object at a time in a thread. An interrupt removes the unfinished file.
 */
class OutputFile {
public:
    /** @throws Failure if the file cannot be written */
    explicit OutputFile(const std::string& name);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    /** Removes what is unfinished. */
    ~OutputFile();

    /** Where the result is to be written now. */
    const std::string& writePath() const { return m_strWritePath; }

    /** Puts the finished result in its place. @throws Failure if that cannot be done */
    void commit();

private:
    void createBeside();

    std::string m_strName;
    /** The name with its symbolic links followed. */
    std::string m_strPlace;
    std::string m_strWritePath;
};

/** The place that a name stands for, its symbolic links followed. @throws Failure */
std::string outputPlace(const std::string& name);
