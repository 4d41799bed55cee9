#include "testing/TextDifference.h"

#include "testing/VisibleText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace {

using Lines = std::vector<std::string_view>;

/** Around a change. */
constexpr std::size_t CONTEXT = 3;
/** What is compared where the texts begin to differ. */
constexpr std::size_t MOST_COMPARED = 500;
constexpr std::size_t MOST_SHOWN = 60;

/** With their newlines. */
Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return lines;
}

struct Edit {
    /** ' ', '-' or '+' */
    char sign;
    /** Of the lines that come next. */
    std::size_t expected;
    std::size_t actual;
};

/** From one text to another. */
class Edits {
public:
    Edits(const Lines& expected, const Lines& actual) : m_expected(expected), m_actual(actual) {
        const auto [end, ignored] = std::mismatch(
            expected.begin(), expected.begin() + shorter(expected.size(), actual.size()),
            actual.begin());
        m_begin = static_cast<std::size_t>(end - expected.begin());
        std::size_t same = 0;
        while (same < std::min(expected.size(), actual.size()) - m_begin &&
               expected[expected.size() - 1 - same] == actual[actual.size() - 1 - same]) {
            ++same;
        }
        m_expectedEnd = std::min(expected.size() - same, m_begin + MOST_COMPARED);
        m_actualEnd = std::min(actual.size() - same, m_begin + MOST_COMPARED);
        m_isCut = m_expectedEnd + same < expected.size() || m_actualEnd + same < actual.size();
        compare();
        collect();
    }

    const std::vector<Edit>& edits() const { return m_edits; }
    /** Whether there may be others. */
    bool isCut() const { return m_isCut; }

private:
    static std::ptrdiff_t shorter(std::size_t left, std::size_t right) {
        return static_cast<std::ptrdiff_t>(std::min(left, right));
    }

    std::uint16_t& common(std::size_t expected, std::size_t actual) {
        return m_common[(expected - m_begin) * (m_actualEnd - m_begin + 1) + actual - m_begin];
    }

    /** How many lines both have in common from each pair of lines on. */
    void compare() {
        m_common.resize((m_expectedEnd - m_begin + 1) * (m_actualEnd - m_begin + 1));
        for (std::size_t i = m_expectedEnd; i-- > m_begin;) {
            for (std::size_t j = m_actualEnd; j-- > m_begin;) {
                common(i, j) = m_expected[i] == m_actual[j]
                                   ? static_cast<std::uint16_t>(common(i + 1, j + 1) + 1)
                                   : std::max(common(i + 1, j), common(i, j + 1));
            }
        }
    }

    void collect() {
        std::size_t i = m_begin - std::min(m_begin, CONTEXT);
        std::size_t j = i;
        const auto add = [&](char sign) {
            m_edits.push_back({sign, i, j});
            i += sign == '+' ? 0U : 1U;
            j += sign == '-' ? 0U : 1U;
        };
        while (i < m_begin) {
            add(' ');
        }
        while (i < m_expectedEnd || j < m_actualEnd) {
            if (j == m_actualEnd || (i < m_expectedEnd && m_expected[i] != m_actual[j] &&
                                     common(i + 1, j) >= common(i, j + 1))) {
                add('-');
            } else {
                add(i < m_expectedEnd && m_expected[i] == m_actual[j] ? ' ' : '+');
            }
        }
        for (std::size_t n = 0; !m_isCut && n < CONTEXT && i < m_expected.size(); ++n) {
            add(' ');
        }
    }

    const Lines& m_expected;
    const Lines& m_actual;
    /** What differs. */
    std::size_t m_begin;
    std::size_t m_expectedEnd;
    std::size_t m_actualEnd;
    bool m_isCut;
    std::vector<std::uint16_t> m_common;
    std::vector<Edit> m_edits;
};

/** Writes edits as lines. */
class Writer {
public:
    Writer(const Lines& expected, const Lines& actual, const std::vector<Edit>& edits)
        : m_expected(expected), m_actual(actual), m_edits(edits) {}

    std::string write() {
        for (std::size_t i = 0; i < m_edits.size();) {
            if (!isShown(i)) {
                ++i;
                continue;
            }
            std::size_t end = i;
            while (end < m_edits.size() && isShown(end)) {
                ++end;
            }
            writeHead(i, end);
            while (i < end) {
                i = writeRun(i, end);
            }
        }
        return m_text;
    }

private:
    bool isShown(std::size_t edit) const {
        const std::size_t begin = edit - std::min(edit, CONTEXT);
        const std::size_t end = std::min(edit + CONTEXT + 1, m_edits.size());
        return std::any_of(m_edits.begin() + static_cast<std::ptrdiff_t>(begin),
                           m_edits.begin() + static_cast<std::ptrdiff_t>(end),
                           [](const Edit& near) { return near.sign != ' '; });
    }

    void writeHead(std::size_t begin, std::size_t end) {
        const auto count = [&](char other) {
            return static_cast<std::size_t>(
                std::count_if(m_edits.begin() + static_cast<std::ptrdiff_t>(begin),
                              m_edits.begin() + static_cast<std::ptrdiff_t>(end),
                              [&](const Edit& edit) { return edit.sign != other; }));
        };
        const auto range = [](std::size_t first, std::size_t lines) {
            return std::to_string(first + (lines == 0 ? 0 : 1)) + "," + std::to_string(lines);
        };
        m_text += "@@ -" + range(m_edits[begin].expected, count('+')) + " +" +
                  range(m_edits[begin].actual, count('-')) + " @@\n";
    }

    /** Lines that go and lines that come in their place; or one that stays. */
    std::size_t writeRun(std::size_t begin, std::size_t end) {
        if (m_edits[begin].sign == ' ') {
            writeLine(' ', m_expected[m_edits[begin].expected], 0);
            return begin + 1;
        }
        std::vector<std::string_view> removed;
        std::vector<std::string_view> added;
        for (; begin < end && m_edits[begin].sign != ' '; ++begin) {
            const Edit& edit = m_edits[begin];
            edit.sign == '-' ? removed.push_back(m_expected[edit.expected])
                             : added.push_back(m_actual[edit.actual]);
        }
        writeLines('-', removed, added);
        writeLines('+', added, removed);
        return begin;
    }

    /** The first ones, so that those in their place are seen, too. */
    void writeLines(char sign, const Lines& lines, const Lines& others) {
        constexpr std::size_t MOST_OF_A_SIGN = 20;
        for (std::size_t i = 0; i < std::min(lines.size(), MOST_OF_A_SIGN); ++i) {
            writeLine(sign, lines[i], placeIn(lines[i], i < others.size() ? others[i] : ""));
        }
        if (lines.size() > MOST_OF_A_SIGN) {
            m_text += sign + std::string("... ") + std::to_string(lines.size() - MOST_OF_A_SIGN) +
                      " more lines\n";
        }
    }

    static bool isEnded(std::string_view line) { return !line.empty() && line.back() == '\n'; }

    static std::u32string shown(std::string_view line) {
        return visibleText(std::string(line.substr(0, line.size() - (isEnded(line) ? 1 : 0))));
    }

    static std::size_t placeIn(std::string_view line, std::string_view other) {
        return other.empty() ? 0 : firstDifference(shown(line), shown(other));
    }

    void writeLine(char sign, std::string_view line, std::size_t place) {
        m_text += sign + textAround(shown(line), place) + "\n";
        if (!isEnded(line)) {
            m_text += "\\ No newline at end of file\n";
        }
    }

    const Lines& m_expected;
    const Lines& m_actual;
    const std::vector<Edit>& m_edits;
    std::string m_text;
};

/** Of many lines the first ones. */
std::string firstLines(const std::string& text, bool hasMore) {
    std::size_t end = 0;
    for (std::size_t i = 0; i < MOST_SHOWN && end < text.size(); ++i) {
        end = text.find('\n', end) + 1;
    }
    return text.substr(0, end) + (hasMore || end < text.size() ? "... there may be more\n" : "");
}

} // namespace

std::string textDifference(const std::string& name, const std::string& expected,
                           const std::string& actual) {
    const Lines expectedLines = linesOf(expected);
    const Lines actualLines = linesOf(actual);
    const Edits edits(expectedLines, actualLines);
    return "--- " + name + "\n+++ result\n" +
           firstLines(Writer(expectedLines, actualLines, edits.edits()).write(), edits.isCut());
}
