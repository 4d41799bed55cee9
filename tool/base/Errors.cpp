#include "base/Errors.h"

#include "base/Terminal.h"

#include <ext/stdio_filebuf.h>
#include <fcntl.h>
#include <iostream>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace {

int g_nErrorDescriptor = STDERR_FILENO;

bool isControl(char c) {
    return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == 0x7F;
}

} // namespace

std::string errorLine(const std::string& text) {
    return styled("vexa-xslt:", Style::Error, g_nErrorDescriptor) + " " + text + "\n";
}

void printError(const std::string& text) {
    std::cerr << errorLine(text);
}

int errorDescriptor() {
    return g_nErrorDescriptor;
}

void silenceSystemLibraries() {
    if (g_nErrorDescriptor != STDERR_FILENO) {
        return; // in the process that has started this one
    }
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

std::string oneLine(const std::string& text) {
    constexpr const char* SPACES = " \t\r\n";
    std::string line;
    bool isAfterBreak = false;
    for (const char c : text.substr(0, text.find_last_not_of(SPACES) + 1)) {
        const bool isSpace = std::string(SPACES).find(c) != std::string::npos;
        isAfterBreak = isAfterBreak || c == '\r' || c == '\n';
        if (isSpace && (line.empty() || isAfterBreak)) {
            continue;
        }
        if (isAfterBreak && !line.empty()) {
            line.erase(line.find_last_not_of(SPACES) + 1);
            line += ' ';
        }
        isAfterBreak = false;
        line += isControl(c) ? '?' : c;
    }
    return line;
}

std::string namedLines(const std::string& name, const std::string& text) {
    std::string result;
    std::istringstream lines(text + "\n");
    for (std::string line; std::getline(lines, line);) {
        result.append(oneLine(name)).append(": ").append(line).append("\n");
    }
    return result;
}

std::string systemMessage(int errorNumber) {
    return std::generic_category().message(errorNumber);
}
