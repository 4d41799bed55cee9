/**
 * @file
 * Converts exceptions to error messages and result codes.
 *
 * Three operations catch exceptions of the engine: the in-memory transform, the XPath query and the
 * serialization of a document. Hosts compare their error messages, so the differences in spaces,
 * newlines and words are guaranteed. All differences are in ReportSite.
 */
#pragma once

#include <nrb/I18NString.h>

#include <cxxabi.h>

#include <xalanc/PlatformSupport/XSLException.hpp>

/** The differences between the reports of the operations. */
struct ReportSite {
    /** The text between the name of an XMLException and its type. */
    const char* xmlExceptionBeforeType;
    const char* domExceptionBeforeCode;
    const char* domExceptionAfterCode;
    /** Whether the report of an unknown exception ends with an additional newline. */
    bool newlineAfterUnhandled;
    /** Whether a NUL is written at the end of each report. */
    bool terminated;
    /** Whether the buffer of the report of a SAXException is never freed. */
    bool saxExceptionKept;
};

inline constexpr ReportSite IN_MEMORY_TRANSFORM = {
    "  \n\nType is:  ",   // xmlExceptionBeforeType
    "XalanDOMException[", // domExceptionBeforeCode
    "] occured.",         // domExceptionAfterCode: the spelling is guaranteed
    true,                 // newlineAfterUnhandled
    true,                 // terminated
    true,                 // saxExceptionKept
};

inline constexpr ReportSite XPATH_QUERY = {
    " Type is: ",                              // xmlExceptionBeforeType
    "XalanDOMException caught.  The code is ", // domExceptionBeforeCode
    ".",                                       // domExceptionAfterCode
    false,                                     // newlineAfterUnhandled
    false,                                     // terminated
    false,                                     // saxExceptionKept
};

/** Only an XSLException is caught. Its report is that of the in-memory transform. */
inline constexpr const ReportSite& SERIALIZATION = IN_MEMORY_TRANSFORM;

/** Stores the report of an XSLException in `error`. @return -1 */
int reportXslException(const ReportSite& site, const xalanc::XSLException& exception,
                       I18NString& error);

/**
 * Stores the report of the exception that is being handled in `error`.
 * @return -1 XSLException, -2 SAXParseException or SAXException, -3 XMLException,
 *         -4 XalanDOMException, -5 any other
 */
int reportCurrentException(const ReportSite& site, I18NString& error);

/** Runs `work` and reports its exceptions. @return 0, or the result code of the exception */
template <typename Work>
int runGuarded(const ReportSite& site, I18NString& error, Work work) {
    try {
        work();
        return 0;
    } catch (const abi::__forced_unwind&) {
        throw; // not an exception: the thread is being cancelled
    } catch (...) {
        return reportCurrentException(site, error);
    }
}
