#include "testing/ComparisonSides.h"

#include <cctype>
#include <cstddef>

namespace {

bool isWordPart(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || (c & 0x80) != 0 ||
           std::string("_-.:").find(c) != std::string::npos;
}

} // namespace

std::optional<ComparisonSides> comparisonSides(const std::string& expression) {
    std::optional<ComparisonSides> sides;
    int depth = 0;
    std::string word;
    for (std::size_t i = 0; i < expression.size(); ++i) {
        const char c = expression[i];
        if (isWordPart(c)) {
            word += c;
            continue;
        }
        if (depth == 0 && (word == "and" || word == "or")) {
            return std::nullopt;
        }
        word.clear();
        if (c == '"' || c == '\'') {
            i = expression.find(c, i + 1);
        } else if (c == '(' || c == '[') {
            ++depth;
        } else if (c == ')' || c == ']') {
            --depth;
        } else if (depth == 0 && (c == '=' || c == '!' || c == '<' || c == '>')) {
            if (sides) {
                return std::nullopt;
            }
            const bool isLong = expression.compare(i + 1, 1, "=") == 0;
            sides = {expression.substr(0, i), expression.substr(i, isLong ? 2 : 1),
                     expression.substr(i + (isLong ? 2 : 1))};
            i += isLong ? 1 : 0;
        }
    }
    return sides;
}
