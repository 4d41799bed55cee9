/**
 * @file
 * What the engine prints by itself.
 */
#pragma once

#include <ostream>
#include <streambuf>
#include <string>

/**
 * Stands in for std::cerr while the engine works, and sorts what it prints there.
 *
 * Messages of the stylesheet and warnings go to standard error at once, line by line. The report of
 * a fatal error is held back: the library gives the same text as the reason of a failure, and it is
 * to be told once.
 */
class EngineDiagnostics : private std::streambuf {
public:
    /** @param quiet print nothing at all */
    explicit EngineDiagnostics(bool quiet);
    EngineDiagnostics(const EngineDiagnostics&) = delete;
    EngineDiagnostics& operator=(const EngineDiagnostics&) = delete;
    /** Gives std::cerr back; prints what is held back and was not told as a reason. */
    ~EngineDiagnostics() override;

    /** Forgets the held report if it is the one that `reason` gives. */
    void dropReportOf(const std::string& reason);

private:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize length) override;
    void sortLine();
    void print(const std::string& text);

    bool m_bQuiet;
    std::streambuf* m_pStandardError;
    std::string m_strLine;
    /** A fatal error's report and all that followed it. */
    std::string m_strHeld;
};
