// Runs a command and prints its elapsed time in seconds, its CPU time in seconds and its peak
// memory in KiB.
//
//     measure_process COMMAND [ARGUMENTS]...
//
// A new process inherits the peak memory of the process that starts it. That of this program is
// small.
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

/** Runs the command in the child process, without its standard output. */
[[noreturn]] void execute(char** command) {
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
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
        execute(argv + 1);
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
