#include "profile/Profiler.h"

namespace {

/** More calls are in the nodes of routines that are there. */
constexpr std::size_t MOST_NODES = 50'000;
constexpr std::uint32_t DEEPEST_NODE = 500;

std::uint64_t keyOf(std::size_t from, std::size_t to) {
    return (static_cast<std::uint64_t>(from) + 1) << 32U | static_cast<std::uint64_t>(to);
}

} // namespace

Profiler::Profiler(const std::vector<vexa::Instruction>& instructions)
    : m_instructions(instructions), m_entries(instructions.size()), m_owns(instructions.size()),
      m_openCalls(instructions.size()) {}

bool Profiler::isRoutine(const vexa::Instruction& instruction) {
    switch (instruction.kind) {
    case vexa::Instruction::Kind::Template:
    case vexa::Instruction::Kind::Function:
    case vexa::Instruction::Kind::Variable:
    case vexa::Instruction::Kind::AttributeSet:
        return true;
    default:
        return false;
    }
}

void Profiler::enter(const vexa::Step& step) {
    if (m_open.empty()) {
        m_last = Clock::now();
    } else {
        spendTime();
    }
    const std::size_t index = step.index();
    Entry& entry = m_entries[index];
    if (isRoutine(step.instruction())) {
        const std::size_t node = nodeFor(index);
        const std::size_t edge = edgeTo(index);
        m_open.push_back({index, index, node, edge, m_now});
        ++m_tree[node].calls;
        ++m_openCalls[index];
        if (edge != NONE) {
            ++m_edges[edge].calls;
        }
    } else {
        const Open caller = m_open.back();
        m_open.push_back({index, caller.routine, caller.node, NONE, {}});
    }
    entry.routine = m_open.back().routine;
    ++entry.calls;
    add({0, 1});
}

void Profiler::leave(const vexa::Step& /*step*/) noexcept {
    spendTime();
    const Open open = m_open.back();
    m_open.pop_back();
    if (open.instruction != open.routine) {
        return;
    }
    const Cost cost = m_now - open.begin;
    if (--m_openCalls[open.routine] == 0) {
        m_entries[open.routine].total += cost;
        if (open.edge != NONE) {
            m_edges[open.edge].total += cost;
        }
    }
}

/** The time since the last call is the cost of the step that has begun last. */
void Profiler::spendTime() {
    const Clock::time_point now = Clock::now();
    const auto time = std::chrono::duration_cast<std::chrono::nanoseconds>(now - m_last);
    m_last = now;
    add({static_cast<std::uint64_t>(time.count()), 0});
}

void Profiler::add(const Cost& cost) {
    const Open& open = m_open.back();
    m_entries[open.instruction].own += cost;
    m_owns[open.routine] += cost;
    m_tree[open.node].own += cost;
    m_now += cost;
}

std::size_t Profiler::nodeFor(std::size_t routine) {
    const std::size_t parent = m_open.empty() ? NONE : m_open.back().node;
    if (parent != NONE && m_tree[parent].routine == routine) {
        return parent;
    }
    const auto [found, isNew] = m_nodeByCall.try_emplace(keyOf(parent, routine), m_tree.size());
    if (!isNew) {
        return found->second;
    }
    const std::uint32_t depth = parent == NONE ? 0 : m_depths[parent] + 1;
    if (parent != NONE && (depth > DEEPEST_NODE || m_tree.size() >= MOST_NODES)) {
        found->second = parent;
        for (std::size_t above = parent; above != NONE; above = m_tree[above].parent) {
            if (m_tree[above].routine == routine) {
                found->second = above;
                break;
            }
        }
        return found->second;
    }
    m_tree.push_back({routine, parent, 0, {}});
    m_depths.push_back(depth);
    return found->second;
}

std::size_t Profiler::edgeTo(std::size_t routine) {
    if (m_open.empty()) {
        return NONE;
    }
    const std::size_t caller = m_open.back().instruction;
    const auto [found, isNew] = m_edgeByCall.try_emplace(keyOf(caller, routine), m_edges.size());
    if (isNew) {
        m_edges.push_back({caller, routine, 0, {}});
    }
    return found->second;
}
