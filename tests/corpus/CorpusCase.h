/**
 * @file
 * The cases of the corpus. README.md describes the files that define them.
 */
#pragma once

#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

/** A result that differs from the expected one, and why. */
struct Difference {
    std::string explanation;
    std::string result;
};

struct CorpusCase {
    /** Family and name, separated by a slash. */
    std::string name;
    std::string source;
    /** Path of the stylesheet; empty for an expression. */
    std::string stylesheet;
    std::string expression;
    /** The output, or "fails CODE". */
    std::optional<std::string> expected;
    /** A part of the expected error message. */
    std::string errorText;
    /** By the name of the kind of transform. */
    std::map<std::string, Difference> differences;
};

inline std::ostream& operator<<(std::ostream& stream, const CorpusCase& corpusCase) {
    return stream << corpusCase.name;
}

/** Reads all cases of a folder, sorted by name. @throws std::runtime_error for an invalid file */
std::vector<CorpusCase> readCorpus(const std::string& folder);
