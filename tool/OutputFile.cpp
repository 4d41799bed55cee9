#include "OutputFile.h"

#include "Failure.h"
#include "UnfinishedFile.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/** Whether a link stands for an open descriptor of a process (/dev/stdout, /dev/fd/3). */
bool isDescriptor(const fs::path& link) {
    std::error_code ignored;
    const fs::path path = fs::absolute(link, ignored);
    const std::string folder = fs::canonical(path.parent_path(), ignored).string();
    return folder.rfind("/proc/", 0) == 0;
}

/** Follows symbolic links, also to a file that is not there yet, up to the link of a descriptor. */
fs::path followLinks(const std::string& name) {
    constexpr int MOST_LINKS = 40; // the kernel's own limit
    fs::path place = name;
    std::error_code error;
    for (int links = 0; fs::is_symlink(fs::symlink_status(place, error)) && !isDescriptor(place);
         ++links) {
        const fs::path target = fs::read_symlink(place, error);
        if (error || links == MOST_LINKS) {
            throw Failure(name, systemReason(error ? error.value() : ELOOP));
        }
        place = place.parent_path() / target;
    }
    return place;
}

/** Gives a file another's owner and group, as far as the process may. */
void copyOwner(const std::string& path, const struct stat& original) {
    if (chown(path.c_str(), original.st_uid, original.st_gid) != 0) {
        [[maybe_unused]] const int given =
            chown(path.c_str(), static_cast<uid_t>(-1), original.st_gid);
    }
}

mode_t readFileMask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

/** The mask is read once: reading means setting it, for all threads. */
mode_t permissionsOfNewFile() {
    static const mode_t mask = readFileMask();
    return 0666 & ~mask;
}

/**
 * Makes a file of a name that nothing has, as the thread's unfinished one. It is never opened for
 * reading, as mkstemp would: in a sandbox the folder may only be written to.
 *
 * @return its name; empty if it cannot be made, with the reason in errno
 */
std::string createUnusedFile(const fs::path& folder) {
    constexpr char CHARACTERS[] = "abcdefghijklmnopqrstuvwxyz012345";
    constexpr int MOST_TRIES = 100;
    const auto lock = lockUnfinishedFiles();
    for (int tries = 0; tries < MOST_TRIES; ++tries) {
        unsigned char random[6];
        if (getentropy(random, sizeof random) != 0) {
            break;
        }
        std::string name = UNFINISHED_FILE_NAME;
        for (const unsigned char byte : random) {
            name += CHARACTERS[byte % (sizeof CHARACTERS - 1)];
        }
        std::string path = (folder / name).string();
        setUnfinishedFile(path);
        const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (descriptor >= 0) {
            close(descriptor);
            return path;
        }
        setUnfinishedFile("");
        if (errno != EEXIST) {
            break;
        }
    }
    return "";
}

} // namespace

OutputFile::OutputFile(const std::string& name)
    : m_strName(name), m_strPlace(outputPlace(name)), m_strWritePath(m_strPlace) {
    if (name.empty()) {
        throw WrongUsage("-o", "the name of the output file is empty");
    }
    struct stat existing {};
    const bool exists = stat(m_strPlace.c_str(), &existing) == 0;
    if (exists && S_ISDIR(existing.st_mode)) {
        throw Failure(name, systemReason(EISDIR));
    }
    if (exists && access(m_strPlace.c_str(), W_OK) != 0) {
        throw Failure(name, systemReason(errno));
    }
    std::error_code error;
    const fs::file_type type = fs::symlink_status(m_strPlace, error).type();
    if (type == fs::file_type::none) { // a name that is too long, for one
        throw Failure(name, systemReason(error.value()));
    }
    if ((exists && !S_ISREG(existing.st_mode)) || type == fs::file_type::symlink) {
        return;
    }
    createBeside();
    if (exists) {
        copyOwner(m_strWritePath, existing);
    }
    chmod(m_strWritePath.c_str(), exists ? existing.st_mode & 07777 : permissionsOfNewFile());
}

OutputFile::~OutputFile() {
    if (m_strWritePath != m_strPlace) {
        unlink(m_strWritePath.c_str());
        setUnfinishedFile("");
    }
}

void OutputFile::commit() {
    if (m_strWritePath == m_strPlace) {
        return;
    }
    const auto lock = lockUnfinishedFiles();
    if (std::rename(m_strWritePath.c_str(), m_strPlace.c_str()) != 0) {
        throw Failure(m_strName, systemReason(errno));
    }
    setUnfinishedFile("");
    m_strWritePath = m_strPlace;
}

void OutputFile::createBeside() {
    const fs::path folder = fs::path(m_strPlace).parent_path();
    const std::string path = createUnusedFile(folder);
    if (path.empty()) {
        std::string reason = systemReason(errno);
        if (fs::is_directory(folder)) {
            reason.insert(0, "no file can be made in the folder " + folder.string() + ": ");
        }
        throw Failure(m_strName, reason);
    }
    m_strWritePath = path;
    // A file that grows too large is to be an error like any other.
    std::signal(SIGXFSZ, SIG_IGN);
}

std::string outputPlace(const std::string& name) {
    return followLinks(name).string();
}
