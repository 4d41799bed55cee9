/**
 * @file
 * Where a transform spends its time.
 */
#pragma once

#include <vexa/xslt/Tracer.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

/** What something has cost. */
struct Cost {
    std::uint64_t nanoseconds = 0;
    /** Instructions of the stylesheet, which are the same in each run. */
    std::uint64_t instructions = 0;

    Cost& operator+=(const Cost& other) {
        nanoseconds += other.nanoseconds;
        instructions += other.instructions;
        return *this;
    }
    Cost operator-(const Cost& other) const {
        return {nanoseconds - other.nanoseconds, instructions - other.instructions};
    }
};

/**
 * Counts and measures the steps of one run. A routine is what calls lead to: a template, a
 * function, a global variable or an attribute set; the other instructions are parts of routines.
 */
class Profiler : public vexa::Tracer {
public:
    static constexpr std::size_t NONE = ~std::size_t{0};

    /** Of an instruction. */
    struct Entry {
        std::uint64_t calls = 0;
        Cost own;
        /** Of a routine: with all that it calls, once where it calls itself. */
        Cost total;
        /** The instruction of the routine that it is a part of. */
        std::size_t routine = NONE;
    };
    /** The calls from an instruction to a routine. Those inside of the same routine cost nothing.
     */
    struct Edge {
        std::size_t caller;
        std::size_t routine;
        std::uint64_t calls = 0;
        Cost total;
    };
    /** A routine in the tree of calls. Where it calls itself at once, that is in the same node. */
    struct Node {
        std::size_t routine;
        std::size_t parent;
        std::uint64_t calls = 0;
        Cost own;
    };

    explicit Profiler(const std::vector<vexa::Instruction>& instructions);

    void enter(const vexa::Step& step) override;
    void leave(const vexa::Step& step) noexcept override;

    const std::vector<vexa::Instruction>& instructions() const { return m_instructions; }
    /** By the index of the instruction. */
    const std::vector<Entry>& entries() const { return m_entries; }
    const std::vector<Edge>& edges() const { return m_edges; }
    /** Parents are before their children; the parent of a root is NONE. */
    const std::vector<Node>& tree() const { return m_tree; }
    /** The sum over all routines of what they have cost themselves. */
    Cost sum() const { return m_now; }

    static bool isRoutine(const vexa::Instruction& instruction);
    /** What the routine has cost without what it calls. */
    Cost ownOf(std::size_t routine) const { return m_owns[routine]; }

private:
    using Clock = std::chrono::steady_clock;

    /** A step that has begun. */
    struct Open {
        std::size_t instruction;
        std::size_t routine;
        std::size_t node;
        std::size_t edge;
        /** What all had cost when it began. */
        Cost begin;
    };

    void spendTime();
    void add(const Cost& cost);
    std::size_t nodeFor(std::size_t routine);
    std::size_t edgeTo(std::size_t routine);

    const std::vector<vexa::Instruction>& m_instructions;
    std::vector<Entry> m_entries;
    /** By the index of the routine. */
    std::vector<Cost> m_owns;
    /** How many calls of a routine have not ended. */
    std::vector<std::uint32_t> m_openCalls;
    std::vector<Edge> m_edges;
    std::vector<Node> m_tree;
    /** The depth of each node, and the nodes and edges by what they lead from and to. */
    std::vector<std::uint32_t> m_depths;
    std::unordered_map<std::uint64_t, std::size_t> m_nodeByCall;
    std::unordered_map<std::uint64_t, std::size_t> m_edgeByCall;
    std::vector<Open> m_open;
    Cost m_now;
    Clock::time_point m_last;
};
