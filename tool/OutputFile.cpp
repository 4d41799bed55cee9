#include "OutputFile.h"

#include "Failure.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/** What an interrupt has to remove; read in a signal handler, hence no std::string. */
char g_unfinishedFile[4096];

extern "C" void removeUnfinishedFile(int signalNumber) {
    if (g_unfinishedFile[0]) {
        unlink(g_unfinishedFile);
    }
    std::signal(signalNumber, SIG_DFL);
    std::raise(signalNumber);
}

void setUnfinishedFile(const std::string& path) {
    if (path.size() < sizeof g_unfinishedFile) {
        std::strcpy(g_unfinishedFile, path.c_str());
    }
}

void catchInterrupts() {
    for (const int signalNumber : {SIGHUP, SIGINT, SIGTERM}) {
        // A signal that is ignored from outside (nohup) stays ignored.
        if (std::signal(signalNumber, removeUnfinishedFile) == SIG_IGN) {
            std::signal(signalNumber, SIG_IGN);
        }
    }
}

/** Follows symbolic links, also to a file that is not there yet. */
std::string followLinks(const std::string& name) {
    constexpr int MOST_LINKS = 40; // the kernel's own limit
    fs::path place = name;
    std::error_code error;
    for (int links = 0; fs::is_symlink(fs::symlink_status(place, error)); ++links) {
        const fs::path target = fs::read_symlink(place, error);
        if (error || links == MOST_LINKS) {
            throw Failure(name, systemReason(error ? error.value() : ELOOP));
        }
        place = place.parent_path() / target;
    }
    return place.string();
}

mode_t permissionsOfNewFile() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

OutputFile::OutputFile(const std::string& name)
    : m_strName(name), m_strPlace(followLinks(name)), m_strWritePath(m_strPlace) {
    struct stat existing {};
    const bool exists = stat(m_strPlace.c_str(), &existing) == 0;
    if (exists && S_ISDIR(existing.st_mode)) {
        throw Failure(name, systemReason(EISDIR));
    }
    if (exists && access(m_strPlace.c_str(), W_OK) != 0) {
        throw Failure(name, systemReason(errno));
    }
    if (exists && !S_ISREG(existing.st_mode)) {
        return;
    }
    createBeside();
    const mode_t permissions = exists ? existing.st_mode & 07777 : permissionsOfNewFile();
    if (exists) {
        // Only root can give a file away; for others the file becomes their own.
        [[maybe_unused]] const int given =
            chown(m_strWritePath.c_str(), existing.st_uid, existing.st_gid);
    }
    chmod(m_strWritePath.c_str(), permissions);
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
    if (std::rename(m_strWritePath.c_str(), m_strPlace.c_str()) != 0) {
        throw Failure(m_strName, systemReason(errno));
    }
    setUnfinishedFile("");
    m_strWritePath = m_strPlace;
}

void OutputFile::createBeside() {
    std::string path = (fs::path(m_strPlace).parent_path() / ".vexa-xslt-XXXXXX").string();
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0) {
        throw Failure(m_strName, systemReason(errno));
    }
    close(descriptor);
    m_strWritePath = path;
    setUnfinishedFile(path);
    catchInterrupts();
}
