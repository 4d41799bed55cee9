#include "profile/Profile.h"

#include <cstdio>

namespace {

constexpr std::size_t MOST_ROWS = 40;

double inMilliseconds(std::uint64_t nanoseconds) {
    return static_cast<double>(nanoseconds) / 1e6;
}

std::string percentOf(std::uint64_t part, std::uint64_t whole) {
    char text[16];
    std::snprintf(text, sizeof text, "%.1f %%",
                  whole == 0 ? 0.0
                             : 100.0 * static_cast<double>(part) / static_cast<double>(whole));
    return text;
}

std::string row(const std::string& calls, const std::string& own, const std::string& total,
                const std::string& share, const std::string& instructions,
                const std::string& name) {
    char numbers[120];
    std::snprintf(numbers, sizeof numbers, "%9s %10s %10s %8s %12s  ", calls.c_str(), own.c_str(),
                  total.c_str(), share.c_str(), instructions.c_str());
    return numbers + name + "\n";
}

std::string milliseconds(std::uint64_t nanoseconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", inMilliseconds(nanoseconds));
    return text;
}

} // namespace

std::string profileTable(const Profile& profile) {
    std::string text = row("calls", "own ms", "total ms", "share", "instructions", "template");
    const auto routines = profile.routines();
    for (std::size_t i = 0; i < routines.size() && i < MOST_ROWS; ++i) {
        const std::size_t routine = routines[i];
        const Profiler::Entry& entry = profile.data.entries()[routine];
        const Cost own = profile.data.ownOf(routine);
        const std::string place = profile.placeOf(routine);
        text += row(std::to_string(entry.calls), milliseconds(own.nanoseconds),
                    milliseconds(entry.total.nanoseconds),
                    percentOf(own.nanoseconds, profile.transform), std::to_string(own.instructions),
                    profile.nameOf(routine) + (place.empty() ? "" : "  " + place));
    }
    if (routines.size() > MOST_ROWS) {
        text +=
            std::to_string(routines.size() - MOST_ROWS) + " more are left out; --html shows all\n";
    }
    const Cost sum = profile.data.sum();
    const std::uint64_t outside = profile.transform - std::min(profile.transform, sum.nanoseconds);
    text +=
        row("", milliseconds(sum.nanoseconds), "", percentOf(sum.nanoseconds, profile.transform),
            std::to_string(sum.instructions), "all of them");
    text += row("", milliseconds(outside), "", percentOf(outside, profile.transform), "",
                "outside of templates");
    text += "stylesheet " + milliseconds(profile.compile) + " ms, source " +
            milliseconds(profile.parse) + " ms, transform " + milliseconds(profile.transform) +
            " ms\n";
    return text;
}
