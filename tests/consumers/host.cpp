// A host as its developer would write it, built against an installation: a chain of two stylesheets
// with a function of its own, and a message of the catalogue.
#include <nrb/NRBUtSystemInfo.h>
#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/TqXsltFunction.h>
#include <vexa/VEXAXslTransformer.h>
#include <vexa/WolMdMessage.h>

#include <iostream>
#include <sstream>
#include <string>

namespace {

class FunctionShout : public TqXsltFunction {
public:
    using TqXsltFunction::execute;

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode*,
                               const XObjectArgVectorType& args,
                               const xalanc::Locator*) const override {
        const I18NString text = XalanDOMStringToI18NString(args[0]->str(context)) + "!";
        return context.getXObjectFactory().createString(I18NStringToXalanDOMString(text));
    }
    TqXsltFunction* clone() const override { return new FunctionShout(*this); }
    xalanc::XalanDOMString getError() const override {
        return xalanc::XalanDOMString("Shout() takes one argument");
    }
};

std::string greet(const char* stylesheet) {
    VEXAXslTransformer transformer;
    transformer.installExternalFunction("Shout", FunctionShout());
    const auto source = transformer.createDom2Dom();
    const auto between = transformer.createDom2Dom();
    const auto result = transformer.createDom2Dom();
    std::ostringstream text;
    if (!source->InitializeInputSource("<greeting>hello</greeting>") ||
        !between->InitializeOutputTarget() || !result->InitializeOutputTarget(text) ||
        transformer.doTransform(*source, stylesheet, *between) != 0 ||
        transformer.doTransform(*between, stylesheet, *result) != 0) {
        return transformer.getLastError();
    }
    return text.str();
}

} // namespace

int main(int, char** argv) {
    TQXslTransformer_Initialize(nullptr);
    const std::string greeting = greet(argv[1]);
    TQXslTransformer_Terminate(nullptr);

    I18NString heading;
    WolMdMessage(0xA2E8CFB4).format("de", "en", heading);
    std::cout << greeting << '\n' << heading.c_str() << '\n';
    const bool isRight = greeting.find("<greeting>hello!!</greeting>") != std::string::npos &&
                         heading == "Auftragsbuch";
    return isRight && !NRBUtSystemInfo::getTimeStamp(0).empty() ? 0 : 1;
}
