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

/** Bytes of stack that the engine needs to parse and then to evaluate an expression. */
struct Stack {
    std::size_t parsing = 0;
    std::size_t evaluation = 0;

    std::size_t maximum() const { return std::max(parsing, evaluation); }
};

Stack operator+(Stack a, Stack b) {
    return {a.parsing + b.parsing, a.evaluation + b.evaluation};
}

Stack operator*(std::size_t times, Stack stack) {
    return {times * stack.parsing, times * stack.evaluation};
}

Stack maximum(Stack a, Stack b) {
    return {std::max(a.parsing, b.parsing), std::max(a.evaluation, b.evaluation)};
}

/** The operators of chains, from the lowest to the highest precedence. */
enum Level { OR, AND, EQUALITY, RELATIONAL, ADDITIVE, MULTIPLICATIVE, MINUS_SIGN, UNION, STEP };
constexpr std::size_t LEVELS = STEP + 1;

/**
 * The bytes of stack for each further operator, bracket or call, measured with Debian's libxalan-c
 * 1.12 (a release build) on a stack that was filled with a pattern before. A chain of operators is
 * evaluated from its innermost left operand, a chain of steps from its first step; unions are
 * evaluated in a loop.
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

/** Other builds of the engine may need a little more stack than the measured one. */
constexpr std::size_t withTolerance(std::size_t measured) {
    return measured + measured / 4;
}

/** For everything else; about 13 KB were measured, most of it for an exception and its message. */
constexpr std::size_t RESERVE = std::size_t{32} * 1024;

/** Every thread that can run the engine has this much stack in addition. */
constexpr std::size_t MIN_STACK = std::size_t{16} * 1024;

/** Assumed for a stack with unknown bounds, such as that of a coroutine. */
constexpr std::size_t UNKNOWN_STACK = std::size_t{512} * 1024;

/** The remaining bytes of the calling thread's stack. */
std::size_t remainingStack() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) {
        return UNKNOWN_STACK;
    }
    void* lowest = nullptr;
    std::size_t size = 0;
    pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    // Not the address of a local variable: AddressSanitizer may store it on another stack.
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    const std::size_t remaining = here - reinterpret_cast<std::uintptr_t>(lowest);
    return remaining < size ? remaining : UNKNOWN_STACK;
}

bool isOneOf(char16_t c, std::u16string_view characters) {
    return characters.find(c) != std::u16string_view::npos;
}

/** Reads the tokens of an expression as the engine does, and adds up the stack that it needs. */
class StackCounter {
public:
    explicit StackCounter(std::u16string_view expression) : m_rest(expression), m_brackets(1) {}

    bool needsMoreThan(std::size_t limit) {
        while (!m_rest.empty()) {
            readToken();
            if (m_stackOfOpenBrackets > limit) {
                return true; // bounds the number of open brackets that are stored
            }
        }
        while (m_brackets.size() > 1) {
            closeBracket();
        }
        finishArgument();
        return withTolerance(bracket().arguments.maximum()) > limit;
    }

private:
    /** Operators of the same level and their operands. */
    struct Chain {
        std::size_t operators = 0;
        /** The maximum of all operands so far. */
        Stack operands;
    };

    /** An open bracket, or the expression itself. */
    struct OpenBracket {
        /** The stack for the bracket itself. */
        Stack own;
        std::array<Chain, LEVELS> chains;
        /** The current operand of the innermost chain. */
        Stack operand;
        /** The maximum of all arguments so far. */
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
            readSymbol(c);
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

    /** A name, a number or a part of a path. A name is an operator only after an operand. */
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
            // After an axis or a prefix, "or" is an element name.
            m_afterOperand = word.back() != u':';
        }
    }

    void readSymbol(char16_t c) {
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
            bracket().chains[UNION].operators = 1; // a longer chain needs no more stack
            break;
        case u'/':
            countOperator(STEP);
            break;
        default:
            if (m_afterOperand) {
                countBinaryOperator(c);
            } else if (c == u'-') {
                countOperator(MINUS_SIGN);
                bracket().chains[MINUS_SIGN].operators = 1; // "--" is a syntax error
            } else {
                // A wildcard, or the second character of "!=", "<=" or ">=", which is counted.
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
        m_afterOperand = false; // also after "@" and "$"
    }

    void countOperator(Level level) {
        finishChains(level + 1);
        Chain& chain = bracket().chains[level];
        ++chain.operators;
        chain.operands = maximum(chain.operands, std::exchange(bracket().operand, {}));
        m_afterOperand = false;
    }

    /**
     * Ends the chains of a level and of all higher levels. Each becomes an operand of the chain
     * that contains it. The deepest operand may be on top of the complete chain.
     */
    void finishChains(std::size_t lowest) {
        for (std::size_t level = LEVELS; level-- > lowest;) {
            const Chain chain = std::exchange(bracket().chains[level], {});
            bracket().operand =
                maximum(bracket().operand, chain.operands) + chain.operators * OF_LEVEL[level];
        }
    }

    void finishArgument() {
        finishChains(OR);
        bracket().arguments = maximum(bracket().arguments, std::exchange(bracket().operand, {}));
    }

    void openBracket(Stack own) {
        m_brackets.emplace_back().own = own;
        m_stackOfOpenBrackets += own.parsing;
        m_afterOperand = false;
    }

    void closeBracket() {
        m_afterOperand = true;
        if (m_brackets.size() == 1) {
            return; // unmatched: the engine reports the error
        }
        finishArgument();
        const OpenBracket closed = bracket();
        m_brackets.pop_back();
        m_stackOfOpenBrackets -= closed.own.parsing;
        bracket().operand = maximum(bracket().operand, closed.arguments + closed.own);
    }

    void skip(std::size_t length) { m_rest.remove_prefix(length); }

    std::u16string_view m_rest;
    bool m_afterOperand = false;
    /** The expression itself and its open brackets. */
    std::vector<OpenBracket> m_brackets;
    std::size_t m_stackOfOpenBrackets = 0;
};

} // namespace

bool hasStackFor(std::size_t bytes) {
    if (bytes <= MIN_STACK) {
        return true;
    }
    const std::size_t remaining = remainingStack();
    return remaining >= RESERVE && remaining - RESERVE >= bytes;
}

namespace {

/**
 * More than a character can need: a bracket; an operator, and one before it that is a word. 0 for
 * those that are part of a name or a number.
 */
constexpr std::array<std::uint16_t, 128> mostOfCharacters() {
    constexpr std::uint16_t OF_OPERATORS = 480;
    constexpr std::uint16_t OF_BRACKET = 1200;
    std::array<std::uint16_t, 128> most{};
    for (const char16_t c : std::u16string_view(u" \t\r\n'\"-@|/*+=,\\^!$<>")) {
        most[c] = OF_OPERATORS;
    }
    for (const char16_t c : std::u16string_view(u"()[]")) {
        most[c] = OF_BRACKET;
    }
    return most;
}

/** Whether one look says that an expression needs little stack: of nearly all it does. */
bool isSimple(std::u16string_view expression) {
    static constexpr auto MOST = mostOfCharacters();
    std::size_t sum = 0;
    for (const char16_t c : expression) {
        sum += c < MOST.size() ? MOST[c] : 0;
    }
    return withTolerance(sum) <= MIN_STACK;
}

} // namespace

bool isTooDeepExpression(std::u16string_view expression) {
    if (isSimple(expression)) {
        return false;
    }
    // remainingStack() is slow in the main thread: call it only for a deep expression.
    if (!StackCounter(expression).needsMoreThan(MIN_STACK)) {
        return false;
    }
    const std::size_t remaining = remainingStack();
    return remaining < RESERVE || StackCounter(expression).needsMoreThan(remaining - RESERVE);
}

void rejectTooDeepExpression(std::u16string_view expression) {
    if (isTooDeepExpression(expression)) {
        throw xalanc::XalanXPathException(
            xalanc::XalanDOMString("The expression is nested too deeply."), engineMemory());
    }
}
