#include "Failure.h"

#include "TerminalStyle.h"

#include <iostream>
#include <system_error>
#include <unistd.h>

void tellFailure(const std::string& text) {
    std::cout.flush();
    std::cerr << styled("vexa-xslt:", Style::Error, STDERR_FILENO) + " " + foldLines(text) + "\n";
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

std::string systemReason(int errorNumber) {
    return std::generic_category().message(errorNumber);
}
