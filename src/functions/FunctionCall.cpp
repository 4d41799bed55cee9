#include "functions/FunctionCall.h"

#include <nrb/NRBAssertError.h>

using xalanc::XPathExecutionContext;

void FunctionCall::expectArguments(std::size_t count, const char* arityMessage) const {
    if (m_args.size() != count) {
        // Without the location of the call: hosts compare these messages.
        m_executionContext.problem(XPathExecutionContext::eXPATH, XPathExecutionContext::eError,
                                   xalanc::XalanDOMString(arityMessage),
                                   static_cast<const xalanc::Locator*>(nullptr), m_pContextNode);
    }
}

void FunctionCall::assertFirstArgument(const AssertionLocation& location) const {
    if (m_args.empty() || m_args[0].null()) {
        NRBAssertError(0, "NRB_ASSERT(args[0].null() == false);")
            .hurl(NRBFileLocation(location.sourceUnit, location.line), nullptr, "NRB_THROW");
    }
}

I18NString FunctionCall::argument(std::size_t index) const {
    // Only the first argument is asserted; any other missing argument is an empty text.
    if (index >= m_args.size() || m_args[index].null()) {
        return I18NString();
    }
    return TqXsltFunction::XalanDOMStringToI18NString(m_args[index]->str(m_executionContext));
}

xalanc::XObjectPtr FunctionCall::result(const I18NString& text) const {
    return m_executionContext.getXObjectFactory().createString(
        TqXsltFunction::I18NStringToXalanDOMString(text));
}
