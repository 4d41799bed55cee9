#include "exslt/ExsltTables.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

struct Constant {
    std::u16string_view name;
    /** More digits than a number has. */
    std::string_view digits;
};

/** SQRRT2 is what the definition calls it. */
constexpr Constant CONSTANTS[] = {
    {u"PI", "3.14159265358979323846"},     {u"E", "2.71828182845904523536"},
    {u"SQRRT2", "1.41421356237309504880"}, {u"LN2", "0.69314718055994530942"},
    {u"LN10", "2.30258509299404568402"},   {u"LOG2E", "1.44269504088896340736"},
    {u"SQRT1_2", "0.70710678118654752440"}};

/** Cut after so many digits. The engine's own gives 0 for more digits than it knows. */
ExsltCall::Result constant(const ExsltCall& call) {
    const double precision = std::floor(call.number(1) + 0.5);
    for (const auto& [name, digits] : CONSTANTS) {
        if (name == call.text(0) && precision >= 1) {
            const auto length = static_cast<std::size_t>(std::fmin(precision, 20)) + 2;
            return call.result(std::strtod(std::string(digits.substr(0, length)).c_str(), nullptr));
        }
    }
    return call.result(std::numeric_limits<double>::quiet_NaN());
}

constexpr ExsltFunction FUNCTIONS[] = {{u"constant", 2, 2, constant}};

} // namespace

ExsltTable mathFunctions() {
    return FUNCTIONS;
}
