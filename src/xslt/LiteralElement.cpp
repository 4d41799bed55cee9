#include "xslt/LiteralElement.h"

#include "xslt/NamespaceScopes.h"

#include <xalanc/PlatformSupport/XalanLocator.hpp>
#include <xalanc/XSLT/StylesheetConstructionContext.hpp>
#include <xalanc/XSLT/StylesheetExecutionContext.hpp>

using xalanc::XalanDOMString;
using Construction = xalanc::StylesheetConstructionContext;

LiteralElement::LiteralElement(Construction& construction, xalanc::Stylesheet& stylesheet,
                               const XMLCh* name, const xalanc::AttributeListType& attributes,
                               const xercesc::Locator* locator, const NamespaceAliases& aliases)
    : ElemLiteralResult(construction, stylesheet, name, attributes,
                        xalanc::XalanLocator::getLineNumber(locator),
                        xalanc::XalanLocator::getColumnNumber(locator)),
      m_aliases(aliases) {}

const XalanDOMString& LiteralElement::getElementName() const {
    return m_name ? *m_name : ElemLiteralResult::getElementName();
}

// Recursive, so it needs little of the stack.
void LiteralElement::postConstruction(Construction& construction,
                                      const xalanc::NamespacesHandler& parent) {
    if (!m_aliases.empty()) {
        rename(construction);
    }
    ElemLiteralResult::postConstruction(construction, parent);
}

void LiteralElement::rename(Construction& construction) {
    const std::u16string name = getElementName().c_str();
    const std::u16string prefix(prefixOf(name));
    const XalanDOMString* const uri = getNamespacesHandler().getNamespace(
        XalanDOMString(prefix.c_str(), construction.getMemoryManager()));
    const auto alias = m_aliases.find(uri ? std::u16string_view(uri->c_str()) : u"");
    if (alias != m_aliases.end()) {
        const auto& [stylesheetPrefix, resultPrefix, resultUri] = alias->second;
        const std::u16string local(localPart(name));
        const auto pooled = [&](const std::u16string& text) {
            return &construction.getPooledString(text.c_str());
        };
        m_name = pooled(resultPrefix.empty() ? local : resultPrefix + u":" + local);
        if (!resultUri.empty()) {
            m_declaration = pooled(u"xmlns:" + resultPrefix);
            m_uri = pooled(resultUri);
        }
    }
}

void LiteralElement::namespacesPostConstruction(Construction& construction,
                                                const xalanc::NamespacesHandler& parent,
                                                xalanc::NamespacesHandler& namespaces) {
    xalanc::MemoryManager& memory = construction.getMemoryManager();
    for (const auto& [uri, alias] : m_aliases) {
        if (!uri.empty()) {
            xalanc::XalanQName::NamespacesStackType scopes(memory);
            scopes.push_back(xalanc::XalanQName::NamespaceVectorType(memory));
            scopes.back().push_back(
                xalanc::NameSpace(XalanDOMString(alias.stylesheetPrefix.c_str(), memory),
                                  XalanDOMString(uri.c_str(), memory), memory));
            namespaces.processExcludeResultPrefixes(construction, alias.stylesheetPrefix.c_str(),
                                                    scopes);
        }
    }
    // The engine keeps the namespace of the prefix that the name has, here that of elements without
    // one: another prefix stands in its place.
    const XalanDOMString* const name = m_name;
    if (name) {
        m_name = &construction.getPooledString(u"xmlns:name");
    }
    ElemLiteralResult::namespacesPostConstruction(construction, parent, namespaces);
    m_name = name;
}

void LiteralElement::evaluateAVTs(xalanc::StylesheetExecutionContext& context) const {
    if (m_declaration) {
        context.addResultAttribute(*m_declaration, *m_uri);
    }
    ElemLiteralResult::evaluateAVTs(context);
}
