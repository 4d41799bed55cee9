/**
 * @file
 * The names in a stylesheet that the engine does not take.
 */
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

/** What xsl:namespace-alias gives in place of a namespace of the stylesheet. */
struct NamespaceAlias {
    std::u16string stylesheetPrefix;
    std::u16string resultPrefix;
    std::u16string resultUri;
};

/** By the URI of the stylesheet. That or the result's is empty. */
using NamespaceAliases = std::map<std::u16string, NamespaceAlias, std::less<>>;

/** Collected while the modules are read. */
struct StylesheetNames {
    using ExpandedName = std::pair<std::u16string, std::u16string>; // URI, local name

    /** Of the functions that the stylesheet declares. */
    std::set<ExpandedName> functions;
    NamespaceAliases aliases;
};
