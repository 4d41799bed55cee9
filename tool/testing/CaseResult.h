/**
 * @file
 * What became of a case.
 */
#pragma once

#include "profile/Coverage.h"

#include <cstddef>
#include <string>
#include <vector>

struct CaseResult {
    /** What was expected and is not so, in words; none where the case is passed. */
    std::vector<std::string> failures;
    /** It crashed, or reached a limit. */
    bool isError = false;
    /** The expectations whose files are to be written anew. */
    std::vector<std::size_t> outdated;
    double milliseconds = 0;
    /** Where that is asked for. */
    Coverage coverage;

    bool isPassed() const { return failures.empty(); }

    /** To be sent to another process. */
    std::string json() const;
    static CaseResult fromJson(const std::string& json);
};
