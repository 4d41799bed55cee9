#include "EncodingConversions.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace nrb {
namespace {

constexpr UChar32 REPLACEMENT_CHARACTER = 0xFFFD;

[[noreturn]] void throwTooLong() {
    throw std::length_error("I18NString: the text is too long");
}

int32_t icuLength(std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) {
        throwTooLong();
    }
    return static_cast<int32_t>(length);
}

void check(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR) {
        throw std::bad_alloc();
    }
    if (U_FAILURE(status)) {
        throw std::runtime_error(std::string("I18NString: ") + u_errorName(status));
    }
}

icu::LocalUConverterPointer openConverter(const char* encoding) {
    UErrorCode status = U_ZERO_ERROR;
    // For an empty name, ICU would open the default encoding.
    icu::LocalUConverterPointer converter(*encoding ? ucnv_open(encoding, &status) : nullptr);
    if (status == U_MEMORY_ALLOCATION_ERROR) {
        throw std::bad_alloc();
    }
    if (converter.isNull()) {
        throw std::invalid_argument("I18NString: unknown encoding \"" + std::string(encoding) +
                                    "\"");
    }
    return converter;
}

/**
 * Runs an ICU conversion twice: first to measure the result, then to convert. `convert` takes
 * target, capacity and status, and returns the length of the complete result.
 */
template <typename Text, typename Conversion>
Text measureAndConvert(Conversion convert) {
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = convert(static_cast<typename Text::value_type*>(nullptr), 0, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR) {
        check(status);
    }
    if (length < 0) {
        throwTooLong();
    }
    Text result(static_cast<std::size_t>(length), 0);
    status = U_ZERO_ERROR;
    convert(result.data(), length, &status);
    check(status);
    return result;
}

/** ICU counts in 32 bits, and does not report a longer result. */
void checkLength(int32_t units, int32_t maxBytesPerUnit) {
    if (units > std::numeric_limits<int32_t>::max() / maxBytesPerUnit) {
        throwTooLong();
    }
}

/** Nearly every text is in UTF-8, and ICU converts it without a converter object. */
bool isUtf8(const char* encoding) {
    return std::strcmp(encoding, "UTF-8") == 0 || ucnv_compareNames(encoding, "UTF-8") == 0;
}

std::u16string utf8ToUtf16(const char* text, int32_t length) {
    // A text never has more UTF-16 units than UTF-8 bytes: no pass to measure is needed.
    std::u16string result(static_cast<std::size_t>(length), 0);
    int32_t resultLength = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(result.data(), length, &resultLength, text, length, REPLACEMENT_CHARACTER,
                         nullptr, &status);
    check(status);
    result.resize(static_cast<std::size_t>(resultLength));
    return result;
}

std::string utf16ToUtf8(const std::u16string& text, int32_t length) {
    checkLength(length, 3);
    return measureAndConvert<std::string>([&](char* target, int32_t capacity, UErrorCode* status) {
        int32_t needed = 0;
        u_strToUTF8WithSub(target, capacity, &needed, text.data(), length, REPLACEMENT_CHARACTER,
                           nullptr, status);
        return needed;
    });
}

/** Replaces each lone surrogate by U+FFFD, which every Unicode encoding can represent. */
std::u16string withoutLoneSurrogates(const std::u16string& text) {
    std::u16string clean;
    clean.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        UChar32 character = 0;
        U16_NEXT_OR_FFFD(text.data(), i, text.size(), character);
        UChar units[2];
        int32_t length = 0;
        U16_APPEND_UNSAFE(units, length, character);
        clean.append(units, static_cast<std::size_t>(length));
    }
    return clean;
}

/**
 * In most encodings ICU substitutes the control character SUB, which is not readable. This callback
 * writes a question mark; an encoding that has no question mark still gets ICU's substitute.
 */
void U_CALLCONV writeQuestionMark(const void* /*context*/, UConverterFromUnicodeArgs* args,
                                  const UChar* /*units*/, int32_t /*length*/, UChar32 /*character*/,
                                  UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) {
        return;
    }
    static constexpr UChar QUESTION_MARK[] = u"?";
    const UChar* source = QUESTION_MARK;
    *status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(args->converter, UCNV_FROM_U_CALLBACK_SUBSTITUTE, nullptr, nullptr,
                          nullptr, status);
    ucnv_cbFromUWriteUChars(args, &source, QUESTION_MARK + 1, 0, status);
    // A separate status: the callback must be restored after a buffer overflow, too.
    UErrorCode restored = U_ZERO_ERROR;
    ucnv_setFromUCallBack(args->converter, writeQuestionMark, nullptr, nullptr, nullptr, &restored);
}

/** The default callback of ICU turns some malformed bytes, as in Shift_JIS, into SUB. */
void U_CALLCONV writeReplacementCharacter(const void* /*context*/, UConverterToUnicodeArgs* args,
                                          const char* /*bytes*/, int32_t /*length*/,
                                          UConverterCallbackReason reason, UErrorCode* status) {
    if (reason <= UCNV_IRREGULAR) {
        *status = U_ZERO_ERROR;
        ucnv_cbToUWriteUChars(args, u"\uFFFD", 1, 0, status);
    }
}

} // namespace

std::u16string narrowToUtf16(const char* text, std::size_t length, const char* encoding) {
    const int32_t bytes = icuLength(length);
    const char* const name = encoding ? encoding : ucnv_getDefaultName();
    if (isUtf8(name)) {
        return utf8ToUtf16(text, bytes);
    }
    const icu::LocalUConverterPointer converter = openConverter(name);
    UErrorCode callbackStatus = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.getAlias(), writeReplacementCharacter, nullptr, nullptr, nullptr,
                        &callbackStatus);
    check(callbackStatus);
    return measureAndConvert<std::u16string>(
        [&](UChar* target, int32_t capacity, UErrorCode* status) {
            return ucnv_toUChars(converter.getAlias(), target, capacity, text, bytes, status);
        });
}

std::string utf16ToNarrow(const std::u16string& text, const char* encoding) {
    const int32_t units = icuLength(text.size());
    const char* const name = encoding ? encoding : ucnv_getDefaultName();
    if (isUtf8(name)) {
        return utf16ToUtf8(text, units);
    }
    const icu::LocalUConverterPointer converter = openConverter(name);
    checkLength(units, ucnv_getMaxCharSize(converter.getAlias()));
    UErrorCode callbackStatus = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter.getAlias(), writeQuestionMark, nullptr, nullptr, nullptr,
                          &callbackStatus);
    check(callbackStatus);
    const std::u16string clean = withoutLoneSurrogates(text);
    return measureAndConvert<std::string>([&](char* target, int32_t capacity, UErrorCode* status) {
        return ucnv_fromUChars(converter.getAlias(), target, capacity, clean.data(), units, status);
    });
}

} // namespace nrb
