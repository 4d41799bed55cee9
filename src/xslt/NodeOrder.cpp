#include "xslt/NodeOrder.h"

#include "xslt/DocumentData.h"

#include <algorithm>
#include <functional>

#include <xalanc/XalanDOM/XalanNode.hpp>

using vexa::Node;
using vexa::NodeAccess;

namespace {

bool isBefore(const Node& left, const Node& right) {
    const xalanc::XalanNode* const a = NodeAccess::node(left);
    const xalanc::XalanNode* const b = NodeAccess::node(right);
    const auto* const documentOfA = NodeAccess::owner(left).get();
    const auto* const documentOfB = NodeAccess::owner(right).get();
    if (documentOfA != documentOfB) {
        return std::less<>()(documentOfA, documentOfB);
    }
    return a->getIndex() < b->getIndex();
}

} // namespace

std::vector<Node> inDocumentOrder(std::vector<Node> nodes) {
    if (std::any_of(nodes.begin(), nodes.end(),
                    [](const Node& node) { return !NodeAccess::node(node); })) {
        return nodes; // not reached: an empty node has thrown
    }
    if (!std::is_sorted(nodes.begin(), nodes.end(), isBefore)) {
        std::sort(nodes.begin(), nodes.end(), isBefore);
    }
    const auto last = std::unique(nodes.begin(), nodes.end(), [](const Node& a, const Node& b) {
        return NodeAccess::node(a) == NodeAccess::node(b);
    });
    nodes.erase(last, nodes.end());
    return nodes;
}
