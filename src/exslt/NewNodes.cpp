#include "exslt/NewNodes.h"

#include <new>
#include <optional>
#include <set>

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xalanc/PlatformSupport/AttributeListImpl.hpp>
#include <xalanc/PlatformSupport/PrefixResolver.hpp>
#include <xalanc/XPath/XObjectFactory.hpp>
#include <xalanc/XSLT/StylesheetExecutionContextDefault.hpp>
#include <xalanc/XSLT/XResultTreeFrag.hpp>
#include <xalanc/XalanDOM/XalanElement.hpp>
#include <xalanc/XalanDOM/XalanNamedNodeMap.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDocument.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDocumentFragment.hpp>

using xalanc::DOMServices;
using xalanc::XalanDOMString;
using xalanc::XalanNode;
using xalanc::XalanSourceTreeDocument;

namespace {

/** The common document of all fragments of a transform: its nodes are in document order. */
XalanSourceTreeDocument* commonDocument(xalanc::XPathExecutionContext& context) {
    auto* const transform = dynamic_cast<xalanc::StylesheetExecutionContextDefault*>(&context);
    return transform ? transform->getSourceTreeFactory(context.getMemoryManager()) : nullptr;
}

bool isNamespaceDeclaration(const XalanNode& attribute) {
    return DOMServices::isNamespaceDeclaration(static_cast<const xalanc::XalanAttr&>(attribute));
}

void addTo(xalanc::AttributeListImpl& attributes, const XalanNode& attribute) {
    attributes.addAttribute(attribute.getNodeName().c_str(), u"CDATA",
                            attribute.getNodeValue().c_str());
}

/** Adds the declarations that an element without its ancestors would lose. */
void addDeclarationsInScope(xalanc::AttributeListImpl& attributes, const XalanNode& element) {
    std::set<std::u16string_view> known;
    for (const XalanNode* node = &element; node; node = node->getParentNode()) {
        const auto* const all = node->getAttributes();
        for (XMLSize_t i = 0; all && i < all->getLength(); ++i) {
            const XalanNode& attribute = *all->item(i);
            const XalanDOMString& name = attribute.getNodeName();
            if (isNamespaceDeclaration(attribute) &&
                known.emplace(name.c_str(), name.length()).second && node != &element) {
                addTo(attributes, attribute);
            }
        }
    }
}

} // namespace

/** The prefixes that are in scope at an element. */
class NewNodes::Prefixes : public xalanc::PrefixResolver {
public:
    explicit Prefixes(xercesc::MemoryManager& memory)
        : m_commonPrefix(u"exsl", memory), m_commonUri(u"http://exslt.org/common", memory),
          m_noUri(memory) {}

    /** @param element may be null, for the elements that are made here */
    void setElement(const XalanNode* element) { m_element = element; }
    const XalanDOMString& commonUri() const { return m_commonUri; }

    const XalanDOMString* getNamespaceForPrefix(const XalanDOMString& prefix) const override {
        if (m_element) {
            return DOMServices::getNamespaceForPrefix(
                prefix, static_cast<const xalanc::XalanElement&>(*m_element));
        }
        return prefix == m_commonPrefix ? &m_commonUri : nullptr;
    }
    const XalanDOMString& getURI() const override { return m_noUri; }

private:
    const XalanDOMString m_commonPrefix;
    const XalanDOMString m_commonUri;
    const XalanDOMString m_noUri;
    const XalanNode* m_element = nullptr;
};

/** What a tree is made of. */
struct NewNodes::Nodes {
    Nodes(xercesc::MemoryManager& memory, XalanSourceTreeDocument* common)
        : document(common ? *common : own.emplace(memory)), fragment(memory, document) {}

    std::optional<XalanSourceTreeDocument> own;
    XalanSourceTreeDocument& document;
    xalanc::XalanSourceTreeDocumentFragment fragment;
};

/** A fragment that destroys itself with its last reference, if the engine does not lose it. */
class NewNodes::Tree : public Nodes, public xalanc::XResultTreeFrag {
public:
    static Tree* make(xalanc::XPathExecutionContext& context) {
        auto& memory = context.getMemoryManager();
        return new (memory.allocate(sizeof(Tree))) Tree(memory, commonDocument(context));
    }

    ~Tree() override { release(); }

protected:
    void dereferenced() override {
        auto& memory = getMemoryManager();
        this->~Tree();
        memory.deallocate(this);
    }

private:
    Tree(xercesc::MemoryManager& memory, XalanSourceTreeDocument* common)
        : Nodes(memory, common), XResultTreeFrag(fragment, memory) {}
};

NewNodes::NewNodes(const ExsltCall& call)
    : m_call(call), m_prefixes(std::make_unique<Prefixes>(call.context().getMemoryManager())),
      m_tree(Tree::make(call.context())), m_reference(m_tree),
      m_writer(call.context().getMemoryManager(), &m_tree->document) {
    call.context().getXObjectFactory().holdReference(m_reference);
    m_writer.setDocumentFragment(&m_tree->fragment);
    m_writer.setPrefixResolver(m_prefixes.get());
    m_writer.startDocument();
}

NewNodes::~NewNodes() = default;

void NewNodes::addText(std::u16string_view text) {
    checkLength(m_length, text.size(), m_call);
    m_length += text.size();
    m_text.append(text);
}

/** The engine copies its text for each piece. */
void NewNodes::writeText() {
    if (!m_text.empty()) {
        m_writer.characters(m_text.data(), m_text.size());
        m_text.clear();
    }
}

void NewNodes::startElement(const char16_t* name, xalanc::AttributeListImpl& attributes) {
    writeText();
    m_writer.startElement(name, attributes);
}

void NewNodes::endElement(const char16_t* name) {
    writeText();
    m_writer.endElement(name);
}

void NewNodes::addElement(std::u16string_view name, std::u16string_view text) {
    const std::u16string tag(name);
    xalanc::AttributeListImpl none(m_call.context().getMemoryManager());
    startElement(tag.c_str(), none);
    addText(text);
    endElement(tag.c_str());
}

void NewNodes::addCommonElement(std::u16string_view localName, std::u16string_view text) {
    const std::u16string tag = u"exsl:" + std::u16string(localName);
    xalanc::AttributeListImpl attributes(m_call.context().getMemoryManager());
    attributes.addAttribute(u"xmlns:exsl", u"CDATA", m_prefixes->commonUri().c_str());
    startElement(tag.c_str(), attributes);
    addText(text);
    endElement(tag.c_str());
}

void NewNodes::addCopy(const XalanNode& top) {
    const XalanNode* node = &top;
    while (node) {
        m_call.poll();
        start(*node, top);
        const XalanNode* next = node->getFirstChild();
        while (!next) {
            end(*node);
            if (node == &top) {
                break;
            }
            next = node->getNextSibling();
            if (!next) {
                node = node->getParentNode();
            }
        }
        node = next;
    }
    m_prefixes->setElement(nullptr);
}

void NewNodes::start(const XalanNode& node, const XalanNode& top) {
    const XalanDOMString& value = node.getNodeValue();
    switch (node.getNodeType()) {
    case XalanNode::ELEMENT_NODE: {
        xalanc::AttributeListImpl attributes(m_call.context().getMemoryManager());
        if (&node == &top || node.getParentNode() == &top) {
            addDeclarationsInScope(attributes, node);
        }
        const auto& all = *node.getAttributes();
        for (XMLSize_t i = 0; i < all.getLength(); ++i) {
            addTo(attributes, *all.item(i));
        }
        m_prefixes->setElement(&node);
        startElement(node.getNodeName().c_str(), attributes);
        break;
    }
    case XalanNode::TEXT_NODE:
    case XalanNode::CDATA_SECTION_NODE:
        addText({value.c_str(), value.length()});
        break;
    case XalanNode::COMMENT_NODE:
        writeText();
        m_writer.comment(value.c_str());
        break;
    case XalanNode::PROCESSING_INSTRUCTION_NODE:
        writeText();
        m_writer.processingInstruction(node.getNodeName().c_str(), value.c_str());
        break;
    default:
        break;
    }
}

void NewNodes::end(const XalanNode& node) {
    if (node.getNodeType() == XalanNode::ELEMENT_NODE) {
        endElement(node.getNodeName().c_str());
    }
}

ExsltCall::Result NewNodes::nodes() {
    writeText();
    m_writer.endDocument();
    xalanc::XPathExecutionContext::BorrowReturnMutableNodeRefList list(m_call.context());
    for (XalanNode* node = m_tree->fragment.getFirstChild(); node; node = node->getNextSibling()) {
        list->addNode(node);
    }
    list->setDocumentOrder();
    return m_call.context().getXObjectFactory().createNodeSet(list);
}
