#include "transformer/ExceptionReport.h"

#include <locale>
#include <ostream>
#include <string>
#include <strstream>

#include <xalanc/XalanDOM/XalanDOMException.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLException.hpp>

namespace {

constexpr int XSL_EXCEPTION = -1;
constexpr int SAX_EXCEPTION = -2;
constexpr int XML_EXCEPTION = -3;
constexpr int DOM_EXCEPTION = -4;
constexpr int UNKNOWN_EXCEPTION = -5;

/** Composes one report. */
class Report {
public:
    explicit Report(const ReportSite& site) : m_site(site) {
        m_stream.imbue(std::locale::classic()); // plain numbers in every locale of the host
        // By default a stream hides std::bad_alloc, and the report would be incomplete.
        m_stream.exceptions(std::ios_base::badbit);
    }

    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    /** Frees the buffer, unless it is kept. */
    ~Report() { m_stream.freeze(m_bKept); }

    Report& operator<<(const char* text) {
        m_stream << text;
        return *this;
    }
    /** Writes an engine string. OutputString of the engine splits surrogate pairs. */
    Report& operator<<(const char16_t* text) {
        m_stream << I18NString(text, -1, nullptr, nullptr).c_str();
        return *this;
    }
    Report& operator<<(int number) {
        m_stream << number;
        return *this;
    }
    Report& newline() {
        m_stream << std::endl;
        return *this;
    }
    /** Ends " (URI, line L, column C)". An unknown number is -1. */
    template <typename Number>
    Report& lineAndColumn(Number line, Number column) {
        m_stream << ", line " << static_cast<long>(line) << ", column " << static_cast<long>(column)
                 << ")";
        return newline();
    }
    Report& keep() {
        m_bKept = true;
        return *this;
    }

    void storeIn(I18NString& error) {
        if (m_site.terminated) {
            m_stream << std::ends;
        }
        const auto length = static_cast<std::size_t>(m_stream.pcount());
        // Not every report ends with a NUL: use the length.
        error = std::string(m_stream.str(), length).c_str();
    }

private:
    const ReportSite& m_site;
    std::ostrstream m_stream;
    bool m_bKept = false;
};

int report(const ReportSite& site, const xercesc::SAXParseException& exception, I18NString& error) {
    Report text(site);
    text << "SAXParseException: " << exception.getMessage() << " (";
    if (exception.getSystemId()) {
        text << exception.getSystemId();
    } else {
        text << "Unknown system ID";
    }
    text.lineAndColumn(exception.getLineNumber(), exception.getColumnNumber()).storeIn(error);
    return SAX_EXCEPTION;
}

/** Not inlined: tests/valgrind.supp identifies the kept buffer by the name of this function. */
[[gnu::noinline]] int reportSaxException(const ReportSite& site,
                                         const xercesc::SAXException& exception,
                                         I18NString& error) {
    Report text(site);
    if (site.saxExceptionKept) {
        text.keep();
    }
    text << "SAXException: " << exception.getMessage();
    text.newline().storeIn(error);
    return SAX_EXCEPTION;
}

int report(const ReportSite& site, const xercesc::XMLException& exception, I18NString& error) {
    Report text(site);
    text << "XMLException:" << site.xmlExceptionBeforeType << exception.getType();
    text.newline() << "Message is: " << exception.getMessage();
    text.newline().storeIn(error);
    return XML_EXCEPTION;
}

int report(const ReportSite& site, const xalanc::XalanDOMException& exception, I18NString& error) {
    Report text(site);
    text << site.domExceptionBeforeCode << static_cast<int>(exception.getExceptionCode())
         << site.domExceptionAfterCode;
    text.newline().storeIn(error);
    return DOM_EXCEPTION;
}

int reportUnknownException(const ReportSite& site, I18NString& error) {
    Report text(site);
    text << "\nUnhandled Exception\n";
    if (site.newlineAfterUnhandled) {
        text.newline();
    }
    text.storeIn(error);
    return UNKNOWN_EXCEPTION;
}

} // namespace

int reportXslException(const ReportSite& site, const xalanc::XSLException& exception,
                       I18NString& error) {
    Report text(site);
    text << "\nXSLException "
         << "Type is: " << exception.getType();
    text.newline() << "Message is: " << exception.getMessage().c_str() << " (";
    if (exception.getURI().empty()) {
        text << "Unknown URI";
    } else {
        text << exception.getURI().c_str();
    }
    text.lineAndColumn(exception.getLineNumber(), exception.getColumnNumber()).storeIn(error);
    return XSL_EXCEPTION;
}

int reportCurrentException(const ReportSite& site, I18NString& error) {
    try {
        throw;
    } catch (const xalanc::XSLException& exception) {
        return reportXslException(site, exception, error);
    } catch (const xercesc::SAXParseException& exception) {
        return report(site, exception, error);
    } catch (const xercesc::SAXException& exception) {
        return reportSaxException(site, exception, error);
    } catch (const xercesc::XMLException& exception) {
        return report(site, exception, error);
    } catch (const xalanc::XalanDOMException& exception) {
        return report(site, exception, error);
    } catch (...) {
        return reportUnknownException(site, error);
    }
}
