#include "TerminalStyle.h"

#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace {

bool showsStyles(int descriptor) {
    return !std::getenv("NO_COLOR") && isSmartTerminal(descriptor);
}

} // namespace

bool isSmartTerminal(int descriptor) {
    const char* const terminal = std::getenv("TERM");
    return terminal && std::string_view(terminal) != "dumb" && isatty(descriptor) == 1;
}

std::string styled(const std::string& text, Style style, int descriptor) {
    constexpr const char* BOLD = "\033[1m";
    constexpr const char* BOLD_RED = "\033[1;31m";
    constexpr const char* PLAIN = "\033[0m";
    if (!showsStyles(descriptor)) {
        return text;
    }
    return (style == Style::Error ? BOLD_RED : BOLD) + text + PLAIN;
}
