// Parameters of several types, an extension function, messages, and results of all kinds:
//
//     tour report.xsl orders.xml rates.xml report.html
#include <cstdlib>
#include <iostream>
#include <string>
#include <vexa/xslt.h>

namespace {

void tour(char** files) {
    // [tour]
    const auto report = vexa::Stylesheet::compile(vexa::Input::file(files[1]));
    const auto orders = vexa::Document::parse(vexa::Input::file(files[2]));
    const auto rates = vexa::Document::parse(vexa::Input::file(files[3]));

    vexa::Transformation run(report); // used by one thread at a time
    // [parameters]
    run.parameter("title", "May's \"orders\"") // any text
        .parameter("most", 2)                  // a number stays a number
        .parameter("rates", rates)             // a document
        .function(
            "http://example.org/f", "shout",
            [](const vexa::Call& call) -> vexa::Value { return call.argument(0).string() + "!"; })
        .onMessage([](const vexa::Diagnostic& message) {
            std::cout << "message: " << message.text << '\n';
        });
    // [/parameters]

    const std::string page = run.toString(orders);      // into a string
    run.to(orders, vexa::Output::file(files[4]));       // into a file, atomically
    const vexa::Document open = run.toDocument(orders); // to continue in memory

    const auto rows = vexa::XPath::compile("count(/html/body/ol/li)");
    const auto all = vexa::XPath::compile("count(//o:order)", {{"o", "urn:orders"}});
    std::cout << page << rows.evaluate(open).number() << " of " << all.evaluate(orders).number()
              << " orders\n";
    // [/tour]
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::cerr << "usage: tour STYLESHEET ORDERS RATES OUTPUT\n";
        return EXIT_FAILURE;
    }
    try {
        tour(argv);
        return EXIT_SUCCESS;
    } catch (const vexa::Error& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
