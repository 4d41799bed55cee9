#include "exslt/ExsltTables.h"
#include "exslt/NewNodes.h"

#include <xalanc/XalanExtensions/FunctionNodeSet.hpp>

namespace {

ExsltCall::Result nodeSet(const ExsltCall& call) {
    switch (call.arguments()[0]->getType()) {
    case xalanc::XObject::eTypeNodeSet:
        return call.arguments()[0];
    case xalanc::XObject::eTypeResultTreeFrag:
        return xalanc::FunctionNodeSet().execute(call.context(), call.node(), call.arguments(),
                                                 call.locator());
    default:
        break;
    }
    // The engine gives a root node with the text. An empty text cannot be a node.
    NewNodes nodes(call);
    nodes.addText(call.text(0));
    return nodes.nodes();
}

constexpr ExsltFunction FUNCTIONS[] = {{u"node-set", 1, 1, nodeSet}};

} // namespace

ExsltTable commonFunctions() {
    return FUNCTIONS;
}
