#include "functions/FunctionGetDateTime.h"

#include "functions/FunctionCall.h"

#include <nrb/NRBUtSystemInfo.h>

#include <string>

namespace {

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
    call.expectArguments(0, USAGE);
    return call.result(GetDateTime());
}

I18NString FunctionGetDateTime::GetDateTime() const {
    const std::string stamp = NRBUtSystemInfo::getTimeStamp(0); // YYYYMMDDhhmmssmmm
    // Everything behind the seconds belongs to the fraction, should a stamp ever be finer.
    const std::string text = part(stamp, 8, 10) + ":" + part(stamp, 10, 12) + ":" +
                             part(stamp, 12, 14) + "." + part(stamp, 14, 19);
    return I18NString(text.c_str());
}
