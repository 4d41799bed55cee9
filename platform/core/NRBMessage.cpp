#include <nrb/NRBMessage.h>

#include <unicode/uloc.h>

#include <string>

namespace {

/** A locale identifier in the form that ICU itself would write; empty where it is none. */
std::string canonicalLocale(const char* language) {
    char canonical[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = uloc_getBaseName(language, canonical, ULOC_FULLNAME_CAPACITY, &status);
    return U_SUCCESS(status) && length < ULOC_FULLNAME_CAPACITY ? canonical : "";
}

std::string parentLocale(const std::string& locale) {
    char parent[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    uloc_getParent(locale.c_str(), parent, ULOC_FULLNAME_CAPACITY, &status);
    return U_SUCCESS(status) ? parent : "";
}

} // namespace

NRBMessage::~NRBMessage() = default;

void NRBMessage::format(const char* language, const char* fallbackLanguage, I18NString& out) const {
    if (!formatInLanguageOrParent(language, out) &&
        !formatInLanguageOrParent(fallbackLanguage, out)) {
        out = I18NString();
    }
}

bool NRBMessage::formatInLanguageOrParent(const char* language, I18NString& out) const {
    // ICU would take a null language for the process's own locale.
    std::string locale = language ? canonicalLocale(language) : std::string();
    for (; !locale.empty(); locale = parentLocale(locale)) {
        if (findText(locale.c_str(), out)) {
            return true;
        }
    }
    return false;
}
