#include "xslt/TreeWalker.h"

#include "xslt/NodeText.h"

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

template <typename Predicate>
void TreeWalker::addAttributes(const XalanNode& element, Predicate isWanted) {
    const xalanc::XalanNamedNodeMap& attributes = *element.getAttributes();
    for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
        const XalanNode& attribute = *attributes.item(i);
        if (isWanted(attribute)) {
            m_attributes.addAttribute(attribute.getNodeName().c_str(), u"CDATA",
                                      attribute.getNodeValue().c_str());
        }
    }
}

void TreeWalker::addInheritedDeclarations() {
    for (const XalanNode* outer = m_element->getParentNode();
         outer && outer->getNodeType() == XalanNode::ELEMENT_NODE; outer = outer->getParentNode()) {
        addAttributes(*outer, [this](const XalanNode& attribute) {
            return isNamespaceNode(attribute) &&
                   attribute.getNodeName() != xalanc::DOMServices::s_XMLNamespacePrefix &&
                   !m_attributes.getValue(attribute.getNodeName().c_str());
        });
    }
}

bool TreeWalker::startNode(const XalanNode* node) {
    if (isRoot(*node)) {
        return false;
    }
    if (node->getNodeType() != XalanNode::ELEMENT_NODE) {
        return FormatterTreeWalker::startNode(node);
    }
    const bool isTop = !m_element;
    m_element = static_cast<const xalanc::XalanElement*>(node);
    addAttributes(*node, [](const XalanNode& attribute) {
        return attribute.getNodeName() != xalanc::DOMServices::s_XMLNamespacePrefix;
    });
    if (isTop) {
        addInheritedDeclarations();
    }
    m_formatter.startElement(node->getNodeName().c_str(), m_attributes);
    m_attributes.clear(); // may allocate, and must not do so in the destructor
    return false;
}

bool TreeWalker::endNode(const XalanNode* node) {
    return !isRoot(*node) && FormatterTreeWalker::endNode(node);
}
