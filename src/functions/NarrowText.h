/**
 * @file
 * Arguments of functions as narrow text, and as numbers.
 */
#pragma once

#include <nrb/I18NString.h>

#include <cstdint>

/**
 * The narrow form of an argument up to its first NUL. Nearly every argument is short ASCII, and
 * then allocates nothing. The text must outlive this object.
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
 * The number at the beginning of a text, as strtol reads it in base 10 where a long has 32 bits:
 * leading white space and a sign are accepted, a text without digits is 0, and a number out of
 * range is the largest or smallest one. So both word sizes read the same timer or message number.
 */
std::int32_t parseNumber(const I18NString& text);
