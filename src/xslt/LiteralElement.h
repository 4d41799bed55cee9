/**
 * @file
 * An element that stands for itself.
 */
#pragma once

#include "xslt/StylesheetNames.h"

#include <xalanc/XSLT/ElemLiteralResult.hpp>

/**
 * A literal result element. The engine's own has no aliases for elements without a namespace, and
 * none that give such an element.
 */
class LiteralElement : public xalanc::ElemLiteralResult {
public:
    /** The aliases are complete at postConstruction(), and are not used later. */
    LiteralElement(xalanc::StylesheetConstructionContext& construction,
                   xalanc::Stylesheet& stylesheet, const XMLCh* name,
                   const xalanc::AttributeListType& attributes, const xercesc::Locator* locator,
                   const NamespaceAliases& aliases);

    const xalanc::XalanDOMString& getElementName() const override;
    void postConstruction(xalanc::StylesheetConstructionContext& construction,
                          const xalanc::NamespacesHandler& parent) override;
    void evaluateAVTs(xalanc::StylesheetExecutionContext& context) const override;

protected:
    void namespacesPostConstruction(xalanc::StylesheetConstructionContext& construction,
                                    const xalanc::NamespacesHandler& parent,
                                    xalanc::NamespacesHandler& namespaces) override;

private:
    [[gnu::noinline]] void rename(xalanc::StylesheetConstructionContext& construction);

    const NamespaceAliases& m_aliases;
    /** These are null where there is no alias. */
    const xalanc::XalanDOMString* m_name = nullptr;
    const xalanc::XalanDOMString* m_declaration = nullptr; // the attribute's name
    const xalanc::XalanDOMString* m_uri = nullptr;
};
