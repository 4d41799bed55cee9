/**
 * @file
 * The namespace prefixes that an XPath expression over a document can use.
 */
#pragma once

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xalanc/DOMSupport/XalanDocumentPrefixResolver.hpp>

/** The prefixes that the document declares, and "xml", which needs no declaration. */
class DocumentPrefixes : public xalanc::XalanDocumentPrefixResolver {
public:
    explicit DocumentPrefixes(const xalanc::XalanDocument* document)
        : XalanDocumentPrefixResolver(document, xalanc::XalanDOMString()) {}

    const xalanc::XalanDOMString*
    getNamespaceForPrefix(const xalanc::XalanDOMString& prefix) const override {
        return prefix == xalanc::DOMServices::s_XMLString
                   ? &xalanc::DOMServices::s_XMLNamespaceURI
                   : XalanDocumentPrefixResolver::getNamespaceForPrefix(prefix);
    }
};
