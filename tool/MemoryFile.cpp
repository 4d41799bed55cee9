#include "MemoryFile.h"

#include <cerrno>
#include <fstream>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

MemoryFile::MemoryFile() : m_nDescriptor(memfd_create("vexa-xslt", MFD_CLOEXEC)) {
    if (m_nDescriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "a file in memory");
    }
    m_strPath = "/proc/self/fd/" + std::to_string(m_nDescriptor);
}

MemoryFile::~MemoryFile() {
    close(m_nDescriptor);
}

void MemoryFile::copyTo(std::ostream& output) const {
    const std::ifstream file(m_strPath, std::ios::binary);
    if (file.rdbuf()->in_avail() != 0) {
        output << file.rdbuf();
    }
}
