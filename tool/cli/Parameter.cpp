#include "cli/Parameter.h"

#include "base/Errors.h"
#include "base/Utf8.h"

#include <algorithm>
#include <charconv>

#include <unicode/uchar.h>

namespace {

/** Near to the names of XML: what is refused here is none, the rest is the library's to refuse. */
bool isName(const std::string& text) {
    const auto characters = decodeUtf8(text).value_or(U"");
    const auto isStart = [](char32_t c) {
        return c == '_' || u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_ID_START);
    };
    const auto isPart = [](char32_t c) {
        return c == '-' || c == '.' ||
               u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_ID_CONTINUE);
    };
    return !characters.empty() && isStart(characters.front()) &&
           std::all_of(characters.begin(), characters.end(), isPart);
}

/** Where the name ends: a namespace may have a "=". */
std::size_t endOfName(const std::string& argument) {
    const auto brace = argument.rfind('{', 0) == 0 ? argument.find('}') : 0;
    return brace == std::string::npos ? brace : argument.find('=', brace);
}

double toNumber(const std::string& text, const std::string& argument) {
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end) {
        throw UsageError(argument, "expected a number, got '" + text + "'");
    }
    return number;
}

} // namespace

Parameter parseParameter(const std::string& option, Parameter::Kind kind,
                         const std::string& argument) {
    const std::string given = option + " " + argument;
    requireUtf8(given, argument);
    const auto end = endOfName(argument);
    if (end == std::string::npos || end == 0) {
        throw UsageError(given, "expected NAME=VALUE, such as title=Orders");
    }
    Parameter parameter;
    parameter.kind = kind;
    parameter.name = argument.substr(0, end);
    parameter.value = argument.substr(end + 1);
    const auto brace = parameter.name.rfind('{', 0) == 0 ? parameter.name.find('}') : 0;
    if (!isName(parameter.name.substr(brace == 0 ? 0 : brace + 1))) {
        throw UsageError(given, "expected a name such as title or {urn:example}title, got '" +
                                    parameter.name + "'");
    }
    if (kind == Parameter::Kind::Number) {
        parameter.number = toNumber(parameter.value, given);
    }
    return parameter;
}

void requireUtf8(const std::string& argument, const std::string& text) {
    if (!decodeUtf8(text)) {
        throw UsageError(argument, "the text is not valid UTF-8");
    }
}
