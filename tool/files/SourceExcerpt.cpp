#include "files/SourceExcerpt.h"

#include "base/Errors.h"
#include "base/Terminal.h"
#include "base/Utf8.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <vector>

#include <unicode/uchar.h>

namespace {

/** A character, as it is shown. */
struct Glyph {
    std::string text;
    std::size_t width;
};

Glyph glyphOf(char32_t character) {
    const auto code = static_cast<UChar32>(character);
    // How far a tab reaches depends on what a terminal has before it: it is shown as spaces.
    constexpr std::size_t TAB = 4;
    if (character == '\t') {
        return {std::string(TAB, ' '), TAB};
    }
    if (u_iscntrl(code) != 0) { // among them what turns the direction of the text
        return {"?", 1};
    }
    const auto category = u_charType(code);
    if (category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK) {
        return {encodeUtf8(character), 0};
    }
    const int width = u_getIntPropertyValue(code, UCHAR_EAST_ASIAN_WIDTH);
    const bool isWide = width == U_EA_WIDE || width == U_EA_FULLWIDTH;
    return {encodeUtf8(character), isWide ? std::size_t{2} : std::size_t{1}};
}

std::optional<std::u32string> readLine(const std::filesystem::path& path, std::size_t number) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored)) {
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary);
    std::string line;
    for (std::size_t i = 0; i < number; ++i) {
        if (!std::getline(file, line)) {
            return std::nullopt;
        }
    }
    constexpr const char* BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    if (number == 1 && line.rfind(BYTE_ORDER_MARK, 0) == 0) {
        line.erase(0, 3);
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    const bool isWide = line.find('\0') != std::string::npos; // UTF-16 or UTF-32
    return isWide ? std::nullopt : decodeUtf8(line);
}

} // namespace

std::size_t columnInCharacters(const std::filesystem::path& file, std::size_t line,
                               std::size_t column) {
    constexpr char32_t LARGEST_OF_ONE_UNIT = 0xFFFF;
    const auto characters = readLine(file, line).value_or(U"");
    std::size_t unit = 1;
    std::size_t surplus = 0;
    for (auto next = characters.begin(); next != characters.end() && unit < column; ++next) {
        const std::size_t units = *next > LARGEST_OF_ONE_UNIT ? 2 : 1;
        unit += units;
        surplus += units - 1;
    }
    return column - surplus;
}

std::string sourceExcerpt(const std::filesystem::path& file, std::size_t line, std::size_t column,
                          std::size_t columns) {
    const auto characters = line == 0 ? std::nullopt : readLine(file, line);
    if (!characters) {
        return "";
    }
    std::vector<Glyph> glyphs;
    std::transform(characters->begin(), characters->end(), std::back_inserter(glyphs), glyphOf);
    const std::string number = "  " + std::to_string(line) + " | ";
    const std::size_t room = std::max<std::size_t>(columns, number.size() + 20) - number.size() - 1;
    const std::size_t caret = std::min(column == 0 ? 0 : column - 1, glyphs.size());

    // Two thirds of the room are for what stands before the caret.
    std::size_t begin = caret;
    std::size_t indentation = 0;
    while (begin > 0 && indentation + glyphs[begin - 1].width <= room * 2 / 3) {
        indentation += glyphs[--begin].width;
    }
    std::string shown;
    std::size_t width = 0;
    for (std::size_t i = begin; i < glyphs.size() && width + glyphs[i].width <= room; ++i) {
        shown += glyphs[i].text;
        width += glyphs[i].width;
    }
    std::string excerpt = number + shown;
    if (column != 0) {
        excerpt += "\n" + std::string(number.size() - 2, ' ') + "| " +
                   std::string(indentation, ' ') + styled("^", Style::Caret, errorDescriptor());
    }
    return excerpt;
}
