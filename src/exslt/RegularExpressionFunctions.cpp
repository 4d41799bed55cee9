#include "exslt/ExsltTables.h"
#include "exslt/NewNodes.h"

#include <exception>
#include <optional>

#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace {

using Text = std::u16string_view;

/** A hostile expression must not use much time, memory or stack. */
constexpr std::size_t MOST_PATTERN = 10'000;
constexpr std::int32_t MOST_GROUPS = 200;
/** Units of ICU: each is some milliseconds, more for an expression with many groups. */
constexpr std::int32_t MOST_TIME = 1000;
constexpr std::int32_t MOST_STACK = 8'000'000;

icu::UnicodeString alias(Text text) {
    return {false, text.data(), static_cast<std::int32_t>(text.size())};
}

/** Finds the matches of the second argument in the first. */
class Matches {
public:
    /** @param flags the index of the argument that has them */
    Matches(const ExsltCall& call, std::size_t flags)
        : m_call(call), m_text(call.text(0)), m_input(alias(m_text)) {
        const Text letters = call.size() > flags ? call.text(flags) : Text();
        m_isGlobal = letters.find(u'g') != Text::npos;
        const Text pattern = call.text(1);
        if (pattern.size() > MOST_PATTERN) {
            call.fail("The regular expression is too long.");
        }
        UErrorCode status = U_ZERO_ERROR;
        const std::uint32_t options =
            letters.find(u'i') != Text::npos ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0;
        m_matcher.emplace(alias(pattern), options, status);
        check(status);
        if (m_matcher->groupCount() > MOST_GROUPS) {
            call.fail("The regular expression has too many groups.");
        }
        m_matcher->setTimeLimit(MOST_TIME, status);
        m_matcher->setStackLimit(MOST_STACK, status);
        m_matcher->setMatchCallback(pollMatch, this, status);
        m_matcher->setFindProgressCallback(pollFind, this, status);
        m_matcher->reset(m_input);
        check(status);
    }

    bool isGlobal() const { return m_isGlobal; }
    std::int32_t groupCount() const { return m_matcher->groupCount(); }

    /** @return whether there is another match */
    bool find() {
        m_call.poll();
        UErrorCode status = U_ZERO_ERROR;
        const bool isFound = m_matcher->find(status);
        if (m_thrown) {
            std::rethrow_exception(m_thrown);
        }
        check(status);
        return isFound;
    }

    std::size_t begin() const { return at(m_matcher->start(m_status)); }
    std::size_t end() const { return at(m_matcher->end(m_status)); }
    /** The part of the match that a group captured: none is empty. Group 0 is the match. */
    Text group(std::int32_t number) const {
        const auto begin = m_matcher->start(number, m_status);
        return begin < 0
                   ? Text()
                   : m_text.substr(at(begin), at(m_matcher->end(number, m_status)) - at(begin));
    }

private:
    static std::size_t at(std::int32_t index) { return static_cast<std::size_t>(index); }

    static UBool pollMatch(const void* matches, std::int32_t /*steps*/) { return poll(matches); }
    static UBool pollFind(const void* matches, std::int64_t /*index*/) { return poll(matches); }
    /** No exception may pass through ICU. */
    static UBool poll(const void* matches) {
        const auto& self = *static_cast<const Matches*>(matches);
        try {
            self.m_call.poll();
            return true;
        } catch (...) {
            self.m_thrown = std::current_exception();
            return false;
        }
    }

    void check(UErrorCode status) const {
        if (status == U_REGEX_TIME_OUT || status == U_REGEX_STACK_OVERFLOW) {
            m_call.fail("The regular expression takes too long, or too much memory.");
        }
        if (U_FAILURE(status)) {
            m_call.fail(std::string("The regular expression is wrong: ") + u_errorName(status));
        }
    }

    const ExsltCall& m_call;
    const Text m_text;
    const icu::UnicodeString m_input;
    bool m_isGlobal = false;
    std::optional<icu::RegexMatcher> m_matcher;
    mutable std::exception_ptr m_thrown;
    mutable UErrorCode m_status = U_ZERO_ERROR;
};

ExsltCall::Result test(const ExsltCall& call) {
    return call.result(Matches(call, 2).find());
}

ExsltCall::Result match(const ExsltCall& call) {
    Matches matches(call, 2);
    NewNodes nodes(call);
    while (matches.find()) {
        nodes.addElement(u"match", matches.group(0));
        if (!matches.isGlobal()) {
            for (std::int32_t i = 1; i <= matches.groupCount(); ++i) {
                nodes.addElement(u"match", matches.group(i));
            }
            break;
        }
    }
    return nodes.nodes();
}

/** The number of a group that "$n" or "$nn" names, and the length of the reference, or 0. */
std::pair<std::int32_t, std::size_t> groupReference(Text text, std::int32_t count) {
    std::pair<std::int32_t, std::size_t> found{0, 0};
    std::int32_t number = 0;
    for (std::size_t i = 1; i < text.size() && i <= 2 && text[i] >= u'0' && text[i] <= u'9'; ++i) {
        number = number * 10 + (text[i] - u'0');
        if (number >= 1 && number <= count) {
            found = {number, i + 1};
        }
    }
    return found;
}

/** Appends the replacement of one match, with what JavaScript puts in place of "$". */
void appendReplacement(Text replacement, Text text, const Matches& matches, ExsltText& result) {
    for (auto dollar = replacement.find(u'$'); dollar != Text::npos;
         dollar = replacement.find(u'$')) {
        result.append(replacement.substr(0, dollar));
        replacement.remove_prefix(dollar);
        const char16_t next = replacement.size() > 1 ? replacement[1] : u'\0';
        const auto [group, length] = groupReference(replacement, matches.groupCount());
        std::size_t used = 2;
        if (length > 0) {
            result.append(matches.group(group));
            used = length;
        } else if (next == u'$') {
            result.append(u"$");
        } else if (next == u'&') {
            result.append(matches.group(0));
        } else if (next == u'`') {
            result.append(text.substr(0, matches.begin()));
        } else if (next == u'\'') {
            result.append(text.substr(matches.end()));
        } else {
            result.append(u"$");
            used = 1;
        }
        replacement.remove_prefix(used);
    }
    result.append(replacement);
}

ExsltCall::Result replace(const ExsltCall& call) {
    const Text text = call.text(0);
    const Text replacement = call.text(3);
    Matches matches(call, 2);
    ExsltText result(call);
    std::size_t done = 0;
    while (matches.find()) {
        result.append(text.substr(done, matches.begin() - done));
        appendReplacement(replacement, text, matches, result);
        done = matches.end();
        if (!matches.isGlobal()) {
            break;
        }
    }
    result.append(text.substr(done));
    return call.result(result.text());
}

constexpr ExsltFunction FUNCTIONS[] = {
    {u"match", 2, 3, match}, {u"replace", 4, 4, replace}, {u"test", 2, 3, test}};

} // namespace

ExsltTable regularExpressionFunctions() {
    return FUNCTIONS;
}
