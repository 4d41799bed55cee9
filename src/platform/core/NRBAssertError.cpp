#include <nrb/NRBAssertError.h>

namespace {

const char* orEmpty(const char* text) {
    return text ? text : "";
}

std::optional<std::string> orNone(const char* text) {
    return text ? std::optional<std::string>(text) : std::nullopt;
}

} // namespace

NRBFileLocation::NRBFileLocation(const char* file, int line)
    : m_strFile(orEmpty(file)), m_nLine(line) {}

NRBAssertError::NRBAssertError(long code, const char* text)
    : std::runtime_error(orEmpty(text)), m_lCode(code) {}

NRBAssertError::~NRBAssertError() = default;

void NRBAssertError::hurl(const NRBFileLocation& location, const char* detail, const char* origin) {
    m_location = location;
    m_strDetail = orNone(detail);
    m_strOrigin = orNone(origin);
    throw *this;
}
