#include "xslt/DocumentData.h"
#include "xslt/DocumentParser.h"
#include "xslt/NodeText.h"
#include "xslt/Operation.h"
#include "xslt/OutputWriter.h"
#include "xslt/Sources.h"

#include <vexa/xslt/Error.h>

#include <new>
#include <utility>

#include <xalanc/XalanDOM/XalanNode.hpp>

namespace vexa {

Document::Data::Data(std::string uri) : m_uri(std::move(uri)), m_tree(makeTree()), m_root(m_tree) {}

Document::Data::Tree* Document::Data::makeTree() {
    return new (m_memory.allocate(sizeof(Tree))) Tree(*this);
}

Document::Data::~Data() = default;

void Document::Data::seal() {
    // The engine's tables allocate when something is looked for in an empty one.
    const xalanc::XalanDOMString nothing(m_memory);
    m_tree->getElementById(nothing);
    m_tree->getUnparsedEntityURI(nothing);
    m_memory.seal();
}

const DocumentAccess::Ptr& DocumentAccess::data(const Document& document) {
    if (!document.m_data) {
        throw Error(ErrorKind::Usage, "the document is empty");
    }
    return document.m_data;
}

xalanc::XalanNode* NodeAccess::node(const Node& node) {
    if (!node.m_node) {
        throw Error(ErrorKind::Usage, "the node is empty");
    }
    return static_cast<xalanc::XalanNode*>(const_cast<void*>(node.m_node.get()));
}

DocumentAccess::Ptr NodeAccess::owner(const Node& node) {
    const xalanc::XalanNode* const engineNode = NodeAccess::node(node);
    const xalanc::XalanDocument* const document =
        engineNode->getNodeType() == xalanc::XalanNode::DOCUMENT_NODE
            ? static_cast<const xalanc::XalanDocument*>(engineNode)
            : engineNode->getOwnerDocument();
    return static_cast<const DocumentData::Tree*>(document)->data().shared_from_this();
}

Node::Node() noexcept = default;

Node::Node(std::shared_ptr<const void> node) noexcept : m_node(std::move(node)) {}

Node::Type Node::type() const {
    const xalanc::XalanNode& node = *NodeAccess::node(*this);
    switch (node.getNodeType()) {
    case xalanc::XalanNode::ELEMENT_NODE:
        return Type::Element;
    case xalanc::XalanNode::ATTRIBUTE_NODE:
        return isNamespaceNode(node) ? Type::Namespace : Type::Attribute;
    case xalanc::XalanNode::TEXT_NODE:
    case xalanc::XalanNode::CDATA_SECTION_NODE:
        return Type::Text;
    case xalanc::XalanNode::COMMENT_NODE:
        return Type::Comment;
    case xalanc::XalanNode::PROCESSING_INSTRUCTION_NODE:
        return Type::ProcessingInstruction;
    default:
        return Type::Root;
    }
}

std::string Node::name() const {
    return nodeName(*NodeAccess::node(*this));
}

std::string Node::localName() const {
    return nodeLocalName(*NodeAccess::node(*this));
}

std::string Node::namespaceUri() const {
    return nodeNamespaceUri(*NodeAccess::node(*this));
}

std::string Node::string() const {
    return nodeString(*NodeAccess::node(*this));
}

std::string Node::xml() const {
    return nodeXml(*NodeAccess::node(*this));
}

Document::Document() noexcept = default;

Document::Document(std::shared_ptr<const Data> data) noexcept : m_data(std::move(data)) {}

Document Document::parse(const Input& input, const Options& options) {
    const EngineUse engines = useEngines();
    Operation operation(options);
    return operation.run(ErrorKind::Parse, [&] {
        Sources sources(operation);
        DocumentParser parser;
        return DocumentAccess::make(parser.parse(input, operation, sources));
    });
}

const std::string& Document::uri() const {
    return DocumentAccess::data(*this)->uri();
}

void Document::write(const Output& output, bool declaration) const {
    const auto& data = DocumentAccess::data(*this);
    const Options options;
    Operation operation(options);
    operation.run(ErrorKind::Output, [&] {
        OutputWriter writer(output, operation);
        writeNode(writer.stream(), *data->root(), declaration);
        writer.commit();
    });
}

std::string Document::xml() const {
    return root().xml();
}

Node Document::root() const {
    const auto& data = DocumentAccess::data(*this);
    return NodeAccess::make(data, data->root());
}

} // namespace vexa
