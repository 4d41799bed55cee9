#include "xslt/Operation.h"

#include "xslt/Text.h"

#include <cstdint>
#include <limits>
#include <new>
#include <sstream>
#include <time.h>

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

/** Some milliseconds behind the steady clock, but asked in some nanoseconds. */
std::chrono::steady_clock::time_point coarseNow() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return std::chrono::steady_clock::time_point(std::chrono::seconds(now.tv_sec) +
                                                 std::chrono::nanoseconds(now.tv_nsec));
}

template <typename Number>
Number boundOf(std::size_t limit) {
    const auto most = std::numeric_limits<Number>::max();
    return limit == 0 || limit > static_cast<std::size_t>(most) ? most : static_cast<Number>(limit);
}

std::chrono::steady_clock::time_point endOf(std::chrono::milliseconds time) {
    using Clock = std::chrono::steady_clock;
    return time.count() > 0 ? Clock::now() + time : Clock::time_point::max();
}

Location locationOf(const xalanc::XSLException& exception) {
    return {toUtf8(exception.getURI()), toNumber(exception.getLineNumber()),
            toNumber(exception.getColumnNumber())};
}

} // namespace

namespace vexa {

class CancelAccess {
public:
    static bool canBeCancelled(const CancelToken& token) { return token.m_state != nullptr; }
};

} // namespace vexa

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

Operation::Operation(const vexa::Options& options)
    : m_options(options), m_mostMemory(boundOf<std::ptrdiff_t>(options.limits.memory)),
      m_mostOutput(boundOf<std::size_t>(options.limits.output)),
      m_mostDepth(boundOf<std::size_t>(options.limits.depth)), m_end(endOf(options.limits.time)),
      m_needsPolls(options.limits.time.count() > 0 || options.limits.memory > 0 ||
                   vexa::CancelAccess::canBeCancelled(options.cancel)) {}

void Operation::restart() {
    m_memory = 0;
    m_output = 0;
    m_isOverMemory = false;
    m_kept = nullptr;
    m_end = endOf(m_options.limits.time);
}

void Operation::checkBounds() {
    throwKept();
    if (m_options.cancel.cancelled()) {
        stop(ErrorKind::Cancelled, "the operation was cancelled");
    }
    if (m_pollsLimits) {
        checkLimits();
    }
}

void Operation::checkLimits() {
    if (m_isOverMemory) {
        stopAtLimit("memory", m_options.limits.memory, " bytes");
    }
    if (m_end != Clock::time_point::max() && coarseNow() >= m_end) {
        stopAtLimit("time", static_cast<std::size_t>(m_options.limits.time.count()), " ms");
    }
}

void Operation::checkMemory(std::size_t bytes) {
    if (m_kept) {
        return; // the engine tidies up
    }
    m_isOverMemory = m_memory > m_mostMemory;
    if (bytes >= LARGE_PIECE) {
        m_memory -= static_cast<std::ptrdiff_t>(bytes);
        poll();
        if (m_isOverMemory) {
            checkLimits();
        }
        m_memory += static_cast<std::ptrdiff_t>(bytes);
    }
}

void Operation::stopAtLimit(const char* limit, std::size_t value, const char* unit) {
    stop(ErrorKind::Limit, std::string("the ") + limit + " limit of " + std::to_string(value) +
                               unit + " was reached");
}

void Operation::stop(ErrorKind kind, std::string text) {
    m_isOverMemory = false;
    m_needsPolls = true;
    m_kept = std::make_exception_ptr(Error(kind, std::move(text), place(), m_diagnostics));
    std::rethrow_exception(m_kept);
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
    m_needsPolls = true;
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
