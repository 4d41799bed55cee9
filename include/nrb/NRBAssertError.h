/**
 * @file
 * The error of a failed assertion.
 */
#pragma once

#include <nrb/NRBExport.h>

#include <optional>
#include <stdexcept>
#include <string>

/** A location in the source code. A value type; it owns its text. */
class NRB_EXPORT NRBFileLocation {
public:
    /**
     * @param file name of the source file without its extension; null: an empty name
     * @param line line number, from 1; 0 if unknown
     */
    NRBFileLocation(const char* file = nullptr, int line = 0);

    /** Returns the file name. Never null. The pointer is valid as long as this object. */
    const char* getFile() const noexcept { return m_strFile.c_str(); }
    /** Returns the line number, from 1; 0 if unknown. */
    int getLine() const noexcept { return m_nLine; }

private:
    std::string m_strFile;
    int m_nLine;
};

/**
 * The error of a failed assertion. The constructor takes the failed condition, and hurl() takes its
 * location and throws.
 *
 * Ownership: all texts are copied. The pointers that the accessors return are valid as long as the
 * error object. All texts are narrow text in the platform's default encoding.
 */
class NRB_EXPORT NRBAssertError : public std::runtime_error {
public:
    /**
     * @param code an error code for programs
     * @param text the failed assertion as text; null: an empty text
     */
    NRBAssertError(long code, const char* text);
    ~NRBAssertError() override;

    /**
     * Stores the location and throws a copy of this error.
     *
     * @param location the location of the assertion
     * @param detail   an additional text; may be null
     * @param origin   the macro or function that raises the error; may be null
     * @throws NRBAssertError always
     */
    [[noreturn]] void hurl(const NRBFileLocation& location, const char* detail, const char* origin);

    /** Returns the code given to the constructor. */
    long getCode() const noexcept { return m_lCode; }
    /** Returns the text given to the constructor, the same as what(). Never null. */
    const char* getText() const noexcept { return what(); }
    /** Returns the location given to hurl(); before that, an empty name and line 0. */
    const NRBFileLocation& getLocation() const noexcept { return m_location; }
    /** Returns the detail given to hurl(); null if there is none. */
    const char* getDetail() const noexcept { return m_strDetail ? m_strDetail->c_str() : nullptr; }
    /** Returns the origin given to hurl(); null if there is none. */
    const char* getOrigin() const noexcept { return m_strOrigin ? m_strOrigin->c_str() : nullptr; }

private:
    long m_lCode;
    NRBFileLocation m_location;
    std::optional<std::string> m_strDetail;
    std::optional<std::string> m_strOrigin;
};
