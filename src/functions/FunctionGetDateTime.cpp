#include "functions/FunctionGetDateTime.h"

#include "functions/FunctionCall.h"

#include <nrb/NRBUtSystemInfo.h>

#include <string>

namespace {

/** The part from `start` up to but not including `end`; shorter if the text ends before. */
std::string part(const std::string& text, std::size_t start, std::size_t end) {
    return start < text.size() ? text.substr(start, end - start) : "";
}

} // namespace

xalanc::XObjectPtr FunctionGetDateTime::execute(xalanc::XPathExecutionContext& executionContext,
                                                xalanc::XalanNode* context,
                                                const XObjectArgVectorType& args,
                                                const xalanc::Locator* /*locator*/) const {
    const FunctionCall call(executionContext, context, args);
    call.expectArguments(0, USAGE);
    return call.result(GetDateTime());
}

I18NString FunctionGetDateTime::GetDateTime() const {
    const std::string stamp = NRBUtSystemInfo::getTimeStamp(0); // YYYYMMDDhhmmssmmm
    // Up to five digits after the seconds: a time stamp may have a finer resolution.
    const std::string text = part(stamp, 8, 10) + ":" + part(stamp, 10, 12) + ":" +
                             part(stamp, 12, 14) + "." + part(stamp, 14, 19);
    return I18NString(text.c_str());
}
