/**
 * @file
 * Any names and values of stylesheet parameters and names of functions, on every road.
 */
#include "support/BoundedOutput.h"
#include "support/Check.h"
#include "support/EngineFaults.h"
#include "support/Library.h"
#include "support/ScratchFile.h"
#include "support/Workbench.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vexa/TqXsltFunction.h>

#include <fuzzer/FuzzedDataProvider.h>

namespace {

constexpr const char* SHEET = R"xsl(<xsl:stylesheet version="1.0"
    xmlns:xsl="http://www.w3.org/1999/XSL/Transform" xmlns:v="http://vexa.example/xslt/wol">
  <xsl:output method="text" encoding="UTF-8"/>
  <xsl:param name="p"/>
  <xsl:template match="/"><xsl:value-of select="$p"/></xsl:template>
</xsl:stylesheet>)xsl";

constexpr const char* CALLING_SHEET = R"xsl(<xsl:stylesheet version="1.0"
    xmlns:xsl="http://www.w3.org/1999/XSL/Transform" xmlns:v="http://vexa.example/xslt/wol">
  <xsl:param name="p"/><xsl:param name="q"/>
  <xsl:template match="/"><a p="{$p}" q="{v:GetLocalizedString($p, $q)}">
    <xsl:value-of select="v:TimerStart($q)"/><xsl:value-of select="v:TimerTotal($p)"/>
    <xsl:value-of select="v:TimerStop($q)"/><xsl:value-of select="v:TimerDestroy($q)"/>
    <xsl:if test="function-available('v:f')"><xsl:value-of select="v:f($p)"/></xsl:if>
  </a></xsl:template>
</xsl:stylesheet>)xsl";

/** Gives its argument back. */
class Echo : public TqXsltFunction {
public:
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode*,
                               const XObjectArgVectorType& args,
                               const xalanc::Locator*) const override {
        const I18NString text =
            args.empty() ? I18NString() : XalanDOMStringToI18NString(args[0]->str(context));
        return context.getXObjectFactory().createString(I18NStringToXalanDOMString(text));
    }
    Echo* clone() const override { return new Echo(*this); }
    xalanc::XalanDOMString getError() const override { return xalanc::XalanDOMString("f(x)"); }
};

int run(VEXAXslTransformer& transformer, const std::string& sheet, BoundedOutput& text) {
    Dom2Dom in(&transformer);
    Dom2Dom out(&transformer);
    parse(in, "<a/>");
    out.InitializeOutputTarget(text);
    return transformInMemory(transformer, in, sheet, out);
}

/** Characters that reach the result as they are: no quoting, no line-end and no surrogate matters.
 */
bool isPlain(const std::string& value) {
    return std::all_of(value.begin(), value.end(),
                       [](char c) { return c >= ' ' && c <= '~' && c != '\''; });
}

void checkValueArrives(const std::string& value) {
    static const std::string sheet = scratchFile("value.xsl", SHEET);
    VEXAXslTransformer transformer;
    transformer.setStylesheetParam("p", I18NString(value.c_str(), "UTF-8"));
    BoundedOutput inMemory;
    const int code = run(transformer, sheet, inMemory);
    const StreamResult stream = transformStream(transformer, "<a/>", sheet);
    require(code == stream.code, "a parameter has one effect on every road");
    if (isPlain(value)) {
        require(code == 0 && inMemory.text() == value, "a plain value arrives in memory");
        require(stream.text == value + '\0', "a plain value arrives on a stream");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    beginInput();
    static const std::string callingSheet = scratchFile("calling.xsl", CALLING_SHEET);
    checkValueArrives(input.ConsumeRandomLengthString());

    VEXAXslTransformer transformer;
    for (int i = 0; i < 8 && input.remaining_bytes() > 0; ++i) {
        const int choice = input.ConsumeIntegralInRange(0, 3);
        const std::string text = input.ConsumeRandomLengthString();
        const I18NString name(text.data(), "UTF-8", static_cast<int>(text.size()));
        if (choice == 0) {
            transformer.installExternalFunction(name, Echo());
        } else {
            const char* const fixedNames[] = {"", "p", "q"};
            transformer.setStylesheetParam(choice == 3 ? name : I18NString(fixedNames[choice]),
                                           input.ConsumeRandomLengthString().c_str());
        }
    }
    BoundedOutput text;
    run(transformer, callingSheet, text);
    transformStream(transformer, "<a/>", callingSheet);
    return 0;
}
