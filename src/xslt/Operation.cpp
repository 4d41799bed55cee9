#include "xslt/Operation.h"

#include "xslt/Text.h"

#include <new>
#include <sstream>

#include <xalanc/PlatformSupport/XSLException.hpp>
#include <xalanc/XSLT/ElemMessage.hpp>
#include <xalanc/XalanDOM/XalanDOMException.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLException.hpp>

using vexa::Error;
using vexa::ErrorKind;
using vexa::Location;

namespace {

/** The engine's number for an unknown line is the largest one in exceptions, 0 in others. */
std::size_t toNumber(XMLFileLoc number) {
    return number == static_cast<XMLFileLoc>(-1) ? 0 : static_cast<std::size_t>(number);
}

Location locationOf(const xalanc::XSLException& exception) {
    return {toUtf8(exception.getURI()), toNumber(exception.getLineNumber()),
            toNumber(exception.getColumnNumber())};
}

} // namespace

Location toLocation(const xercesc::Locator* locator) {
    if (!locator) {
        return {};
    }
    return {toUtf8(locator->getSystemId()), toNumber(locator->getLineNumber()),
            toNumber(locator->getColumnNumber())};
}

std::string cleanText(const std::string& text) {
    std::istringstream words(text);
    std::string clean;
    for (std::string word; words >> word;) {
        clean += (clean.empty() ? "" : " ") + word;
    }
    return clean;
}

void Operation::report(vexa::Severity severity, std::string text, Location where) {
    m_diagnostics.push_back({severity, std::move(text), std::move(where)});
    if (m_options.onMessage) {
        m_options.onMessage(m_diagnostics.back());
    }
}

void Operation::fail(ErrorKind kind, std::string text, Location where) const {
    throw Error(kind, std::move(text), std::move(where), m_diagnostics);
}

void Operation::keepCurrentException() {
    try {
        throwAsError();
    } catch (...) {
        m_kept = std::current_exception();
    }
}

void Operation::throwAsError() const {
    try {
        throw;
    } catch (const xalanc::ElemMessage::ElemMessageTerminateException& exception) {
        fail(ErrorKind::Terminated, toUtf8(exception.getMessage()), locationOf(exception));
    } catch (const xalanc::XSLException& exception) {
        fail(m_kind, cleanText(toUtf8(exception.getMessage())), locationOf(exception));
    } catch (const xercesc::SAXException& exception) {
        fail(m_kind, cleanText(toUtf8(exception.getMessage())));
    } catch (const xercesc::OutOfMemoryException&) {
        throw std::bad_alloc();
    } catch (const xercesc::XMLException& exception) {
        fail(m_kind, cleanText(toUtf8(exception.getMessage())));
    } catch (const xalanc::XalanDOMException& exception) {
        fail(m_kind, "DOM error " + std::to_string(exception.getExceptionCode()));
    }
    // Others pass as they are: the host's own, std::bad_alloc, and what ends a thread.
}
