#include <nrb/NRBMessage.h>

#include <unicode/uloc.h>

#include <algorithm>
#include <cctype>
#include <string>

namespace {

using LocaleOperation = int32_t (*)(const char*, char*, int32_t, UErrorCode*);

/** The result of an ICU operation on a locale identifier; empty if it fails. */
std::string runIcu(LocaleOperation operation, const std::string& locale) {
    char result[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = operation(locale.c_str(), result, ULOC_FULLNAME_CAPACITY, &status);
    return U_SUCCESS(status) && length < ULOC_FULLNAME_CAPACITY ? result : "";
}

/** A language in ICU's canonical form, without encoding and keywords. */
std::string canonicalLocale(const char* language) {
    std::string locale = runIcu(uloc_getBaseName, runIcu(uloc_canonicalize, language));
    locale.erase(locale.find_last_not_of('_') + 1);
    // The language may be untrusted input, and ICU may use the identifier in a file name.
    const bool isIdentifier = std::all_of(
        locale.begin(), locale.end(), [](unsigned char c) { return std::isalnum(c) || c == '_'; });
    return isIdentifier ? locale : "";
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
    // For null, ICU would use the locale of the process.
    std::string locale = language ? canonicalLocale(language) : std::string();
    for (; !locale.empty(); locale = runIcu(uloc_getParent, locale)) {
        if (findText(locale.c_str(), out)) {
            return true;
        }
    }
    return false;
}
