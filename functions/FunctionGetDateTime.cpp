#include "FunctionGetDateTime.h"

#include "FunctionCall.h"

#include <nrb/NRBUtSystemInfo.h>

#include <string>

namespace {

constexpr const char* NO_ARGUMENTS = "tqfunc:GetDateTime() function takes no arguments!";

/** From `start` up to `end`, as far as the text goes. */
std::string part(const std::string& text, std::size_t start, std::size_t end) {
    return start < text.size() ? text.substr(start, end - start) : "";
}

} // namespace

xalanc::XObjectPtr FunctionGetDateTime::execute(xalanc::XPathExecutionContext& executionContext,
                                                xalanc::XalanNode* context,
                                                const XObjectArgVectorType& args,
                                                const xalanc::Locator* /*locator*/) const {
    const FunctionCall call(executionContext, context, args);
    call.expectArguments(0, NO_ARGUMENTS);
    return call.result(GetDateTime());
}

FunctionGetDateTime* FunctionGetDateTime::clone() const {
    return new FunctionGetDateTime;
}

xalanc::XalanDOMString FunctionGetDateTime::getError() const {
    return xalanc::XalanDOMString(NO_ARGUMENTS);
}

I18NString FunctionGetDateTime::GetDateTime() const {
    const std::string stamp = NRBUtSystemInfo::getTimeStamp(0); // YYYYMMDDhhmmssmmm
    // Everything behind the seconds belongs to the fraction, should a stamp ever be finer.
    const std::string text = part(stamp, 8, 10) + ":" + part(stamp, 10, 12) + ":" +
                             part(stamp, 12, 14) + "." + part(stamp, 14, 19);
    return I18NString(text.c_str());
}
