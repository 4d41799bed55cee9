/**
 * @file
 * The inside of a Call.
 */
#pragma once

#include <vexa/xslt/Transformation.h>

#include <functional>
#include <vector>

namespace vexa {

struct Call::Data {
    std::vector<Value> arguments;
    /** A node that the run does not share with the host is copied only if the host asks. */
    std::function<Node()> context;
};

class CallAccess {
public:
    using Data = Call::Data;

    static Call make(const Data& data) { return Call(data); }
};

using CallData = CallAccess::Data;

} // namespace vexa
