/**
 * @file
 * A file that exists in memory only, for a result that the library writes to a file by name.
 */
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <sys/resource.h>

class MemoryFile {
public:
    /**
     * @param maxMebibytes how large files may become from now on; 0 for no limit
     * @throws std::system_error
     */
    explicit MemoryFile(unsigned maxMebibytes);
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();

    /** A name under which this process can open the file. */
    const std::string& path() const { return m_strPath; }

    /** Copies it; the limit is then gone. */
    void copyTo(std::ostream& output);

private:
    void liftLimit();

    int m_nDescriptor;
    std::optional<rlimit> m_limitBefore;
    std::string m_strPath;
};
