#include "EngineFaults.h"

#include <algorithm>
#include <string>

namespace {

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/** The document's characters, if it is in an encoding that keeps those of ASCII recognisable. */
std::string asciiOf(std::string_view document) {
    std::string text(document);
    // UTF-16 and UCS-4 are ASCII with zeros between.
    text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
    return text;
}

/** EBCDIC would hide all that is looked for here. */
bool isInAForeignEncoding(std::string_view document) {
    return document.substr(0, 2) == "\x4C\x6F";
}

/** A fault: a number of magnitude 1e90 and beyond, turned into a string, overflows a buffer. */
bool canMakeHugeNumbers(std::string_view text) {
    constexpr auto MOST_DIGITS = 80;
    return std::count_if(text.begin(), text.end(), isDigit) > MOST_DIGITS;
}

/** The same in a stylesheet, where most digits are text: many in a row are a number. */
bool hasLongRunOfDigits(std::string_view text) {
    constexpr auto MOST_DIGITS = 20;
    int run = 0;
    for (const char c : text) {
        run = isDigit(c) || c == '.' ? run + 1 : 0;
        if (run > MOST_DIGITS) {
            return true;
        }
    }
    return false;
}

/** A fault: an xsl:text with an attribute crashes while the stylesheet is cleaned up. */
bool hasTextWithAttributes(std::string_view text) {
    for (auto at = text.find(":text"); at != std::string_view::npos;
         at = text.find(":text", at + 1)) {
        const auto next = at + 5;
        if (next < text.size() && text[next] != '>' && text[next] != '/') {
            return true;
        }
    }
    return false;
}

/** A fault: the pattern "//", with no step behind it, crashes the compiler of stylesheets. */
bool hasBarePattern(std::string_view text) {
    for (auto at = text.find("//"); at != std::string_view::npos; at = text.find("//", at + 1)) {
        const auto next = text.find_first_not_of(" \t\r\n", at + 2);
        if (next == std::string_view::npos || contains("'\"|", text.substr(next, 1))) {
            return true;
        }
    }
    return false;
}

/** A fault of ICU: the name of an encoding that is long in UTF-8 overflows a buffer. */
bool hasEncodingThatIsNotAscii(std::string_view text) {
    constexpr std::size_t LONGEST_NAME = 200;
    for (auto at = text.find("encoding"); at != std::string_view::npos;
         at = text.find("encoding", at + 1)) {
        const std::string_view name = text.substr(at, LONGEST_NAME);
        if (std::any_of(name.begin(), name.end(),
                        [](char c) { return static_cast<unsigned char>(c) > 0x7E; })) {
            return true;
        }
    }
    return false;
}

} // namespace

bool killsAsSource(std::string_view document) {
    const std::string text = asciiOf(document);
    // A fault: an unparsed entity with an empty name.
    return isInAForeignEncoding(document) || contains(text, "NDATA");
}

bool killsAsStylesheet(std::string_view document) {
    const std::string text = asciiOf(document);
    return killsAsSource(document) || hasBarePattern(text) || hasTextWithAttributes(text) ||
           hasLongRunOfDigits(text) || hasEncodingThatIsNotAscii(text);
}

bool killsAsExpression(std::string_view expression) {
    return canMakeHugeNumbers(expression);
}
