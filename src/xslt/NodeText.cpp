#include "xslt/NodeText.h"

#include "xslt/Operation.h"
#include "xslt/Text.h"
#include "xslt/TreeWalker.h"

#include "engine/XmlWriter.h"

#include <vexa/xslt/Error.h>

#include <sstream>

#include <xalanc/DOMSupport/DOMServices.hpp>

using xalanc::DOMServices;
using xalanc::XalanNode;

namespace {

/** What `work` makes, without exceptions of the engine. */
template <typename Work>
std::string textOf(Work work) {
    const vexa::Options options;
    Operation operation(options);
    return operation.run(vexa::ErrorKind::Output, work);
}

} // namespace

bool isNamespaceNode(const XalanNode& node) {
    // Results have these without a namespace of their own.
    return node.getNodeType() == XalanNode::ATTRIBUTE_NODE &&
           DOMServices::isNamespaceDeclaration(static_cast<const xalanc::XalanAttr&>(node));
}

std::string nodeName(const XalanNode& node) {
    switch (node.getNodeType()) {
    case XalanNode::ATTRIBUTE_NODE:
        return isNamespaceNode(node) ? nodeLocalName(node) : toUtf8(node.getNodeName());
    case XalanNode::ELEMENT_NODE:
    case XalanNode::PROCESSING_INSTRUCTION_NODE:
        return toUtf8(node.getNodeName());
    default:
        return {};
    }
}

std::string nodeLocalName(const XalanNode& node) {
    switch (node.getNodeType()) {
    case XalanNode::ATTRIBUTE_NODE:
        if (node.getNodeName() == DOMServices::s_XMLNamespace) {
            return {}; // the default namespace
        }
        return toUtf8(DOMServices::getLocalNameOfNode(node));
    case XalanNode::ELEMENT_NODE:
        return toUtf8(DOMServices::getLocalNameOfNode(node));
    case XalanNode::PROCESSING_INSTRUCTION_NODE:
        return toUtf8(node.getNodeName());
    default:
        return {};
    }
}

std::string nodeNamespaceUri(const XalanNode& node) {
    const auto type = node.getNodeType();
    const bool hasNamespace = type == XalanNode::ELEMENT_NODE ||
                              (type == XalanNode::ATTRIBUTE_NODE && !isNamespaceNode(node));
    return hasNamespace ? toUtf8(node.getNamespaceURI()) : std::string();
}

std::string nodeString(const XalanNode& node) {
    return textOf([&] {
        xalanc::XalanDOMString text;
        DOMServices::getNodeData(node, text);
        return toUtf8(text);
    });
}

std::string nodeXml(const XalanNode& node) {
    if (node.getNodeType() == XalanNode::ATTRIBUTE_NODE) {
        return nodeString(node);
    }
    return textOf([&] {
        std::ostringstream stream;
        stream.exceptions(std::ios_base::badbit); // lets std::bad_alloc pass
        writeNode(stream, node, false);
        return stream.str();
    });
}

void writeNode(std::ostream& stream, const XalanNode& node, bool declaration) {
    writeXml<TreeWalker>(stream, &node,
                         declaration ? XmlDeclaration::Written : XmlDeclaration::LeftOut);
}
