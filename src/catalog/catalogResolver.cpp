#include "catalog/Catalogs.h"
#include "catalog/ListedCatalogs.h"

#include <vexa/catalog.h>

namespace vexa {

PublicIdResolver catalogResolver(const std::vector<std::filesystem::path>& catalogs) {
    return {[shared = std::make_shared<Catalogs>(catalogs)](
                const std::string& uri, const std::string& /*base*/, const std::string& publicId) {
        const auto found = shared->find(uri, publicId);
        return found ? std::optional(Input::uri(*found)) : std::nullopt;
    }};
}

PublicIdResolver catalogResolver() {
    return catalogResolver(listedCatalogs());
}

} // namespace vexa
