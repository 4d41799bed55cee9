#include "testing/TreeDifference.h"

#include "testing/VisibleText.h"

#include <vexa/xslt/XPath.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

using vexa::Node;

namespace {

constexpr std::size_t MOST_SHOWN = 10;

/** A node and what is below it. */
struct Item {
    Node::Type type = Node::Type::Root;
    /** With its namespace, so that prefixes do not matter. */
    std::string name;
    std::string value;
    /** In a path: "html[1]", "@class", "text()[2]". */
    std::string step;
    /** By their names. */
    std::map<std::string, Item> attributes;
    std::vector<Item> children;

    bool isLike(const Item& other) const { return type == other.type && name == other.name; }
    bool operator==(const Item& other) const {
        return std::tie(type, name, value, attributes, children) ==
               std::tie(other.type, other.name, other.value, other.attributes, other.children);
    }
};

std::string stepOf(const Node& node) {
    switch (node.type()) {
    case Node::Type::Element:
        return node.name();
    case Node::Type::Attribute:
        return "@" + node.name();
    case Node::Type::Text:
        return "text()";
    case Node::Type::Comment:
        return "comment()";
    default:
        return "processing-instruction(" + node.name() + ")";
    }
}

/** Copies a document into items. */
class ItemReader {
public:
    Item read(const Node& node) {
        Item item;
        item.type = node.type();
        if (item.type != Node::Type::Root) {
            item.name = "{" + node.namespaceUri() + "}" + node.localName();
            item.step = stepOf(node);
        }
        if (item.type != Node::Type::Root && item.type != Node::Type::Element) {
            item.value = node.string();
            return item;
        }
        for (const Node& attribute : m_attributes.evaluate(node).nodes()) {
            Item read = this->read(attribute);
            item.attributes.emplace(read.name, std::move(read));
        }
        std::map<std::string, std::size_t> counts;
        for (const Node& child : m_children.evaluate(node).nodes()) {
            Item next = read(child);
            if (next.type == Node::Type::Text && !item.children.empty() &&
                item.children.back().type == Node::Type::Text) {
                item.children.back().value += next.value;
                continue;
            }
            const std::size_t number = ++counts[next.step];
            next.step += "[" + std::to_string(number) + "]";
            item.children.push_back(std::move(next));
        }
        return item;
    }

private:
    const vexa::XPath m_attributes = vexa::XPath::compile("@*");
    const vexa::XPath m_children = vexa::XPath::compile("node()");
};

std::string described(const Item& item) {
    return item.type == Node::Type::Element ? "<" + item.step.substr(0, item.step.rfind('[')) + ">"
                                            : "'" + textAround(visibleText(item.value), 0) + "'";
}

/** Lists what differs. */
class Comparison {
public:
    void compare(const Item& expected, const Item& actual, const std::string& path) {
        if (!expected.isLike(actual)) {
            add(path, "expected " + withName(expected) + ", got " + withName(actual));
            return;
        }
        if (expected.value != actual.value) {
            const auto left = visibleText(expected.value);
            const auto right = visibleText(actual.value);
            const std::size_t place = firstDifference(left, right);
            add(path, "expected '" + textAround(left, place) + "', got '" +
                          textAround(right, place) + "'");
        }
        compareAttributes(expected, actual, path);
        compareChildren(expected.children, actual.children, path);
    }

    std::string text() const {
        return m_count <= MOST_SHOWN
                   ? m_text
                   : m_text + "... and " + std::to_string(m_count - MOST_SHOWN) + " more\n";
    }

private:
    void add(const std::string& path, const std::string& text) {
        if (++m_count <= MOST_SHOWN) {
            m_text += path + ": " + text + "\n";
        }
    }

    /** Two elements may differ in their namespaces only. */
    static std::string withName(const Item& item) {
        const bool hasNamespace = item.type == Node::Type::Element && item.name.rfind("{}", 0) != 0;
        return described(item) +
               (hasNamespace ? " of " + item.name.substr(0, item.name.find('}') + 1) : "");
    }

    void missing(const Item& item, const std::string& path) {
        add(path + "/" + item.step, "missing, expected " + described(item));
    }
    void unexpected(const Item& item, const std::string& path) {
        add(path + "/" + item.step, "unexpected " + described(item));
    }

    void compareAttributes(const Item& expected, const Item& actual, const std::string& path) {
        for (const auto& [name, item] : expected.attributes) {
            const auto found = actual.attributes.find(name);
            if (found == actual.attributes.end()) {
                missing(item, path);
            } else {
                compare(item, found->second, path + "/" + item.step);
            }
        }
        for (const auto& [name, item] : actual.attributes) {
            if (expected.attributes.count(name) == 0) {
                unexpected(item, path);
            }
        }
    }

    /** What is equal at both ends is passed over, so that a missing node is one difference. */
    void compareChildren(const std::vector<Item>& expected, const std::vector<Item>& actual,
                         const std::string& path) {
        std::size_t begin = 0;
        std::size_t expectedEnd = expected.size();
        std::size_t actualEnd = actual.size();
        while (begin < std::min(expectedEnd, actualEnd) && expected[begin] == actual[begin]) {
            ++begin;
        }
        while (begin < std::min(expectedEnd, actualEnd) &&
               expected[expectedEnd - 1] == actual[actualEnd - 1]) {
            --expectedEnd;
            --actualEnd;
        }
        for (std::size_t i = begin; i < std::max(expectedEnd, actualEnd); ++i) {
            if (i >= expectedEnd) {
                unexpected(actual[i], path);
            } else if (i >= actualEnd) {
                missing(expected[i], path);
            } else {
                compare(expected[i], actual[i], path + "/" + expected[i].step);
            }
        }
    }

    std::string m_text;
    std::size_t m_count = 0;
};

} // namespace

std::string treeDifference(const vexa::Document& expected, const vexa::Document& actual) {
    ItemReader reader;
    Comparison comparison;
    comparison.compare(reader.read(expected.root()), reader.read(actual.root()), "");
    return comparison.text();
}
