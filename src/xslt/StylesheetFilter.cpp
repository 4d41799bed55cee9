#include "xslt/StylesheetFilter.h"

#include "xslt/Text.h"

#include "engine/EngineMemory.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include <xalanc/PlatformSupport/AttributeListImpl.hpp>

namespace {

constexpr std::u16string_view FUNCTIONS_NAMESPACE = u"http://exslt.org/functions";

/** The attributes of each element of XSLT, in blanks. */
constexpr std::pair<std::u16string_view, std::u16string_view> ATTRIBUTES[] = {
    {u"apply-imports", u""},
    {u"apply-templates", u" select mode "},
    {u"attribute", u" name namespace "},
    {u"attribute-set", u" name use-attribute-sets "},
    {u"call-template", u" name "},
    {u"choose", u""},
    {u"comment", u""},
    {u"copy", u" use-attribute-sets "},
    {u"copy-of", u" select "},
    {u"decimal-format",
     u" name decimal-separator grouping-separator infinity minus-sign NaN percent "
     u"per-mille zero-digit digit pattern-separator "},
    {u"element", u" name namespace use-attribute-sets "},
    {u"fallback", u""},
    {u"for-each", u" select "},
    {u"if", u" test "},
    {u"import", u" href "},
    {u"include", u" href "},
    {u"key", u" name match use "},
    {u"message", u" terminate "},
    {u"namespace-alias", u" stylesheet-prefix result-prefix "},
    {u"number",
     u" level count from value format lang letter-value grouping-separator grouping-size "},
    {u"otherwise", u""},
    {u"output", u" method version encoding omit-xml-declaration standalone doctype-public "
                u"doctype-system cdata-section-elements indent media-type "},
    {u"param", u" name select "},
    {u"preserve-space", u" elements "},
    {u"processing-instruction", u" name "},
    {u"sort", u" select lang data-type order case-order "},
    {u"strip-space", u" elements "},
    {u"template", u" match name priority mode "},
    {u"text", u" disable-output-escaping "},
    {u"value-of", u" select disable-output-escaping "},
    {u"variable", u" name select "},
    {u"when", u" test "},
    {u"with-param", u" name select "},
};

bool isListed(std::u16string_view name, std::u16string_view list) {
    return list.find(u" " + std::u16string(name) + u" ") != std::u16string_view::npos;
}

std::u16string_view withoutDefault(std::u16string_view prefix) {
    return prefix == u"#default" ? std::u16string_view() : prefix;
}

std::vector<std::u16string> words(std::u16string_view text) {
    constexpr std::u16string_view SPACE = u" \t\r\n";
    std::vector<std::u16string> result;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(SPACE), text.size()));
        if (text.empty()) {
            return result;
        }
        result.emplace_back(text.substr(0, text.find_first_of(SPACE)));
        text.remove_prefix(result.back().size());
    }
}

std::u16string_view valueOf(const xercesc::AttributeList& attributes, const XMLCh* name) {
    const XMLCh* const value = attributes.getValue(name);
    return value ? value : std::u16string_view();
}

} // namespace

/** The attributes of an element, copied where something is changed. */
class StylesheetFilter::Attributes {
public:
    explicit Attributes(xercesc::AttributeList& original) : m_original(original) {}

    xercesc::AttributeList& get() {
        return m_changed ? static_cast<xercesc::AttributeList&>(*m_changed) : m_original;
    }
    void add(const XMLCh* name, const std::u16string& value) {
        changed().addAttribute(name, u"CDATA", value.c_str());
    }
    void remove(const XMLCh* name) { changed().removeAttribute(name); }

private:
    xalanc::AttributeListImpl& changed() {
        if (!m_changed) {
            m_changed.emplace(m_original, engineMemory());
        }
        return *m_changed;
    }

    xercesc::AttributeList& m_original;
    std::optional<xalanc::AttributeListImpl> m_changed;
};

StylesheetFilter::StylesheetFilter(xercesc::DocumentHandler& handler, Operation& operation,
                                   bool isIncluded, StylesheetNames& names,
                                   std::function<void(const std::u16string&)> declareExtensions)
    : m_handler(handler), m_operation(operation), m_bIncluded(isIncluded), m_names(names),
      m_declareExtensions(std::move(declareExtensions)) {}

void StylesheetFilter::setDocumentLocator(const xercesc::Locator* locator) {
    m_locator = locator;
    m_handler.setDocumentLocator(locator);
}

void StylesheetFilter::startElement(const XMLCh* name, xercesc::AttributeList& attributes) {
    if (m_nSkipped != 0) {
        ++m_nSkipped;
        return;
    }
    m_namespaces.startElement(attributes);
    const bool isInXslt = m_elements.empty() || m_elements.back().isXslt;
    m_elements.push_back(begin(name, attributes));
    Attributes changes(attributes);
    dropMissingDefault(changes);
    if (!m_elements.back().isXslt) {
        findExtensions(attributes);
        const bool isTopLevel = m_elements.size() == 2;
        const std::u16string_view uri = m_namespaces.uriOf(prefixOf(name));
        if (isTopLevel && uri == FUNCTIONS_NAMESPACE) {
            startFunction(changes);
        } else if (isInXslt && !isTopLevel && m_elements.size() > 2) {
            excludePrefixesOfModule(changes);
        }
    } else if (!startXsltElement(name, changes)) {
        leave();
        m_nSkipped = 1;
        return;
    }
    m_handler.startElement(m_elements.back().name.c_str(), changes.get());
}

/** @return whether the handler is to see it */
bool StylesheetFilter::startXsltElement(std::u16string_view name, Attributes& changes) {
    const std::u16string local(localPart(name));
    refuseWrongValue(local, changes.get());
    dropUnknownAttributes(local, changes);
    if (m_elements.size() == 1 && m_bIncluded) {
        keepExcludedPrefixes(changes.get());
    } else if (local == u"document") {
        hide(Hidden::Document);
    } else if (local == u"attribute" && !changes.get().getValue(u"namespace")) {
        addNamespace(changes);
    } else if ((local == u"variable" || local == u"param") && m_elements.size() > 1) {
        return startVariable(name, changes.get());
    } else if (local == u"namespace-alias" && m_elements.size() == 2) {
        return startAlias(changes.get());
    }
    return true;
}

/** The engine does not declare a prefix where another one stands for its namespace. */
void StylesheetFilter::addNamespace(Attributes& changes) const {
    const std::u16string prefix(prefixOf(valueOf(changes.get(), u"name")));
    const std::u16string_view uri = m_namespaces.uriOf(prefix);
    if (!prefix.empty() && !uri.empty() && uri.find_first_of(u"{}") == uri.npos) {
        changes.add(u"namespace", std::u16string(uri));
    }
}

/** func:function is a template for the handler. */
void StylesheetFilter::startFunction(Attributes& changes) {
    Element& element = m_elements.back();
    const std::u16string local(localPart(element.name));
    const std::u16string name(valueOf(changes.get(), u"name"));
    if (local == u"script") {
        m_operation.fail(vexa::ErrorKind::Compile,
                         "'" + toUtf8(element.name) + "' is not supported", toLocation(m_locator));
    }
    const std::u16string prefix(m_namespaces.prefixOf(XSLT_NAMESPACE));
    if (local != u"function" || (prefix.empty() && m_namespaces.uriOf(u"") != XSLT_NAMESPACE)) {
        return;
    }
    ExpandedName function = expand(name);
    if (function.first.empty()) {
        m_operation.fail(vexa::ErrorKind::Compile,
                         "the function '" + toUtf8(name) + "' has no namespace",
                         toLocation(m_locator));
    }
    m_names.functions.insert(std::move(function));
    changes.remove(u"name");
    changes.add(u"name", name + SUFFIX_OF_FUNCTIONS);
    element.isXslt = true;
    element.name = prefix.empty() ? u"template" : prefix + u":template";
}

/** The handler knows only aliases between two namespaces, and refuses prefixes without one. */
bool StylesheetFilter::startAlias(const xercesc::AttributeList& attributes) {
    const auto prefixIn = [&](const char16_t* name) {
        return withoutDefault(valueOf(attributes, name));
    };
    const std::u16string_view prefix = prefixIn(u"stylesheet-prefix");
    const std::u16string_view resultPrefix = prefixIn(u"result-prefix");
    const std::u16string_view uri = m_namespaces.uriOf(prefix);
    const std::u16string_view resultUri = m_namespaces.uriOf(resultPrefix);
    const auto isUnknown = [](std::u16string_view name, std::u16string_view namespaceUri) {
        return !name.empty() && namespaceUri.empty();
    };
    if ((!uri.empty() && !resultUri.empty()) || isUnknown(prefix, uri) ||
        isUnknown(resultPrefix, resultUri) || attributes.getLength() < 2) {
        return true;
    }
    m_names.aliases[std::u16string(uri)] = {std::u16string(prefix), std::u16string(resultPrefix),
                                            std::u16string(resultUri)};
    return false;
}

/** The handler refuses names that are declared already. */
bool StylesheetFilter::startVariable(std::u16string_view name,
                                     const xercesc::AttributeList& attributes) {
    const bool isGlobal = m_elements.size() == 2;
    const std::size_t outer = isGlobal ? 0 : m_elements[1].variables;
    const auto begin = std::next(m_variables.begin(), static_cast<std::ptrdiff_t>(outer));
    ExpandedName variable = expand(valueOf(attributes, u"name"));
    const bool isKnown = std::find(begin, m_variables.end(), variable) != m_variables.end();
    if (!isKnown) {
        m_elements.back().declared = std::move(variable);
        return true;
    }
    const bool isVariable = localPart(name) == u"variable";
    if (isGlobal || isVariable) {
        warn("'" + toUtf8(valueOf(attributes, u"name")) + "' is declared again");
    }
    if (isVariable) {
        hide(Hidden::Variable);
    }
    return !isGlobal; // of these the first counts
}

void StylesheetFilter::endElement(const XMLCh* /*name*/) {
    if (m_nSkipped != 0) {
        --m_nSkipped;
        return;
    }
    m_handler.endElement(m_elements.back().name.c_str());
    leave();
}

/** The handler accepts xsl:copy wherever an instruction may stand. */
void StylesheetFilter::hide(Hidden kind) {
    Element& element = m_elements.back();
    element.hidden = kind;
    const std::u16string prefix(prefixOf(element.name));
    element.name = prefix.empty() ? u"copy" : prefix + u":copy";
}

void StylesheetFilter::leave() {
    m_variables.resize(m_elements.back().variables);
    if (m_elements.back().declared) {
        m_variables.push_back(*std::move(m_elements.back().declared));
    }
    m_elements.pop_back();
    m_namespaces.endElement();
}

void StylesheetFilter::characters(const XMLCh* text, XMLSize_t length) {
    if (m_nSkipped == 0) {
        m_handler.characters(text, length);
    }
}

void StylesheetFilter::ignorableWhitespace(const XMLCh* text, XMLSize_t length) {
    if (m_nSkipped == 0) {
        m_handler.ignorableWhitespace(text, length);
    }
}

void StylesheetFilter::processingInstruction(const XMLCh* target, const XMLCh* data) {
    if (m_nSkipped == 0) {
        m_handler.processingInstruction(target, data);
    }
}

StylesheetFilter::Element StylesheetFilter::begin(const XMLCh* name,
                                                  const xercesc::AttributeList& attributes) const {
    Element element;
    element.name = name;
    element.isXslt = m_namespaces.uriOf(prefixOf(name)) == XSLT_NAMESPACE;
    const std::u16string_view prefix = m_namespaces.prefixOf(XSLT_NAMESPACE);
    const std::u16string versionOfLiteral = std::u16string(prefix) + u":version";
    const bool isRoot = m_elements.empty();
    const XMLCh* const version = element.isXslt
                                     ? (isRoot ? attributes.getValue(u"version") : nullptr)
                                 : prefix.empty() ? nullptr
                                                  : attributes.getValue(versionOfLiteral.c_str());
    element.isForwardsCompatible =
        version ? std::u16string_view(version) != u"1.0" : !isRoot && isForwardsCompatible();
    element.variables = m_variables.size();
    return element;
}

StylesheetFilter::ExpandedName StylesheetFilter::expand(std::u16string_view name) const {
    const std::u16string_view prefix = prefixOf(name);
    return {std::u16string(prefix.empty() ? prefix : m_namespaces.uriOf(prefix)),
            std::u16string(localPart(name))};
}

/** The engine crashes at them. */
void StylesheetFilter::refuseWrongValue(std::u16string_view local,
                                        const xercesc::AttributeList& attributes) const {
    const XMLCh* const escaping = attributes.getValue(u"disable-output-escaping");
    if (local == u"text" && escaping && !isListed(escaping, u" yes no ")) {
        refuseAttribute("disable-output-escaping");
    }
    // A name that is longer in UTF-8 than it can be in ASCII.
    const std::u16string_view encoding = valueOf(attributes, u"encoding");
    if (local == u"output" &&
        std::any_of(encoding.begin(), encoding.end(), [](char16_t c) { return c > 0x7E; })) {
        refuseAttribute("encoding");
    }
}

void StylesheetFilter::refuseAttribute(const std::string& name) const {
    m_operation.fail(vexa::ErrorKind::Compile,
                     "'" + toUtf8(m_elements.back().name) + "' has a wrong attribute '" + name +
                         "'",
                     toLocation(m_locator));
}

/** The engine would refuse the stylesheet, or crash. */
void StylesheetFilter::dropUnknownAttributes(std::u16string_view local, Attributes& changes) const {
    const auto* const known = std::find_if(std::begin(ATTRIBUTES), std::end(ATTRIBUTES),
                                           [&](const auto& entry) { return entry.first == local; });
    if (known == std::end(ATTRIBUTES)) {
        return;
    }
    for (XMLSize_t i = changes.get().getLength(); i-- > 0;) {
        const std::u16string name = changes.get().getName(i);
        if (name.find(u':') != std::u16string::npos || name == u"xmlns" ||
            isListed(name, known->second)) {
            continue;
        }
        if (!isForwardsCompatible() && local == u"text") {
            refuseAttribute(toUtf8(name));
        }
        if (!isForwardsCompatible()) {
            warn("'" + toUtf8(m_elements.back().name) + "' has no attribute '" + toUtf8(name) +
                 "'");
        }
        changes.remove(name.c_str());
    }
}

/** The handler refuses to exclude the default namespace where there is none. */
void StylesheetFilter::dropMissingDefault(Attributes& changes) const {
    const bool isRoot = m_elements.size() == 1;
    const std::u16string prefix(isRoot ? u"" : m_namespaces.prefixOf(XSLT_NAMESPACE));
    const std::u16string name = prefix + (isRoot ? u"" : u":") + u"exclude-result-prefixes";
    const std::u16string_view value = valueOf(changes.get(), name.c_str());
    if (value.find(u"#default") == value.npos || !m_namespaces.uriOf(u"").empty()) {
        return;
    }
    std::u16string others;
    for (const std::u16string& other : words(value)) {
        others += other == u"#default" ? u"" : u" " + other;
    }
    changes.remove(name.c_str());
    changes.add(name.c_str(), others);
}

void StylesheetFilter::keepExcludedPrefixes(const xercesc::AttributeList& attributes) {
    for (const std::u16string& prefix : words(valueOf(attributes, u"exclude-result-prefixes"))) {
        m_excluded.emplace_back(prefix, m_namespaces.uriOf(withoutDefault(prefix)));
    }
}

/** The engine looks for them at the module's root only. */
void StylesheetFilter::findExtensions(const xercesc::AttributeList& attributes) const {
    const std::u16string_view xslt = m_namespaces.prefixOf(XSLT_NAMESPACE);
    const std::u16string name = std::u16string(xslt) + u":extension-element-prefixes";
    for (const std::u16string& prefix : words(valueOf(attributes, name.c_str()))) {
        m_declareExtensions(std::u16string(m_namespaces.uriOf(withoutDefault(prefix))));
    }
}

/** The engine forgets them in modules. They hold for the literal elements that are outermost. */
void StylesheetFilter::excludePrefixesOfModule(Attributes& changes) const {
    std::u16string here;
    for (const auto& [prefix, uri] : m_excluded) {
        if (m_namespaces.uriOf(withoutDefault(prefix)) == uri) {
            here += u" " + prefix;
        }
    }
    const std::u16string_view xslt = m_namespaces.prefixOf(XSLT_NAMESPACE);
    if (here.empty() || xslt.empty()) {
        return;
    }
    const std::u16string name = std::u16string(xslt) + u":exclude-result-prefixes";
    const std::u16string before(valueOf(changes.get(), name.c_str()));
    changes.remove(name.c_str());
    changes.add(name.c_str(), before + here);
}

void StylesheetFilter::warn(const std::string& text) const {
    m_operation.report(vexa::Severity::Warning, text, toLocation(m_locator));
}
