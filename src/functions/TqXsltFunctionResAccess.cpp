#include "functions/TqXsltFunctionResAccess.h"

#include "functions/FunctionCall.h"
#include "functions/NarrowText.h"

#include <vexa/WolMdMessage.h>

#include <cstdint>
#include <iterator>

namespace {

constexpr const char* FALLBACK_LANGUAGE = "en";

/** Catalogue identifiers. The index is the message number that stylesheets use. */
constexpr std::uint32_t RESOURCE_IDS[] = {
    0xA2E8CFB4, // 0
    0xA2E98406, // 1
    0xA2ECA52E, // 2
    0xA2ED5980, // 3
    0xA2E79FA6, // 4
    0xA2E4B429, // 5
    0xA2E3C193, // 6
    0xA2E8E247, // 7
    0xA2EB3D0D, // 8
    0xA2ED4852, // 9
    0xA2E1DA57, // 10
    0xA2ED1F77, // 11
    0xA2EE3C9A, // 12
    0xA2E28EA6, // 13
    0xA2E89C7A, // 14
    0xA2EB6DC2, // 15
    0xA2E45E77, // 16
    0xA2E72FBF, // 17
    0x96FD2DA4, // 18: in another range than the rest, on purpose
};

} // namespace

xalanc::XObjectPtr
FunctionGetLocalizedString::execute(xalanc::XPathExecutionContext& executionContext,
                                    xalanc::XalanNode* context, const XObjectArgVectorType& args,
                                    const xalanc::Locator* /*locator*/) const {
    const FunctionCall call(executionContext, context, args);
    call.expectArguments(2, "The FunctionGetLocalizedString() function takes 2 arguments!");
    call.assertFirstArgument({"TqXsltFunctionResAccess", 39});
    const int number = parseNumber(call.argument(0));
    const I18NString language = call.argument(1);

    const WolMdMessage message(GetMappedResourceId(number));
    I18NString text;
    message.format(NarrowText(language).get(), FALLBACK_LANGUAGE, text);
    return call.result(text);
}

unsigned long FunctionGetLocalizedString::GetMappedResourceId(int number) const {
    const auto index = static_cast<unsigned>(number); // a negative number becomes a huge one
    return index < std::size(RESOURCE_IDS) ? RESOURCE_IDS[index] : 0;
}
