/**
 * @file
 * A stream buffer over a text.
 */
#pragma once

#include <cstring>
#include <streambuf>

/** Reads a NUL-terminated text without a copy. The text must outlive the buffer. */
class TextViewBuffer : public std::streambuf {
public:
    explicit TextViewBuffer(const char* text) {
        char* const begin = const_cast<char*>(text); // a get area is never written to
        setg(begin, begin, begin + std::strlen(text));
    }
};
