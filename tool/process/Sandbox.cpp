#include "process/Sandbox.h"

#include "base/Descriptor.h"
#include "base/Errors.h"
#include "files/OutputPlace.h"

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// Younger than the headers that this is built with.
constexpr std::uint64_t ACCESS_TRUNCATE = 1ULL << 14;
constexpr std::uint64_t ACCESS_BIND_TCP = 1ULL << 0;
constexpr std::uint64_t ACCESS_CONNECT_TCP = 1ULL << 1;
constexpr long VERSION_WITH_REFER = 2;
constexpr long VERSION_WITH_TRUNCATE = 3;
constexpr long VERSION_WITH_NETWORK = 4;

struct RulesetAttributes {
    std::uint64_t files;
    std::uint64_t network;
};

[[noreturn]] void fail(const std::string& what) {
    throw Failure("--sandbox", what + ": " + systemMessage(errno));
}

class Sandbox {
public:
    Sandbox();

    /** A folder stands for all that is in it. Nothing is allowed by a name that nothing has. */
    void allow(const fs::path& place, std::uint64_t rights) const;
    void enter() const;

private:
    int createRuleset() const;

    long m_nVersion;
    /** The rights that are gone for all places that no rule is about. */
    std::uint64_t m_nHandled;
    Descriptor m_ruleset;
};

long landlockVersion() {
    const long version =
        syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) {
        fail("the kernel has no Landlock");
    }
    return version;
}

std::uint64_t fileRights(long version) {
    std::uint64_t rights = LANDLOCK_ACCESS_FS_MAKE_SYM * 2 - 1;
    if (version >= VERSION_WITH_REFER) {
        rights |= LANDLOCK_ACCESS_FS_REFER;
    }
    if (version >= VERSION_WITH_TRUNCATE) {
        rights |= ACCESS_TRUNCATE;
    }
    return rights;
}

Sandbox::Sandbox()
    : m_nVersion(landlockVersion()), m_nHandled(fileRights(m_nVersion)),
      m_ruleset(createRuleset()) {}

int Sandbox::createRuleset() const {
    const bool hasNetwork = m_nVersion >= VERSION_WITH_NETWORK;
    const RulesetAttributes attributes{m_nHandled, ACCESS_BIND_TCP | ACCESS_CONNECT_TCP};
    const std::size_t size = hasNetwork ? sizeof attributes : sizeof attributes.files;
    const long ruleset = syscall(SYS_landlock_create_ruleset, &attributes, size, 0);
    if (ruleset < 0) {
        fail("cannot create a sandbox");
    }
    return static_cast<int>(ruleset);
}

void Sandbox::allow(const fs::path& place, std::uint64_t rights) const {
    const Descriptor descriptor(open(place.c_str(), O_PATH | O_CLOEXEC));
    struct stat status {};
    if (descriptor.get() < 0 || fstat(descriptor.get(), &status) != 0) {
        return;
    }
    constexpr std::uint64_t FOLDER_RIGHTS =
        LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE;
    landlock_path_beneath_attr rule{};
    rule.allowed_access = rights & m_nHandled & ~(S_ISDIR(status.st_mode) ? 0 : FOLDER_RIGHTS);
    rule.parent_fd = descriptor.get();
    // What has no place in any folder, such as a pipe, needs no rule and can have none.
    if (syscall(SYS_landlock_add_rule, m_ruleset.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0) !=
            0 &&
        errno != EBADFD) {
        fail(place.string());
    }
}

void Sandbox::enter() const {
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        syscall(SYS_landlock_restrict_self, m_ruleset.get(), 0) != 0) {
        fail("cannot enter the sandbox");
    }
}

void allowWriting(const Sandbox& sandbox, const fs::path& output) {
    constexpr std::uint64_t WRITING = LANDLOCK_ACCESS_FS_WRITE_FILE | ACCESS_TRUNCATE;
    constexpr std::uint64_t MAKING =
        LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE;
    const fs::path place = outputPlace(output);
    std::error_code none;
    sandbox.allow(place, fs::is_directory(place, none) ? WRITING | MAKING : WRITING);
    const bool isReplaced = fs::is_regular_file(place, none) || !fs::exists(place, none);
    if (isReplaced && !fs::is_symlink(place, none)) {
        sandbox.allow(place.has_parent_path() ? place.parent_path() : ".", WRITING | MAKING);
    }
}

} // namespace

void enterSandbox(const SandboxPlaces& places) {
    const Sandbox sandbox;
    for (const auto* readable : {&places.inputs, &places.folders}) {
        for (const fs::path& place : *readable) {
            sandbox.allow(place, LANDLOCK_ACCESS_FS_READ_FILE);
        }
    }
    for (const fs::path& output : places.outputs) {
        allowWriting(sandbox, output);
    }
#ifdef VEXA_COUNTERS_FOLDER
    // A build for coverage writes down what was run when the process ends.
    sandbox.allow(VEXA_COUNTERS_FOLDER, LANDLOCK_ACCESS_FS_READ_FILE |
                                            LANDLOCK_ACCESS_FS_WRITE_FILE |
                                            LANDLOCK_ACCESS_FS_MAKE_REG);
#endif
    // The system's time zone is in a file that cannot be read later.
    tzset();
    sandbox.enter();
}
