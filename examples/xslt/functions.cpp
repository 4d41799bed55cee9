// Extension functions as lambdas, with strings, numbers and node-sets:
//
//     functions functions.xsl orders.xml
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>
#include <vexa/xslt.h>

namespace {

constexpr const char* NAMESPACE = "http://example.org/f";

void installFunctions(vexa::Transformation& run) {
    // [strings]
    run.function(NAMESPACE, "repeat", [](const vexa::Call& call) -> vexa::Value {
        const double times = call.argument(1).number();
        if (!(times >= 0 && times <= 1000)) { // false for NaN as well
            throw std::invalid_argument("repeat() repeats 0 to 1000 times");
        }
        std::string text;
        for (int i = 1; i <= times; ++i) {
            text += call.argument(0).string();
        }
        return text;
    });
    // [/strings]
    // [numbers]
    run.function(NAMESPACE, "rounded", [](const vexa::Call& call) -> vexa::Value {
        return std::round(call.argument(0).number() * 100) / 100;
    });
    // [/numbers]
    // [node-sets]
    run.function(NAMESPACE, "join", [](const vexa::Call& call) -> vexa::Value {
        std::string text;
        for (const vexa::Node& node : call.argument(0).nodes()) {
            text += (text.empty() ? "" : call.argument(1).string()) + node.string();
        }
        return text;
    });
    run.function(NAMESPACE, "distinct", [](const vexa::Call& call) -> vexa::Value {
        std::vector<vexa::Node> first;
        std::set<std::string> seen;
        for (const vexa::Node& node : call.argument(0).nodes()) {
            if (seen.insert(node.string()).second) {
                first.push_back(node);
            }
        }
        return first;
    });
    // [/node-sets]
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: functions STYLESHEET SOURCE\n";
        return EXIT_FAILURE;
    }
    // [run]
    try {
        vexa::Transformation run(vexa::Stylesheet::compile(vexa::Input::file(argv[1])));
        installFunctions(run);
        std::cout << run.toString(vexa::Input::file(argv[2]));
        return EXIT_SUCCESS;
    } catch (const vexa::Error& error) { // of the stylesheet
        std::cerr << error.what() << '\n';
    } catch (const std::invalid_argument& error) { // of a function, as it was thrown
        std::cerr << error.what() << '\n';
    }
    return EXIT_FAILURE;
    // [/run]
}
