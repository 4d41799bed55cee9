/**
 * @file
 * URIs as RFC 3986 has them.
 */
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/** The "file" URI of an absolute path, percent-encoded; empty for an empty path. */
std::string fileUri(const std::filesystem::path& path);

/** The path of a "file" URI of this machine; nothing for other URIs. */
std::optional<std::filesystem::path> pathOfFileUri(std::string_view uri);

/** The scheme of a URI in lower case; empty for a relative reference. */
std::string uriScheme(std::string_view uri);

/**
 * A reference resolved against a base; against the working directory where the base is no absolute
 * URI.
 */
std::string resolveUri(std::string_view reference, std::string_view base);
