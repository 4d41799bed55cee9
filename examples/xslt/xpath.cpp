// Queries a document with compiled XPath expressions:
//
//     xpath orders.xml
#include <cstdlib>
#include <iostream>
#include <vexa/xslt.h>

namespace {

void query(const char* source) {
    const auto orders = vexa::Document::parse(vexa::Input::file(source));
    // [types]
    const vexa::Namespaces prefixes = {{"o", "urn:orders"}};
    const auto count = vexa::XPath::compile("count(//o:order)", prefixes);
    const auto isLarge = vexa::XPath::compile("//o:order/@amount > 100", prefixes);
    const auto names = vexa::XPath::compile("//o:order/@customer", prefixes);

    std::cout << count.evaluate(orders).number() << " orders\n";
    if (isLarge.evaluate(orders).boolean()) {
        std::cout << "a large one among them\n";
    }
    for (const vexa::Node& name : names.evaluate(orders).nodes()) {
        std::cout << name.string() << '\n';
    }
    // [/types]
    // [node]
    const auto large = vexa::XPath::compile("//o:order[@amount > $least]", prefixes);
    const auto amount = vexa::XPath::compile("concat(@amount, ' ', @currency)");
    for (const vexa::Node& order : large.evaluate(orders, {}, {{"least", 50}}).nodes()) {
        std::cout << amount.evaluate(order).string() << '\n';
    }
    // [/node]
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: xpath SOURCE\n";
        return EXIT_FAILURE;
    }
    try {
        query(argv[1]);
        return EXIT_SUCCESS;
    } catch (const vexa::Error& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
