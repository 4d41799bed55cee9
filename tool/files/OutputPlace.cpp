#include "files/OutputPlace.h"

#include "base/Errors.h"

#include <system_error>

namespace fs = std::filesystem;

namespace {

bool isDescriptor(const fs::path& link) {
    std::error_code ignored;
    const fs::path folder = fs::canonical(fs::absolute(link, ignored).parent_path(), ignored);
    return folder.string().rfind("/proc/", 0) == 0;
}

} // namespace

fs::path outputPlace(fs::path output) {
    constexpr int MOST_LINKS = 40; // the kernel's own limit
    std::error_code error;
    for (int i = 0; i < MOST_LINKS && fs::is_symlink(output, error) && !isDescriptor(output); ++i) {
        output = output.parent_path() / fs::read_symlink(output, error);
    }
    return output;
}

fs::path fullPlace(const std::string& output) {
    std::error_code ignored;
    return fs::weakly_canonical(fs::absolute(outputPlace(output), ignored), ignored);
}

std::string writablePath(const std::string& output) {
    const bool isStandardError = output == "/dev/stderr" || output == "/dev/fd/2";
    return isStandardError ? "/dev/fd/" + std::to_string(errorDescriptor()) : output;
}
