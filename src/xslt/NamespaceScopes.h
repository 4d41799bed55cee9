/**
 * @file
 * The namespaces in scope, for a parser that leaves them alone.
 */
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <xercesc/sax/AttributeList.hpp>
#include <xercesc/sax2/Attributes.hpp>

inline constexpr std::u16string_view XSLT_NAMESPACE = u"http://www.w3.org/1999/XSL/Transform";

/** Of a name with or without prefix. */
inline std::u16string_view localPart(std::u16string_view name) {
    return name.substr(name.find(u':') + 1); // all of it where there is none
}

/** Empty where there is none. */
inline std::u16string_view prefixOf(std::u16string_view name) {
    const auto colon = name.find(u':');
    return colon == std::u16string_view::npos ? std::u16string_view() : name.substr(0, colon);
}

/** A prefix is empty for the default namespace, a URI for none. */
class NamespaceScopes {
public:
    void startElement(const xercesc::AttributeList& attributes) {
        ++m_depth;
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
            declareIfNamespace(attributes.getName(i), attributes.getValue(i));
        }
    }
    void startElement(const xercesc::Attributes& attributes) {
        ++m_depth;
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
            declareIfNamespace(attributes.getQName(i), attributes.getValue(i));
        }
    }
    void endElement() {
        while (!m_declarations.empty() && m_declarations.back().depth == m_depth) {
            m_declarations.pop_back();
        }
        --m_depth;
    }
    /** Declares one more, in the element that began last. */
    void declare(std::u16string_view prefix, std::u16string_view uri) {
        m_declarations.push_back({m_depth, std::u16string(prefix), std::u16string(uri)});
    }

    /** Calls `visit` with each prefix that is in scope and its URI. */
    template <typename Visit>
    void visitAll(Visit visit) const {
        for (const Declaration& declaration : m_declarations) {
            if (find(declaration.prefix) == &declaration) {
                visit(declaration.prefix, declaration.uri);
            }
        }
    }

    bool declares(std::u16string_view prefix) const { return find(prefix) != nullptr; }
    std::u16string_view uriOf(std::u16string_view prefix) const {
        const Declaration* const declaration = find(prefix);
        return declaration ? declaration->uri : std::u16string_view();
    }
    /** Not the default one: an attribute with this prefix has the namespace. Empty if there is
     * none. */
    std::u16string_view prefixOf(std::u16string_view uri) const {
        const auto declaration = std::find_if(
            m_declarations.rbegin(), m_declarations.rend(), [&](const Declaration& known) {
                return !known.prefix.empty() && known.uri == uri && uriOf(known.prefix) == uri;
            });
        return declaration == m_declarations.rend() ? std::u16string_view() : declaration->prefix;
    }

private:
    struct Declaration {
        std::size_t depth;
        std::u16string prefix;
        std::u16string uri;
    };

    void declareIfNamespace(std::u16string_view name, std::u16string_view value) {
        if (name.substr(0, 5) == u"xmlns" && (name.size() == 5 || name[5] == u':')) {
            declare(name.substr(std::min<std::size_t>(6, name.size())), value);
        }
    }
    const Declaration* find(std::u16string_view prefix) const {
        const auto declaration =
            std::find_if(m_declarations.rbegin(), m_declarations.rend(),
                         [prefix](const Declaration& known) { return known.prefix == prefix; });
        return declaration == m_declarations.rend() ? nullptr : &*declaration;
    }

    std::size_t m_depth = 0;
    std::vector<Declaration> m_declarations;
};
