/**
 * @file
 * The platform's Unicode string and the conversions between it, narrow text and bare UTF-16.
 */
#pragma once

#include <nrb/NRBExport.h>

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

/**
 * A caller's own conversion into UTF-16, used by I18NString in place of ICU's.
 *
 * @param input   the text as it was handed to the I18NString constructor; never null
 * @param length  the length as it was handed to the constructor; negative: up to its terminator
 * @param context the context handed to the constructor, null where the constructor takes none
 * @return the text in UTF-16
 */
using I18NConverter = std::u16string (*)(const void* input, int length, void* context);

/**
 * A caller's own conversion into narrow text, used by I18NString::c_str() in place of ICU's.
 *
 * @param text     the string's UTF-16 text; never null, NUL-terminated
 * @param length   its length in UTF-16 code units
 * @param encoding the encoding named in the call of c_str; null for the platform's default
 * @return the narrow text
 */
using I18NNarrowConverter = std::string (*)(const char16_t* text, int length, const char* encoding);

/**
 * A Unicode text: UTF-16 inside, narrow text in any encoding on request.
 *
 * Ownership: a value type that owns its text and every narrow form it has handed out.
 *
 * Encodings: narrow text travels in the platform's default encoding
 * (see I18NGetPlatformDefaultEncoding()) where none is named. A named encoding is any name or alias
 * that ICU knows, in upper or lower case. Malformed input becomes U+FFFD. A lone surrogate is
 * written as U+FFFD; a character that a target encoding lacks as "?".
 *
 * Threads: as for a standard container, any number of threads may call const operations of one
 * string at once (c_str included, although it caches); a change needs the string for itself.
 *
 * Exceptions: std::invalid_argument for an unknown encoding name, std::length_error for a text
 * whose other form could take 2 GiB or more, std::runtime_error where ICU fails, std::bad_alloc,
 * and what a caller's own converter throws. An operation that throws leaves the string as it was.
 */
class NRB_EXPORT I18NString {
public:
    /** An empty text. */
    I18NString() noexcept = default;

    /**
     * A text from narrow characters, which are copied.
     *
     * @param text      the characters; null stands for an empty text
     * @param encoding  an ICU encoding name; null: the platform's default encoding
     * @param length    number of bytes; negative: up to the terminating NUL
     * @param converter if not null, makes the UTF-16 text in place of ICU; `encoding` is then not
     *                  looked at, and its context is null
     */
    I18NString(const char* text, const char* encoding = nullptr, int length = -1,
               I18NConverter converter = nullptr);

    /**
     * A text from a buffer in the external form (see getExternalBuffer()), which is copied.
     *
     * @param externalBuffer   the buffer; null stands for an empty text
     * @param length           number of UTF-16 code units; negative: up to the terminating NUL
     * @param converter        if not null, makes the UTF-16 text from a buffer of its own form
     * @param converterContext handed to the converter
     */
    I18NString(const void* externalBuffer, int length, I18NConverter converter,
               void* converterContext);

    /** A copy of the text, without the narrow forms that `other` has handed out. */
    I18NString(const I18NString& other);
    /** Takes the text over; `other` is empty afterwards. */
    I18NString(I18NString&& other) noexcept;
    /** Copies the text. */
    I18NString& operator=(const I18NString& other);
    /** Takes the text over; `other` is empty afterwards. */
    I18NString& operator=(I18NString&& other) noexcept;
    /**
     * Takes a narrow text in the default encoding, up to its terminating NUL; null gives an empty
     * text. The narrow text may be one of this string's own forms.
     */
    I18NString& operator=(const char* text);
    /** Ends the life of every pointer that the string has handed out. */
    ~I18NString();

    /** Appends a text, which may be this one. */
    I18NString& operator+=(const I18NString& tail);

    /** Whether the text has no characters. */
    bool empty() const noexcept { return m_strText.empty(); }

    /**
     * The text in a narrow encoding.
     *
     * Each form is made once and kept: the pointer is the same at every call with the same
     * arguments and lives until the string is assigned to, appended to, moved from or destroyed.
     *
     * @param encoding  an ICU encoding name; null: the platform's default encoding
     * @param length    if not null, receives the number of bytes, without the terminator
     * @param converter if not null, makes the narrow text in place of ICU
     * @return the bytes, followed by a NUL; never null
     */
    const char* c_str(const char* encoding = nullptr, int* length = nullptr,
                      I18NNarrowConverter converter = nullptr) const;

    /**
     * The text in the platform's external form: the string's own NUL-terminated UTF-16 text. The
     * pointer lives as long as one from c_str. Never null.
     */
    const void* getExternalBuffer() const noexcept { return m_strText.c_str(); }

    /**
     * The length up to the first NUL if all characters before it are ASCII, else nothing. Such a
     * text is the same in UTF-16, in UTF-8 and in most other encodings: callers can do without a
     * conversion.
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
     * The part from `start` up to but not including `end`, counted in UTF-16 code units. Positions
     * outside the text are moved to its nearest end. A start past the text, or an end before the
     * start, gives an empty text.
     */
    I18NString substring(int start, int end) const;

    /** Orders by UTF-16 code units, the same on every platform and in every locale. */
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
    /** One text after the other. */
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
    /** Narrow forms handed out so far: a list that only grows until the text changes. */
    mutable std::atomic<NarrowForm*> m_pNarrowForms{nullptr};
};

/**
 * The ICU name of the encoding in which narrow text travels where none is named. The pointer lives
 * as long as the process. On Debian's ICU it is "UTF-8" in every locale.
 */
NRB_EXPORT const char* I18NGetPlatformDefaultEncoding();

/**
 * Gives the UTF-16 text of a buffer in the external form.
 *
 * @param utf16          receives the NUL-terminated text; an empty one where the buffer is null
 * @param externalBuffer the buffer, as I18NString::getExternalBuffer() returns it
 * @param copy           false: a view of the buffer, which lives as long as the buffer and is not
 *                       to be released; true: a copy that the caller releases with std::free
 * @throws std::bad_alloc only where a copy is asked for
 */
NRB_EXPORT void I18NExternalBufferToUTF16(const char16_t*& utf16, const void* externalBuffer,
                                          bool copy);

/**
 * Gives the external form of a UTF-16 text: the reverse of I18NExternalBufferToUTF16(), under the
 * same rules.
 *
 * @param externalBuffer receives the buffer; an empty one where the text is null
 * @param utf16          the NUL-terminated text
 * @param copy           false: a view of the text, not to be released; true: a copy that the
 *                       caller releases with std::free
 * @throws std::bad_alloc only where a copy is asked for
 */
NRB_EXPORT void I18NUTF16ToExternalBuffer(const void*& externalBuffer, const char16_t* utf16,
                                          bool copy);
