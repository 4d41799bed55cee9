/**
 * @file
 * The report of tests for build servers.
 */
#pragma once

#include "testing/CaseResult.h"
#include "testing/TestFile.h"

#include <cstddef>
#include <ctime>
#include <string>

/** Collects results, and writes them as JUnit XML. */
class JUnitReport {
public:
    /** The cases of this file follow. */
    void begin(const TestFile& file);
    void add(const TestCase& test, const CaseResult& result);
    /** Ends the file that was begun. */
    void end();
    /** A test file that cannot be run. */
    void addWrong(const std::string& name, const std::string& error);

    std::string text() const;

private:
    struct Counts {
        std::size_t tests = 0;
        std::size_t failures = 0;
        std::size_t errors = 0;
        double milliseconds = 0;

        std::string attributes() const;
    };

    std::string m_suites;
    Counts m_all;
    // Of the suite that was begun:
    std::string m_name;
    std::time_t m_time = 0;
    std::string m_cases;
    Counts m_counts;
};
