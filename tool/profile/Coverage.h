/**
 * @file
 * Which lines of stylesheets are executed.
 */
#pragma once

#include <vexa/xslt/Stylesheet.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

/** Collects over all runs. A line is executed as often as the instruction on it that is most. */
class Coverage {
public:
    struct Module {
        /** Of lines that hold instructions. */
        std::map<std::size_t, std::uint64_t> lines;
        /** The calls of templates and functions, by line and name. */
        std::map<std::pair<std::size_t, std::string>, std::uint64_t> routines;
    };

    /** @param calls how often each instruction was executed in a run */
    void add(const std::vector<vexa::Instruction>& instructions,
             const std::vector<std::uint64_t>& calls);
    void add(const Coverage& other);

    /** By the URI. */
    const std::map<std::string, Module>& modules() const { return m_modules; }
    std::map<std::string, Module>& modules() { return m_modules; }

    /** An LCOV tracefile, which genhtml and others read. */
    std::string lcov() const;

private:
    std::map<std::string, Module> m_modules;
};
