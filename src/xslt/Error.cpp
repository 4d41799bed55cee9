#include <vexa/xslt/Error.h>

#include <utility>

namespace vexa {

struct Error::Data {
    ErrorKind kind;
    std::string text;
    Location where;
    std::vector<Diagnostic> diagnostics;
};

namespace {

std::string describe(const std::string& text, const Location& where) {
    std::string description = where.uri;
    for (const std::size_t number : {where.line, where.column}) {
        if (number == 0) {
            break;
        }
        description += (description.empty() ? "" : ":") + std::to_string(number);
    }
    return description.empty() ? text : description + ": " + text;
}

} // namespace

Error::Error(ErrorKind kind, std::string text, Location where, std::vector<Diagnostic> diagnostics)
    : std::runtime_error(describe(text, where)),
      m_data(std::make_shared<const Data>(
          Data{kind, std::move(text), std::move(where), std::move(diagnostics)})) {}

Error::~Error() = default;

ErrorKind Error::kind() const noexcept {
    return m_data->kind;
}

const std::string& Error::text() const noexcept {
    return m_data->text;
}

const Location& Error::where() const noexcept {
    return m_data->where;
}

const std::vector<Diagnostic>& Error::diagnostics() const noexcept {
    return m_data->diagnostics;
}

} // namespace vexa
