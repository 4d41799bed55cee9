/**
 * @file
 * The platform's Unicode string, and its conversions to and from narrow text and UTF-16 text.
 */
#pragma once

#include <nrb/NRBExport.h>

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

/**
 * A user-defined conversion to UTF-16, used by I18NString instead of ICU.
 *
 * @param input   the text passed to the I18NString constructor; never null
 * @param length  the length passed to the constructor; negative: up to the terminator
 * @param context the context passed to the constructor; null if the constructor has none
 * @return the text in UTF-16
 */
using I18NConverter = std::u16string (*)(const void* input, int length, void* context);

/**
 * A user-defined conversion to narrow text, used by I18NString::c_str() instead of ICU.
 *
 * @param text     the string's UTF-16 text; never null, NUL-terminated
 * @param length   its length in UTF-16 code units
 * @param encoding the encoding passed to c_str(); null: the platform's default encoding
 * @return the narrow text
 */
using I18NNarrowConverter = std::string (*)(const char16_t* text, int length, const char* encoding);

/**
 * A Unicode string. It stores UTF-16, and converts to narrow text in any encoding on request.
 *
 * Ownership: a value type. It owns its text and all narrow forms that c_str() has returned.
 *
 * Encodings: narrow text without an encoding name is in the platform's default encoding: see
 * I18NGetPlatformDefaultEncoding(). An encoding name is any name or alias that ICU knows, in upper
 * or lower case. Malformed input becomes U+FFFD. In the output, a lone surrogate becomes U+FFFD,
 * and a character that the encoding does not have becomes "?".
 *
 * Threads: like a standard container. Any number of threads may call const operations of one string
 * at the same time; this includes c_str(), which caches. A thread that changes the string needs
 * exclusive access.
 *
 * Exceptions: std::invalid_argument for an unknown encoding name, std::length_error if the
 * converted text could take 2 GiB or more, std::runtime_error if ICU fails, std::bad_alloc, and
 * what a user-defined converter throws. An operation that throws does not change the string.
 */
class NRB_EXPORT I18NString {
public:
    /** Creates an empty string. */
    I18NString() noexcept = default;

    /**
     * Creates a string from narrow text. The text is copied.
     *
     * @param text      the narrow text; null: an empty string
     * @param encoding  an ICU encoding name; null: the platform's default encoding
     * @param length    number of bytes; negative: up to the terminating NUL
     * @param converter if not null, converts the text instead of ICU; it gets a null context, and
     *                  `encoding` is ignored
     */
    I18NString(const char* text, const char* encoding = nullptr, int length = -1,
               I18NConverter converter = nullptr);

    /**
     * Creates a string from a buffer in the external form: see getExternalBuffer(). The buffer is
     * copied.
     *
     * @param externalBuffer   the buffer; null: an empty string
     * @param length           number of UTF-16 code units; negative: up to the terminating NUL
     * @param converter        if not null, makes the UTF-16 text; the buffer may then have any form
     *                         that the converter understands
     * @param converterContext passed to the converter
     */
    I18NString(const void* externalBuffer, int length, I18NConverter converter,
               void* converterContext);

    /** Copies the text, without the cached narrow forms of `other`. */
    I18NString(const I18NString& other);
    /** Moves the text; `other` is empty afterwards. */
    I18NString(I18NString&& other) noexcept;
    /** Copies the text, without the cached narrow forms of `other`. */
    I18NString& operator=(const I18NString& other);
    /** Moves the text; `other` is empty afterwards. */
    I18NString& operator=(I18NString&& other) noexcept;
    /**
     * Assigns narrow text in the platform's default encoding, up to the terminating NUL; null: an
     * empty string. The text may be a narrow form of this string.
     */
    I18NString& operator=(const char* text);
    /** All pointers that this string has returned become invalid. */
    ~I18NString();

    /** Appends a string, which may be this one. */
    I18NString& operator+=(const I18NString& tail);

    /** Whether the string has no characters. */
    bool empty() const noexcept { return m_strText.empty(); }

    /**
     * Returns the text in a narrow encoding.
     *
     * Each narrow form is made once and cached: every call with the same arguments returns the same
     * pointer. The pointer is valid until the string is assigned to, appended to, moved from or
     * destroyed.
     *
     * @param encoding  an ICU encoding name; null: the platform's default encoding
     * @param length    if not null, receives the number of bytes, without the terminating NUL
     * @param converter if not null, converts the text instead of ICU
     * @return the NUL-terminated text; never null
     */
    const char* c_str(const char* encoding = nullptr, int* length = nullptr,
                      I18NNarrowConverter converter = nullptr) const;

    /**
     * Returns the text in the platform's external form, which is the string's own NUL-terminated
     * UTF-16 text. Never null. The pointer is valid as long as one from c_str().
     */
    const void* getExternalBuffer() const noexcept { return m_strText.c_str(); }

    /**
     * Returns the length up to the first NUL if all characters before it are ASCII, otherwise
     * std::nullopt. An ASCII text needs no conversion: its code units are its bytes in UTF-8 and in
     * most other encodings.
     */
    std::optional<std::size_t> asciiLength() const noexcept {
        const char16_t* end = m_strText.c_str();
        while (*end > 0 && *end < 0x80) {
            ++end;
        }
        return *end == 0 ? std::make_optional(static_cast<std::size_t>(end - m_strText.c_str()))
                         : std::nullopt;
    }

    /**
     * Returns the part from `start` up to but not including `end`, in UTF-16 code units. Positions
     * outside the text are clamped. A start after the text, or an end before the start, gives an
     * empty string.
     */
    I18NString substring(int start, int end) const;

    /** Compares by UTF-16 code units: the same order on every platform and in every locale. */
    friend bool operator<(const I18NString& left, const I18NString& right) noexcept {
        return left.m_strText < right.m_strText;
    }
    /** Whether both have the same UTF-16 code units. */
    friend bool operator==(const I18NString& left, const I18NString& right) noexcept {
        return left.m_strText == right.m_strText;
    }
    /** Whether any UTF-16 code unit differs. */
    friend bool operator!=(const I18NString& left, const I18NString& right) noexcept {
        return left.m_strText != right.m_strText;
    }
    /** Concatenates two strings. */
    friend I18NString operator+(I18NString left, const I18NString& right) {
        left += right;
        return left;
    }

private:
    struct NRB_LOCAL NarrowForm;

    explicit I18NString(std::u16string text) noexcept : m_strText(std::move(text)) {}
    NRB_LOCAL static const NarrowForm* findForm(const NarrowForm* newest, const char* encoding,
                                                I18NNarrowConverter converter);
    NRB_LOCAL void dropNarrowForms() noexcept;

    std::u16string m_strText;
    /** The cached narrow forms: a list that only grows until the text changes. */
    mutable std::atomic<NarrowForm*> m_pNarrowForms{nullptr};
};

/**
 * Returns the ICU name of the encoding of narrow text without an encoding name. The pointer is
 * valid as long as the process runs. With the ICU of Debian the name is "UTF-8" in every locale.
 */
NRB_EXPORT const char* I18NGetPlatformDefaultEncoding();

/**
 * Converts a buffer in the external form to UTF-16 text.
 *
 * @param utf16          receives the NUL-terminated text; an empty one if the buffer is null
 * @param externalBuffer the buffer, as I18NString::getExternalBuffer() returns it
 * @param copy           false: `utf16` is a view of the buffer, valid as long as the buffer, and
 *                       must not be freed; true: a copy that the caller frees with std::free
 * @throws std::bad_alloc only if `copy` is true
 */
NRB_EXPORT void I18NExternalBufferToUTF16(const char16_t*& utf16, const void* externalBuffer,
                                          bool copy);

/**
 * Converts UTF-16 text to the external form: the reverse of I18NExternalBufferToUTF16(), with the
 * same rules.
 *
 * @param externalBuffer receives the buffer; that of an empty text if `utf16` is null
 * @param utf16          the NUL-terminated text
 * @param copy           false: `externalBuffer` is a view of the text, valid as long as the text,
 *                       and must not be freed; true: a copy that the caller frees with std::free
 * @throws std::bad_alloc only if `copy` is true
 */
NRB_EXPORT void I18NUTF16ToExternalBuffer(const void*& externalBuffer, const char16_t* utf16,
                                          bool copy);
