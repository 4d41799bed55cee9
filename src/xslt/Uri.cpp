#include "xslt/Uri.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr std::string_view HEX_DIGITS = "0123456789ABCDEF";

bool isPathCharacter(unsigned char c) {
    return std::isalnum(c) || std::string_view("-._~!$&'()*+,;=:@/").find(static_cast<char>(c)) !=
                                  std::string_view::npos;
}

int hexValue(char c) {
    const auto position =
        HEX_DIGITS.find(static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
    return position == std::string_view::npos ? -1 : static_cast<int>(position);
}

std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 &&
                              hexValue(text[i + 2]) >= 0;
        decoded += isEscape ? static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]))
                            : text[i];
        i += isEscape ? 2 : 0;
    }
    return decoded;
}

/** The five parts of a reference; a part that is not there differs from an empty one. */
struct Parts {
    std::optional<std::string_view> scheme;
    std::optional<std::string_view> authority;
    std::string_view path;
    std::optional<std::string_view> query;
    std::optional<std::string_view> fragment;
};

std::optional<std::string_view> cutBehind(std::string_view& text, char mark) {
    const auto position = text.find(mark);
    if (position == std::string_view::npos) {
        return std::nullopt;
    }
    const auto part = text.substr(position + 1);
    text = text.substr(0, position);
    return part;
}

std::size_t schemeLength(std::string_view uri) {
    std::size_t length = 0;
    while (length < uri.size() &&
           (std::isalnum(static_cast<unsigned char>(uri[length])) ||
            (length > 0 && std::string_view("+-.").find(uri[length]) != std::string_view::npos))) {
        ++length;
    }
    const bool isScheme = length > 0 && length < uri.size() && uri[length] == ':' &&
                          std::isalpha(static_cast<unsigned char>(uri[0]));
    return isScheme ? length : 0;
}

Parts split(std::string_view uri) {
    Parts parts;
    parts.fragment = cutBehind(uri, '#');
    parts.query = cutBehind(uri, '?');
    if (const auto length = schemeLength(uri)) {
        parts.scheme = uri.substr(0, length);
        uri.remove_prefix(length + 1);
    }
    if (uri.substr(0, 2) == "//") {
        const auto end = std::min(uri.find('/', 2), uri.size());
        parts.authority = uri.substr(2, end - 2);
        uri.remove_prefix(end);
    }
    parts.path = uri;
    return parts;
}

std::string withoutDotSegments(std::string_view path) {
    std::string result;
    while (!path.empty()) {
        if (path.substr(0, 3) == "../") {
            path.remove_prefix(3);
        } else if (path.substr(0, 2) == "./" || path.substr(0, 3) == "/./") {
            path.remove_prefix(2);
        } else if (path == "/.") {
            path = "/";
        } else if (path.substr(0, 4) == "/../" || path == "/..") {
            path = path == "/.." ? std::string_view("/") : path.substr(3);
            const auto slash = result.rfind('/');
            result.resize(slash == std::string::npos ? 0 : slash);
        } else if (path == "." || path == "..") {
            path = {};
        } else {
            const auto end = std::min(path.find('/', 1), path.size());
            result += path.substr(0, end);
            path.remove_prefix(end);
        }
    }
    return result;
}

/** With a scheme. */
std::string join(const Parts& parts, std::string_view path) {
    std::string uri(*parts.scheme);
    uri += ':';
    if (parts.authority) {
        uri.append("//").append(*parts.authority);
    }
    uri += path;
    if (parts.query) {
        uri.append("?").append(*parts.query);
    }
    if (parts.fragment) {
        uri.append("#").append(*parts.fragment);
    }
    return uri;
}

std::string workingDirectoryUri() {
    return fileUri(std::filesystem::current_path() / "");
}

} // namespace

std::string fileUri(const std::filesystem::path& path) {
    if (path.empty()) {
        return {};
    }
    std::string uri = "file://";
    for (const char c : path.native()) {
        const auto byte = static_cast<unsigned char>(c);
        if (isPathCharacter(byte)) {
            uri += c;
        } else {
            uri += '%';
            uri += HEX_DIGITS[byte / 16];
            uri += HEX_DIGITS[byte % 16];
        }
    }
    return uri;
}

std::optional<std::filesystem::path> pathOfFileUri(std::string_view uri) {
    const Parts parts = split(uri);
    const bool isLocal = uriScheme(uri) == "file" && (!parts.authority || parts.authority == "" ||
                                                      parts.authority == "localhost");
    if (!isLocal) {
        return std::nullopt;
    }
    return std::filesystem::path(percentDecoded(parts.path));
}

std::string uriScheme(std::string_view uri) {
    std::string scheme(uri.substr(0, schemeLength(uri)));
    std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return scheme;
}

std::string resolveUri(std::string_view reference, std::string_view base) {
    const Parts parts = split(reference);
    if (parts.scheme) {
        // Dots mean nothing where there is no hierarchy ("urn:").
        const bool isHierarchical = parts.authority || parts.path.substr(0, 1) == "/";
        return isHierarchical ? join(parts, withoutDotSegments(parts.path))
                              : std::string(reference);
    }
    if (schemeLength(base) == 0) {
        const std::string directory = workingDirectoryUri();
        return resolveUri(reference, base.empty() ? directory : resolveUri(base, directory));
    }
    const Parts baseParts = split(base);
    Parts target = parts;
    target.scheme = baseParts.scheme;
    if (parts.authority) {
        return join(target, withoutDotSegments(parts.path));
    }
    target.authority = baseParts.authority;
    if (parts.path.empty()) {
        target.query = parts.query ? parts.query : baseParts.query;
        return join(target, baseParts.path);
    }
    if (parts.path.front() == '/') {
        return join(target, withoutDotSegments(parts.path));
    }
    const auto slash = baseParts.path.rfind('/');
    std::string merged;
    if (slash != std::string_view::npos) {
        merged = baseParts.path.substr(0, slash + 1);
    } else if (baseParts.authority) {
        merged = "/";
    }
    merged += parts.path;
    return join(target, withoutDotSegments(merged));
}
