#include <vexa/WolMdMessage.h>

#include <cstdio>
#include <new>
#include <unicode/udata.h>
#include <unicode/ures.h>

/** The compiled catalogue. */
extern "C" const char VEXA_Resources_dat[];

namespace {

constexpr const char* PACKAGE = "VEXA_Resources";

void throwIfOutOfMemory(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR) {
        throw std::bad_alloc();
    }
}

/** Registers the catalogue with ICU once in a process. After bad_alloc, the next call retries. */
void registerCatalogue() {
    static const UErrorCode registered = [] {
        UErrorCode status = U_ZERO_ERROR;
        udata_setAppData(PACKAGE, VEXA_Resources_dat, &status);
        throwIfOutOfMemory(status);
        return status;
    }();
    static_cast<void>(registered);
}

} // namespace

WolMdMessage::WolMdMessage(unsigned long id) : m_nId(static_cast<std::uint32_t>(id)) {}

WolMdMessage::~WolMdMessage() = default;

bool WolMdMessage::findText(const char* locale, I18NString& out) const {
    registerCatalogue();
    char key[9];
    std::snprintf(key, sizeof key, "%08X", static_cast<unsigned>(m_nId));

    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUResourceBundlePointer bundle(ures_openDirect(PACKAGE, locale, &status));
    int32_t length = 0;
    const UChar* const text = ures_getStringByKey(bundle.getAlias(), key, &length, &status);
    throwIfOutOfMemory(status);
    if (U_FAILURE(status)) {
        return false;
    }
    out = I18NString(text, length, nullptr, nullptr);
    return true;
}
