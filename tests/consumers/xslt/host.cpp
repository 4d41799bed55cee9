// A host of the second interface, which sees nothing but its headers.
#include <vexa/xslt.h>

#include <iostream>

#if defined(XERCES_CPP_NAMESPACE) || defined(XALAN_CPP_NAMESPACE) || defined(U_ICU_VERSION) ||     \
    defined(NRB_EXPORT) || defined(VEXA_EXPORT)
#error "a header of the second interface includes the engine, ICU or the classic interface"
#endif

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    try {
        vexa::Transformation run(vexa::Stylesheet::compile(vexa::Input::file(argv[1])));
        run.function("urn:host", "shout", [](const vexa::Call& call) -> vexa::Value {
            return call.argument(0).string() + "!";
        });
        std::cout << run.toString(vexa::Input::text("<greeting>hello</greeting>"));
        return 0;
    } catch (const vexa::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
