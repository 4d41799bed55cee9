/**
 * @file
 * Work that is measured, in two ways: timed by Google Benchmark, and counted in instructions under
 * callgrind.
 *
 *     PROGRAM FOLDER [--benchmark_...]     times every work
 *     PROGRAM FOLDER --count [PART]        counts those with PART in their names; is to be run by
 *                                          callgrind, see bench/run
 *
 * FOLDER has the documents (bench/documents.py).
 */
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <vector>

struct Work {
    static constexpr int KEEPS_NOTHING = std::numeric_limits<int>::max();
    static constexpr int KEEPS_SOURCES = 50;

    /** Does the work once, and gives the size of its result, which is the same each time. */
    using Call = std::function<std::size_t()>;

    std::string name;
    /** Makes what all calls share; it goes with the call. */
    std::function<Call()> prepare;
    /** How many calls one preparation serves: a transformer keeps the sources that it has parsed.
     */
    int mostCalls = KEEPS_NOTHING;
    int threads = 1;
};

using Works = std::vector<Work>;

/** The main function of every program here. @param makeWorks is given the folder */
int runWorks(int argc, char** argv, const std::function<Works(const std::string&)>& makeWorks);

/** Ends the program where an operation has failed: what fails is not to be measured. */
void require(bool isRight, const std::string& what);

/** A whole file. */
std::string readFile(const std::string& file);

/** The library, started for as long as this lives. */
class Library {
public:
    Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library();
};
