/**
 * @file
 * How many failure points of each operation end in which way, and the stored counts to compare
 * with.
 *
 * The counts of each architecture are stored next to this file, in counts-ARCHITECTURE.txt. They do
 * not vary between runs. A complete run writes its own counts into the build folder. To store these
 * after an intended change:
 *
 *     ./dev test -R Faults
 *     ./dev i386 -R Faults
 *     cp build/dev/tests/faults/counts-amd64.txt tests/faults/
 *     cp build/i386/tests/faults/counts-i386.txt tests/faults/
 */
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

struct OutcomeCounts {
    /** The operation reported the failure, or did its work without the allocation. */
    std::size_t reported = 0;
    /** Defects of the engines: the process died, memory was lost, the behaviour was wrong. */
    std::size_t deaths = 0;
    std::size_t losses = 0;
    std::size_t wrong = 0;

    std::size_t points() const { return reported + deaths + losses + wrong; }
};

using CountTable = std::map<std::string, OutcomeCounts>;

/** The stored table of this architecture; none if there is no such file. */
std::optional<CountTable> readStoredCounts();

/** Writes a table into the build folder, in the order of `names`. */
void writeCounts(const CountTable& table, const std::vector<std::string>& names);

/** Describes each count that is worse than the stored one; empty if none is. */
std::string describeWorse(const OutcomeCounts& counts, const OutcomeCounts& stored);
