#include "base/Terminal.h"

#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

const char* codeOf(Style style) {
    switch (style) {
    case Style::Heading:
        return "\033[1m";
    case Style::Error:
        return "\033[1;31m";
    default:
        return "\033[1;32m";
    }
}

} // namespace

bool isSmartTerminal(int descriptor) {
    const char* const terminal = std::getenv("TERM");
    return terminal && std::string_view(terminal) != "dumb" && isatty(descriptor) == 1;
}

std::size_t terminalColumns(int descriptor) {
    constexpr std::size_t USUAL = 80;
    winsize size{};
    return ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : USUAL;
}

std::string styled(const std::string& text, Style style, int descriptor) {
    const bool isShown = !std::getenv("NO_COLOR") && isSmartTerminal(descriptor);
    return isShown ? codeOf(style) + text + "\033[0m" : text;
}
