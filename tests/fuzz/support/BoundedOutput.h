/**
 * @file
 * A stream that is full after some bytes: endless results end there.
 */
#pragma once

#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>

class BoundedOutput : private std::streambuf, public std::ostream {
public:
    explicit BoundedOutput(std::size_t room = 256 * 1024)
        : std::ostream(static_cast<std::streambuf*>(this)), m_room(room) {}

    const std::string& text() const { return m_text; }

private:
    int_type overflow(int_type unit) override {
        const char c = traits_type::to_char_type(unit);
        return xsputn(&c, 1) == 1 ? traits_type::not_eof(unit) : traits_type::eof();
    }
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        if (static_cast<std::size_t>(count) > m_room - m_text.size()) {
            return 0;
        }
        m_text.append(bytes, static_cast<std::size_t>(count));
        return count;
    }

    std::size_t m_room;
    std::string m_text;
};
