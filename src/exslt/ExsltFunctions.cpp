#include "exslt/ExsltFunctions.h"

#include "exslt/ExsltTables.h"

#include <algorithm>

namespace {

struct Module {
    std::u16string_view uri; // after the part that all have
    ExsltTable (*functions)();
};

constexpr std::u16string_view EXSLT = u"http://exslt.org/";

constexpr Module MODULES[] = {
    {u"common", commonFunctions},
    {u"dates-and-times", dateFunctions},
    {u"dynamic", dynamicFunctions},
    {u"math", mathFunctions},
    {u"regular-expressions", regularExpressionFunctions},
    {u"strings", stringFunctions},
};

std::string expectedArguments(const ExsltFunction& function) {
    const auto fewest = std::to_string(function.fewestArguments);
    return function.mostArguments == function.fewestArguments
               ? fewest
               : fewest + " to " + std::to_string(function.mostArguments);
}

} // namespace

const ExsltFunction* findExsltFunction(std::u16string_view uri, std::u16string_view name) {
    if (uri.substr(0, EXSLT.size()) != EXSLT) {
        return nullptr;
    }
    uri.remove_prefix(EXSLT.size());
    for (const Module& module : MODULES) {
        if (module.uri == uri) {
            const ExsltTable functions = module.functions();
            const auto* const found =
                std::find_if(functions.begin(), functions.end(),
                             [&](const ExsltFunction& function) { return function.name == name; });
            return found == functions.end() ? nullptr : found;
        }
    }
    return nullptr;
}

ExsltCall::Result callExsltFunction(const ExsltFunction& function, const ExsltCall& call) {
    if (call.size() < function.fewestArguments || call.size() > function.mostArguments) {
        call.fail("wrong number of arguments of " +
                  std::string(function.name.begin(), function.name.end()) + "(): expected " +
                  expectedArguments(function) + ", got " + std::to_string(call.size()));
    }
    return function.body(call);
}
