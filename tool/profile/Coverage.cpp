#include "profile/Coverage.h"

#include "files/InputArgument.h"

#include "xslt/Uri.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace {

/** A name in which nothing separates fields or lines. */
std::string fieldOf(std::string name) {
    std::replace(name.begin(), name.end(), ',', ';');
    std::replace(name.begin(), name.end(), '\n', ' ');
    return name;
}

std::string line(const std::string& key, std::uint64_t value) {
    return key + ":" + std::to_string(value) + "\n";
}

/** The same for all names of a file. */
std::string sourceName(const std::string& uri) {
    const auto path = pathOfFileUri(uri);
    std::error_code ignored;
    return path          ? std::filesystem::weakly_canonical(*path, ignored).string()
           : uri.empty() ? STANDARD_STREAM
                         : uri;
}

std::string record(const std::string& source, const Coverage::Module& module) {
    std::string functions;
    std::string calls;
    std::uint64_t called = 0;
    std::map<std::string, int> uses;
    for (const auto& [routine, count] : module.routines) {
        // Names have to differ.
        const std::string where = std::to_string(routine.first);
        std::string name = fieldOf(routine.second);
        name += ++uses[name] > 1 ? " line " + where : "";
        functions.append("FN:").append(where).append(",").append(name).append("\n");
        calls += "FNDA:" + std::to_string(count) + "," + name + "\n";
        called += count > 0 ? 1 : 0;
    }
    std::string lines;
    std::uint64_t executed = 0;
    for (const auto& [number, count] : module.lines) {
        lines += "DA:" + std::to_string(number) + "," + std::to_string(count) + "\n";
        executed += count > 0 ? 1 : 0;
    }
    return "SF:" + source + "\n" + functions + calls + line("FNF", module.routines.size()) +
           line("FNH", called) + lines + line("LF", module.lines.size()) + line("LH", executed) +
           "end_of_record\n";
}

} // namespace

void Coverage::add(const std::vector<vexa::Instruction>& instructions,
                   const std::vector<std::uint64_t>& calls) {
    Coverage run;
    for (std::size_t i = 0; i < instructions.size(); ++i) {
        const vexa::Instruction& instruction = instructions[i];
        if (instruction.where.line == 0) {
            continue; // a built-in rule
        }
        Module& module = run.m_modules[instruction.where.uri];
        auto& line = module.lines[instruction.where.line];
        line = std::max(line, calls[i]);
        if (instruction.kind == vexa::Instruction::Kind::Template ||
            instruction.kind == vexa::Instruction::Kind::Function) {
            module.routines[{instruction.where.line, instruction.title}] += calls[i];
        }
    }
    add(run);
}

void Coverage::add(const Coverage& other) {
    for (const auto& [uri, module] : other.m_modules) {
        Module& own = m_modules[uri];
        for (const auto& [line, count] : module.lines) {
            own.lines[line] += count;
        }
        for (const auto& [routine, count] : module.routines) {
            own.routines[routine] += count;
        }
    }
}

std::string Coverage::lcov() const {
    Coverage bySource;
    for (const auto& [uri, module] : m_modules) {
        Coverage part;
        part.m_modules[sourceName(uri)] = module;
        bySource.add(part);
    }
    std::string text = "TN:\n";
    for (const auto& [source, module] : bySource.m_modules) {
        text += record(source, module);
    }
    return text;
}
