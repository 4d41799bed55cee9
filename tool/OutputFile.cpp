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
    std::raise(signalNumber); // whose action is the default one again
}

void setUnfinishedFile(const std::string& path) {
    if (path.size() < sizeof g_unfinishedFile) {
        std::strcpy(g_unfinishedFile, path.c_str());
    }
}

/** Everything that ends a process, a crash of the engine included. */
constexpr int ENDING_SIGNALS[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGTERM, SIGPIPE, SIGALRM, SIGUSR1,
                                  SIGUSR2, SIGXCPU, SIGABRT, SIGSEGV, SIGBUS,  SIGFPE,  SIGILL};

void catchInterrupts() {
    // A stack that has overflowed cannot carry the handler.
    static char handlerStack[64 * 1024];
    stack_t stack{};
    stack.ss_sp = handlerStack;
    stack.ss_size = sizeof handlerStack;
    sigaltstack(&stack, nullptr);

    struct sigaction removing {};
    removing.sa_handler = removeUnfinishedFile;
    removing.sa_flags = static_cast<int>(SA_RESETHAND | SA_ONSTACK | SA_NODEFER);
    for (const int signalNumber : ENDING_SIGNALS) {
        struct sigaction before {};
        sigaction(signalNumber, nullptr, &before);
        // A signal that is ignored from outside (nohup) stays ignored.
        if (before.sa_handler != SIG_IGN) {
            sigaction(signalNumber, &removing, nullptr);
        }
    }
    // A file that grows too large is to be an error like any other.
    std::signal(SIGXFSZ, SIG_IGN);
}

/** Whether a link stands for an open descriptor of a process (/dev/stdout, /dev/fd/3). */
bool isDescriptor(const fs::path& link) {
    std::error_code error;
    const fs::path folder = fs::canonical(fs::absolute(link, error).parent_path(), error);
    return !error && folder.string().rfind("/proc/", 0) == 0;
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

mode_t permissionsOfNewFile() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

OutputFile::OutputFile(const std::string& name)
    : m_strName(name), m_strPlace(followLinks(name).string()), m_strWritePath(m_strPlace) {
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
    if ((exists && !S_ISREG(existing.st_mode)) || fs::is_symlink(m_strPlace)) {
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
    if (std::rename(m_strWritePath.c_str(), m_strPlace.c_str()) != 0) {
        throw Failure(m_strName, systemReason(errno));
    }
    setUnfinishedFile("");
    m_strWritePath = m_strPlace;
}

void OutputFile::createBeside() {
    const fs::path folder = fs::path(m_strPlace).parent_path();
    std::string path = (folder / ".vexa-xslt-XXXXXX").string();
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0) {
        const std::string reason = systemReason(errno);
        throw Failure(m_strName, fs::is_directory(folder) ? "no file can be made in the folder " +
                                                                folder.string() + ": " + reason
                                                          : reason);
    }
    close(descriptor);
    m_strWritePath = path;
    setUnfinishedFile(path);
    catchInterrupts();
}
