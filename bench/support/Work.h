/**
 * @file
 * Work that is measured in two ways: Google Benchmark measures the time, and callgrind counts the
 * instructions.
 *
 *     PROGRAM FOLDER [--benchmark_...]     measures the time of every work
 *     PROGRAM FOLDER --count [PART]        counts every work with PART in its name; must be run by
 *                                          callgrind, see bench/run
 *
 * FOLDER contains the documents, written by bench/documents.py.
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

    /** Does the work once. Returns the size of the result, which is the same in each call. */
    using Call = std::function<std::size_t()>;

    std::string name;
    /** Creates the objects that all calls share. The returned call owns them. */
    std::function<Call()> prepare;
    /** Calls before `prepare` is called again, because a transformer keeps its sources. */
    int mostCalls = KEEPS_NOTHING;
    int threads = 1;
};

using Works = std::vector<Work>;

/** What a benchmark program measures: each program defines it. @param folder has the documents */
Works makeWorks(const std::string& folder);

/** Exits with a message if an operation has failed. */
void require(bool isRight, const std::string& what);

/** Returns the content of a file. */
std::string readFile(const std::string& file);

/** Keeps the library initialized during its lifetime. */
class Library {
public:
    Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library();
};
