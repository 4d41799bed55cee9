/**
 * @file
 * Which catalogs libxml2's tools ask.
 */
#pragma once

#include "xslt/Uri.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

/** Those of the environment variable XML_CATALOG_FILES, or that of the system. */
inline std::vector<std::filesystem::path> listedCatalogs() {
    const char* const names = std::getenv("XML_CATALOG_FILES");
    std::istringstream list(names ? names : "/etc/xml/catalog");
    std::vector<std::filesystem::path> catalogs;
    for (std::string name; list >> name;) {
        catalogs.push_back(pathOfFileUri(name).value_or(name));
    }
    return catalogs;
}
