/**
 * @file
 * XML catalogs, which map public identifiers and URIs to local files: link VEXA::Catalog.
 *
 *     vexa::Options options;
 *     options.resolver = vexa::catalogResolver();
 */
#pragma once

#include <vexa/xslt/Export.h>
#include <vexa/xslt/Options.h>

#include <filesystem>
#include <vector>

namespace vexa {

/**
 * A resolver that asks the catalogs that libxml2's tools ask: those that the environment variable
 * XML_CATALOG_FILES lists, separated by spaces, or /etc/xml/catalog. The variable is read now, a
 * catalog when the first reference needs it.
 *
 * As in libxml2's tools, an existing local file is never looked up, and a catalog that is missing
 * or broken is passed over. No catalog is fetched over the network. What a catalog gives is an
 * Input::uri: it is under the access policy of the operation, and is the base of what it refers to.
 *
 * Any thread may use the resolver, one after another. libxml2 keeps what it has read of a catalog
 * until the process ends; a host that uses libxml2 too calls xmlCleanupParser and xmlCatalogCleanup
 * only when no resolver is left.
 */
VEXA_XSLT_EXPORT PublicIdResolver catalogResolver();

/** The same with catalogs of the host's own, in this order. */
VEXA_XSLT_EXPORT PublicIdResolver
catalogResolver(const std::vector<std::filesystem::path>& catalogs);

} // namespace vexa
