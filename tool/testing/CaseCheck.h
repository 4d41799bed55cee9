/**
 * @file
 * Compares what became of a transform with what was expected.
 */
#pragma once

#include "files/InputArgument.h"
#include "testing/CaseResult.h"
#include "testing/TestFile.h"

#include <vexa/xslt/Document.h>
#include <vexa/xslt/Options.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

/** What became of a transform. */
struct CaseOutcome {
    struct Error {
        /** As vexa::ErrorKind has it, or "Crash". */
        std::string kind;
        std::string text;
        /** With its place. */
        std::string description;
    };

    std::optional<Error> error;
    /** Where a file is expected. */
    std::string result;
    /** Where an expression is to be true. */
    vexa::Document tree;
    std::vector<std::string> messages;
    /** With their places. */
    std::vector<std::string> warnings;
};

/**
 * @param keptFiles what the case reads, where files that differ are to be written anew
 * @param options   of reading trees and of expressions
 */
CaseResult checkCase(const TestCase& test, const CaseOutcome& outcome,
                     const std::optional<std::set<FileId>>& keptFiles,
                     const vexa::Options& options);
