/**
 * @file
 * The cases of the corpus, as the files beside this one describe them; README.md tells how.
 */
#pragma once

#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

/** What a result is to be, or why it is another one. */
struct Difference {
    std::string reason;
    std::string result;
};

struct CorpusCase {
    /** Family and name, parted by a slash. */
    std::string name;
    std::string source;
    /** The stylesheet's path; empty for an expression. */
    std::string stylesheet;
    std::string expression;
    /** The output, or "fails CODE". */
    std::optional<std::string> expected;
    /** A piece of the text of the failure that is expected. */
    std::string errorText;
    /** By the name of the road. */
    std::map<std::string, Difference> differences;
};

inline std::ostream& operator<<(std::ostream& stream, const CorpusCase& corpusCase) {
    return stream << corpusCase.name;
}

/** All cases under a folder, sorted. Throws std::runtime_error at a file that belongs to none. */
std::vector<CorpusCase> readCorpus(const std::string& folder);
