#include "process/FileLimit.h"

#include <algorithm>
#include <sys/resource.h>

namespace {

/** The standard streams, what is polled, and what libraries open for a moment. */
constexpr rlim_t FILES_OF_ALL = 16;
/** Both ends of the connection, stylesheet and source with what they include, and the result. */
constexpr rlim_t FILES_OF_WORKER = 16;

} // namespace

void allowManyFiles() {
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max;
    setrlimit(RLIMIT_NOFILE, &files);
}

std::size_t workersWithFiles(std::size_t wanted) {
    const rlim_t needed = FILES_OF_ALL + wanted * FILES_OF_WORKER;
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    if (files.rlim_cur < needed) {
        files.rlim_cur = std::min(needed, files.rlim_max);
        setrlimit(RLIMIT_NOFILE, &files);
    }
    const rlim_t left = files.rlim_cur - std::min(files.rlim_cur, FILES_OF_ALL);
    const rlim_t fitting = std::max<rlim_t>(left / FILES_OF_WORKER, 1);
    return static_cast<std::size_t>(std::min<rlim_t>(wanted, fitting));
}
