/**
 * @file
 * Standard output, as the place of a result.
 */
#pragma once

#include <ostream>
#include <streambuf>

/** The result is buffered; flush() writes the rest. What cannot be written is a vexa::Error. */
class StandardOutput : public std::ostream {
public:
    StandardOutput();
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;
    /** What was not flushed is dropped. */
    ~StandardOutput() override = default;

private:
    class Buffer : public std::streambuf {
    public:
        Buffer();

    private:
        int_type overflow(int_type character) override;
        int sync() override;

        char m_bytes[64 * 1024];
    };

    Buffer m_buffer;
};
