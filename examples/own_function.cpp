// A user-defined extension function, vexa:Repeat(text, times):
//
//     own_function orders-small.xml own_function.xsl
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <vexa/TQXslTransformer.h>
#include <vexa/TqXsltFunction.h>
#include <vexa/VEXAXslTransformer.h>

namespace {

// [function]
class FunctionRepeat : public TqXsltFunction {
public:
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode* node,
                               const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override {
        // `problem` throws: nothing below it runs for a wrong call.
        if (args.size() != 2) {
            context.problem(context.eXPATH, context.eError, getError(), locator, node);
        }
        const double times = args[1]->num(context);
        if (!(times >= 0 && times <= 1000)) { // false for NaN as well
            context.problem(context.eXPATH, context.eError,
                            xalanc::XalanDOMString("Repeat() repeats 0 to 1000 times"), locator,
                            node);
        }
        const I18NString text = XalanDOMStringToI18NString(args[0]->str(context));
        I18NString result;
        for (long i = std::lround(times); i > 0; --i) {
            result += text;
        }
        return context.getXObjectFactory().createString(I18NStringToXalanDOMString(result));
    }

    FunctionRepeat* clone() const override { return new FunctionRepeat(*this); }

    xalanc::XalanDOMString getError() const override {
        return xalanc::XalanDOMString("Repeat() takes a text and a number");
    }
};
// [/function]

int run(const char* source, const char* stylesheet) {
    // [install]
    VEXAXslTransformer transformer;
    transformer.installExternalFunction("Repeat", FunctionRepeat());
    const int result = transformer.doTransform(source, stylesheet, "/dev/stdout");
    // [/install]
    if (result != 0) {
        std::cerr << transformer.getLastError() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: own_function SOURCE STYLESHEET\n";
        return EXIT_FAILURE;
    }
    TQXslTransformer_Initialize(nullptr);
    const int status = run(argv[1], argv[2]);
    TQXslTransformer_Terminate(nullptr);
    return status;
}
