/**
 * @file
 * The operations of the platform library and of the message catalogue.
 */
#include "Trial.h"

#include <nrb/I18NString.h>
#include <nrb/NRBAssertError.h>
#include <nrb/NRBThread.h>
#include <nrb/NRBUtSystemInfo.h>
#include <vexa/WolMdMessage.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

// Too long for the internal buffer of a standard string.
constexpr const char* LONG_TEXT =
    "A text that is too long to be kept without an allocation: \xC3\xA4";
constexpr const char16_t* LONG_UTF16 =
    u"A text that is too long to be kept without an allocation: \u00E4";

/** Creates a new string in each trial. */
class StringTrial : public Trial {
public:
    bool succeeded() override { return m_result && *m_result == m_expected; }
    bool stillWorks() override {
        if (m_before && !succeeded() && *m_result != *m_before) {
            return false; // an operation that throws leaves the string as it was
        }
        operate();
        return succeeded();
    }

protected:
    void begin(const char* text) {
        m_before.emplace(text);
        m_result.emplace(text);
    }

    std::optional<I18NString> m_before;
    const I18NString m_expected{LONG_UTF16, -1, nullptr, nullptr};
    std::optional<I18NString> m_result;
};

class FromNarrow : public StringTrial {
    void operate() override { m_result.emplace(LONG_TEXT); }
};

class FromNarrowWithEncoding : public StringTrial {
    void operate() override {
        m_result.emplace("A text that is too long to be kept without an allocation: \xE4",
                         "ISO-8859-1");
    }
};

class FromNarrowWithConverter : public StringTrial {
    static std::u16string convert(const void*, int, void*) { return LONG_UTF16; }
    void operate() override { m_result.emplace("any", nullptr, -1, convert); }
};

class FromExternalBuffer : public StringTrial {
    void operate() override { m_result.emplace(LONG_UTF16, -1, nullptr, nullptr); }
};

class Copy : public StringTrial {
    void operate() override { m_result.emplace(m_expected); }
};

class CopyAssignment : public StringTrial {
public:
    CopyAssignment() { begin("before"); }
    void operate() override { *m_result = m_expected; }
};

class NarrowAssignment : public StringTrial {
public:
    NarrowAssignment() { begin("before"); }
    void operate() override { *m_result = LONG_TEXT; }
};

class NarrowAssignmentOfItsOwnForm : public StringTrial {
public:
    NarrowAssignmentOfItsOwnForm() { begin(LONG_TEXT); }
    void operate() override { *m_result = m_result->c_str(); }
};

class Append : public StringTrial {
public:
    Append() { begin("A text"); }
    void operate() override { *m_result += m_tail; }
    bool stillWorks() override { return succeeded() || StringTrial::stillWorks(); }

private:
    const I18NString m_tail = m_expected.substring(6, 1000);
};

class Concatenation : public StringTrial {
    void operate() override { m_result.emplace(m_head + m_tail); }

    const I18NString m_head = m_expected.substring(0, 6);
    const I18NString m_tail = m_expected.substring(6, 1000);
};

class Substring : public StringTrial {
    void operate() override { m_result.emplace(m_longer.substring(1, 1000)); }

    const I18NString m_longer = "-" + m_expected;
};

class NarrowTrial : public Trial {
public:
    bool succeeded() override { return m_narrow && std::strcmp(m_narrow, m_expected) == 0; }

protected:
    explicit NarrowTrial(const char* expected) : m_expected(expected) {}

    const I18NString m_text{LONG_TEXT};
    const char* m_narrow = nullptr;
    const char* m_expected;
};

class ToNarrow : public NarrowTrial {
public:
    ToNarrow() : NarrowTrial(LONG_TEXT) {}
    void operate() override { m_narrow = m_text.c_str(); }
};

class ToNarrowWithEncoding : public NarrowTrial {
public:
    ToNarrowWithEncoding()
        : NarrowTrial("A text that is too long to be kept without an allocation: \xE4") {}
    void operate() override { m_narrow = m_text.c_str("ISO-8859-1"); }
};

class ToNarrowWithConverter : public NarrowTrial {
public:
    ToNarrowWithConverter() : NarrowTrial("Converted by the caller, into a text of some length") {}
    static std::string convert(const char16_t*, int, const char*) {
        return "Converted by the caller, into a text of some length";
    }
    void operate() override { m_narrow = m_text.c_str(nullptr, nullptr, convert); }
};

class ExternalToUtf16 : public Trial {
public:
    ~ExternalToUtf16() override { release(); }
    void operate() override {
        release();
        I18NExternalBufferToUTF16(m_copy, LONG_UTF16, true);
    }
    bool succeeded() override { return std::u16string_view(m_copy) == LONG_UTF16; }

private:
    void release() { std::free(const_cast<char16_t*>(std::exchange(m_copy, nullptr))); }
    const char16_t* m_copy = nullptr;
};

class Utf16ToExternal : public Trial {
public:
    ~Utf16ToExternal() override { release(); }
    void operate() override {
        release();
        I18NUTF16ToExternalBuffer(m_copy, LONG_UTF16, true);
    }
    bool succeeded() override {
        return std::u16string_view(static_cast<const char16_t*>(m_copy)) == LONG_UTF16;
    }

private:
    void release() { std::free(const_cast<void*>(std::exchange(m_copy, nullptr))); }
    const void* m_copy = nullptr;
};

class Assertion : public Trial {
public:
    void operate() override {
        m_raised = false;
        try {
            NRBAssertError(7, LONG_TEXT).hurl(NRBFileLocation(LONG_TEXT, 1), LONG_TEXT, LONG_TEXT);
        } catch (const NRBAssertError& error) {
            m_raised = error.getCode() == 7 && std::strcmp(error.getText(), LONG_TEXT) == 0 &&
                       std::strcmp(error.getLocation().getFile(), LONG_TEXT) == 0 &&
                       std::strcmp(error.getDetail(), LONG_TEXT) == 0 &&
                       std::strcmp(error.getOrigin(), LONG_TEXT) == 0;
        }
    }
    bool succeeded() override { return m_raised; }

private:
    bool m_raised = false;
};

class Lock : public Trial {
public:
    void operate() override {
        m_entered = false;
        NRBThreadCriticalSection section(1);
        const NRBThreadGuard guard(section);
        const NRBThreadGuard again(section);
        m_entered = true;
    }
    bool succeeded() override { return m_entered; }

private:
    bool m_entered = false;
};

class TimeStamp : public Trial {
public:
    void operate() override { m_stamp = NRBUtSystemInfo::getTimeStamp(0); }
    bool succeeded() override { return m_stamp.size() == 17; }

private:
    std::string m_stamp;
};

class Message : public Trial {
public:
    void operate() override { m_message.format("de_AT", "en", m_text); }
    bool succeeded() override { return !m_text.empty(); }

private:
    const WolMdMessage m_message{0xA2E8CFB4};
    I18NString m_text;
};

} // namespace

std::vector<Operation> platformOperations() {
    return {
        {"I18NString of narrow text", Engine::Unused, prepared<FromNarrow>},
        {"I18NString of narrow text in an encoding", Engine::Unused,
         prepared<FromNarrowWithEncoding>},
        {"I18NString of narrow text by a converter", Engine::Unused,
         prepared<FromNarrowWithConverter>},
        {"I18NString of an external buffer", Engine::Unused, prepared<FromExternalBuffer>},
        {"I18NString copy", Engine::Unused, prepared<Copy>},
        {"I18NString copy assignment", Engine::Unused, prepared<CopyAssignment>},
        {"I18NString assignment of narrow text", Engine::Unused, prepared<NarrowAssignment>},
        {"I18NString assignment of its own narrow form", Engine::Unused,
         prepared<NarrowAssignmentOfItsOwnForm>},
        {"I18NString operator+=", Engine::Unused, prepared<Append>},
        {"I18NString operator+", Engine::Unused, prepared<Concatenation>},
        {"I18NString::substring", Engine::Unused, prepared<Substring>},
        {"I18NString::c_str", Engine::Unused, prepared<ToNarrow>},
        {"I18NString::c_str in an encoding", Engine::Unused, prepared<ToNarrowWithEncoding>},
        {"I18NString::c_str by a converter", Engine::Unused, prepared<ToNarrowWithConverter>},
        {"I18NExternalBufferToUTF16", Engine::Unused, prepared<ExternalToUtf16>},
        {"I18NUTF16ToExternalBuffer", Engine::Unused, prepared<Utf16ToExternal>},
        {"NRBAssertError", Engine::Unused, prepared<Assertion>},
        {"NRBThreadCriticalSection and NRBThreadGuard", Engine::Unused, prepared<Lock>},
        {"NRBUtSystemInfo::getTimeStamp", Engine::Unused, prepared<TimeStamp>},
        {"WolMdMessage::format", Engine::Unused, prepared<Message>},
    };
}
