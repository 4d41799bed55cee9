#include "xslt/TreeReplay.h"

#include "engine/EngineMemory.h"

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xalanc/PlatformSupport/AttributeListImpl.hpp>
#include <xalanc/PlatformSupport/PrefixResolver.hpp>
#include <xalanc/XMLSupport/FormatterTreeWalker.hpp>
#include <xalanc/XalanDOM/XalanElement.hpp>
#include <xalanc/XalanDOM/XalanNamedNodeMap.hpp>

using xalanc::XalanDOMString;
using xalanc::XalanNode;

namespace {

class Walker : public xalanc::FormatterTreeWalker, public xalanc::PrefixResolver {
public:
    explicit Walker(xalanc::FormatterListener& formatter)
        : FormatterTreeWalker(formatter), m_formatter(formatter),
          m_previousResolver(formatter.getPrefixResolver()), m_attributes(engineMemory()) {
        m_formatter.setPrefixResolver(this);
    }
    Walker(const Walker&) = delete;
    Walker& operator=(const Walker&) = delete;
    ~Walker() override { m_formatter.setPrefixResolver(m_previousResolver); }

    const XalanDOMString* getNamespaceForPrefix(const XalanDOMString& prefix) const override {
        return m_element ? xalanc::DOMServices::getNamespaceForPrefix(prefix, *m_element) : nullptr;
    }
    const XalanDOMString& getURI() const override { return m_noUri; }

protected:
    bool startNode(const XalanNode* node) override {
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
    bool endNode(const XalanNode* node) override {
        return !isRoot(*node) && FormatterTreeWalker::endNode(node);
    }

private:
    static bool isRoot(const XalanNode& node) {
        const auto type = node.getNodeType();
        return type == XalanNode::DOCUMENT_NODE || type == XalanNode::DOCUMENT_FRAGMENT_NODE;
    }

    xalanc::FormatterListener& m_formatter;
    const xalanc::PrefixResolver* m_previousResolver;
    xalanc::AttributeListImpl m_attributes;
    const xalanc::XalanElement* m_element = nullptr;
    XalanDOMString m_noUri;
};

} // namespace

void replayTree(const XalanNode& node, xalanc::FormatterListener& formatter) {
    Walker(formatter).traverseSubtree(&node);
}
