#include "ExpressionGuard.h"

#include <cstddef>
#include <vector>

#include <xalanc/XPath/XalanXPathException.hpp>

namespace {

constexpr std::size_t MOST_NESTED_BRACKETS = 1000;
constexpr std::size_t MOST_OPERATORS_IN_A_ROW = 5000;

bool isOneOf(char16_t c, std::u16string_view characters) {
    return characters.find(c) != std::u16string_view::npos;
}

bool isNameStart(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c >= 0x80;
}

bool isNameCharacter(char16_t c) {
    return isNameStart(c) || (c >= u'0' && c <= u'9') || isOneOf(c, u".-:");
}

/** Reads an expression once, and counts how deep the engine would go. */
class DepthCounter {
public:
    explicit DepthCounter(std::u16string_view expression) : m_rest(expression) {}

    bool isTooDeep() {
        while (!m_rest.empty()) {
            readToken();
            if (m_operatorsOfBrackets.size() > MOST_NESTED_BRACKETS ||
                m_operators > MOST_OPERATORS_IN_A_ROW) {
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
        } else if (isNameStart(c)) {
            readName();
        } else {
            readSign(c);
            skip(1);
        }
    }

    void readName() {
        std::size_t length = 1;
        while (length < m_rest.size() && isNameCharacter(m_rest[length])) {
            ++length;
        }
        const auto name = m_rest.substr(0, length);
        if (name == u"div" || name == u"mod") {
            ++m_operators;
        } else if (name == u"or" || name == u"and") {
            m_operators = 0;
        }
        skip(length);
    }

    void readSign(char16_t c) {
        if (isOneOf(c, u"([")) {
            m_operatorsOfBrackets.push_back(m_operators);
            m_operators = 0;
        } else if (isOneOf(c, u")]")) {
            if (!m_operatorsOfBrackets.empty()) {
                m_operators = m_operatorsOfBrackets.back();
                m_operatorsOfBrackets.pop_back();
            }
        } else if (isOneOf(c, u"+-*=<>")) {
            ++m_operators;
        } else if (c == u',') {
            m_operators = 0;
        }
    }

    void skip(std::size_t length) { m_rest.remove_prefix(length); }

    std::u16string_view m_rest;
    std::size_t m_operators = 0;
    /** For each open bracket, the operators that stand in a row before it. */
    std::vector<std::size_t> m_operatorsOfBrackets;
};

} // namespace

void refuseTooDeepExpression(std::u16string_view expression) {
    if (DepthCounter(expression).isTooDeep()) {
        throw xalanc::XalanXPathException(
            xalanc::XalanDOMString("The expression is nested too deeply."),
            xalanc::XalanMemMgrs::getDefaultXercesMemMgr());
    }
}
