#include "profile/Profile.h"

#include <algorithm>
#include <map>

namespace {

/** A name in which no newline ends the record. */
std::string nameIn(std::string name) {
    std::replace(name.begin(), name.end(), '\n', ' ');
    return name;
}

std::string costs(std::size_t line, const Cost& cost) {
    return std::to_string(line) + " " + std::to_string(cost.instructions) + " " +
           std::to_string(cost.nanoseconds) + "\n";
}

/** Names as callgrind has them: where two templates have one, they differ by their lines. */
class Names {
public:
    explicit Names(const Profile& profile) : m_profile(profile) {
        for (const std::size_t routine : profile.routines()) {
            ++m_uses[profile.nameOf(routine)];
        }
    }

    std::string fileOf(std::size_t instruction) const {
        const vexa::Location& where = m_profile.data.instructions()[instruction].where;
        if (where.line == 0) {
            return "built-in";
        }
        return nameIn(m_profile.fileOf(where.uri));
    }
    std::string routine(std::size_t index) const {
        const std::string name = m_profile.nameOf(index);
        const std::size_t line = m_profile.data.instructions()[index].where.line;
        return nameIn(m_uses.at(name) > 1 ? name + " line " + std::to_string(line) : name);
    }

private:
    const Profile& m_profile;
    std::map<std::string, int> m_uses;
};

} // namespace

std::string callgrindFile(const Profile& profile) {
    const Profiler& data = profile.data;
    const auto lineOf = [&](std::size_t index) { return data.instructions()[index].where.line; };
    const Names names(profile);
    std::map<std::size_t, std::vector<std::size_t>> parts;
    for (std::size_t i = 0; i < data.entries().size(); ++i) {
        if (data.entries()[i].calls > 0) {
            parts[data.entries()[i].routine].push_back(i);
        }
    }
    std::map<std::size_t, std::vector<const Profiler::Edge*>> calls;
    for (const Profiler::Edge& edge : data.edges()) {
        calls[edge.caller].push_back(&edge);
    }
    std::string text =
        "# callgrind format\nversion: 1\ncreator: vexa-xslt\ncmd: " + nameIn(profile.title) +
        "\npositions: line\nevents: Instructions Nanoseconds\n\n";
    for (const auto& [routine, instructions] : parts) {
        text += "fl=" + names.fileOf(routine) + "\nfn=" + names.routine(routine) + "\n";
        for (const std::size_t instruction : instructions) {
            text += costs(lineOf(instruction), data.entries()[instruction].own);
            for (const Profiler::Edge* const edge : calls[instruction]) {
                text += "cfl=" + names.fileOf(edge->routine) +
                        "\ncfn=" + names.routine(edge->routine) +
                        "\ncalls=" + std::to_string(edge->calls) + " " +
                        std::to_string(lineOf(edge->routine)) + "\n" +
                        costs(lineOf(instruction), edge->total);
            }
        }
        text += "\n";
    }
    return text + "totals: " + std::to_string(data.sum().instructions) + " " +
           std::to_string(data.sum().nanoseconds) + "\n";
}
