#include "batch/ProgressBar.h"

#include "base/Errors.h"
#include "base/Terminal.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>

namespace {

constexpr const char* CLEAR_LINE = "\r\033[K";

/** "1:05:09", "0:07" */
std::string clockTime(double seconds) {
    const long long whole = std::llround(seconds);
    char text[64];
    if (whole < 3600) {
        std::snprintf(text, sizeof text, "%lld:%02lld", whole / 60, whole % 60);
    } else {
        std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60,
                      whole % 60);
    }
    return text;
}

/** Small rates with a decimal. */
std::string rateText(double perSecond) {
    char text[64];
    std::snprintf(text, sizeof text, perSecond < 10 ? "%.1f/s" : "%.0f/s", perSecond);
    return text;
}

std::string figures(const Tally& tally, double seconds) {
    const std::string count = std::to_string(tally.finished());
    std::string text =
        tally.total != 0 ? count + " of " + std::to_string(tally.total) : count + " records";
    const double share = tally.share();
    if (tally.finished() > 0 && share > 0 && seconds > 0) {
        const double rate = static_cast<double>(tally.finished()) / seconds;
        const double left = seconds * (1 - share) / share;
        text += ", " + rateText(rate) + ", " + clockTime(left) + " left";
    }
    return tally.failed == 0 ? text : text + ", " + std::to_string(tally.failed) + " failed";
}

std::string bar(const Tally& tally, std::size_t length) {
    const auto filled = static_cast<std::size_t>(static_cast<double>(length) * tally.share());
    std::string text(length, ' ');
    std::fill_n(text.begin(), filled, '=');
    if (filled < length) {
        text[filled] = '>';
    }
    return "[" + text + "] ";
}

} // namespace

double Tally::share() const {
    if (total != 0) {
        return static_cast<double>(finished()) / static_cast<double>(total);
    }
    return bytes == 0 ? 0
                      : std::min(1.0, static_cast<double>(bytesRead) / static_cast<double>(bytes));
}

std::string progressLine(const Tally& tally, double seconds, std::size_t columns) {
    constexpr std::size_t SHORTEST_BAR = 10;
    constexpr std::size_t LONGEST_BAR = 30;
    constexpr std::size_t FRAME = 3;
    std::string text = figures(tally, seconds);
    // The last column stays free: some terminals begin a new line there.
    if (text.size() + FRAME + SHORTEST_BAR < columns) {
        text = bar(tally, std::min(LONGEST_BAR, columns - 1 - FRAME - text.size())) + text;
    }
    return text.substr(0, columns - 1);
}

ProgressBar::ProgressBar(bool wanted) : m_bShown(wanted && isSmartTerminal(errorDescriptor())) {}

void ProgressBar::draw(const Tally& tally) {
    constexpr auto MOMENT = std::chrono::milliseconds(100);
    const Clock::time_point now = Clock::now();
    if (!m_bShown || now - m_begin < DELAY || (m_bOnScreen && now - m_lastDrawn < MOMENT)) {
        return;
    }
    const double seconds = std::chrono::duration<double>(now - m_begin).count();
    std::cerr << CLEAR_LINE + progressLine(tally, seconds, terminalColumns(errorDescriptor()))
              << std::flush;
    m_bOnScreen = true;
    m_lastDrawn = now;
}

void ProgressBar::clear() {
    if (m_bOnScreen) {
        std::cerr << CLEAR_LINE << std::flush;
        m_bOnScreen = false;
    }
}

ProgressBar::Clock::duration ProgressBar::interval() const {
    return m_bShown ? Clock::duration(std::chrono::milliseconds(500)) : Clock::duration::max();
}
