#include "testing/TestFile.h"

#include <algorithm>

std::string Expectation::title() const {
    switch (kind) {
    case Kind::File:
        return "file " + text;
    case Kind::Xml:
        return "file " + text + " as xml";
    case Kind::XPath:
        return "xpath " + text;
    case Kind::Message:
        return "message '" + text + "'";
    case Kind::Error:
        break;
    }
    return "error " + text + (part.empty() ? "" : " '" + part + "'");
}

bool TestCase::expects(Expectation::Kind kind) const {
    return std::any_of(expectations.begin(), expectations.end(),
                       [&](const Expectation& expectation) { return expectation.kind == kind; });
}
