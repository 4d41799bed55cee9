#include "xslt/AtomicFile.h"

#include "xslt/Uri.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

std::filesystem::path followLinks(std::filesystem::path path) {
    constexpr int MOST_LINKS = 40; // as the kernel has it
    std::error_code noLink;
    for (int links = 0; links < MOST_LINKS; ++links) {
        const auto target = std::filesystem::read_symlink(path, noLink);
        if (noLink) {
            break;
        }
        path = path.parent_path() / target;
    }
    return path;
}

namespace {

/** How many names are tried that may be taken. */
constexpr int MOST_TRIES = 100;

/** A name in the folder of a file that nobody else uses; short, as the file's own may be long. */
std::filesystem::path temporaryName(const std::filesystem::path& path) {
    static std::atomic<unsigned> count{0};
    const auto name = ".vexa-" + std::to_string(::getpid()) + "-" + std::to_string(count++);
    return path.parent_path() / name;
}

/** Empty without a working directory: then the path is refused. */
std::filesystem::path absolutePath(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::absolute(path, ignored);
}

/** The descriptor that a path names, such as standard output; -1 for any other path. */
int descriptorNamedBy(const std::filesystem::path& path) {
    const std::string folder = path.parent_path().native();
    const std::string name = path.filename().native();
    int descriptor = -1;
    if (folder == "/dev") {
        descriptor = name == "stdout" ? STDOUT_FILENO : name == "stderr" ? STDERR_FILENO : -1;
    } else if (folder == "/dev/fd" || folder == "/proc/self/fd") {
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
    }
    return descriptor;
}

/** What is no regular file, or is open already: then it is written to where others write, too. */
int openDirectly(const std::filesystem::path& path) {
    const int named = descriptorNamedBy(path);
    const int flags = ::fcntl(named, F_GETFL);
    const bool isWritable = flags != -1 && (flags & O_ACCMODE) != O_RDONLY;
    return isWritable ? ::fcntl(named, F_DUPFD_CLOEXEC, 0)
                      : ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
}

} // namespace

AtomicFile::AtomicFile(const std::filesystem::path& path, Fail fail)
    : m_path(absolutePath(path)), m_fail(std::move(fail)) {
    struct stat status {};
    if (m_path.native().find('\0') != std::string::npos) {
        errno = EINVAL;
    } else if (::stat(m_path.c_str(), &status) != 0) {
        if (errno == ENOENT && m_path.has_filename()) {
            openTemporary();
        }
    } else if (!S_ISREG(status.st_mode) || descriptorNamedBy(m_path) >= 0) {
        m_file = openDirectly(m_path);
    } else if (::access(m_path.c_str(), W_OK) == 0) {
        openTemporary();
        takeAttributes(status);
    }
    if (m_file < 0) {
        this->fail("cannot open");
    }
}

AtomicFile::~AtomicFile() {
    if (m_file >= 0) {
        ::close(m_file);
    }
    if (!m_temporary.empty()) {
        ::unlink(m_temporary.c_str());
    }
}

void AtomicFile::write(const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(m_file, bytes, size);
        if (written < 0 && errno != EINTR) {
            fail("cannot write");
        }
        if (written > 0) {
            bytes += written;
            size -= static_cast<std::size_t>(written);
        }
    }
}

void AtomicFile::commit() {
    if (m_hasNoName) {
        giveName();
    }
    if (::close(std::exchange(m_file, -1)) != 0) {
        fail("cannot write");
    }
    if (!m_temporary.empty()) {
        if (::rename(m_temporary.c_str(), m_path.c_str()) != 0) {
            fail("cannot replace");
        }
        m_temporary.clear();
    }
}

void AtomicFile::openTemporary() {
    // A symbolic link stays; what it names is replaced, or appears.
    m_path = followLinks(m_path);
    // A file without a name gets one by way of this folder.
    if (::access("/proc/self/fd", X_OK) == 0) {
        m_file = ::open(m_path.parent_path().c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
    }
    m_hasNoName = m_file >= 0;
    for (int tries = 1; m_file < 0; ++tries) {
        m_temporary = temporaryName(m_path);
        m_file = ::open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (m_file < 0 && (errno != EEXIST || tries == MOST_TRIES)) {
            m_temporary.clear();
            fail("cannot create");
        }
    }
}

/** Owner and permissions of the file that is to be replaced, as far as they may be given. */
void AtomicFile::takeAttributes(const struct stat& original) const {
    if (::fchown(m_file, original.st_uid, original.st_gid) != 0) {
        [[maybe_unused]] const int isGroupKept =
            ::fchown(m_file, static_cast<uid_t>(-1), original.st_gid);
    }
    ::fchmod(m_file, original.st_mode & 07777);
}

void AtomicFile::giveName() {
    const std::string file = "/proc/self/fd/" + std::to_string(m_file);
    const auto isNamed = [&file](const std::filesystem::path& name) {
        return ::linkat(AT_FDCWD, file.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    };
    m_hasNoName = !isNamed(m_path);
    // Only a rename replaces a file.
    for (int tries = 0; m_hasNoName; ++tries) {
        if (errno != EEXIST || tries == MOST_TRIES) {
            fail("cannot create");
        }
        m_temporary = temporaryName(m_path);
        m_hasNoName = !isNamed(m_temporary);
        if (m_hasNoName) {
            m_temporary.clear(); // it is not ours
        }
    }
}

void AtomicFile::fail(const char* what) const {
    m_fail(std::string(what) + ": " + std::generic_category().message(errno),
           {fileUri(m_path), 0, 0});
}
