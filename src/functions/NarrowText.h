/**
 * @file
 * Function arguments as narrow text and as numbers.
 */
#pragma once

#include <nrb/I18NString.h>

#include <cstdint>

/**
 * The narrow form of an argument, up to the first NUL. A short ASCII text, as nearly every argument
 * is, needs no allocation. The text must outlive this object.
 */
class NarrowText {
public:
    explicit NarrowText(const I18NString& text);
    NarrowText(const NarrowText&) = delete;
    NarrowText& operator=(const NarrowText&) = delete;

    const char* get() const { return m_pText; }

private:
    char m_shortText[32];
    const char* m_pText;
};

/**
 * Returns the number at the beginning of a text, as strtol reads it in base 10 with a 32-bit long:
 * leading white space and a sign are accepted, a text without digits is 0, and a number out of
 * range is the largest or smallest 32-bit integer. 32-bit and 64-bit builds read the same number.
 */
std::int32_t parseNumber(const I18NString& text);
