#include "xslt/TreeWalker.h"

#include "engine/EngineMemory.h"

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xalanc/XalanDOM/XalanNamedNodeMap.hpp>

using xalanc::XalanDOMString;
using xalanc::XalanNode;

namespace {

bool isRoot(const XalanNode& node) {
    const auto type = node.getNodeType();
    return type == XalanNode::DOCUMENT_NODE || type == XalanNode::DOCUMENT_FRAGMENT_NODE;
}

} // namespace

TreeWalker::TreeWalker(xalanc::FormatterListener& formatter)
    : FormatterTreeWalker(formatter), m_formatter(formatter),
      m_previousResolver(formatter.getPrefixResolver()), m_attributes(engineMemory()) {
    m_formatter.setPrefixResolver(this);
}

TreeWalker::~TreeWalker() {
    m_formatter.setPrefixResolver(m_previousResolver);
}

const XalanDOMString* TreeWalker::getNamespaceForPrefix(const XalanDOMString& prefix) const {
    return m_element ? xalanc::DOMServices::getNamespaceForPrefix(prefix, *m_element) : nullptr;
}

bool TreeWalker::startNode(const XalanNode* node) {
    if (isRoot(*node)) {
        return false;
    }
    if (node->getNodeType() != XalanNode::ELEMENT_NODE) {
        return FormatterTreeWalker::startNode(node);
    }
    m_element = static_cast<const xalanc::XalanElement*>(node);
    m_attributes.clear();
    const xalanc::XalanNamedNodeMap& attributes = *node->getAttributes();
    for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
        const XalanNode& attribute = *attributes.item(i);
        if (attribute.getNodeName() != xalanc::DOMServices::s_XMLNamespacePrefix) {
            m_attributes.addAttribute(attribute.getNodeName().c_str(), u"CDATA",
                                      attribute.getNodeValue().c_str());
        }
    }
    m_formatter.startElement(node->getNodeName().c_str(), m_attributes);
    return false;
}

bool TreeWalker::endNode(const XalanNode* node) {
    return !isRoot(*node) && FormatterTreeWalker::endNode(node);
}
