#include "files/CatalogAccess.h"

#include "base/Errors.h"
#include "xslt/Uri.h"

#include <dlfcn.h>
#include <system_error>

namespace {

vexa::PublicIdResolver loadResolver() {
    void* const library = dlopen(CATALOG_LIBRARY, RTLD_NOW);
    // vexa::catalogResolver()
    void* const function = library ? dlsym(library, "_ZN4vexa15catalogResolverEv") : nullptr;
    if (!function) {
        throw Failure("XML catalogs", dlerror()); // NOLINT(concurrency-mt-unsafe)
    }
    return reinterpret_cast<vexa::PublicIdResolver (*)()>(function)();
}

const vexa::PublicIdResolver& catalogResolver() {
    static const vexa::PublicIdResolver resolver = loadResolver();
    return resolver;
}

} // namespace

vexa::Resolver lazyCatalogResolver() {
    return vexa::PublicIdResolver{
        [](const std::string& uri, const std::string& base, const std::string& publicId) {
            const auto path = pathOfFileUri(uri);
            std::error_code none;
            return path && std::filesystem::exists(*path, none)
                       ? std::nullopt
                       : catalogResolver().resolve(uri, base, publicId);
        }};
}

void loadCatalogLibrary() {
    catalogResolver();
}
