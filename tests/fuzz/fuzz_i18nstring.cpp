/**
 * @file
 * Strings: any bytes in any encoding, and operations in any order; messages in any language.
 */
#include "support/Check.h"

#include <nrb/I18NString.h>
#include <nrb/NRBAssertError.h>
#include <vexa/WolMdMessage.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

namespace {

constexpr const char* ENCODINGS[] = {
    "UTF-8",        "utf8",         "UTF-16",      "UTF-16LE",
    "UTF-16BE",     "UTF-32",       "UTF-7",       "IMAP-mailbox-name",
    "SCSU",         "BOCU-1",       "CESU-8",      "LMBCS-1",
    "HZ",           "ISO-8859-1",   "ISO-8859-15", "US-ASCII",
    "windows-1252", "windows-1253", "Shift_JIS",   "EUC-JP",
    "ISO-2022-JP",  "ISO-2022-KR",  "ISO-2022-CN", "GB18030",
    "Big5",         "EUC-KR",       "x-iscii-de",  "ibm-37",
    "ibm-1047",     "ibm-930",      "ibm-949",     "KOI8-R",
    "TIS-620"};

std::string anyEncoding(FuzzedDataProvider& input) {
    return input.ConsumeIntegralInRange(0, 7) == 0 ? input.ConsumeRandomLengthString(32)
                                                   : input.PickValueInArray(ENCODINGS);
}

std::u16string ownWidening(const void* text, int length, void* context) {
    const auto* const bytes = static_cast<const unsigned char*>(text);
    const std::size_t count =
        length < 0 ? std::strlen(static_cast<const char*>(text)) : static_cast<std::size_t>(length);
    require(context == nullptr, "a converter of narrow text has no context");
    return std::u16string(bytes, bytes + count);
}

std::string ownNarrowing(const char16_t* text, int length, const char*) {
    return std::string(text, text + length);
}

I18NString anyText(FuzzedDataProvider& input) {
    const std::string bytes = input.ConsumeRandomLengthString();
    const int length = input.ConsumeBool() ? static_cast<int>(bytes.size()) : -1;
    switch (input.ConsumeIntegralInRange(0, 3)) {
    case 0:
        return I18NString(bytes.c_str(), nullptr, length);
    case 1:
        return I18NString(bytes.c_str(), "no such encoding", length, ownWidening);
    case 2: {
        std::u16string units(bytes.size() / 2, 0);
        std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
        return I18NString(units.c_str(), length < 0 ? -1 : static_cast<int>(units.size()), nullptr,
                          nullptr);
    }
    default:
        return I18NString(bytes.c_str(), anyEncoding(input).c_str(), length);
    }
}

std::size_t unitsOf(const I18NString& text) {
    std::size_t units = 0;
    while (text.substring(static_cast<int>(units), static_cast<int>(units) + 1) != I18NString()) {
        ++units;
    }
    return units;
}

void checkNarrowForm(const I18NString& text, const char* encoding) {
    int length = -1;
    const char* const first = text.c_str(encoding, &length);
    require(first && length >= 0, "a narrow form is never null");
    require(first[length] == '\0', "a narrow form ends with a NUL");
    require(text.c_str(encoding) == first, "a narrow form is made once");
}

void checkParts(const I18NString& text, int middle) {
    require(text.substring(INT32_MIN, middle) + text.substring(middle, INT32_MAX) == text,
            "the two parts of a text are the text");
    require(text.substring(middle, middle).empty(), "a part without a length is empty");
}

void checkUnicodeRoundTrip(const I18NString& text) {
    // What has once been made valid stays as it is in every Unicode encoding.
    int length = 0;
    const char* const narrow = text.c_str("UTF-8", &length);
    const I18NString valid(narrow, "UTF-8", length);
    for (const char* const encoding : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "GB18030"}) {
        const char* const form = valid.c_str(encoding, &length);
        require(I18NString(form, encoding, length) == valid, "a valid text survives a round trip");
    }
}

void checkExternalForm(const I18NString& text) {
    const char16_t* utf16 = nullptr;
    I18NExternalBufferToUTF16(utf16, text.getExternalBuffer(), true);
    const void* external = nullptr;
    I18NUTF16ToExternalBuffer(external, utf16, true);
    const I18NString again(external, -1, nullptr, nullptr);
    const auto units = static_cast<int>(std::char_traits<char16_t>::length(utf16));
    require(again == text.substring(0, units), "the external form holds the text to its NUL");
    std::free(const_cast<char16_t*>(utf16));
    std::free(const_cast<void*>(external));
}

void checkMessage(FuzzedDataProvider& input) {
    const std::string language = input.ConsumeRandomLengthString(200);
    I18NString text("kept");
    WolMdMessage(0xA2E79FA6).format(language.c_str(), "en", text);
    require(!text.empty() && text != I18NString("kept"), "a message is told in English at least");
    WolMdMessage(input.ConsumeIntegral<std::uint32_t>()).format(nullptr, language.c_str(), text);
}

void checkAssertion(FuzzedDataProvider& input) {
    const std::string text = input.ConsumeRandomLengthString(64);
    const std::string file = input.ConsumeRandomLengthString(64);
    try {
        NRBAssertError(1, text.c_str()).hurl({file.c_str(), 1}, text.c_str(), nullptr);
    } catch (const NRBAssertError& error) {
        require(std::strcmp(error.getText(), text.c_str()) == 0, "an assertion keeps its text");
        require(std::strcmp(error.getDetail(), text.c_str()) == 0, "an assertion keeps its detail");
        require(std::strcmp(error.getLocation().getFile(), file.c_str()) == 0,
                "an assertion keeps its place");
        require(error.getOrigin() == nullptr, "an origin that was not given is null");
    }
}

class Strings {
public:
    void change(FuzzedDataProvider& input) {
        I18NString& left = any(input);
        I18NString& right = any(input);
        switch (input.ConsumeIntegralInRange(0, 6)) {
        case 0:
            left = right;
            break;
        case 1:
            left = std::move(right);
            require(&left == &right || right.empty(), "a string moved from is empty");
            break;
        case 2:
            append(left, right);
            break;
        case 3:
            left = left.c_str();
            break;
        case 4:
            left = anyText(input);
            break;
        case 5:
            left = right.substring(input.ConsumeIntegral<int>(), input.ConsumeIntegral<int>());
            break;
        default:
            left = input.ConsumeRandomLengthString(64).c_str();
        }
    }

    void check(FuzzedDataProvider& input) {
        const I18NString& text = any(input);
        checkNarrowForm(text, nullptr);
        checkNarrowForm(text, anyEncoding(input).c_str());
        require(text.c_str(nullptr, nullptr, ownNarrowing) != text.c_str(),
                "each converter has a form of its own");
        checkParts(text, input.ConsumeIntegral<int>());
        checkParts(text, input.ConsumeIntegralInRange(-1, 100));
        checkUnicodeRoundTrip(text);
        checkExternalForm(text);
        const I18NString& other = any(input);
        require((text < other) + (other < text) + (text == other) == 1, "strings have one order");
    }

private:
    I18NString& any(FuzzedDataProvider& input) {
        return m_strings[input.ConsumeIntegralInRange<std::size_t>(0, m_strings.size() - 1)];
    }

    /** Doubling again and again would only find out how much memory there is. */
    static void append(I18NString& left, const I18NString& right) {
        const auto units = unitsOf(left);
        if (units + unitsOf(right) > 10'000) {
            return;
        }
        const I18NString head = left;
        const I18NString tail = right;
        left += right;
        require(left.substring(0, static_cast<int>(units)) == head &&
                    left.substring(static_cast<int>(units), INT32_MAX) == tail,
                "what is appended follows what was there");
    }

    std::vector<I18NString> m_strings = std::vector<I18NString>(3);
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    Strings strings;
    checkMessage(input);
    checkAssertion(input);
    while (input.remaining_bytes() > 0) {
        try {
            strings.change(input);
            strings.check(input);
        } catch (const std::invalid_argument&) {
            // An encoding that ICU does not know.
        }
    }
    return 0;
}
