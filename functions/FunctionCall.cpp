#include "FunctionCall.h"

#include <nrb/NRBAssertError.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <limits>

using xalanc::XPathExecutionContext;

void FunctionCall::expectArguments(std::size_t count, const char* arityMessage) const {
    if (m_args.size() != count) {
        // Without the call's own place, which reports have never had.
        m_executionContext.problem(XPathExecutionContext::eXPATH, XPathExecutionContext::eError,
                                   xalanc::XalanDOMString(arityMessage),
                                   static_cast<const xalanc::Locator*>(nullptr), m_pContextNode);
    }
}

void FunctionCall::assertFirstArgument(const AssertionPlace& place) const {
    if (m_args.empty() || m_args[0].null()) {
        NRBAssertError(0, "NRB_ASSERT(args[0].null() == false);")
            .hurl(NRBFileLocation(place.sourceUnit, place.line), nullptr, "NRB_THROW");
    }
}

I18NString FunctionCall::argument(std::size_t index) const {
    // Only the first argument is asserted; any other that is missing is an empty text.
    if (index >= m_args.size() || m_args[index].null()) {
        return I18NString();
    }
    return TqXsltFunction::XalanDOMStringToI18NString(m_args[index]->str(m_executionContext));
}

xalanc::XObjectPtr FunctionCall::result(const I18NString& text) const {
    return m_executionContext.getXObjectFactory().createString(
        TqXsltFunction::I18NStringToXalanDOMString(text));
}

NarrowText::NarrowText(const I18NString& text) {
    const auto* const utf16 = static_cast<const char16_t*>(text.getExternalBuffer());
    for (std::size_t i = 0; i < std::size(m_shortText) && utf16[i] < 0x80; ++i) {
        m_shortText[i] = static_cast<char>(utf16[i]);
        if (!utf16[i]) {
            m_pText = m_shortText;
            return;
        }
    }
    m_pText = text.c_str();
}

std::int32_t parseNumber(const I18NString& text) {
    constexpr long SMALLEST = std::numeric_limits<std::int32_t>::min();
    constexpr long LARGEST = std::numeric_limits<std::int32_t>::max();
    const long number = std::strtol(NarrowText(text).get(), nullptr, 10);
    return static_cast<std::int32_t>(std::clamp(number, SMALLEST, LARGEST));
}
