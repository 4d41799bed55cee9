#include "base/Suggestion.h"

#include <algorithm>
#include <utility>

namespace {

std::string lowerCase(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

/** How many bytes have to be removed, added, changed or swapped with their neighbour. */
std::size_t distanceOf(const std::string& from, const std::string& to) {
    std::vector<std::vector<std::size_t>> steps(from.size() + 1,
                                                std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i) {
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            const std::size_t changed = from[i - 1] == to[j - 1] ? 0 : 1;
            steps[i][j] =
                std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1, steps[i - 1][j - 1] + changed});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        }
    }
    return steps[from.size()][to.size()];
}

/** An extension says little: a.xml and b.xml are not near. */
std::size_t toleranceFor(const std::string& name) {
    constexpr std::size_t MOST = 2;
    const auto dot = name.rfind('.');
    return std::min((dot == std::string::npos ? name.size() : dot) / 3, MOST);
}

} // namespace

std::string nearestName(const std::string& mistyped, const std::vector<std::string>& names) {
    const std::string typed = lowerCase(mistyped);
    const std::size_t tolerance = toleranceFor(typed);
    // Of two equally near ones the first in the alphabet, in whatever order a folder lists them.
    std::pair<std::size_t, std::string> best(tolerance + 1, "");
    for (const std::string& name : names) {
        const bool tooLong = name.size() > typed.size() + tolerance;
        const bool tooShort = name.size() + tolerance < typed.size();
        if (!tooLong && !tooShort && name != mistyped) {
            const auto distance = distanceOf(typed, lowerCase(name));
            if (distance <= tolerance) {
                best = std::min(best, {distance, name});
            }
        }
    }
    return best.second;
}

std::string nearestWord(const std::string& mistyped, const std::vector<std::string>& names) {
    const auto begins = [&](const std::string& name) { return name.rfind(mistyped, 0) == 0; };
    const auto letters =
        mistyped.size() - std::min(mistyped.find_first_not_of('-'), mistyped.size());
    if (letters >= 3 && std::count_if(names.begin(), names.end(), begins) == 1) {
        return *std::find_if(names.begin(), names.end(), begins);
    }
    return nearestName(mistyped, names);
}

std::string didYouMean(const std::string& name) {
    return name.empty() ? "" : ", did you mean '" + name + "'?";
}
