/**
 * @file
 * The report of tests for people, and for programs that read the Test Anything Protocol.
 */
#pragma once

#include "testing/CaseResult.h"
#include "testing/TestFile.h"

#include <cstddef>
#include <string>

/** TAP 13 on standard output, each line at once. */
class TapReport {
public:
    /** @param count of the cases. @throws Failure as add() */
    explicit TapReport(std::size_t count);

    /** @throws Failure if standard output cannot be written */
    void add(const TestFile& file, const TestCase& test, const CaseResult& result);

    bool hasFailed() const { return m_hasFailed; }

private:
    static void write(const std::string& text);

    std::size_t m_number = 0;
    bool m_hasFailed = false;
};
