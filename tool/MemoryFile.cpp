#include "MemoryFile.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace {

/** A file in memory is no part of the address space, whose limit it would slip. */
void limitFileSize(unsigned mebibytes, rlimit& before) {
    constexpr rlim_t MEBIBYTE = rlim_t{1024} * 1024;
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit limit = before;
    if (mebibytes < limit.rlim_cur / MEBIBYTE) {
        limit.rlim_cur = mebibytes * MEBIBYTE;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
}

} // namespace

MemoryFile::MemoryFile(unsigned maxMebibytes)
    : m_nDescriptor(memfd_create("vexa-xslt", MFD_CLOEXEC)) {
    if (m_nDescriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "a file in memory");
    }
    // A result that grows too large, for this limit or the user's own, is an error like any other.
    std::signal(SIGXFSZ, SIG_IGN);
    if (maxMebibytes != 0) {
        limitFileSize(maxMebibytes, m_limitBefore.emplace());
    }
    m_strPath = "/proc/self/fd/" + std::to_string(m_nDescriptor);
}

MemoryFile::~MemoryFile() {
    liftLimit();
    close(m_nDescriptor);
}

/** It holds for every file, those that errors are told to included. */
void MemoryFile::liftLimit() {
    if (m_limitBefore) {
        setrlimit(RLIMIT_FSIZE, &*m_limitBefore);
        m_limitBefore.reset();
    }
}

void MemoryFile::copyTo(std::ostream& output) {
    liftLimit();
    const std::ifstream file(m_strPath, std::ios::binary);
    if (file.rdbuf()->in_avail() != 0) {
        output << file.rdbuf();
    }
}
