#include "files/StandardOutput.h"

#include "base/Errors.h"

#include <vexa/xslt/Error.h>

#include <cerrno>
#include <iterator>
#include <unistd.h>

StandardOutput::StandardOutput() : std::ostream(nullptr) {
    rdbuf(&m_buffer);
    // What the buffer throws is to pass, and not to become a state of the stream.
    exceptions(badbit);
}

StandardOutput::Buffer::Buffer() {
    setp(std::begin(m_bytes), std::end(m_bytes));
}

StandardOutput::Buffer::int_type StandardOutput::Buffer::overflow(int_type character) {
    sync();
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        sputc(traits_type::to_char_type(character));
    }
    return traits_type::not_eof(character);
}

int StandardOutput::Buffer::sync() {
    const char* begin = pbase();
    while (begin != pptr()) {
        const ssize_t written =
            ::write(STDOUT_FILENO, begin, static_cast<std::size_t>(pptr() - begin));
        if (written < 0 && errno != EINTR) {
            throw vexa::Error(vexa::ErrorKind::Output, systemMessage(errno),
                              {"standard output", 0, 0});
        }
        begin += written > 0 ? written : 0;
    }
    setp(std::begin(m_bytes), std::end(m_bytes));
    return 0;
}
