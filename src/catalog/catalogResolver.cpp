#include "catalog/Catalogs.h"

#include "xslt/Uri.h"

#include <vexa/catalog.h>

#include <cstdlib>
#include <sstream>

namespace fs = std::filesystem;

namespace vexa {

PublicIdResolver catalogResolver(const std::vector<fs::path>& catalogs) {
    return {[shared = std::make_shared<Catalogs>(catalogs)](
                const std::string& uri, const std::string& /*base*/, const std::string& publicId) {
        const auto found = shared->find(uri, publicId);
        return found ? std::optional(Input::uri(*found)) : std::nullopt;
    }};
}

PublicIdResolver catalogResolver() {
    const char* const names = std::getenv("XML_CATALOG_FILES");
    std::istringstream list(names ? names : "/etc/xml/catalog");
    std::vector<fs::path> catalogs;
    for (std::string name; list >> name;) {
        catalogs.push_back(pathOfFileUri(name).value_or(name));
    }
    return catalogResolver(catalogs);
}

} // namespace vexa
