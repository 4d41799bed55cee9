#include "engine/ExpressionGuard.h"

#include "engine/EngineMemory.h"

#include <cstddef>
#include <utility>
#include <vector>

#include <xalanc/XPath/XalanXPathException.hpp>

namespace {

/**
 * Bytes of stack, measured. What is counted is two thirds of what is taken where most of it is
 * taken, on 32 bits, and one count serves both word sizes, so that both refuse the same
 * expressions.
 */
constexpr std::size_t MOST_STACK = std::size_t{600} * 1024;
constexpr std::size_t STACK_OF_BRACKET = 600;
constexpr std::size_t STACK_OF_STEP = 180;
constexpr std::size_t STACK_OF_OPERATOR = 150;
constexpr std::size_t STACK_OF_AND = 160;
constexpr std::size_t STACK_OF_OR = 40;

bool isOneOf(char16_t c, std::u16string_view characters) {
    return characters.find(c) != std::u16string_view::npos;
}

bool isNameStart(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c >= 0x80;
}

bool isNameCharacter(char16_t c) {
    return isNameStart(c) || (c >= u'0' && c <= u'9') || isOneOf(c, u".-:");
}

/** The rows that the engine is in, between one open bracket and the next. */
struct Rows {
    std::size_t steps = 0;
    std::size_t operators = 0;
    std::size_t ands = 0;
    std::size_t ors = 0;

    std::size_t stack() const {
        return STACK_OF_BRACKET + steps * STACK_OF_STEP + operators * STACK_OF_OPERATOR +
               ands * STACK_OF_AND + ors * STACK_OF_OR;
    }
};

/** Reads an expression once, and counts the stack that the engine takes at its deepest place. */
class StackCounter {
public:
    explicit StackCounter(std::u16string_view expression) : m_rest(expression) {}

    bool isTooMuch() {
        while (!m_rest.empty()) {
            readToken();
            if (m_outerStack + m_rows.stack() > MOST_STACK) {
                return true;
            }
        }
        return false;
    }

private:
    void readToken() {
        const char16_t c = m_rest.front();
        if (isOneOf(c, u"'\"")) {
            const auto end = m_rest.find(c, 1);
            skip(end == std::u16string_view::npos ? m_rest.size() : end + 1);
            m_afterOperand = true;
        } else if (isNameStart(c)) {
            readName();
        } else {
            readSign(c);
            skip(1);
        }
    }

    /** A name is an operator only where an operand stands before it. */
    void readName() {
        std::size_t length = 1;
        while (length < m_rest.size() && isNameCharacter(m_rest[length])) {
            ++length;
        }
        const auto name = m_rest.substr(0, length);
        skip(length);
        const bool canBeOperator = std::exchange(m_afterOperand, true);
        if (!canBeOperator) {
            return;
        }
        if (name == u"or") {
            m_rows = Rows{0, 0, 0, m_rows.ors + 1};
        } else if (name == u"and") {
            m_rows = Rows{0, 0, m_rows.ands + 1, m_rows.ors};
        } else {
            countOperator(); // div, mod, or no expression at all
        }
        m_afterOperand = false;
    }

    void readSign(char16_t c) {
        if (isOneOf(c, u" \t\r\n")) {
            return;
        }
        if (isOneOf(c, u"([")) {
            m_outerStack += m_rows.stack();
            m_outerRows.push_back(std::exchange(m_rows, Rows{}));
            m_afterOperand = false;
        } else if (isOneOf(c, u")]")) {
            closeBracket();
            m_afterOperand = true;
        } else if (c == u',') {
            m_rows = Rows{};
            m_afterOperand = false;
        } else if (c == u'|') {
            m_rows.steps = 0;
            m_afterOperand = false;
        } else if (c == u'/') {
            ++m_rows.steps;
            m_afterOperand = false;
        } else if (isOneOf(c, u"+-=!<>") || (c == u'*' && m_afterOperand)) {
            countOperator();
            m_afterOperand = false;
        } else {
            // A digit, a dot, a wildcard; behind "@", ":" and "$" a name is no operator.
            m_afterOperand = !isOneOf(c, u"@:$");
        }
    }

    void closeBracket() {
        if (!m_outerRows.empty()) {
            m_rows = m_outerRows.back();
            m_outerRows.pop_back();
            m_outerStack -= m_rows.stack();
        }
    }

    void countOperator() {
        ++m_rows.operators;
        m_rows.steps = 0;
    }

    void skip(std::size_t length) { m_rest.remove_prefix(length); }

    std::u16string_view m_rest;
    bool m_afterOperand = false;
    Rows m_rows;
    std::vector<Rows> m_outerRows;
    /** What the open brackets take, each with the rows before it. */
    std::size_t m_outerStack = 0;
};

} // namespace

void refuseTooDeepExpression(std::u16string_view expression) {
    // No character takes more than a bracket does: short ones need not be read.
    if (expression.size() >= MOST_STACK / STACK_OF_BRACKET &&
        StackCounter(expression).isTooMuch()) {
        throw xalanc::XalanXPathException(
            xalanc::XalanDOMString("The expression is nested too deeply."), engineMemory());
    }
}
