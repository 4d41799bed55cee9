/**
 * @file
 * Streams that fail after a number of bytes.
 */
#pragma once

#include <istream>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>

/** How a stream buffer fails: it returns end of file, or it throws. */
enum class StreamFailure { End, Exception };

/** Thrown by the buffers. Streams set badbit and, only if std::ios::exceptions says so, rethrow. */
class DeviceError : public std::runtime_error {
public:
    DeviceError() : std::runtime_error("the device fails") {}
};

/** Returns the first bytes of a text, then fails. */
class FailingInputBuffer : public std::streambuf {
public:
    FailingInputBuffer(const std::string& text, std::size_t bytes, StreamFailure failure)
        : m_text(text.substr(0, bytes)), m_failure(failure) {
        setg(m_text.data(), m_text.data(), m_text.data() + m_text.size());
    }

protected:
    int_type underflow() override {
        if (m_failure == StreamFailure::Exception) {
            throw DeviceError();
        }
        return traits_type::eof();
    }

private:
    std::string m_text;
    StreamFailure m_failure;
};

/** Accepts a number of bytes, then fails. */
class FailingOutputBuffer : public std::streambuf {
public:
    FailingOutputBuffer(std::size_t bytes, StreamFailure failure)
        : m_nBytes(bytes), m_failure(failure) {}

    const std::string& text() const { return m_strText; }

protected:
    int_type overflow(int_type c) override {
        if (m_strText.size() == m_nBytes) {
            if (m_failure == StreamFailure::Exception) {
                throw DeviceError();
            }
            return traits_type::eof();
        }
        m_strText += traits_type::to_char_type(c);
        return c;
    }

private:
    std::string m_strText;
    std::size_t m_nBytes;
    StreamFailure m_failure;
};
