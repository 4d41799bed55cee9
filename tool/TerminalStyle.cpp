#include "TerminalStyle.h"

#include <cstdlib>
#include <unistd.h>

namespace {

bool showsStyles(int descriptor) {
    const char* const terminal = std::getenv("TERM");
    const bool isDumb = !terminal || std::string(terminal) == "dumb";
    return !isDumb && !std::getenv("NO_COLOR") && isatty(descriptor) == 1;
}

} // namespace

std::string styled(const std::string& text, Style style, int descriptor) {
    constexpr const char* BOLD = "\033[1m";
    constexpr const char* BOLD_RED = "\033[1;31m";
    constexpr const char* PLAIN = "\033[0m";
    if (!showsStyles(descriptor)) {
        return text;
    }
    return (style == Style::Error ? BOLD_RED : BOLD) + text + PLAIN;
}
