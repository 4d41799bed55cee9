#include "exslt/ExsltTables.h"
#include "exslt/NewNodes.h"

#include <limits>
#include <unordered_set>

#include <xalanc/XPath/MutableNodeRefList.hpp>
#include <xalanc/XPath/XObjectFactory.hpp>

namespace {

using NodeList = xalanc::XPathExecutionContext::BorrowReturnMutableNodeRefList;
using xalanc::XObject;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/**
 * Combines the numbers that an expression gives for the nodes. A wrong expression, and NaN among
 * them, give NaN.
 */
template <typename Combine>
ExsltCall::Result combined(const ExsltCall& call, double ofNone, Combine combine) {
    double result = ofNone;
    bool isFirst = true;
    const bool isRight =
        call.host().evaluate(call.text(1), call.nodes(0), [&](const XObject& value) {
            const double number = value.num(call.context());
            result = isFirst ? number : combine(result, number);
            isFirst = false;
        });
    return call.result(isRight ? result : NOT_A_NUMBER);
}

ExsltCall::Result max(const ExsltCall& call) {
    return combined(call, NOT_A_NUMBER, [](double a, double b) { return b > a || b != b ? b : a; });
}

ExsltCall::Result min(const ExsltCall& call) {
    return combined(call, NOT_A_NUMBER, [](double a, double b) { return b < a || b != b ? b : a; });
}

ExsltCall::Result sum(const ExsltCall& call) {
    return combined(call, 0, [](double a, double b) { return a + b; });
}

/** An element of the value's type. */
void addValue(const XObject& value, NewNodes& nodes, const ExsltCall& call) {
    const xalanc::XalanDOMString& string = value.str(call.context());
    std::u16string_view text(string.c_str(), string.length());
    std::u16string_view name = u"string";
    if (value.getType() == XObject::eTypeNumber) {
        name = u"number";
    } else if (value.getType() == XObject::eTypeBoolean) {
        name = u"boolean";
        text = value.boolean(call.context()) ? u"true" : u"";
    }
    nodes.addCommonElement(name, text);
}

ExsltCall::Result map(const ExsltCall& call) {
    NodeList found(call.context());
    found->setDocumentOrder();
    NewNodes values(call);
    const bool isRight =
        call.host().evaluate(call.text(1), call.nodes(0), [&](const XObject& value) {
            if (value.getType() == XObject::eTypeNodeSet) {
                found->addNodesInDocOrder(value.nodeset(), call.context());
            } else {
                addValue(value, values, call);
            }
        });
    if (!isRight) {
        found->clear();
    } else {
        found->addNodesInDocOrder(values.nodes()->nodeset(), call.context());
    }
    return call.context().getXObjectFactory().createNodeSet(found);
}

/** A node that has been found is not searched again: the search of the definition may never end. */
ExsltCall::Result closure(const ExsltCall& call) {
    NodeList found(call.context());
    found->setDocumentOrder();
    NodeList next(call.context());
    next->addNodesInDocOrder(call.nodes(0), call.context());
    std::unordered_set<const xalanc::XalanNode*> known;
    while (next->getLength() > 0) {
        NodeList nodes(call.context());
        nodes->swap(*next);
        bool areNodes = true;
        const bool isRight = call.host().evaluate(call.text(1), *nodes, [&](const XObject& value) {
            areNodes = areNodes && value.getType() == XObject::eTypeNodeSet;
            for (xalanc::NodeRefListBase::size_type i = 0;
                 areNodes && i < value.nodeset().getLength(); ++i) {
                xalanc::XalanNode* const node = value.nodeset().item(i);
                if (known.insert(node).second) {
                    next->addNodeInDocOrder(node, call.context());
                }
            }
        });
        if (!isRight || !areNodes) {
            found->clear();
            break;
        }
        found->addNodesInDocOrder(*next, call.context());
    }
    return call.context().getXObjectFactory().createNodeSet(found);
}

constexpr ExsltFunction FUNCTIONS[] = {{u"closure", 2, 2, closure},
                                       {u"map", 2, 2, map},
                                       {u"max", 2, 2, max},
                                       {u"min", 2, 2, min},
                                       {u"sum", 2, 2, sum}};

} // namespace

ExsltTable dynamicFunctions() {
    return FUNCTIONS;
}
