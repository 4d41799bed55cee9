/**
 * @file
 * The error raised where code finds that something which must hold does not.
 */
#pragma once

#include <nrb/NRBExport.h>

#include <optional>
#include <stdexcept>
#include <string>

/** A place in the source code. A value; it owns its text. */
class NRB_EXPORT NRBFileLocation {
public:
    /**
     * @param file name of the source file without its extension; null stands for an empty name
     * @param line line number, counted from 1; 0 if unknown
     */
    NRBFileLocation(const char* file = nullptr, int line = 0);

    /** The file name, as long as this object lives. Never null. */
    const char* getFile() const noexcept { return m_strFile.c_str(); }
    /** The line number, counted from 1; 0 if unknown. */
    int getLine() const noexcept { return m_nLine; }

private:
    std::string m_strFile;
    int m_nLine;
};

/**
 * An assertion that failed. It is made with what went wrong, and raised with where.
 *
 * Ownership: every text is copied; the pointers that the accessors return live as long as the error
 * object does. All texts are narrow text in the platform's default encoding.
 */
class NRB_EXPORT NRBAssertError : public std::runtime_error {
public:
    /**
     * @param code a number for programs to look at
     * @param text the assertion, for people to read; null stands for an empty text
     */
    NRBAssertError(long code, const char* text);
    ~NRBAssertError() override;

    /**
     * Records the place and throws this error (a copy of it, as a throw makes one).
     *
     * @param location where the assertion stands
     * @param detail   a further text; may be null
     * @param origin   which macro or function raised it; may be null
     * @throws NRBAssertError always
     */
    [[noreturn]] void hurl(const NRBFileLocation& location, const char* detail, const char* origin);

    /** The code given at construction. */
    long getCode() const noexcept { return m_lCode; }
    /** The text given at construction, the same as what(). Never null. */
    const char* getText() const noexcept { return what(); }
    /** The place given to hurl; an empty name and line 0 before that. */
    const NRBFileLocation& getLocation() const noexcept { return m_location; }
    /** The detail given to hurl; null if none was. */
    const char* getDetail() const noexcept { return m_strDetail ? m_strDetail->c_str() : nullptr; }
    /** The origin given to hurl; null if none was. */
    const char* getOrigin() const noexcept { return m_strOrigin ? m_strOrigin->c_str() : nullptr; }

private:
    long m_lCode;
    NRBFileLocation m_location;
    std::optional<std::string> m_strDetail;
    std::optional<std::string> m_strOrigin;
};
