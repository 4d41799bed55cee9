#include "files/FileNames.h"

#include "xslt/Uri.h"

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

void FileNames::add(const InputArgument& argument) {
    m_byUri[argument.uri()] = argument.name();
}

std::string FileNames::nameOf(const std::string& uri) const {
    if (uri.empty()) {
        return m_strDefault;
    }
    if (const auto known = m_byUri.find(uri); known != m_byUri.end()) {
        return known->second;
    }
    const auto path = pathOfFileUri(uri);
    if (!path) {
        return uri;
    }
    std::error_code ignored;
    const fs::path relative = path->lexically_relative(fs::current_path(ignored));
    return relative.empty() || *relative.begin() == ".." ? path->string() : relative.string();
}
