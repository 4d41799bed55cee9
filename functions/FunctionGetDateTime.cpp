#include "FunctionGetDateTime.h"

#include "FunctionCall.h"

#include <nrb/NRBUtSystemInfo.h>

namespace {

constexpr const char* NO_ARGUMENTS = "tqfunc:GetDateTime() function takes no arguments!";

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
    const I18NString stamp(NRBUtSystemInfo::getTimeStamp(0).c_str()); // YYYYMMDDhhmmssmmm
    // Everything behind the seconds belongs to the fraction, should a stamp ever be finer.
    const I18NString milliseconds = stamp.substring(14, 19);
    const I18NString seconds = stamp.substring(12, 14);
    const I18NString minutes = stamp.substring(10, 12);
    const I18NString hours = stamp.substring(8, 10);
    return hours + ":" + minutes + ":" + seconds + "." + milliseconds;
}
