#include "engine/ExpressionGuard.h"

#include "engine/EngineMemory.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <pthread.h>
#include <utility>
#include <vector>

#include <xalanc/PlatformSupport/XalanXMLChar.hpp>
#include <xalanc/XPath/XalanXPathException.hpp>

namespace {

/** Bytes of stack: the engine first parses an expression, then it evaluates it. */
struct Stack {
    std::size_t parsing = 0;
    std::size_t evaluation = 0;

    std::size_t most() const { return std::max(parsing, evaluation); }
};

Stack operator+(Stack a, Stack b) {
    return {a.parsing + b.parsing, a.evaluation + b.evaluation};
}

Stack operator*(std::size_t times, Stack stack) {
    return {times * stack.parsing, times * stack.evaluation};
}

Stack deeper(Stack a, Stack b) {
    return {std::max(a.parsing, b.parsing), std::max(a.evaluation, b.evaluation)};
}

/** What rows consist of, from the operator that binds least to the one that binds most. */
enum Level { OR, AND, EQUALITY, RELATIONAL, ADDITIVE, MULTIPLICATIVE, MINUS_SIGN, UNION, STEP };
constexpr std::size_t LEVELS = STEP + 1;

/**
 * What each takes, as measured with Debian's libxalan-c 1.12 (a release build): the bytes that one
 * more of it takes of a stack that was painted before. A chain of operators is evaluated from its
 * innermost left operand, a chain of steps from its first; unions are evaluated in a loop.
 */
#if SIZE_MAX > UINT32_MAX // amd64
constexpr Stack OF_LEVEL[LEVELS] = {{32, 128}, {32, 128}, {48, 144}, {48, 144}, {48, 144},
                                    {48, 144}, {32, 96},  {0, 240},  {0, 144}};
constexpr Stack OF_GROUP = {400, 352};
constexpr Stack OF_CALL = {592, 560};
constexpr Stack OF_PREDICATE = {816, 400};
#else // i386
constexpr Stack OF_LEVEL[LEVELS] = {{32, 192}, {32, 192}, {64, 208}, {64, 208}, {64, 224},
                                    {64, 224}, {32, 192}, {0, 240},  {0, 144}};
constexpr Stack OF_GROUP = {544, 440};
constexpr Stack OF_CALL = {768, 600};
constexpr Stack OF_PREDICATE = {944, 464};
#endif

/** Another build of the engine may take a little more than the one that was measured. */
constexpr std::size_t withTolerance(std::size_t measured) {
    return measured + measured / 4;
}

/**
 * What the engine needs besides: some 13 KB were measured, most of it for an exception and its
 * message.
 */
constexpr std::size_t RESERVE = std::size_t{32} * 1024;

/** Every thread that can run the engine at all has so much more. */
constexpr std::size_t EVERY_THREAD_HAS = std::size_t{16} * 1024;

/** Taken for a stack whose bounds are unknown, such as that of a coroutine. */
constexpr std::size_t UNKNOWN_STACK = std::size_t{512} * 1024;

/** The bytes that the calling thread has left of its stack. */
std::size_t stackLeft() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) {
        return UNKNOWN_STACK;
    }
    void* lowest = nullptr;
    std::size_t size = 0;
    pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    // No local variable: AddressSanitizer may keep those elsewhere.
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    const std::size_t left = here - reinterpret_cast<std::uintptr_t>(lowest);
    return left < size ? left : UNKNOWN_STACK;
}

bool isOneOf(char16_t c, std::u16string_view characters) {
    return characters.find(c) != std::u16string_view::npos;
}

/** Reads an expression once, cut into tokens as the engine does, and adds up what it takes. */
class StackCounter {
public:
    explicit StackCounter(std::u16string_view expression) : m_rest(expression), m_brackets(1) {}

    bool takesMoreThan(std::size_t limit) {
        while (!m_rest.empty()) {
            readToken();
            if (m_takenByOpenBrackets > limit) {
                return true; // without keeping track of any number of brackets
            }
        }
        while (m_brackets.size() > 1) {
            closeBracket();
        }
        finishArgument();
        return withTolerance(bracket().arguments.most()) > limit;
    }

private:
    struct Row {
        /** How many of its operators there are so far. */
        std::size_t operators = 0;
        /** What its members so far take, at most. */
        Stack members;
    };

    /** An open bracket, or the expression itself. */
    struct OpenBracket {
        /** What the bracket itself takes. */
        Stack own;
        std::array<Row, LEVELS> rows;
        /** What the present member of the innermost row takes. */
        Stack member;
        /** What its arguments so far take, at most. */
        Stack arguments;
    };

    OpenBracket& bracket() { return m_brackets.back(); }

    void readToken() {
        const char16_t c = m_rest.front();
        if (isOneOf(c, u"'\"")) {
            const auto end = m_rest.find(c, 1);
            skip(end == std::u16string_view::npos ? m_rest.size() : end + 1);
            m_afterOperand = true;
        } else if (isOneOf(c, u" \t\r\n")) {
            skip(1);
        } else if (isOneOf(c, u"-@()[]|/*+=,\\^!$<>")) {
            readSign(c);
            skip(1);
        } else {
            readWord();
        }
    }

    std::size_t lengthOfNumber() const {
        bool hasPoint = false;
        std::size_t length = 0;
        while (length < m_rest.size() &&
               (xalanc::XalanXMLChar::isDigit(m_rest[length]) ||
                (m_rest[length] == u'.' && !std::exchange(hasPoint, true)))) {
            ++length;
        }
        return length;
    }

    /** A name, a number or a part of a path; a name is an operator only behind an operand. */
    void readWord() {
        const auto word =
            m_rest.substr(0, xalanc::XalanXMLChar::isDigit(m_rest.front())
                                 ? lengthOfNumber()
                                 : m_rest.find_first_of(u" \t\r\n'\"@()[]|/*+=,\\^!$<>"));
        skip(word.size());
        if (m_afterOperand && word == u"or") {
            countOperator(OR);
        } else if (m_afterOperand && word == u"and") {
            countOperator(AND);
        } else if (m_afterOperand && (word == u"div" || word == u"mod")) {
            countOperator(MULTIPLICATIVE);
        } else {
            // Behind an axis or a prefix, "or" is the name of an element.
            m_afterOperand = word.back() != u':';
        }
    }

    void readSign(char16_t c) {
        switch (c) {
        case u'(':
            openBracket(m_afterOperand ? OF_CALL : OF_GROUP);
            break;
        case u'[':
            openBracket(OF_PREDICATE);
            break;
        case u')':
        case u']':
            closeBracket();
            break;
        case u',':
            finishArgument();
            m_afterOperand = false;
            break;
        case u'|':
            countOperator(UNION);
            bracket().rows[UNION].operators = 1; // of any number of them
            break;
        case u'/':
            countOperator(STEP);
            break;
        default:
            if (m_afterOperand) {
                countBinaryOperator(c);
            } else if (c == u'-') {
                countOperator(MINUS_SIGN);
                bracket().rows[MINUS_SIGN].operators = 1; // two in a row are an error
            } else {
                // A wildcard; else the end of "!=", "<=" or ">=", which is counted already.
                m_afterOperand = c == u'*';
            }
        }
    }

    void countBinaryOperator(char16_t c) {
        if (isOneOf(c, u"=!")) {
            countOperator(EQUALITY);
        } else if (isOneOf(c, u"<>")) {
            countOperator(RELATIONAL);
        } else if (isOneOf(c, u"+-")) {
            countOperator(ADDITIVE);
        } else if (c == u'*') {
            countOperator(MULTIPLICATIVE);
        }
        m_afterOperand = false; // behind "@" and "$", too
    }

    void countOperator(Level level) {
        finishRows(level + 1);
        Row& row = bracket().rows[level];
        ++row.operators;
        row.members = deeper(row.members, std::exchange(bracket().member, {}));
        m_afterOperand = false;
    }

    /**
     * Rows of `outermost` and of what binds more end here: each becomes a member of the row around
     * it. The deepest member may be on top of the whole row.
     */
    void finishRows(std::size_t outermost) {
        for (std::size_t level = LEVELS; level-- > outermost;) {
            const Row row = std::exchange(bracket().rows[level], {});
            bracket().member =
                deeper(bracket().member, row.members) + row.operators * OF_LEVEL[level];
        }
    }

    void finishArgument() {
        finishRows(OR);
        bracket().arguments = deeper(bracket().arguments, std::exchange(bracket().member, {}));
    }

    void openBracket(Stack own) {
        m_brackets.emplace_back().own = own;
        m_takenByOpenBrackets += own.parsing;
        m_afterOperand = false;
    }

    void closeBracket() {
        m_afterOperand = true;
        if (m_brackets.size() == 1) {
            return; // none is open: an error that the engine reports
        }
        finishArgument();
        const OpenBracket closed = bracket();
        m_brackets.pop_back();
        m_takenByOpenBrackets -= closed.own.parsing;
        bracket().member = deeper(bracket().member, closed.arguments + closed.own);
    }

    void skip(std::size_t length) { m_rest.remove_prefix(length); }

    std::u16string_view m_rest;
    bool m_afterOperand = false;
    /** The expression itself, and the brackets that are open in it. */
    std::vector<OpenBracket> m_brackets;
    std::size_t m_takenByOpenBrackets = 0;
};

} // namespace

bool isTooDeepExpression(std::u16string_view expression) {
    // The system is asked for the stack only where it matters: in the main thread that takes long.
    if (!StackCounter(expression).takesMoreThan(EVERY_THREAD_HAS)) {
        return false;
    }
    const std::size_t left = stackLeft();
    return left < RESERVE || StackCounter(expression).takesMoreThan(left - RESERVE);
}

void refuseTooDeepExpression(std::u16string_view expression) {
    if (isTooDeepExpression(expression)) {
        throw xalanc::XalanXPathException(
            xalanc::XalanDOMString("The expression is nested too deeply."), engineMemory());
    }
}
