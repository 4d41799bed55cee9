#include "xslt/ValueExchange.h"

#include "xslt/NodeText.h"
#include "xslt/ResultBuilder.h"
#include "xslt/Text.h"

#include <vexa/xslt/Error.h>

#include <utility>
#include <vector>

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xalanc/XPath/MutableNodeRefList.hpp>
#include <xalanc/XPath/XObjectFactory.hpp>
#include <xalanc/XalanDOM/XalanDocument.hpp>
#include <xalanc/XalanDOM/XalanDocumentFragment.hpp>
#include <xalanc/XalanDOM/XalanNamedNodeMap.hpp>

using vexa::Node;
using vexa::NodeAccess;
using vexa::Value;
using xalanc::DOMServices;
using xalanc::XalanNode;
using xalanc::XObject;

namespace {

const XalanNode& topOf(const XalanNode& node) {
    const XalanNode* top = &node;
    while (const XalanNode* const parent = DOMServices::getParentOfNode(*top)) {
        top = parent;
    }
    return *top;
}

/** The node of a copy that stands where `node` stands in the original below `top`. */
const XalanNode& counterpart(const XalanNode& node, const XalanNode& top,
                             const XalanNode& copiedTop) {
    if (&node == &top) {
        return copiedTop;
    }
    const XalanNode& parent = counterpart(*DOMServices::getParentOfNode(node), top, copiedTop);
    if (node.getNodeType() == XalanNode::ATTRIBUTE_NODE) {
        return *parent.getAttributes()->getNamedItem(node.getNodeName());
    }
    const XalanNode* copy = parent.getFirstChild();
    for (const XalanNode* before = node.getPreviousSibling(); before;
         before = before->getPreviousSibling()) {
        copy = copy->getNextSibling();
    }
    return *copy;
}

} // namespace

void refuseNul(const std::string& text) {
    if (text.find('\0') != std::string::npos) {
        throw vexa::Error(vexa::ErrorKind::Usage, "the text has a U+0000");
    }
}

xalanc::XObjectPtr ValueExchange::toEngine(const Value& value,
                                           xalanc::XPathExecutionContext& context) {
    xalanc::XObjectFactory& objects = context.getXObjectFactory();
    switch (value.type()) {
    case Value::Type::String: {
        const std::string text = value.string();
        refuseNul(text);
        return objects.createString(toEngineText(text, context.getMemoryManager()));
    }
    case Value::Type::Number:
        return objects.createNumber(value.number());
    case Value::Type::Boolean:
        return objects.createBoolean(value.boolean());
    case Value::Type::NodeSet:
        break;
    }
    xalanc::XPathExecutionContext::BorrowReturnMutableNodeRefList list(context);
    const xalanc::XalanDocument* last = nullptr;
    for (const Node& node : value.nodes()) {
        const auto owner = NodeAccess::owner(node);
        if (std::exchange(last, owner->tree()) != owner->tree()) {
            m_environment.keep(owner);
        }
        list->addNode(NodeAccess::node(node));
    }
    list->setDocumentOrder();
    return objects.createNodeSet(list);
}

Value ValueExchange::toHost(const XObject& object, xalanc::XPathExecutionContext& context) {
    std::vector<Node> nodes;
    switch (object.getType()) {
    case XObject::eTypeBoolean:
        return object.boolean(context);
    case XObject::eTypeNumber:
        return object.num(context);
    case XObject::eTypeNodeSet: {
        const xalanc::NodeRefListBase& list = object.nodeset();
        nodes.reserve(list.getLength());
        for (xalanc::NodeRefListBase::size_type i = 0; i < list.getLength(); ++i) {
            nodes.push_back(toHost(*list.item(i)));
        }
        return nodes;
    }
    case XObject::eTypeResultTreeFrag:
        nodes.push_back(toHost(object.rtree()));
        return nodes;
    default:
        return toUtf8(object.str(context));
    }
}

Node ValueExchange::toHost(const XalanNode& node) {
    const xalanc::XalanDocument* const document =
        node.getNodeType() == XalanNode::DOCUMENT_NODE
            ? static_cast<const xalanc::XalanDocument*>(&node)
            : node.getOwnerDocument();
    if (const auto* const tree = dynamic_cast<const vexa::DocumentAccess::Data::Tree*>(document)) {
        return NodeAccess::make(tree->data().shared_from_this(), &node);
    }
    const XalanNode& top = topOf(node);
    auto& copy = m_copies[&top];
    if (!copy) {
        copy = copyTree(top, m_environment.operation());
        m_environment.keep(copy);
    }
    return NodeAccess::make(copy, &counterpart(node, top, *copy->root()));
}
