/**
 * @file
 * What the engine prints by itself.
 */
#pragma once

#include <streambuf>
#include <string>

/**
 * Stands in for std::cerr in its thread while the engine works, and sorts what it prints there.
 *
 * Messages of the stylesheet and warnings go to standard error line by line. The report of an error
 * that may be the end of the work is held back: the library gives the same text as the reason of a
 * failure, and it is to be told once. As soon as something else follows, it was not the end.
 */
class EngineDiagnostics : private std::streambuf {
public:
    /** @param quiet print no messages of the stylesheet */
    explicit EngineDiagnostics(bool quiet);
    EngineDiagnostics(const EngineDiagnostics&) = delete;
    EngineDiagnostics& operator=(const EngineDiagnostics&) = delete;
    /** Gives std::cerr back; prints what is held back and was not told as a reason. */
    ~EngineDiagnostics() override;

    /**
     * Forgets the held report if it is what `reason` tells.
     * @return whether the report is about the source of a transform, not about its stylesheet
     */
    bool dropReportOf(const std::string& reason);

private:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize length) override;
    void sortLine();
    void printHeld();
    void print(const std::string& text);

    bool m_bQuiet;
    bool m_bInMessage = false;
    std::streambuf* m_pStandardError;
    std::string m_strLine;
    /** An error's report, with the blank line that the engine may put before it. */
    std::string m_strHeld;
};
