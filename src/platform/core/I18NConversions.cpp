#include <nrb/I18NString.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <unicode/ucnv.h>

namespace {

const char16_t* viewOrCopy(const char16_t* text, bool copy) {
    if (!text) {
        text = u"";
    }
    if (!copy) {
        return text;
    }
    const std::size_t bytes = (std::char_traits<char16_t>::length(text) + 1) * sizeof(char16_t);
    void* const target = std::malloc(bytes);
    if (!target) {
        throw std::bad_alloc();
    }
    return static_cast<const char16_t*>(std::memcpy(target, text, bytes));
}

} // namespace

const char* I18NGetPlatformDefaultEncoding() {
    return ucnv_getDefaultName();
}

void I18NExternalBufferToUTF16(const char16_t*& utf16, const void* externalBuffer, bool copy) {
    utf16 = viewOrCopy(static_cast<const char16_t*>(externalBuffer), copy);
}

void I18NUTF16ToExternalBuffer(const void*& externalBuffer, const char16_t* utf16, bool copy) {
    externalBuffer = viewOrCopy(utf16, copy);
}
