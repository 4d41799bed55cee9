/**
 * @file
 * The sides of a comparison.
 */
#pragma once

#include <optional>
#include <string>

/** An XPath expression that is a comparison. */
struct ComparisonSides {
    std::string left;
    /** "=", "!=", "<", "<=", ">" or ">=" */
    std::string sign;
    std::string right;
};

/** Nothing for an expression that is none, or of several. */
std::optional<ComparisonSides> comparisonSides(const std::string& expression);
