/**
 * @file
 * A file that exists in memory only, for a result that the library writes to a file by name.
 */
#pragma once

#include <ostream>
#include <string>

class MemoryFile {
public:
    /** @throws std::system_error */
    MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();

    /** A name under which this process can open the file. */
    const std::string& path() const { return m_strPath; }

    void copyTo(std::ostream& output) const;

private:
    int m_nDescriptor;
    std::string m_strPath;
};
