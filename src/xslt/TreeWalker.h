/**
 * @file
 * Trees as output events.
 */
#pragma once

#include <xalanc/PlatformSupport/AttributeListImpl.hpp>
#include <xalanc/PlatformSupport/PrefixResolver.hpp>
#include <xalanc/XMLSupport/FormatterTreeWalker.hpp>
#include <xalanc/XalanDOM/XalanDOMString.hpp>
#include <xalanc/XalanDOM/XalanElement.hpp>

/**
 * Reports a node and its subtree to a formatter, attributes in their order. The formatter can ask
 * for the namespaces of the element where it is. An element inside a document gets the namespace
 * declarations of the elements around it. The declaration of "xml" is left out, which the
 * parser adds to each document. Of a root only the content is reported: begin and end are up to the
 * caller.
 */
class TreeWalker : public xalanc::FormatterTreeWalker, public xalanc::PrefixResolver {
public:
    explicit TreeWalker(xalanc::FormatterListener& formatter);
    TreeWalker(const TreeWalker&) = delete;
    TreeWalker& operator=(const TreeWalker&) = delete;
    ~TreeWalker() override;

    const xalanc::XalanDOMString*
    getNamespaceForPrefix(const xalanc::XalanDOMString& prefix) const override;
    const xalanc::XalanDOMString& getURI() const override { return m_noUri; }

protected:
    bool startNode(const xalanc::XalanNode* node) override;
    bool endNode(const xalanc::XalanNode* node) override;

private:
    template <typename Predicate>
    void addAttributes(const xalanc::XalanNode& element, Predicate isWanted);
    void addInheritedDeclarations();

    xalanc::FormatterListener& m_formatter;
    const xalanc::PrefixResolver* m_previousResolver;
    xalanc::AttributeListImpl m_attributes;
    const xalanc::XalanElement* m_element = nullptr;
    xalanc::XalanDOMString m_noUri;
};
