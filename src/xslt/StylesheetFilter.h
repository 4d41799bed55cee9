/**
 * @file
 * What the engine's handler of stylesheets cannot take as it stands.
 */
#pragma once

#include "xslt/NamespaceScopes.h"
#include "xslt/Operation.h"
#include "xslt/StylesheetNames.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <xercesc/sax/DocumentHandler.hpp>
#include <xercesc/sax/Locator.hpp>

/**
 * Stands between the parser and the engine's handler. It passes on what the handler understands
 * rightly, changes what it does not, and refuses what it would crash at.
 */
class StylesheetFilter : public xercesc::DocumentHandler {
public:
    using ExpandedName = StylesheetNames::ExpandedName;

    /**
     * What follows the name of a function in that of the template that the handler sees in its
     * place.
     */
    static constexpr const char16_t* SUFFIX_OF_FUNCTIONS = u".function";

    /**
     * @param isIncluded whether the module is another one's
     * @param names      gets the names of the module
     * @param declareExtensions receives each namespace that a literal element declares as that
     *                   of extension elements
     */
    StylesheetFilter(xercesc::DocumentHandler& handler, Operation& operation, bool isIncluded,
                     StylesheetNames& names,
                     std::function<void(const std::u16string&)> declareExtensions);

    /** Of the element that begins: whether XSLT of a later version may be in it. */
    bool isForwardsCompatible() const { return m_elements.back().isForwardsCompatible; }
    /** What the handler takes for xsl:copy. */
    enum class Hidden { None, Variable, Document };
    /** Of the element that begins. */
    Hidden hidden() const { return m_elements.back().hidden; }
    /** Of the element that begins. */
    ExpandedName elementName() const { return expand(m_elements.back().name); }

    // DocumentHandler
    void setDocumentLocator(const xercesc::Locator* locator) override;
    void startDocument() override { m_handler.startDocument(); }
    void endDocument() override { m_handler.endDocument(); }
    void startElement(const XMLCh* name, xercesc::AttributeList& attributes) override;
    void endElement(const XMLCh* name) override;
    void characters(const XMLCh* text, XMLSize_t length) override;
    void ignorableWhitespace(const XMLCh* text, XMLSize_t length) override;
    void processingInstruction(const XMLCh* target, const XMLCh* data) override;
    void resetDocument() override { m_handler.resetDocument(); }

private:
    struct Element {
        std::u16string name; // as the handler is told
        bool isXslt;
        bool isForwardsCompatible;
        Hidden hidden = Hidden::None;
        /** So many are in scope before it. */
        std::size_t variables;
        /** The variable that is in scope behind it, in its parent. */
        std::optional<ExpandedName> declared;
    };

    class Attributes;

    Element begin(const XMLCh* name, const xercesc::AttributeList& attributes) const;
    bool startXsltElement(std::u16string_view name, Attributes& changes);
    void addNamespace(Attributes& changes) const;
    void startFunction(Attributes& changes);
    bool startAlias(const xercesc::AttributeList& attributes);
    bool startVariable(std::u16string_view name, const xercesc::AttributeList& attributes);
    void hide(Hidden kind);
    void leave();
    ExpandedName expand(std::u16string_view name) const;
    void refuseWrongValue(std::u16string_view local,
                          const xercesc::AttributeList& attributes) const;
    [[noreturn]] void refuseAttribute(const std::string& name) const;
    void dropUnknownAttributes(std::u16string_view local, Attributes& changes) const;
    void findExtensions(const xercesc::AttributeList& attributes) const;
    void dropMissingDefault(Attributes& changes) const;
    void keepExcludedPrefixes(const xercesc::AttributeList& attributes);
    void excludePrefixesOfModule(Attributes& changes) const;
    void warn(const std::string& text) const;

    xercesc::DocumentHandler& m_handler;
    Operation& m_operation;
    bool m_bIncluded;
    StylesheetNames& m_names;
    const std::function<void(const std::u16string&)> m_declareExtensions;
    const xercesc::Locator* m_locator = nullptr;
    NamespaceScopes m_namespaces;
    std::vector<Element> m_elements;
    /** Those in scope, the outer ones first. */
    std::vector<ExpandedName> m_variables;
    /** The prefixes that the root of an included module excludes from results, with their URIs. */
    std::vector<std::pair<std::u16string, std::u16string>> m_excluded;
    /** So many elements are open that the handler does not see. */
    std::size_t m_nSkipped = 0;
};
