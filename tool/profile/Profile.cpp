#include "profile/Profile.h"

#include <algorithm>

std::vector<std::size_t> Profile::routines() const {
    std::vector<std::size_t> routines;
    for (std::size_t i = 0; i < data.entries().size(); ++i) {
        if (data.entries()[i].calls > 0 && Profiler::isRoutine(data.instructions()[i])) {
            routines.push_back(i);
        }
    }
    std::stable_sort(routines.begin(), routines.end(), [this](std::size_t a, std::size_t b) {
        return data.ownOf(a).nanoseconds > data.ownOf(b).nanoseconds;
    });
    return routines;
}

std::string Profile::nameOf(std::size_t routine) const {
    const vexa::Instruction& instruction = data.instructions()[routine];
    if (instruction.where.line == 0) {
        return "built-in rule, " + instruction.title;
    }
    const bool isSet = instruction.kind == vexa::Instruction::Kind::AttributeSet;
    return isSet ? "attribute set " + instruction.title : instruction.title;
}

std::string Profile::fileOf(const std::string& module) const {
    return module.empty() ? STANDARD_STREAM : names.nameOf(module);
}

std::string Profile::placeOf(std::size_t routine) const {
    const vexa::Location& where = data.instructions()[routine].where;
    return where.line == 0 ? "" : fileOf(where.uri) + ":" + std::to_string(where.line);
}
