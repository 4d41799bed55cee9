#include "Failure.h"

#include "TerminalStyle.h"

#include <algorithm>
#include <ext/stdio_filebuf.h>
#include <fcntl.h>
#include <iostream>
#include <system_error>
#include <unistd.h>

namespace {

int g_nErrorDescriptor = STDERR_FILENO;

} // namespace

void tellFailure(const std::string& text) {
    std::cout.flush();
    std::cerr << styled("vexa-xslt:", Style::Error, g_nErrorDescriptor) + " " +
                     printable(foldLines(text)) + "\n";
}

void silenceSystemLibraries() {
    const int descriptor = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (descriptor >= 0 && nowhere >= 0) {
        // Never freed: std::cerr is used until the process has ended.
        std::cerr.rdbuf(new __gnu_cxx::stdio_filebuf<char>(descriptor, std::ios::out, 1));
        g_nErrorDescriptor = descriptor;
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
}

std::string foldLines(const std::string& text) {
    constexpr const char* BLANKS = " \t\r\n";
    std::string folded;
    std::string::size_type begin = text.find_first_not_of(BLANKS);
    while (begin != std::string::npos) {
        const auto end = text.find_first_of("\r\n", begin);
        std::string line = text.substr(begin, end - begin);
        line.erase(line.find_last_not_of(BLANKS) + 1);
        folded += folded.empty() ? line : " " + line;
        begin = end == std::string::npos ? end : text.find_first_not_of(BLANKS, end);
    }
    return folded;
}

std::string printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(),
        [](unsigned char c) { return (c < ' ' && c != '\t') || c == 0x7F; }, '?');
    return text;
}

std::string systemReason(int errorNumber) {
    return std::generic_category().message(errorNumber);
}
