/**
 * @file
 * Counts what a run executes.
 */
#pragma once

#include <vexa/xslt/Tracer.h>

#include <cstddef>
#include <cstdint>
#include <vector>

class StepCounter : public vexa::Tracer {
public:
    /** A run of a stylesheet with so many instructions begins. */
    void begin(std::size_t instructions) { m_counts.assign(instructions, 0); }

    void enter(const vexa::Step& step) override { ++m_counts[step.index()]; }
    void leave(const vexa::Step& /*step*/) noexcept override {}

    /** By the index of the instruction. */
    const std::vector<std::uint64_t>& counts() const { return m_counts; }

private:
    std::vector<std::uint64_t> m_counts;
};
