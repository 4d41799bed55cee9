/**
 * @file
 * An output stream without the NUL that the library puts after a stream result.
 */
#pragma once

#include <streambuf>

/**
 * Hands everything on to another buffer but a NUL at the very end. A NUL is held back until
 * something follows it, as a result in UTF-16 is full of them.
 */
class TrailingNulFilter : public std::streambuf {
public:
    /** @param target borrowed; must live longer than this object */
    explicit TrailingNulFilter(std::streambuf& target) : m_target(target) {}

private:
    int_type overflow(int_type character) override {
        if (traits_type::eq_int_type(character, traits_type::eof())) {
            return traits_type::not_eof(character);
        }
        const char c = traits_type::to_char_type(character);
        return xsputn(&c, 1) == 1 ? character : traits_type::eof();
    }

    std::streamsize xsputn(const char* text, std::streamsize length) override {
        if (length <= 0) {
            return 0;
        }
        if (m_bHeldNul && traits_type::eq_int_type(m_target.sputc('\0'), traits_type::eof())) {
            return 0;
        }
        m_bHeldNul = text[length - 1] == '\0';
        const std::streamsize handedOn = m_bHeldNul ? length - 1 : length;
        return m_target.sputn(text, handedOn) == handedOn ? length : 0;
    }

    int sync() override { return m_target.pubsync(); }

    std::streambuf& m_target;
    bool m_bHeldNul = false;
};
