/**
 * @file
 * Exceptions as texts and results.
 *
 * Three operations catch the engine's exceptions: the in-memory transform, the XPath query and the
 * serialisation of a document. Hosts compare their texts, so each keeps its own spacing and line
 * ends; what differs is here, and nowhere else.
 */
#pragma once

#include <nrb/I18NString.h>

#include <cxxabi.h>

#include <xalanc/PlatformSupport/XSLException.hpp>

/** Where reports differ from one operation to another. */
struct ReportSite {
    /** Between an XMLException's name and its type. */
    const char* xmlExceptionBeforeType;
    const char* domExceptionBeforeCode;
    const char* domExceptionAfterCode;
    /** Whether a report of an unknown exception ends with one more line end. */
    bool lineEndAfterUnhandled;
    /** Whether each report is closed by a NUL. */
    bool terminated;
    /** Whether the buffer of a SAXException's report is kept for good. */
    bool saxExceptionKept;
};

inline constexpr ReportSite IN_MEMORY_TRANSFORM = {
    "  \n\nType is:  ",   // xmlExceptionBeforeType
    "XalanDOMException[", // domExceptionBeforeCode
    "] occured.",         // domExceptionAfterCode: spelled so ever since, and looked for
    true,                 // lineEndAfterUnhandled
    true,                 // terminated
    true,                 // saxExceptionKept
};

inline constexpr ReportSite XPATH_QUERY = {
    " Type is: ",                              // xmlExceptionBeforeType
    "XalanDOMException caught.  The code is ", // domExceptionBeforeCode
    ".",                                       // domExceptionAfterCode
    false,                                     // lineEndAfterUnhandled
    false,                                     // terminated
    false,                                     // saxExceptionKept
};

/** Catches an XSLException only, and reports it as the in-memory transform does. */
inline constexpr const ReportSite& SERIALISATION = IN_MEMORY_TRANSFORM;

/** Puts the report of an XSLException into `error`. @return -1 */
int reportXslException(const ReportSite& site, const xalanc::XSLException& exception,
                       I18NString& error);

/**
 * Puts the report of the exception being handled into `error`.
 * @return -1 XSLException, -2 SAXParseException or SAXException, -3 XMLException,
 *         -4 XalanDOMException, -5 any other
 */
int reportCurrentException(const ReportSite& site, I18NString& error);

/** Runs the guarded work of an operation. @return 0, or the result of the report */
template <typename Work>
int runGuarded(const ReportSite& site, I18NString& error, Work work) {
    try {
        work();
        return 0;
    } catch (const abi::__forced_unwind&) {
        throw; // no exception: the thread is being ended
    } catch (...) {
        return reportCurrentException(site, error);
    }
}
