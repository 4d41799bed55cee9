// Runs a command, and prints what it took: seconds on the clock, seconds of processor, KiB of
// memory at most.
//
//     measure_process COMMAND [ARGUMENTS]...
//
// A process that starts another hands its own peak of memory on to it. This one has next to none.
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

double now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/** In the child: standard output is not what is measured. */
[[noreturn]] void become(char** command) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    execvp(command[0], command);
    std::perror(command[0]);
    _exit(127);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s COMMAND [ARGUMENTS]...\n", argv[0]);
        return 2;
    }
    const double begin = now();
    const pid_t child = fork();
    if (child == 0) {
        become(argv + 1);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child) {
        std::perror("measure_process");
        return 1;
    }
    std::printf("%.6f %.6f %ld\n", now() - begin, seconds(usage.ru_utime) + seconds(usage.ru_stime),
                usage.ru_maxrss);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
