#include <nrb/I18NString.h>

#include "EncodingConversions.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

namespace {

std::u16string fromExternalBuffer(const void* buffer, int length) {
    const auto* text = static_cast<const char16_t*>(buffer);
    return length < 0 ? std::u16string(text)
                      : std::u16string(text, static_cast<std::size_t>(length));
}

std::size_t byteLength(const char* text, int length) {
    return length < 0 ? std::strlen(text) : static_cast<std::size_t>(length);
}

int toInt(std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw std::length_error("I18NString: the text is too long");
    }
    return static_cast<int>(length);
}

bool sameEncoding(const char* left, const char* right) {
    return left == right || (left && right && std::strcmp(left, right) == 0);
}

} // namespace

struct I18NString::NarrowForm {
    NarrowForm(const std::u16string& utf16, const char* encodingName, I18NNarrowConverter conv)
        : hasEncoding(encodingName != nullptr), encoding(encodingName ? encodingName : ""),
          converter(conv), text(conv ? conv(utf16.c_str(), toInt(utf16.size()), encodingName)
                                     : nrb::utf16ToNarrow(utf16, encodingName)) {}

    bool isFor(const char* encodingName, I18NNarrowConverter conv) const {
        return converter == conv &&
               sameEncoding(hasEncoding ? encoding.c_str() : nullptr, encodingName);
    }

    bool hasEncoding;
    std::string encoding;
    I18NNarrowConverter converter;
    std::string text;
    NarrowForm* next = nullptr;
};

I18NString::I18NString(const char* text, const char* encoding, int length,
                       I18NConverter converter) {
    if (!text) {
        return;
    }
    m_strText = converter ? converter(text, length, nullptr)
                          : nrb::narrowToUtf16(text, byteLength(text, length), encoding);
}

I18NString::I18NString(const void* externalBuffer, int length, I18NConverter converter,
                       void* converterContext) {
    if (!externalBuffer) {
        return;
    }
    m_strText = converter ? converter(externalBuffer, length, converterContext)
                          : fromExternalBuffer(externalBuffer, length);
}

I18NString::I18NString(const I18NString& other) : m_strText(other.m_strText) {}

I18NString::I18NString(I18NString&& other) noexcept : m_strText(std::move(other.m_strText)) {
    other.m_strText.clear();
    other.dropNarrowForms();
}

I18NString& I18NString::operator=(const I18NString& other) {
    if (this != &other) {
        *this = I18NString(other);
    }
    return *this;
}

I18NString& I18NString::operator=(I18NString&& other) noexcept {
    if (this != &other) {
        m_strText = std::move(other.m_strText);
        other.m_strText.clear();
        dropNarrowForms();
        other.dropNarrowForms();
    }
    return *this;
}

I18NString& I18NString::operator=(const char* text) {
    // Convert before the narrow forms are freed: `text` may be one of them.
    return *this = I18NString(text);
}

I18NString::~I18NString() {
    dropNarrowForms();
}

I18NString& I18NString::operator+=(const I18NString& tail) {
    m_strText += tail.m_strText;
    dropNarrowForms();
    return *this;
}

const char* I18NString::c_str(const char* encoding, int* length,
                              I18NNarrowConverter converter) const {
    NarrowForm* newest = m_pNarrowForms.load(std::memory_order_acquire);
    const NarrowForm* form = findForm(newest, encoding, converter);
    if (!form) {
        auto made = std::make_unique<NarrowForm>(m_strText, encoding, converter);
        do {
            made->next = newest;
            if (m_pNarrowForms.compare_exchange_weak(newest, made.get(), std::memory_order_acq_rel,
                                                     std::memory_order_acquire)) {
                form = made.release();
            } else {
                // Another thread has added a form, possibly the same one.
                form = findForm(newest, encoding, converter);
            }
        } while (!form);
    }
    if (length) {
        *length = toInt(form->text.size());
    }
    return form->text.c_str();
}

const I18NString::NarrowForm* I18NString::findForm(const NarrowForm* newest, const char* encoding,
                                                   I18NNarrowConverter converter) {
    while (newest && !newest->isFor(encoding, converter)) {
        newest = newest->next;
    }
    return newest;
}

I18NString I18NString::substring(int start, int end) const {
    const auto clamp = [this](int position) {
        return position < 0 ? std::size_t{0}
                            : std::min(static_cast<std::size_t>(position), m_strText.size());
    };
    const std::size_t first = clamp(start);
    const std::size_t last = std::max(first, clamp(end));
    return I18NString(m_strText.substr(first, last - first));
}

void I18NString::dropNarrowForms() noexcept {
    const NarrowForm* form = m_pNarrowForms.exchange(nullptr, std::memory_order_relaxed);
    while (form) {
        delete std::exchange(form, form->next);
    }
}
